// SPDX-License-Identifier: BSD-3-Clause
// The forms of the report, the options and the exit status.

#include "kit/base/text/json.h"
#include "kit/engines/lint/smallDesign.h"

namespace {

using kit::Json;
using test::Damage;
using test::GeneratedDesign;
using test::KitOutcome;
using test::runKit;
using test::SmallDesign;

const Damage OFF_SITE{"d.place", "( 1520 1900 )", "( 1530 1900 )"};
const Damage DEGREE_ONE{"d.netlist", "2 u1 u2", "1 u1"};
const Damage UNKNOWN_CELL{"d.place", "- u1 INV", "- u1 INVX"};

TEST(LintReport, CountsStandInTheLastLine)
{
    EXPECT_EQ(SmallDesign().lint().output, "0 errors, 0 warnings, 0 notes\n");
    const std::string output = SmallDesign({OFF_SITE, DEGREE_ONE, UNKNOWN_CELL}).lint().output;
    EXPECT_NE(output.find("\n1 error, 1 warning, 1 note\n"), std::string::npos) << output;
}

TEST(LintReport, StatusIsThatOfTheWorst)
{
    EXPECT_EQ(SmallDesign().lint().status, 0);
    EXPECT_EQ(SmallDesign({DEGREE_ONE}).lint().status, 0);
    EXPECT_EQ(SmallDesign({DEGREE_ONE, OFF_SITE}).lint().status, 1);
    EXPECT_EQ(SmallDesign({DEGREE_ONE, OFF_SITE, UNKNOWN_CELL}).lint().status, 2);
}

TEST(LintReport, WerrorMakesWarningsErrorsAndLeavesNotes)
{
    const KitOutcome outcome = SmallDesign({OFF_SITE, DEGREE_ONE}).lint({"--werror"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.output.find("d.place:20: error: u4 at (1530 1900) is off"), std::string::npos);
    EXPECT_NE(outcome.output.find("\n1 error, 0 warnings, 1 note\n"), std::string::npos) << outcome.output;
    EXPECT_EQ(SmallDesign({DEGREE_ONE}).lint({"--werror"}).status, 0);
}

TEST(LintReport, FindingsAreInTheOrderOfTheLines)
{
    const std::string output = SmallDesign({OFF_SITE, UNKNOWN_CELL}).lint().output;
    EXPECT_LT(output.find("d.place:14:"), output.find("d.place:20:")) << output;
}

TEST(LintReport, JsonHasSchemaCountsAndFindings)
{
    const KitOutcome outcome = SmallDesign({OFF_SITE, UNKNOWN_CELL}).lint({"--json"});
    EXPECT_EQ(outcome.status, 2);
    const Json report = Json::parse(outcome.output);
    EXPECT_EQ(report.at("schema"), 1);
    EXPECT_EQ(report.at("summary"), "1 error, 1 warning, 0 notes");
    EXPECT_EQ(report.at("counts"), Json({{"errors", 1}, {"warnings", 1}, {"notes", 0}}));
    ASSERT_EQ(report.at("findings").size(), 2U);
    EXPECT_EQ(report.at("findings")[0],
              Json({{"severity", "error"},
                    {"code", "unknown-cell"},
                    {"file", "d.place"},
                    {"line", 14},
                    {"column", 6},
                    {"what", "the cell INVX of u1 is not in the cell list"},
                    {"advice", "add it to the list, with a colour file, or correct the name"}}));
    EXPECT_EQ(report.at("findings")[1].at("code"), "off-site");
    EXPECT_EQ(report.at("findings")[1].at("column"), 0);
}

TEST(LintReport, JsonOfASoundDesignHasNoFindings)
{
    const Json report = Json::parse(SmallDesign().lint({"--json"}).output);
    EXPECT_EQ(report.at("findings"), Json::array());
}

TEST(LintReport, JsonStandsBytesThatAreNoText)
{
    const Json report =
        Json::parse(SmallDesign({{"d.place", "- u1 INV", "- u1 \"\xff\x01"}}).lint({"--json"}).output);
    EXPECT_EQ(report.at("findings")[0].at("what"),
              "the cell \"\xef\xbf\xbd\x01 of u1 is not in the cell list");
}

TEST(LintReport, LinesShowNoControlCharacters)
{
    const std::string output = SmallDesign({{"d.place", "- u1 INV", "- u1 A\x1b[31mB"}}).lint().output;
    EXPECT_NE(output.find("the cell A\\x1b[31mB of u1"), std::string::npos) << output;
}

TEST(LintOptions, MindpIsTheColouringDistance)
{
    const SmallDesign design({{"lib/INV.color", "295 400 360", "270 400 360"}}); // 185 apart
    EXPECT_EQ(design.lint().status, 0);
    const std::string output = design.lint({"--mindp", "186"}).output;
    EXPECT_NE(output.find("only 185 apart, less than 186"), std::string::npos) << output;
}

TEST(LintOptions, TrailingDotOfTheBaseAndSlashesOfTheFolderDoNotCount)
{
    const SmallDesign design;
    const KitOutcome outcome = runKit({"lint", design.base() + ".", "--cell-path", design.lib() + "//"});
    EXPECT_EQ(outcome.output, "0 errors, 0 warnings, 0 notes\n");
}

TEST(LintOptions, CellPathIsRequired)
{
    const KitOutcome outcome = runKit({"lint", SmallDesign().base()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "vireloce-kit: --cell-path is required\n");
}

TEST(LintOptions, HelpHasAnExample)
{
    const KitOutcome outcome = runKit({"lint", "--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find("vireloce-kit lint examples/gcd/gcd --cell-path"), std::string::npos);
}

TEST(LintDesigns, GeneratedDesignsAreSound)
{
    for (const std::string step : {"190", "380"}) {
        const GeneratedDesign design({"--macros", "5", "--site-step", step, "--mirrored", "50"});
        const KitOutcome outcome = runKit({"lint", design.base(), "--cell-path", design.lib()});
        EXPECT_EQ(outcome.output, "0 errors, 0 warnings, 0 notes\n");
    }
}

TEST(LintDesigns, DenseGeneratedDesignsHaveRoomForTheirSpacings)
{
    const GeneratedDesign design({"--utilization", "95", "--mirrored", "50"});
    const KitOutcome outcome = runKit({"lint", design.base(), "--cell-path", design.lib()});
    EXPECT_EQ(outcome.output, "0 errors, 0 warnings, 0 notes\n");
}

TEST(LintDesigns, LibraryMayBeTooLargeForTheSpacingTable)
{
    std::string solutions;
    for (int i = 0; i < 11'176; ++i) {
        solutions += "0  0 0 1 1\n";
    }
    const auto withSolutions = [&solutions](int more) {
        const std::string count = std::to_string(11'176 + more) + "\n";
        const std::string rest = more == 0 ? "" : "0  0 0 1 1\n";
        return SmallDesign({{"lib/INV.color", "2\n0  0 0 1 1\n0  0 0 1 2\n", count + solutions + rest}})
            .lint();
    };
    EXPECT_EQ(withSolutions(0).status, 0); // with NAND 22,360 types, so 499,969,600 entries
    EXPECT_EQ(
        withSolutions(1).output,
        "d.cells: error: the cells and their solutions are too many for the placer's spacing table; list "
        "only the cells in use, with fewer solutions [large-library]\n1 error, 0 warnings, 0 notes\n");
}

TEST(LintDesigns, ExampleHasTheKnownConflictsOfItsLibrary)
{
    const std::string examples = VIRELOCE_KIT_EXAMPLES;
    const KitOutcome outcome =
        runKit({"lint", examples + "/gcd/gcd", "--cell-path", examples + "/nangate45_color", "--json"});
    EXPECT_EQ(outcome.status, 1);
    const Json report = Json::parse(outcome.output);
    EXPECT_EQ(report.at("counts"), Json({{"errors", 0}, {"warnings", 24}, {"notes", 35}}));
    for (const Json& finding : report.at("findings").items()) {
        const std::string& file = finding.at("file").asString();
        const bool known = file.ends_with("/OAI22_X1.color") || file.ends_with("/XNOR2_X2.color");
        EXPECT_EQ(known, finding.at("code") == "same-mask") << finding;
    }
}

} // namespace
