// SPDX-License-Identifier: BSD-3-Clause
#include "mutation/mutator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "support/guards.h"

namespace {

using mutation::GoodCase;
using mutation::Inputs;
using mutation::Random;

const std::vector<GoodCase>& goodCases()
{
    static const auto s_cases = mutation::readGoodCases(VIRELOCE_GOLDEN, VIRELOCE_EXAMPLES);
    return s_cases;
}

Inputs goodInputs()
{
    const GoodCase& good = goodCases().back();
    return {good.files, good.commands.front()};
}

bool operator==(const Inputs& a, const Inputs& b)
{
    const auto sameFile = [](const auto& x, const auto& y) {
        return x.first == y.first && x.second.bytes == y.second.bytes &&
               x.second.isFolder == y.second.isFolder;
    };
    return a.options == b.options &&
           std::equal(a.files.begin(), a.files.end(), b.files.begin(), b.files.end(), sameFile);
}

TEST(Random, SameNumbersForTheSameSeedAndStream)
{
    Random a(1, 2);
    Random b(1, 2);
    Random otherSeed(2, 2);
    Random otherStream(1, 3);
    const size_t first = a.below(1'000'000'000);
    EXPECT_EQ(first, b.below(1'000'000'000));
    EXPECT_NE(first, otherSeed.below(1'000'000'000));
    EXPECT_NE(first, otherStream.below(1'000'000'000));
}

TEST(GoodCases, HaveTheirFilesAndCommands)
{
    const std::set<std::string> allKinds{".cells", ".color", ".netlist", ".pins", ".place"};
    ASSERT_GT(goodCases().size(), 40U);
    size_t complete = 0;
    for (const GoodCase& good : goodCases()) {
        std::set<std::string> kinds;
        for (const auto& [name, file] : good.files) {
            kinds.insert(std::filesystem::path(name).extension().string());
        }
        complete += kinds == allKinds ? 1 : 0;
        EXPECT_TRUE(kinds.contains(".place")) << good.name;
        EXPECT_FALSE(good.commands.empty()) << good.name;
    }
    EXPECT_GE(complete + 2, goodCases().size()); // a good report may be that of a missing file
}

TEST(GoodCases, ComeInTheOrderOfTheirNames)
{
    const auto byName = [](const GoodCase& a, const GoodCase& b) { return a.name < b.name; };
    EXPECT_TRUE(std::is_sorted(goodCases().begin(), goodCases().end(), byName));
}

TEST(WriteFiles, WritesFilesAndFoldersAndRemovesWhatWasThere)
{
    const test::TempDir dir;
    dir.write("in/old", "left over");
    mutation::writeFiles(dir.path("in"),
                         {{"lib/A.color", {std::string("a\0b", 3)}}, {"d.pins", {"x", true}}});
    EXPECT_EQ(std::filesystem::file_size(dir.path("in/lib/A.color")), 3U);
    EXPECT_TRUE(std::filesystem::is_directory(dir.path("in/d.pins")));
    EXPECT_FALSE(std::filesystem::exists(dir.path("in/old")));
}

TEST(CommandLine, QuotesWordsAndShowsBytesThatDoNotPrint)
{
    EXPECT_EQ(mutation::commandLine({"-W", "", "a b", "it's\t"}), "'-W' '' 'a b' 'it\\x27s\\x09'");
}

TEST(Mutate, SameRandomNumbersMakeTheSameInputs)
{
    for (uint64_t stream = 0; stream < 50; ++stream) {
        Inputs a = goodInputs();
        Inputs b = goodInputs();
        Random randomA(7, stream);
        Random randomB(7, stream);
        EXPECT_EQ(mutation::mutate(randomA, a), mutation::mutate(randomB, b));
        EXPECT_TRUE(a == b);
    }
}

TEST(Mutate, MakesOneToSixChangesToEveryKindOfInput)
{
    std::set<size_t> counts;
    std::set<std::string> changed; // endings of the names of changed files, and "options"
    for (uint64_t stream = 0; stream < 300; ++stream) {
        const Inputs good = goodInputs();
        Inputs inputs = good;
        Random random(3, stream);
        counts.insert(mutation::mutate(random, inputs).size());
        if (inputs.options != good.options) {
            changed.insert("options");
        }
        for (const auto& [name, file] : good.files) {
            const auto now = inputs.files.find(name);
            if (now == inputs.files.end() || now->second.bytes != file.bytes) {
                changed.insert(std::filesystem::path(name).extension().string());
            }
        }
    }
    EXPECT_EQ(counts, (std::set<size_t>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(changed, (std::set<std::string>{".cells", ".color", ".netlist", ".pins", ".place", "options"}));
}

TEST(Mutate, CopesWithEmptyFiles)
{
    for (uint64_t stream = 0; stream < 300; ++stream) {
        Inputs inputs{{{"d.place", {}}, {"lib/A.color", {"\n"}}}, {}};
        Random random(5, stream);
        EXPECT_FALSE(mutation::mutate(random, inputs).empty());
    }
}

} // namespace
