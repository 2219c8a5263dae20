// SPDX-License-Identifier: BSD-3-Clause
// A generated design, written in both ways, is the same design.
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "kit/kitRun.h"
#include "support/guards.h"

namespace {

using test::contentOf;
using test::runKit;
using test::Words;

/// A report without what tells the two apart: paths, times, and macros, of which import makes a record a row.
std::string comparable(const std::string& report)
{
    return std::regex_replace(report, std::regex("[^\n]*(CPU time|Parameters|macro #)[^\n]*\n"), "");
}

struct Kind {
    const char* name;
    Words options;
};

class KitImportGenerated : public testing::TestWithParam<Kind> {};

TEST_P(KitImportGenerated, IsPlacedAsTheDesignInThePlacersFormats)
{
    Words options = GetParam().options;
    options.emplace_back("--lef-def");
    const test::GeneratedDesign design(options);
    const test::TempDir dir;
    const std::string imported = dir.path("imported");
    const auto outcome = runKit({"import", "--lef", design.base() + ".lef", "--def", design.base() + ".def",
                                 "--layer", "metal1", "-o", imported});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(contentOf(imported + ".pins"), contentOf(design.base() + ".pins"));

    std::string reports[2];
    const std::string bases[2] = {design.base(), imported};
    for (int i = 0; i < 2; ++i) {
        reports[i] = comparable(
            runKit({"place", bases[i], "--cell-path", design.lib(), "-o", dir.path("out"), "--force"})
                .output);
    }
    EXPECT_EQ(reports[0], reports[1]);
    EXPECT_NE(reports[0].find("final HPWL"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Kinds, KitImportGenerated,
                         testing::Values(Kind{"Plain", {"--mirrored", "0"}},
                                         Kind{"Mirrored", {"--mirrored", "60"}},
                                         Kind{"WithMacros", {"--macros", "5", "--seed", "3"}},
                                         Kind{"OtherSites", {"--site-step", "270", "--macros", "2"}}),
                         [](const auto& instance) { return instance.param.name; });

} // namespace
