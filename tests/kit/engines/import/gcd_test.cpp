// SPDX-License-Identifier: BSD-3-Clause
// The real design imported from LEF and DEF is the one that is there in the placer's formats.
#include <gtest/gtest.h>

#include <string>

#include "kit/base/text/json.h"
#include "kit/kitRun.h"
#include "support/guards.h"
#include "support/pattern.h"

namespace {

using test::contentOf;
using test::runKit;

/// What follows a line that begins so, up to and with one that begins otherwise.
std::string section(const std::string& text, const std::string& begin, const std::string& end)
{
    const size_t from = text.find("\n" + begin);
    const size_t to = text.find("\n" + end, from);
    return text.substr(from, to - from);
}

class KitImportGcd : public testing::Test {
protected:
    KitImportGcd()
    {
        const std::string raw = VIRELOCE_KIT_EXAMPLES "/raw/";
        const test::KitOutcome outcome = runKit({"import", "--lef", raw + "Nangate45_stdcell.lef", "--def",
                                                 raw + "gcd_nangate45.def", "-o", m_dir.path("gcd")});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
    }

    std::string made(const char* extension) const { return contentOf(m_dir.path("gcd") + extension); }
    static std::string known(const char* extension)
    {
        return contentOf(VIRELOCE_KIT_EXAMPLES "/gcd/gcd" + std::string(extension));
    }

    test::TempDir m_dir;
};

TEST_F(KitImportGcd, PinsNetsAndCellsAreTheSame)
{
    EXPECT_EQ(made(".pins"), known(".pins"));
    EXPECT_EQ(made(".netlist"), known(".netlist"));
    EXPECT_EQ(made(".cells"), known(".cells"));
}

TEST(KitImportJson, SaysWhatWasWritten)
{
    const std::string raw = VIRELOCE_KIT_EXAMPLES "/raw/";
    const test::TempDir dir;
    const kit::Json json =
        kit::Json::parse(runKit({"import", "--lef", raw + "Nangate45_stdcell.lef", "--def",
                                 raw + "gcd_nangate45.def", "-o", dir.path("gcd"), "--json"})
                             .output);
    EXPECT_EQ(json.at("design"), "gcd");
    EXPECT_EQ(json.at("components"), 426);
    EXPECT_EQ(json.at("cells"), 34);
    EXPECT_EQ(json.at("rows"), 21);
    EXPECT_EQ(json.at("site"), kit::Json::parse("[0.19, 1.4]"));
    EXPECT_EQ(json.at("nets"), 497);
    EXPECT_EQ(json.at("fillers"), 266);
    EXPECT_EQ(json.at("summary").asString().substr(0, 40), "426 components of 34 cells in 21 rows of");
}

TEST_F(KitImportGcd, RowsAreTheSame)
{
    EXPECT_EQ(section(made(".place"), "ROW ROW_0", "COMPONENTS"),
              section(known(".place"), "ROW ROW_0", "COMPONENTS"));
}

TEST_F(KitImportGcd, PlacersReportIsTheSame)
{
    for (const char* algo : {"0", "1", "3"}) {
        std::string reports[2];
        const std::string bases[2] = {VIRELOCE_KIT_EXAMPLES "/gcd/gcd", m_dir.path("gcd")};
        for (int i = 0; i < 2; ++i) {
            reports[i] = test::replaced(
                runKit({"place", bases[i], "--cell-path", VIRELOCE_KIT_EXAMPLES "/nangate45_color", "-o",
                        m_dir.path("out"), "--force", "--algo", algo})
                    .output,
                "CPU time +=.*|Parameters:.*", "");
        }
        EXPECT_EQ(reports[0], reports[1]);
        EXPECT_NE(reports[0].find("final HPWL"), std::string::npos);
    }
}

TEST_F(KitImportGcd, MapGoesWithTheResult)
{
    const std::string lib = VIRELOCE_KIT_EXAMPLES "/nangate45_color";
    ASSERT_EQ(runKit({"place", m_dir.path("gcd"), "--cell-path", lib, "-o", m_dir.path("out")}).status, 0);
    EXPECT_EQ(contentOf(m_dir.path("out.map")), made(".map"));
    EXPECT_NE(made(".map"), "");
    // A design that was not imported has none, and takes an old one away.
    ASSERT_EQ(runKit({"place", VIRELOCE_KIT_EXAMPLES "/gcd/gcd", "--cell-path", lib, "-o", m_dir.path("out"),
                      "--force"})
                  .status,
              0);
    EXPECT_FALSE(std::filesystem::exists(m_dir.path("out.map")));
}

} // namespace
