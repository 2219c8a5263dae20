// SPDX-License-Identifier: BSD-3-Clause
// The subcommand refine.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "kit/engines/refine/refineCase.h"

namespace {

using kit::Json;
using test::contentOf;
using test::KitOutcome;
using test::runKit;
using test::Words;

/// Two nets that cross over, each between two cells of a row that is far from full.
class KitRefine : public test::RefineCase {
protected:
    void SetUp() override
    {
        RefineCase::SetUp();
        color({{0, {1, 2}}, {0, {0, 2}}, {0, {2, 1}}});
        import({"a BARS + PLACED ( 0 0 ) N", "b BARS + PLACED ( 760 0 ) N", "c BARS + PLACED ( 1520 0 ) N",
                "d BARS + PLACED ( 2280 0 ) N"},
               {"m ( a A ) ( c A )", "n ( b A ) ( d A )"}, 2, 16);
        choose({0, 0, 0, 0});
    }

    Json verified() const
    {
        return Json::parse(runKit({"verify", out() + ".place", "--colors", out() + ".colors", "--cell-path",
                                   lib(), "--json"})
                               .output);
    }
};

TEST_F(KitRefine, WritesACleanDesignWithShorterWires)
{
    const KitOutcome outcome = refine();
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_NE(outcome.output.find("wirelength from pin to pin 3.0 um -> "), std::string::npos)
        << outcome.output;
    const Json json = result();
    EXPECT_EQ(json["judge"]["errors"], 0);
    const Json& lengths = json["refine"]["wirelength"];
    EXPECT_EQ(lengths["before"]["dbu"], 3040);
    EXPECT_LT(lengths["after"]["dbu"].asNumber(), 3040);
    EXPECT_EQ(json["hpwl_pins"]["before"], lengths["before"]);
    EXPECT_EQ(json["hpwl_pins"]["after"], lengths["after"]) << "the judge measures the same";
    EXPECT_EQ(verified()["clean"], true);
    for (const char* extension : {".cells", ".pins", ".netlist", ".map", ".offsets"}) {
        EXPECT_EQ(contentOf(out() + extension), contentOf(base() + extension)) << extension;
    }
}

TEST_F(KitRefine, TellsWhatTheMovesOfEachPassDid)
{
    EXPECT_EQ(refine().status, 0);
    const Json json = result();
    int64_t taken = 0;
    ASSERT_GT(json["refine"]["passes"].size(), 0U);
    for (const Json& pass : json["refine"]["passes"].items()) {
        EXPECT_EQ(pass["moves"].size(), 4U);
        for (const Json& move : pass["moves"].items()) {
            EXPECT_LE(move["taken"].asInteger(), move["tried"].asInteger());
            taken += move["taken"].asInteger();
        }
    }
    EXPECT_GT(taken, 0);
}

TEST_F(KitRefine, EffortOfNothingChangesNothing)
{
    color({{1, {1, 2}}, {0, {1, 2}}}); // neighbours take both for one
    choose({0, 0, 1, 0});
    EXPECT_EQ(refine({"--effort", "0"}).status, 0);
    EXPECT_EQ(contentOf(out() + ".place"), contentOf(base() + ".place"));
    EXPECT_EQ(contentOf(out() + ".colors"), contentOf(base() + ".colors"));
    EXPECT_EQ(result()["refine"]["moved_cells"], 0);
}

TEST_F(KitRefine, ResultOfPlaceSaysWhereAndHowFar)
{
    ASSERT_EQ(runKit({"place", base(), "--cell-path", lib(), "-o", m_dir.path("p"), "--mindp", "150",
                      "--rescue", "--true-orientation"})
                  .status,
              0);
    ASSERT_EQ(runKit({"refine", m_dir.path("p.json"), "-o", out()}).status, 0);
    const Json before = Json::parse(contentOf(m_dir.path("p.json")));
    const Json after = result();
    EXPECT_EQ(after["options"]["mindp"], 150);
    EXPECT_EQ(after["judge"]["mindp_um"], before["judge"]["mindp_um"]);
    EXPECT_EQ(after["placement"], before["placement"]) << "the placer's part stays";
    EXPECT_EQ(after["hpwl_pins"]["before"], before["hpwl_pins"]["before"]);
    EXPECT_LT(after["hpwl_pins"]["after"]["dbu"].asNumber(), before["hpwl_pins"]["after"]["dbu"].asNumber());
    EXPECT_EQ(runKit({"refine", out() + ".json", "-o", m_dir.path("again")}).status, 0)
        << "its result is one of the same kind";
}

TEST_F(KitRefine, ItsResultIsExportedAndCompared)
{
    ASSERT_EQ(refine().status, 0);
    const KitOutcome outcome = runKit({"export", out() + ".json", "--def", m_dir.path("d.def"), "--lef",
                                       m_dir.path("l.lef"), "-o", m_dir.path("new.def")});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    const std::string table = runKit({"compare", out() + ".json"}).output;
    EXPECT_NE(table.find("| stitches after refine | 0 |"), std::string::npos) << table;
}

TEST_F(KitRefine, NamedCellsStay)
{
    m_dir.write("names", "b\n\nd\n");
    EXPECT_EQ(refine({"--fix", m_dir.path("names")}).status, 0);
    const std::string place = contentOf(out() + ".place");
    EXPECT_NE(place.find("- b BARS + PLACED ( 760 0 ) N"), std::string::npos) << place;
    EXPECT_NE(place.find("- d BARS + PLACED ( 2280 0 ) N"), std::string::npos) << place;
    EXPECT_LT(result()["refine"]["wirelength"]["after"]["dbu"].asNumber(), 3040);
    m_dir.write("names", "b\nx\n");
    const KitOutcome outcome = refine({"--fix", m_dir.path("names"), "--force"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("names:2: there is no component \"x\""), std::string::npos) << outcome.error;
}

TEST_F(KitRefine, NamedCellsMayBeThoseThatStayInAnyCase)
{
    import({"a BARS + PLACED ( 0 0 ) N", "t TAP + FIXED ( 760 0 ) N"});
    choose({0});
    m_dir.write("names", "t\na\n");
    const KitOutcome outcome = refine({"--fix", m_dir.path("names")});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(result()["refine"]["moved_cells"], 0);
}

TEST_F(KitRefine, NoCellMovesFartherThanItMay)
{
    EXPECT_EQ(refine({"--max-displacement", "0.19"}).status, 0);
    kit::Findings findings;
    const auto before = kit::placer::readDesign({.base = base(), .cellDir = lib()}, findings);
    const auto after = kit::placer::readDesign({.base = out(), .cellDir = lib()}, findings);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(after.components[i].y, before.components[i].y);
        EXPECT_LE(std::abs(after.components[i].x - before.components[i].x), 190);
    }
}

struct BadWeights {
    const char* name;
    const char* text;
};

class KitRefineWeights : public KitRefine, public testing::WithParamInterface<BadWeights> {};

TEST_P(KitRefineWeights, AreTold)
{
    m_dir.write("weights", std::string("0 3\n") + GetParam().text + "\n");
    const KitOutcome outcome = refine({"--net-weights", m_dir.path("weights")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("weights:2: "), std::string::npos) << outcome.error;
}

INSTANTIATE_TEST_SUITE_P(Lines, KitRefineWeights,
                         testing::Values(BadWeights{"NoWeight", "1"}, BadWeights{"Nothing", "1 0"},
                                         BadWeights{"TooMuch", "1 1001"}, BadWeights{"OtherNet", "2 1"},
                                         BadWeights{"NoNumber", "n 1"}, BadWeights{"More", "1 1 1"}),
                         [](const auto& row) { return row.param.name; });

TEST_F(KitRefine, WeightsCountInTheFiguresOfPasses)
{
    m_dir.write("weights", "1 1000\n");
    EXPECT_EQ(refine({"--net-weights", m_dir.path("weights")}).status, 0);
    const Json json = result();
    const Json& lengths = json["refine"]["wirelength"];
    EXPECT_EQ(lengths["before"]["dbu"], 3040) << "each net counts once";
    const Json& passes = json["refine"]["passes"];
    ASSERT_GT(passes.size(), 0U);
    const int64_t more =
        passes[passes.size() - 1]["wirelength"]["dbu"].asInteger() - lengths["after"]["dbu"].asInteger();
    EXPECT_GT(more, 0);
    EXPECT_EQ(more % 999, 0);
}

TEST_F(KitRefine, NeitherInputsNorOldResultsAreReplaced)
{
    const std::string before = contentOf(base() + ".place");
    const KitOutcome onInput =
        runKit({"refine", base() + ".place", "--cell-path", lib(), "-o", base(), "--force"});
    EXPECT_EQ(onInput.status, 2);
    EXPECT_NE(onInput.error.find("is an input"), std::string::npos) << onInput.error;
    EXPECT_EQ(contentOf(base() + ".place"), before);
    m_dir.write("out.colors", "old");
    EXPECT_EQ(refine().status, 2);
    EXPECT_EQ(contentOf(out() + ".colors"), "old");
    EXPECT_FALSE(std::filesystem::exists(out() + ".place"));
}

TEST_F(KitRefine, MissingFolderOfTheResultIsToldBeforeTheSearch)
{
    m_dir.write("d.place", "nothing"); // and so before anything is read
    EXPECT_EQ(runKit({"refine", base() + ".place", "--cell-path", lib(), "-o", m_dir.path("none/out")}).error,
              "vireloce-kit: cannot write " + m_dir.path("none/out.json") + ": there is no folder " +
                  m_dir.path("none") + "\n");
    EXPECT_EQ(runKit({"place", base(), "--cell-path", lib(), "-o", m_dir.path("none/out")}).error,
              "vireloce-kit: cannot write " + m_dir.path("none/out.json") + ": there is no folder " +
                  m_dir.path("none") + "\n");
}

TEST_F(KitRefine, StartsWhereTheCellsWereBeforeTheyWerePlaced)
{
    ASSERT_EQ(
        runKit({"place", base(), "--cell-path", lib(), "-o", m_dir.path("p"), "--true-orientation"}).status,
        0);
    ASSERT_EQ(runKit({"refine", m_dir.path("p.json"), "--anew", "-o", out(), "--effort", "0"}).status, 0);
    EXPECT_EQ(contentOf(out() + ".place"), contentOf(base() + ".place"));
    EXPECT_EQ(result()["refine"]["options"]["anew"], true);
    EXPECT_EQ(result()["refine"]["wirelength"]["before"]["dbu"], 3040);
    const Words more{"refine", m_dir.path("p.json"), "--anew", "-o", out(), "--force"};
    EXPECT_EQ(runKit(more).status, 0);
    EXPECT_EQ(verified()["clean"], true);
    EXPECT_EQ(result()["placement"], Json::parse(contentOf(m_dir.path("p.json")))["placement"]);
}

TEST_F(KitRefine, CellsWithoutColorsGetAnyThatFitWhenItStartsAnew)
{
    color({{0, {1, 1}}, {0, {1, 2}}});
    ASSERT_EQ(runKit({"place", base(), "--cell-path", lib(), "-o", m_dir.path("p")}).status, 0);
    std::string colors = contentOf(m_dir.path("p.colors"));
    m_dir.write("p.colors", test::replaced(colors, "b BARS [0-9].*", "b BARS -1 0"));
    EXPECT_EQ(runKit({"refine", m_dir.path("p.json"), "-o", out()}).status, 1);
    EXPECT_EQ(runKit({"refine", m_dir.path("p.json"), "--anew", "-o", out(), "--force"}).status, 0);
    EXPECT_EQ(result()["refine"]["stray_cells"], Json::array());
    EXPECT_EQ(verified()["clean"], true);
}

TEST_F(KitRefine, ItStartsFromOnePlacementThatIsKnown)
{
    const KitOutcome outcome = refine({"--anew"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error,
              "vireloce-kit: --anew needs the OUT.json of place, which says what was placed\n");
    EXPECT_EQ(refine({"--anew", "--base", base() + ".place"}).error,
              "vireloce-kit: --anew and --base are two places to start from: give one of them\n");
    EXPECT_EQ(runKit({"refine", base() + ".place", "--cell-path", lib(), "--base", out() + ".place", "-o",
                      out(), "--force"})
                  .error,
              "vireloce-kit: " + out() + ".place is an input: choose another name for the result\n");
}

/// A design without an import: its placement alone says how cells lie.
TEST(KitRefinePlain, EarlierResultIsKeptByTheNamesOfItsCells)
{
    const test::GeneratedDesign design({"--mirrored", "40"});
    ASSERT_LE(
        runKit({"place", design.base(), "--cell-path", design.lib(), "-o", design.path("p"), "--rescue"})
            .status,
        1);
    ASSERT_EQ(runKit({"refine", design.path("p.json"), "-o", design.path("old")}).status, 0);
    ASSERT_EQ(runKit({"refine", design.base() + ".place", "--base", design.path("old.json"), "-o",
                      design.path("new")})
                  .status,
              0);
    for (const char* extension : {".place", ".colors"}) {
        EXPECT_EQ(contentOf(design.path("new") + extension), contentOf(design.path("old") + extension));
    }
}

TEST_F(KitRefine, PlacementNeedsTheFolderOfColorFiles)
{
    EXPECT_EQ(runKit({"refine", base() + ".place", "-o", out()}).error,
              "vireloce-kit: where the color files are is not known: give --cell-path\n");
    EXPECT_EQ(runKit({"refine", base(), "-o", out()}).error,
              "vireloce-kit: " + base() + " ends neither in .json nor in .place\n");
}

TEST_F(KitRefine, WhatIsOffTheSitesOverOthersOrTooCloseBecomesClean)
{
    color({{0, {1, 1}}, {0, {1, 2}}});
    import({"a BARS + PLACED ( 0 0 ) N", "b BARS + PLACED ( 190 0 ) N", "c BARS + PLACED ( 760 0 ) N",
            "d BARS + PLACED ( 1140 0 ) N", "e BARS + PLACED ( 0 1400 ) FS",
            "f BARS + PLACED ( 760 1400 ) FS"},
           {"m ( a A ) ( c A ) ( e A )", "n ( b A ) ( d A ) ( f A )"}, 2, 8);
    placeAt({{"0 1400", "77 900"}, {"760 1400", "90000 -7000"}}); // a and b overlap, c and d are too close
    choose({0, 0, 0, 0, 0, 0});
    const KitOutcome outcome = refine();
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(verified()["clean"], true);
    const Json json = result()["refine"];
    EXPECT_GE(json["legalized"].asInteger(), 4);
    EXPECT_NE(outcome.output.find("; " + json["legalized"].dump() + " cells changed to be legal"),
              std::string::npos)
        << outcome.output;
    EXPECT_EQ(json["homeless"], Json::array());
    EXPECT_EQ(json["stray_cells"], Json::array());
    EXPECT_EQ(json["wirelength"]["before"], result()["hpwl_pins"]["before"]) << "of the input as it is";
    EXPECT_EQ(json["wirelength"]["after"], result()["hpwl_pins"]["after"]);
}

TEST_F(KitRefine, CellOfARowThatIsTooFullIsNamedAndStays)
{
    color({{0, {1, 1}}});
    import({"a BARS + PLACED ( 0 0 ) N", "b BARS + PLACED ( 190 0 ) N"}, {"m ( a A ) ( b A )"}, 1, 3);
    choose({0, 0});
    const KitOutcome outcome = refine();
    EXPECT_EQ(outcome.status, 1);
    const Json json = result();
    ASSERT_EQ(json["refine"]["homeless"].size(), 1U);
    const Json& homeless = json["refine"]["homeless"][0];
    EXPECT_EQ(homeless["proved"], true);
    const std::string name = homeless["name"].asString();
    EXPECT_EQ(outcome.error, "vireloce-kit: no legal place for component " + name +
                                 ": no row has as many free sites as it takes\n");
    EXPECT_NE(outcome.output.find("; 1 cell without a legal place; verify finds "), std::string::npos)
        << outcome.output;
    EXPECT_GT(json["judge"]["errors"].asInteger(), 0);
}

TEST_F(KitRefine, UncleanInputStaysUncleanWithoutEffort)
{
    color({{0, {1, 1}}});
    import({"a BARS + PLACED ( 0 0 ) N", "b BARS + PLACED ( 190 0 ) N"}, {"m ( a A ) ( b A )"}, 2, 3);
    choose({0, 0});
    EXPECT_EQ(refine({"--effort", "0"}).status, 1);
    EXPECT_EQ(contentOf(out() + ".place"), contentOf(base() + ".place"));
    EXPECT_EQ(refine({"--force"}).status, 0) << "there is a second row";
}

TEST(KitRefineLegal, AlmostFullDesignThatPlaceLeavesUncleanBecomesClean)
{
    const test::GeneratedDesign design({"--utilization", "95", "--seed", "3"});
    ASSERT_EQ(
        runKit({"place", design.base(), "--cell-path", design.lib(), "-o", design.path("p"), "--algo", "0"})
            .status,
        1);
    const KitOutcome outcome = runKit({"refine", design.path("p.json"), "-o", design.path("r")});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    const Json json = Json::parse(contentOf(design.path("r.json")));
    EXPECT_EQ(json["judge"]["errors"], 0);
    EXPECT_GT(json["refine"]["legalized"].asInteger(), 0);
    EXPECT_EQ(json["refine"]["homeless"], Json::array());
}

TEST_F(KitRefine, FaultyInputsAreTold)
{
    m_dir.write("d.offsets", "nothing");
    const KitOutcome outcome = refine();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("d.offsets:1: error: "), std::string::npos) << outcome.error;
    EXPECT_FALSE(std::filesystem::exists(out() + ".place"));
}

TEST_F(KitRefine, CellsThatStayAreNamed)
{
    choose({0, -1, 0, 0});
    const KitOutcome outcome = refine();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("will not be moved: b\n"), std::string::npos) << outcome.error;
    EXPECT_EQ(result()["refine"]["stray_cells"], Json::parse("[\"b\"]"));
}

/// The design of the examples, imported, placed and made shorter. It is imported anew as `new`, changed.
class KitRefineBase : public testing::Test {
protected:
    void SetUp() override
    {
        import(contentOf(RAW + "gcd_nangate45.def"), "d");
        ASSERT_EQ(runKit({"place", m_dir.path("d"), "--cell-path", LIB, "-o", m_dir.path("p"), "--rescue",
                          "--true-orientation"})
                      .status,
                  0);
        ASSERT_EQ(runKit({"refine", m_dir.path("p.json"), "-o", m_dir.path("old")}).status, 0);
    }

    void import(const std::string& def, const std::string& name) const
    {
        const KitOutcome outcome = runKit({"import", "--lef", RAW + "Nangate45_stdcell.lef", "--def",
                                           m_dir.write(name + ".def", def), "-o", m_dir.path(name)});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
    }

    /// Changes the DEF file, each text to another, and starts from the earlier result.
    KitOutcome change(const std::vector<std::pair<std::string, std::string>>& changes, const Words& more = {})
    {
        std::string def = contentOf(RAW + "gcd_nangate45.def");
        for (const auto& [from, to] : changes) {
            const size_t at = def.find(from);
            EXPECT_NE(at, std::string::npos) << from;
            def.replace(at, from.size(), to);
        }
        import(def, "new");
        Words words{"refine", m_dir.path("new.place"), "--base", m_dir.path("old.json"),
                    "-o",     m_dir.path("out")};
        words.insert(words.end(), more.begin(), more.end());
        KitOutcome outcome = runKit(words);
        const std::string json = contentOf(m_dir.path("out.json"));
        if (!json.empty()) {
            m_result = Json::parse(json);
            EXPECT_EQ(test::faultsOf(m_result, test::placeSchema()), Words{});
        }
        return outcome;
    }

    kit::placer::Design placedAs(const std::string& name) const
    {
        kit::Findings findings;
        return kit::placer::readDesign({.base = m_dir.path(name), .cellDir = LIB}, findings);
    }

    static inline const std::string RAW = VIRELOCE_KIT_EXAMPLES "/raw/";
    static inline const std::string LIB = VIRELOCE_KIT_EXAMPLES "/nangate45_color";
    test::TempDir m_dir;
    Json m_result;
};

TEST_F(KitRefineBase, UnchangedDesignIsPlacedAsBefore)
{
    const KitOutcome outcome = change({});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    for (const char* extension : {".place", ".colors"}) {
        EXPECT_EQ(contentOf(m_dir.path("out") + extension), contentOf(m_dir.path("old") + extension));
    }
    EXPECT_EQ(m_result["refine"]["base"], Json::parse(R"({"kept": 426, "changed": 0, "new": 0})"));
    EXPECT_EQ(m_result["refine"]["moved_cells"], 0);
    EXPECT_NE(outcome.output.find("; 426 cells as in the earlier result, 0 changed, 0 new"),
              std::string::npos)
        << outcome.output;
}

TEST_F(KitRefineBase, ResultOfPlaceIsKeptAsItIsToo)
{
    import(contentOf(RAW + "gcd_nangate45.def"), "new");
    EXPECT_EQ(runKit({"refine", m_dir.path("new.place"), "--base", m_dir.path("p.place"), "--cell-path", LIB,
                      "-o", m_dir.path("out")})
                  .status,
              0);
    for (const char* extension : {".place", ".colors"}) {
        EXPECT_EQ(contentOf(m_dir.path("out") + extension), contentOf(m_dir.path("p") + extension));
    }
}

TEST_F(KitRefineBase, FewChangesLeaveMostCellsWhereTheyWere)
{
    const KitOutcome outcome = change({{"- _348_ INV_X1 ", "- _348_ INV_X2 "},
                                       {"- _174_ ( _505_ A1 ) ( _504_ A )", "- _174_ ( _505_ A1 )"},
                                       {"- _177_ ( _506_ A )", "- _177_ ( _506_ A ) ( _504_ A )"},
                                       {"- _176_ ( _504_ B1 )", "- _176_ ( _504_ B1 ) ( fresh A )"},
                                       {"- FILLER_0_0_108 FILLCELL_X2 + SOURCE DIST", "- fresh INV_X1"}});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    // The nets of _348_ are as they were; those that changed are on 5 other cells.
    EXPECT_EQ(m_result["refine"]["base"], Json::parse(R"({"kept": 420, "changed": 6, "new": 1})"));
    const kit::placer::Design before = placedAs("old");
    const kit::placer::NameIndex known = kit::placer::indexNames(before.components);
    int32_t moved = 0;
    for (const kit::placer::Component& comp : placedAs("out").components) {
        const int32_t at = kit::placer::findName(known, comp.name);
        if (at >= 0) {
            const kit::placer::Component& old = before.components[static_cast<size_t>(at)];
            moved += old.x != comp.x || old.y != comp.y || old.orient != comp.orient ? 1 : 0;
        }
    }
    EXPECT_LT(moved, 60) << "they, and those that make room for them";
    EXPECT_GT(moved, 0);
    EXPECT_EQ(contentOf(m_dir.path("out.fixed")), contentOf(m_dir.path("old.fixed")))
        << "solutions of what stays where it is";
}

TEST_F(KitRefineBase, UnitsMustBeTheSame)
{
    m_dir.write("old.place",
                test::replaced(contentOf(m_dir.path("old.place")), "MICRONS [0-9]+", "MICRONS 7"));
    const KitOutcome outcome = change({});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("old.place has other UNITS"), std::string::npos) << outcome.error;
}

/// A design that the search takes a while for.
class KitRefineEnd : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_LE(runKit({"place", m_design.base(), "--cell-path", m_design.lib(), "-o", m_design.path("p"),
                          "--algo", "2", "--rescue"})
                      .status,
                  1);
    }

    Json result() const
    {
        const Json json = Json::parse(contentOf(m_design.path("r.json")));
        EXPECT_EQ(test::faultsOf(json, test::placeSchema()), Words{});
        return json["refine"];
    }

    const test::GeneratedDesign m_design{{"--components", "20000", "--sites-per-row", "2000"}};
};

TEST_F(KitRefineEnd, EndOfTimeEndsTheSearch)
{
    const KitOutcome outcome = runKit(
        {"refine", m_design.path("p.json"), "-o", m_design.path("r"), "--effort", "9", "--time", "0.3"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(result()["stopped"], "time");
    EXPECT_LT(result()["seconds"].asNumber(), 10);
    EXPECT_LT(result()["wirelength"]["after"]["dbu"].asNumber(),
              result()["wirelength"]["before"]["dbu"].asNumber());
}

/// The program by itself, interrupted as soon as it searches.
TEST_F(KitRefineEnd, InterruptEndsTheSearch)
{
    const pid_t child = fork();
    if (child == 0) {
        const std::string input = m_design.path("p.json");
        const std::string out = m_design.path("r");
        freopen(m_design.path("said").c_str(), "w", stdout);
        execl(VIRELOCE_KIT_PROGRAM, VIRELOCE_KIT_PROGRAM, "refine", input.c_str(), "-o", out.c_str(),
              "--effort", "9", nullptr);
        _exit(127);
    }
    ASSERT_GT(child, 0);
    // While it reads, an interrupt ends the program: it is sent once the program catches it.
    const std::string status = "/proc/" + std::to_string(child) + "/status";
    const auto catches = [&status] {
        const std::string text = contentOf(status);
        const size_t at = text.find("SigCgt:");
        return at != std::string::npos && (std::stoull(text.substr(at + 7), nullptr, 16) & 2U) != 0;
    };
    for (int i = 0; i < 10'000 && !catches(); ++i) {
        usleep(1000);
    }
    EXPECT_EQ(kill(child, SIGINT), 0);
    int ending = 0;
    ASSERT_EQ(waitpid(child, &ending, 0), child);
    EXPECT_TRUE(WIFEXITED(ending)) << "it ends by itself";
    EXPECT_EQ(result()["stopped"], "interrupt");
    EXPECT_NE(contentOf(m_design.path("said")).find("; stopped by interrupt"), std::string::npos);
}

} // namespace
