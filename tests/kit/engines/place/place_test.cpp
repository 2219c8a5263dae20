// SPDX-License-Identifier: BSD-3-Clause
// The subcommand that runs the placer and keeps its result.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "app/driver.h"
#include "kit/base/text/json.h"
#include "kit/design/pinOffsets.h"
#include "kit/engines/place/schema.h"
#include "kit/kitRun.h"
#include "support/guards.h"
#include "support/pattern.h"

namespace {

using kit::Json;
using test::contentOf;
using test::KitOutcome;
using test::runKit;
using test::Words;

std::string withoutTimes(const std::string& report)
{
    return test::replaced(report, "(CPU time +=) [0-9]+\\.[0-9]{3} s\n", "$1 *\n");
}

/// A placement without places.
std::string withoutPoints(const std::string& placement)
{
    return test::replaced(placement, "\\( -?[0-9]+ -?[0-9]+ \\)", "");
}

/// The placer's own report for some arguments.
std::string reportOfPlacer(Words words)
{
    const test::ParameterGuard parameters;
    words.insert(words.begin(), "vireloce");
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    return test::reportOf([&] { vireloce::runPlacer(static_cast<int>(argv.size()), argv.data()); });
}

class KitPlace : public testing::Test {
protected:
    std::string out(const std::string& extension = "") const { return m_dir.path("out" + extension); }

    KitOutcome place(const Words& more = {}) const
    {
        Words words{"place", m_design.base(), "--cell-path", m_design.lib(), "-o", out()};
        words.insert(words.end(), more.begin(), more.end());
        return runKit(words);
    }

    Json result() const { return Json::parse(contentOf(out(".json"))); }

    test::GeneratedDesign m_design{{"--mirrored", "0"}};
    test::TempDir m_dir;
};

TEST_F(KitPlace, PrintsThePlacersReportToTheByte)
{
    for (const char* algo : {"0", "1", "3"}) {
        const KitOutcome outcome = place({"--algo", algo, "--weight", "2.5", "--force"});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(withoutTimes(outcome.output),
                  withoutTimes(reportOfPlacer(
                      {"-inlib", m_design.base(), "-cellPath", m_design.lib(), "-algo", algo, "-W", "2.5"})));
    }
}

TEST_F(KitPlace, ItsResultNamesItsInputsForEveryFolder)
{
    namespace fs = std::filesystem;
    const fs::path here = fs::current_path();
    fs::current_path(fs::path(m_design.base()).parent_path());
    const KitOutcome outcome = runKit({"place", "d", "--cell-path", "./d.colors", "-o", out()});
    fs::current_path(here);
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const std::string cellPath = result()["options"]["cell_path"].asString();
    EXPECT_TRUE(fs::path(cellPath).is_absolute() && fs::equivalent(cellPath, m_design.lib())) << cellPath;
    const std::string base = result()["options"]["base"].asString();
    EXPECT_TRUE(fs::equivalent(base + ".place", m_design.base() + ".place")) << base;
}

TEST_F(KitPlace, ShowsNoProgressWhereThereIsNoTerminal)
{
    EXPECT_EQ(place().error, "");
}

TEST_F(KitPlace, ChangesNothingInThePlacementFileButCoordinates)
{
    ASSERT_EQ(place().status, 0);
    const std::string before = contentOf(m_design.base() + ".place");
    const std::string after = contentOf(out(".place"));
    EXPECT_NE(before, after);
    EXPECT_EQ(withoutPoints(before), withoutPoints(after));
}

TEST_F(KitPlace, WritesADesignThatCanBePlacedAgain)
{
    ASSERT_EQ(place().status, 0);
    const Json first = result();
    const KitOutcome again =
        runKit({"place", out(), "--cell-path", m_design.lib(), "-o", m_dir.path("again")});
    EXPECT_EQ(again.status, 0) << again.error;
    const Json second = Json::parse(contentOf(m_dir.path("again.json")));
    EXPECT_EQ(second["report"]["init HPWL"], first["placement"]["hpwl"]);
    EXPECT_LE(second["placement"]["displacement"]["mean"].asNumber(),
              first["placement"]["displacement"]["mean"].asNumber());
}

TEST_F(KitPlace, ColoursHaveARecordForEveryComponent)
{
    ASSERT_EQ(place().status, 0);
    EXPECT_EQ(contentOf(out(".colors")).substr(0, 34), "VIRELOCE COLORS 1\nCOMPONENTS 1000\n");
}

class KitPlaceRoundTrip : public testing::TestWithParam<const char*> {};

// A warning of lint about the library stays one; verify and the placer have none left to give.
TEST_P(KitPlaceRoundTrip, ResultOfGcdIsLintedVerifiedPlacedAgainAndViewed)
{
    const std::string base = VIRELOCE_KIT_EXAMPLES "/gcd/gcd";
    const std::string lib = VIRELOCE_KIT_EXAMPLES "/nangate45_color";
    const test::TempDir dir;
    const std::string out = dir.path("out");
    ASSERT_EQ(runKit({"place", base, "--cell-path", lib, "-o", out, "--algo", GetParam()}).status, 0);

    const KitOutcome before = runKit({"lint", base, "--cell-path", lib, "--json"});
    const KitOutcome after = runKit({"lint", out, "--cell-path", lib, "--json"});
    EXPECT_EQ(Json::parse(after.output)["counts"]["errors"], 0);
    EXPECT_EQ(Json::parse(after.output)["counts"]["warnings"],
              Json::parse(before.output)["counts"]["warnings"]);

    const KitOutcome verify =
        runKit({"verify", out + ".place", "--colors", out + ".colors", "--cell-path", lib});
    EXPECT_EQ(verify.status, 0) << verify.output;

    const KitOutcome again =
        runKit({"place", out, "--cell-path", lib, "-o", dir.path("again"), "--algo", GetParam()});
    EXPECT_EQ(again.status, 0) << again.error;
    EXPECT_EQ(Json::parse(contentOf(dir.path("again.json")))["report"]["init HPWL"],
              Json::parse(contentOf(out + ".json"))["placement"]["hpwl"]);

    EXPECT_EQ(runKit({"view", out + ".place", "--cell-path", lib, "-o", dir.path("out.svg")}).status, 0);
}

TEST(KitPlacePins, WirelengthByPinsOfAnImportedDesignIsThatOfItsDefFiles)
{
    const std::string raw = VIRELOCE_KIT_EXAMPLES "/raw/";
    const std::string lib = VIRELOCE_KIT_EXAMPLES "/nangate45_color";
    const test::TempDir dir;
    const std::string base = dir.path("gcd");
    const std::string out = dir.path("out");
    ASSERT_EQ(runKit({"import", "--lef", raw + "Nangate45_stdcell.lef", "--def", raw + "gcd_nangate45.def",
                      "-o", base})
                  .status,
              0);
    ASSERT_EQ(runKit({"place", base, "--cell-path", lib, "-o", out}).status, 0);
    EXPECT_EQ(contentOf(out + ".offsets"), contentOf(base + ".offsets"));
    const Json result = Json::parse(contentOf(out + ".json"));
    EXPECT_EQ(test::faultsOf(result, test::placeSchema()), Words{});
    EXPECT_EQ(result["hpwl_pins"]["before"], Json::parse(R"({"dbu": 4340250, "um": 2170.125})"));
    const Words verify{"verify", out + ".place", "--colors", out + ".colors", "--cell-path", lib};
    Words asJson = verify;
    asJson.emplace_back("--json");
    EXPECT_EQ(Json::parse(runKit(asJson).output)["hpwl_pins"], result["hpwl_pins"]["after"]);
    const std::string line = "\nWirelength from pin to pin: " + result["hpwl_pins"]["after"]["dbu"].dump() +
                             " DBU, " + kit::design::micrometresText(result["hpwl_pins"]["after"]) + "\n";
    EXPECT_NE(runKit(verify).output.find(line), std::string::npos) << line;
    EXPECT_NE(runKit({"compare", out + ".json"}).output.find("| HPWL by pins, um | "), std::string::npos);
    const std::string after = kit::design::micrometresText(result["hpwl_pins"]["after"]);
    ASSERT_EQ(runKit({"view", out, "--before", base, "-o", dir.path("out.html")}).status, 0);
    const std::string page = contentOf(dir.path("out.html"));
    EXPECT_NE(page.find("\"pinLength\":\"" + after + "\",\"pinLengthBefore\":\"2170.1 um\""),
              std::string::npos);
    ASSERT_EQ(runKit({"view", out, "-o", dir.path("out.svg")}).status, 0);
    EXPECT_NE(contentOf(dir.path("out.svg")).find("wires of " + after + " from pin to pin"),
              std::string::npos);

    std::filesystem::remove(base + ".offsets");
    ASSERT_EQ(runKit({"place", base, "--cell-path", lib, "-o", out, "--force"}).status, 0);
    EXPECT_TRUE(Json::parse(contentOf(out + ".json"))["hpwl_pins"].isNull());
    EXPECT_FALSE(std::filesystem::exists(out + ".offsets")) << "that of the earlier result";
    EXPECT_TRUE(Json::parse(runKit(asJson).output)["hpwl_pins"].isNull());
    EXPECT_EQ(runKit(verify).output.find("pin to pin"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Algorithms, KitPlaceRoundTrip, testing::Values("0", "1", "3"));

TEST(KitPlaceJudge, MirroredCellsTooCloseAreToldThoughThePlacerCountsNone)
{
    const test::GeneratedDesign design({"--mirrored", "30"});
    const test::TempDir dir;
    const std::string out = dir.path("out");
    EXPECT_EQ(runKit({"place", design.base(), "--cell-path", design.lib(), "-o", out}).status, 1);
    const Json result = Json::parse(contentOf(out + ".json"));
    EXPECT_EQ(result["placement"]["conflicts"], 0);
    const KitOutcome verify = runKit(
        {"verify", out + ".place", "--colors", out + ".colors", "--cell-path", design.lib(), "--json"});
    EXPECT_EQ(result["judge"]["conflicts"], Json::parse(verify.output)["counts"]["conflict"]);
    EXPECT_GT(result["judge"]["conflicts"].asInteger(), 0);
    EXPECT_EQ(result["judge"]["errors"], result["judge"]["conflicts"]);
}

TEST(KitPlaceTrueOrientation, TurnedCellsKeepTheirDistanceUnderEveryMethod)
{
    const test::GeneratedDesign design({"--mirrored", "30"});
    const test::TempDir dir;
    const std::string out = dir.path("out");
    for (const char* algo : {"0", "1", "2", "3", "4"}) {
        const KitOutcome outcome = runKit({"place", design.base(), "--cell-path", design.lib(), "-o", out,
                                           "--algo", algo, "--true-orientation", "--force"});
        EXPECT_LE(outcome.status, 1) << algo << outcome.error; // greedily, a cell may be left without a place
        const Json result = Json::parse(contentOf(out + ".json"));
        EXPECT_EQ(result["judge"]["conflicts"], 0) << algo;
        EXPECT_EQ(result["placement"]["conflicts"], 0) << algo;
        EXPECT_EQ(test::faultsOf(result, test::placeSchema()), Words{});
    }
}

TEST(KitPlaceTrueOrientation, ResultHasTheCellsAndOrientationsOfTheDesign)
{
    const test::GeneratedDesign design({"--mirrored", "30"});
    const test::TempDir dir;
    const std::string out = dir.path("out");
    ASSERT_EQ(
        runKit({"place", design.base(), "--cell-path", design.lib(), "-o", out, "--true-orientation"}).status,
        0);
    EXPECT_EQ(withoutPoints(contentOf(out + ".place")), withoutPoints(contentOf(design.base() + ".place")));
    EXPECT_EQ(contentOf(out + ".cells"), contentOf(design.base() + ".cells"));
    EXPECT_EQ(
        runKit({"verify", out + ".place", "--colors", out + ".colors", "--cell-path", design.lib()}).status,
        0);
}

// A copy of the files would be named in their place.
TEST(KitPlaceTrueOrientation, FaultsOfTheFilesAreToldAsWithoutIt)
{
    for (const char* extension : {".cells", ".netlist"}) {
        const test::GeneratedDesign design({"--mirrored", "30"});
        const test::TempDir dir;
        const std::string path = design.base() + extension;
        std::ofstream(path, std::ios::trunc)
            << (extension == std::string(".cells") ? "0\n" : "1\n2\nu1 nobody\n");
        Words words{"place", design.base(), "--cell-path", design.lib(), "-o", dir.path("out"), "--force"};
        const KitOutcome plain = runKit(words);
        words.emplace_back("--true-orientation");
        const KitOutcome outcome = runKit(words);
        EXPECT_EQ(outcome.status, plain.status) << extension;
        EXPECT_EQ(outcome.error, plain.error) << extension;
        EXPECT_NE(plain.error, "") << extension;
    }
}

TEST_F(KitPlace, WithoutTurnedCellsTrueOrientationChangesNothing)
{
    ASSERT_EQ(place().status, 0);
    const std::string plain = contentOf(out(".place")) + contentOf(out(".colors"));
    const KitOutcome outcome = place({"--true-orientation", "--force"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(contentOf(out(".place")) + contentOf(out(".colors")), plain);
}

TEST(KitPlaceTrueOrientation, TheReportNamesTheDesignThatWasGiven)
{
    const test::GeneratedDesign design({"--mirrored", "30"});
    const test::TempDir dir;
    const KitOutcome outcome = runKit(
        {"place", design.base(), "--cell-path", design.lib(), "-o", dir.path("out"), "--true-orientation"});
    EXPECT_NE(outcome.output.find(design.base()), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find("/design"), std::string::npos) << outcome.output;
}

TEST_F(KitPlace, JudgeHasNothingAgainstACleanResult)
{
    ASSERT_EQ(place().status, 0);
    EXPECT_EQ(result()["judge"], (Json{{"errors", 0}, {"conflicts", 0}, {"notes", 0}, {"mindp_um", 0.185}}));
}

TEST_F(KitPlace, JsonSaysWhatTheReportSays)
{
    const KitOutcome outcome = place({"--algo", "1"});
    const Json report = result()["report"];
    size_t figures = 0;
    for (const test::Match& line :
         test::matchesOf(outcome.output, "STAT \\| ([^\n]*[^ ]) *= +(-?[0-9.]+)[^\n]*")) {
        const std::string label = test::replaced(line[1], " +", " ");
        ASSERT_TRUE(report.contains(label)) << label;
        EXPECT_EQ(report[label].asNumber(), std::stod(line[2])) << label;
        ++figures;
    }
    EXPECT_EQ(figures, 18U);
    EXPECT_EQ(report.size(), figures);
    EXPECT_EQ(result()["placement"]["hpwl"], report["final HPWL"]);
    EXPECT_EQ(result()["placement"]["stitches"], report["final stitch #"]);
    EXPECT_EQ(result()["placement"]["conflicts"], report["final conflict #"]);
    EXPECT_EQ(result()["options"]["algo"], 1);
    EXPECT_EQ(result()["options"]["weight"], nullptr);
}

TEST_F(KitPlace, JsonFollowsItsSchema)
{
    place({"--rescue"});
    EXPECT_EQ(test::faultsOf(result(), test::placeSchema()), Words{});
    Json broken = result();
    broken["placement"]["hpwl"] = "far";
    broken["seconds"] = "long";
    broken["more"] = 1;
    EXPECT_EQ(test::faultsOf(broken, test::placeSchema()).size(), 3U);
    EXPECT_EQ(test::faultsOf(Json::object(), test::placeSchema()).size(), result().size())
        << "none may be absent";
}

TEST_F(KitPlace, HistogramCountsEveryComponentOnce)
{
    place();
    int64_t cells = 0;
    const Json histogram = result()["placement"]["displacement"]["histogram"];
    for (const Json& bin : histogram.items()) {
        cells += bin["cells"].asInteger();
    }
    EXPECT_EQ(cells, 1000);
}

TEST_F(KitPlace, RefusesToReplaceAnEarlierResult)
{
    ASSERT_EQ(place().status, 0);
    const KitOutcome again = place();
    EXPECT_EQ(again.status, 2);
    EXPECT_EQ(again.error,
              "vireloce-kit: " + out(".place") + " exists: choose another name, or --force to replace it\n");
    EXPECT_EQ(place({"--force"}).status, 0);
}

TEST_F(KitPlace, NeverReplacesAnInput)
{
    const std::string before = m_design.allText();
    for (const std::string& same : {m_design.base(), m_design.base() + "/../d"}) {
        const KitOutcome outcome =
            runKit({"place", m_design.base(), "--cell-path", m_design.lib(), "-o", same, "--force"});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.error.find("is an input"), std::string::npos) << outcome.error;
    }
    EXPECT_EQ(m_design.allText(), before);
}

TEST_F(KitPlace, UnreadableInputIsStatus2AndWritesNothing)
{
    const KitOutcome outcome =
        runKit({"place", m_dir.path("none"), "--cell-path", m_design.lib(), "-o", out()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.output.find("ERROR| cannot open file"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(out(".json")));
}

TEST_F(KitPlace, WhatEndsTheRunIsALineOnStandardErrorAsWell)
{
    EXPECT_EQ(runKit({"place", m_dir.path("none"), "--cell-path", m_design.lib(), "-o", out()}).error,
              "vireloce-kit: cannot open file: " + m_dir.path("none") + ".place\n");
    std::filesystem::copy(m_design.lib(), m_dir.path("lib"));
    const std::string cell = std::filesystem::directory_iterator(m_dir.path("lib"))->path().string();
    std::ofstream(cell) << "380 1900\nx";
    EXPECT_EQ(runKit({"place", m_design.base(), "--cell-path", m_dir.path("lib"), "-o", out()}).error,
              "vireloce-kit: " + cell + ":2: the number of header boxes is not a 32-bit integer\n");
}

TEST_F(KitPlace, OptionThatIsNoNumberIsStatus2)
{
    EXPECT_EQ(place({"--algo", "first"}).status, 2);
    EXPECT_EQ(place({"--weight", "heavy"}).status, 2);
}

TEST(KitPlaceRescue, MirroredCellsTooCloseAreMended)
{
    const test::GeneratedDesign design({"--mirrored", "30"});
    const test::TempDir dir;
    const std::string out = dir.path("out");
    const KitOutcome outcome =
        runKit({"place", design.base(), "--cell-path", design.lib(), "-o", out, "--rescue"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.error, "");
    const Json result = Json::parse(contentOf(out + ".json"));
    EXPECT_EQ(test::faultsOf(result, test::placeSchema()), Words{});
    EXPECT_GT(result["rescue"]["pairs"].asInteger(), 0);
    EXPECT_EQ(result["rescue"]["mended_pairs"], result["rescue"]["pairs"]);
    EXPECT_EQ(result["rescue"]["mirrored_cells"], 0) << "nothing tells that they may be";
    EXPECT_EQ(result["judge"]["errors"], 0);
    EXPECT_EQ(
        runKit({"verify", out + ".place", "--colors", out + ".colors", "--cell-path", design.lib()}).status,
        0);
}

TEST_F(KitPlace, WithNothingToRescueTheResultIsThatWithoutIt)
{
    ASSERT_EQ(place().status, 0);
    const std::string plain = contentOf(out(".place")) + contentOf(out(".colors"));
    ASSERT_EQ(place({"--rescue", "--force"}).status, 0);
    EXPECT_EQ(contentOf(out(".place")) + contentOf(out(".colors")), plain);
}

/// Two rows of 20 sites of 190 DBU, cells of 5 sites without shapes that matter.
class KitRescue : public testing::Test {
protected:
    KitRescue()
    {
        m_dir.write("d.cells", "1\nA\n");
        m_dir.write("lib/A.color", "950 1900  0  1  1  0 500 5 900  1  0 1");
        m_dir.write("d.pins", "0\n");
        m_dir.write("d.netlist", "0\n");
    }

    /// Components by their x and y.
    void components(const std::vector<std::pair<int, int>>& points)
    {
        std::string text =
            "ROW r0 s 0 0 N DO 20 BY 1 STEP 190 0 ;\nROW r1 s 0 1900 N DO 20 BY 1 STEP 190 0 ;\n"
            "COMPONENTS " +
            std::to_string(points.size()) + " ;\n";
        for (size_t i = 0; i < points.size(); ++i) {
            text += "- u" + std::to_string(i) + " A + PLACED ( " + std::to_string(points[i].first) + " " +
                    std::to_string(points[i].second) + " ) N\n ;\n";
        }
        m_dir.write("d.place", text + "END COMPONENTS\n");
    }

    KitOutcome place(const Words& more)
    {
        Words words{"place", m_dir.path("d"), "--cell-path", m_dir.path("lib"),
                    "-o",    m_dir.path("o"), "--force"};
        words.insert(words.end(), more.begin(), more.end());
        return runKit(words);
    }

    Json result() const { return Json::parse(contentOf(m_dir.path("o.json"))); }

    test::TempDir m_dir;
};

TEST_F(KitRescue, ACellMovedIntoAnEmptySegmentIsDroppedAndFoundAPlace)
{
    components({{0, 0}, {950, 0}, {1900, 0}, {2850, 0}, {3600, 0}}); // 25 sites in 20; the row above is empty
    EXPECT_EQ(place({}).status, 1);
    EXPECT_EQ(result()["placement"]["dropped_cells"].size(), 1U);
    EXPECT_EQ(result()["rescue"], nullptr);

    const KitOutcome rescued = place({"--rescue"});
    EXPECT_EQ(rescued.status, 0) << rescued.output << rescued.error;
    const Json rescue = result()["rescue"];
    EXPECT_EQ(rescue["cells"].size(), 1U);
    EXPECT_EQ(rescue["cells"][0]["helped"], true);
    EXPECT_EQ(rescue["cells"][0]["to"][1], 1900) << "the only row with room";
    EXPECT_TRUE(rescue["placement"]["dropped_cells"].empty());
    EXPECT_EQ(result()["placement"]["dropped_cells"].size(), 1U) << "the placer's own state stays";
    const KitOutcome verify = runKit({"verify", m_dir.path("o.place"), "--colors", m_dir.path("o.colors"),
                                      "--cell-path", m_dir.path("lib")});
    EXPECT_EQ(verify.status, 0) << verify.output;
}

TEST_F(KitRescue, CellsThatTheMapKnowsToBeMirrorableAreMirrored)
{
    // Drawn with metal at the right edge, which the second one has at its left.
    m_dir.write("lib/A.color", "1900 1900  0  1  1  1880 500 1900 900  1  0 1");
    for (const char* const orient : {"FN", "S"}) {
        components({{0, 0}, {1900, 0}});
        std::string text = contentOf(m_dir.path("d.place"));
        text.replace(text.rfind(") N") + 2, 1, orient);
        m_dir.write("d.place", text);
        m_dir.write("d.map",
                    "VIRELOCE MAP 1\nDEF d.def\nHASH 0123456789abcdef\nSITE 190000 1900000\nNAMES 0\n"
                    "FLIPPED 0\nMIRRORABLE 1\nA\nEND\n");
        const KitOutcome outcome = place({"--rescue"});
        EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
        EXPECT_EQ(result()["rescue"]["mirrored_cells"], 1);
        EXPECT_EQ(result()["rescue"]["moved_neighbours"], 0);
        const KitOutcome verify = runKit({"verify", m_dir.path("o.place"), "--colors", m_dir.path("o.colors"),
                                          "--cell-path", m_dir.path("lib")});
        EXPECT_EQ(verify.status, 0) << orient << verify.output;
    }
}

TEST_F(KitRescue, ARunWithoutAPlacementLeavesItsSetUpAlone)
{
    components(std::vector<std::pair<int, int>>(5, {0, 0})); // 25 sites in 20, and the method moves none out
    const KitOutcome outcome = place({"--rescue", "--algo", "2"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find("ERROR| cannot solve the placement"), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.error.rfind("vireloce-kit: cannot solve the placement", 0), 0U) << outcome.error;
    EXPECT_EQ(result()["complete"], false);
    EXPECT_EQ(result()["report"]["component #"], 5);
    EXPECT_EQ(result()["report"].size(), 13U) << "the figures of the set-up";
    EXPECT_EQ(result()["placement"], nullptr);
    EXPECT_FALSE(std::filesystem::exists(m_dir.path("o.place")));
}

TEST_F(KitRescue, NamesThatAreNoUtf8AreReplacedInTheJson)
{
    components({{0, 0}, {950, 0}, {1900, 0}, {2850, 0}, {3600, 0}});
    m_dir.write("d.place", test::replaced(contentOf(m_dir.path("d.place")), "- u", "- \xff"));
    const KitOutcome outcome = place({});
    EXPECT_EQ(outcome.status, 1) << outcome.error;
    EXPECT_EQ(result()["placement"]["dropped_cells"][0].asString().substr(0, 3), "\xef\xbf\xbd");
    EXPECT_NE(contentOf(m_dir.path("o.place")).find("- \xff"), std::string::npos) << "files keep the bytes";
    EXPECT_EQ(place({"--rescue"}).status, 0);
}

TEST_F(KitRescue, NeighboursMakeRoom)
{
    // Five cells below, one of which is moved up, where it overlaps: there are three, with gaps too small for
    // it.
    components({{0, 0}, {950, 0}, {1900, 0}, {2850, 0}, {3600, 0}, {380, 1900}, {1520, 1900}, {2660, 1900}});
    const KitOutcome outcome = place({"--rescue", "--algo", "3", "--move-range", "0"});
    const Json rescue = result()["rescue"];
    ASSERT_FALSE(rescue.isNull()) << outcome.output;
    EXPECT_EQ(result()["placement"]["overlapping_cells"].size(), 1U);
    EXPECT_GT(rescue["moved_neighbours"].asInteger(), 0);
    EXPECT_TRUE(rescue["placement"]["overlapping_cells"].empty());
    const KitOutcome verify = runKit({"verify", m_dir.path("o.place"), "--colors", m_dir.path("o.colors"),
                                      "--cell-path", m_dir.path("lib")});
    EXPECT_EQ(verify.status, 0) << verify.output;
}

} // namespace
