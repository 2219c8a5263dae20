// SPDX-License-Identifier: BSD-3-Clause
// The bash completion, in a real bash.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

/// The words that are offered behind a command line whose last word is being typed.
std::string offered(const std::string& words)
{
    const std::string script =
        "source '" VIRELOCE_KIT_COMPLETION "'; COMP_WORDS=(vireloce-kit " + words +
        "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _vireloce_kit '" VIRELOCE_KIT_PROGRAM
        "' \"${COMP_WORDS[COMP_CWORD]}\"; echo \"${COMPREPLY[*]}\"";
    std::string output;
    FILE* pipe = popen(("bash -c '" +
                        [&script] {
                            std::string quoted;
                            for (const char c : script) {
                                quoted += c == '\'' ? "'\\''" : std::string(1, c);
                            }
                            return quoted;
                        }() +
                        "'")
                           .c_str(),
                       "r");
    std::array<char, 4096> chunk;
    for (size_t n = 0; (n = fread(chunk.data(), 1, chunk.size(), pipe)) > 0;) {
        output.append(chunk.data(), n);
    }
    EXPECT_EQ(pclose(pipe), 0);
    return output;
}

TEST(KitCompletion, OffersSubcommands)
{
    EXPECT_EQ(offered("pl"), "place\n");
    const std::string all = " " + offered("\"\"");
    for (const char* name : {"color", "compare", "export", "flow", "gen", "import", "lint", "place", "refine",
                             "sweep", "verify", "view"}) {
        EXPECT_NE(all.find(" " + std::string(name) + " "), std::string::npos) << name << " in" << all;
    }
}

TEST(KitCompletion, OffersTheOptionsOfASubcommand)
{
    EXPECT_EQ(offered("place --re"), "--rescue\n");
    EXPECT_EQ(offered("lint --we"), "--werror\n");
    EXPECT_EQ(offered("color --st"), "--stitch-overlap\n");
    EXPECT_EQ(offered("export --lef-"), "--lef-masks\n");
}

TEST(KitCompletion, OffersSubcommandsOfSubcommands)
{
    EXPECT_EQ(offered("sweep co"), "collect\n");
    const std::string all = " " + offered("sweep \"\"");
    for (const char* name : {"plan", "run", "collect", "plot", "--help"}) {
        EXPECT_NE(all.find(" " + std::string(name)), std::string::npos) << name << " in" << all;
    }
    EXPECT_EQ(all.find("place"), std::string::npos) << all;
}

TEST(KitCompletion, OffersTheOptionsOfSubcommandsOfSubcommands)
{
    EXPECT_EQ(offered("sweep run --sh"), "--shard\n");
    EXPECT_EQ(offered("sweep plan --sh"), "--shard-minutes\n");
    EXPECT_EQ(offered("sweep collect out --sq"), "--sqlite\n");
}

TEST(KitCompletion, OffersDesignsWithoutTheirExtension)
{
    EXPECT_EQ(offered("place " VIRELOCE_KIT_EXAMPLES "/gcd/gc"), VIRELOCE_KIT_EXAMPLES "/gcd/gcd\n");
}

} // namespace
