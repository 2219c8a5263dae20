// SPDX-License-Identifier: BSD-3-Clause
// The subcommand export: its messages, its statuses, and what it does not touch.
#include <filesystem>

#include "kit/base/files/unpack.h"
#include "kit/base/files/writeOutput.h"
#include "kit/base/text/json.h"
#include "kit/design/nameMap.h"
#include "kit/engines/export/smallExport.h"

namespace {

using namespace test;

const std::string U = "- u INV + PLACED ( 380 0 ) N\n ;\n";
const std::string U_IN_DEF = "- u INV + PLACED ( 0 0 ) N ;\n";
const std::string U_COLORS = "u INV 1 0 0 0 1 2\n";

/// Files in the folder of an export that a run may have made.
std::vector<std::string> made(const SmallExport& files)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(files.path(""))) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("new")) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

struct Told {
    const char* name;
    const char* components; ///< of the placement
    const char* records;    ///< of the DEF file
    int status;
    const char* error;
};

class KitExportFinding : public testing::TestWithParam<Told> {};

TEST_P(KitExportFinding, IsTold)
{
    const SmallExport files(GetParam().components, GetParam().records);
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.error, GetParam().error);
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(made(files).size(), GetParam().status == 2 ? 0U : 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Each, KitExportFinding,
    testing::Values(
        Told{
            "ComponentThatTheDefFileLacks",
            "- u INV + PLACED ( 380 0 ) N\n ;\n- v INV + PLACED ( 0 0 ) N\n ;\n",
            "- u INV + PLACED ( 0 0 ) N ;\n", 1,
            "out.place:6: warning: the component v is not in in.def; export into the file that the placement "
            "was made from [no-component]\n0 errors, 1 warning, 0 notes\n"},
        Told{"NoComponentInCommon", "- u INV + PLACED ( 380 0 ) N\n ;\n", "- v INV + PLACED ( 0 0 ) N ;\n", 2,
             "vireloce-kit: no component of out.place is in in.def: it is another design\n"},
        Told{"NothingToPlace", "", "- v INV + FIXED ( 0 0 ) N ;\n", 0, ""},
        Told{"ComponentThatThePlacementLacks", "- u INV + PLACED ( 380 0 ) N\n ;\n",
             "- u INV + PLACED ( 0 0 ) N ;\n- v INV + PLACED ( 0 0 ) N ;\n- w INV ;\n", 1,
             "in.def:9: warning: the component v is not in the placement, and stays where it is; export into "
             "the file that the placement was made from [left-out]\n0 errors, 1 warning, 0 notes\n"},
        Told{
            "FixedComponent", "- u INV + PLACED ( 380 0 ) N\n ;\n", "- u INV + FIXED ( 0 0 ) N ;\n", 1,
            "out.place:4: warning: u is fixed in the DEF file, and stays where it is; import the design anew "
            "[fixed]\n0 errors, 1 warning, 0 notes\n"},
        Told{"OtherMacro", "- u INV + PLACED ( 380 0 ) N\n ;\n", "- u BUF + PLACED ( 0 0 ) N ;\n", 2,
             "out.place:4: error: u is a INV here and a BUF in the DEF file; export into the file that the "
             "placement was made from [other-macro]\n1 error, 0 warnings, 0 notes\n"},
        Told{"ComponentTwice", "- u INV + PLACED ( 380 0 ) N\n ;\n- u INV + PLACED ( 0 0 ) N\n ;\n",
             "- u INV + PLACED ( 0 0 ) N ;\n", 2,
             "out.place:6: error: the component u of the DEF file comes a second time; lint the placement "
             "[same-component]\n1 error, 0 warnings, 0 notes\n"},
        Told{
            "ComponentOnNoRow", "- u INV + PLACED ( 380 7 ) FN\n ;\n", "- u INV + PLACED ( 0 1400 ) FS ;\n",
            1,
            "out.place:4: warning: u is on no row, and whether it is upside down is taken from the DEF file; "
            "place with --rescue [off-row]\n0 errors, 1 warning, 0 notes\n"}),
    [](const auto& param) { return param.param.name; });

TEST(KitExportCommand, ComponentOnNoRowIsUpsideDownAsItWas)
{
    const SmallExport files("- u INV + PLACED ( 380 7 ) FN\n ;\n", "- u INV + PLACED ( 0 1400 ) FS ;\n");
    files.run();
    EXPECT_NE(files.output("new.def").find("PLACED ( 380 7 ) S ;"), std::string::npos);
}

TEST(KitExportCommand, FixedComponentStays)
{
    const SmallExport files(U, "- u INV + FIXED ( 0 0 ) N ;\n");
    files.run();
    EXPECT_EQ(files.output("new.def"), files.def);
}

TEST(KitExportCommand, MacroOfThePlacementIsNotLeftOut)
{
    SmallExport files(U, U_IN_DEF + "- m BLOCK + PLACED ( 0 1400 ) N ;\n");
    files.place += "BIGNODES 1 ;\n- m BLOCK + ( 0 1400 ) ( 190 1400 ) N\n ;\nEND BIGNODES\n";
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(KitExportCommand, OtherDefFileIsAWarning)
{
    const SmallExport files(U, U_IN_DEF);
    kit::design::NameMap map{.def = "before.def", .hash = kit::design::hashOf("")};
    map.siteWidth = map.siteHeight = 1;
    test::writeOutput(files.path("out.map"),
                      [&map](kit::OutputFile& out) { kit::design::writeNameMap(map, out); });
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.error,
              "in.def: warning: the file is not the one that was imported, before.def; export into that one, "
              "unless you know what has changed [other-file]\n0 errors, 1 warning, 0 notes\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(made(files), Words{"new.def"});
}

TEST(KitExportCommand, FlippedComponentThatIsNotThereIsAWarning)
{
    const SmallExport files(U, U_IN_DEF);
    kit::design::NameMap map{.def = "in.def", .hash = kit::design::hashOf(files.def)};
    map.siteWidth = map.siteHeight = 1;
    map.flipped = {"v"};
    test::writeOutput(files.path("out.map"),
                      [&map](kit::OutputFile& out) { kit::design::writeNameMap(map, out); });
    EXPECT_EQ(files.run().error,
              "out.place: warning: the map names the flipped component v, which is not here; export with the "
              "map that the import made [unknown-name]\n0 errors, 1 warning, 0 notes\n");
}

TEST(KitExportCommand, BrokenMapIsAnError)
{
    const SmallExport files(U, U_IN_DEF);
    files.write("out.map", "x\n");
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("out.map:1: error: the line is not \"VIRELOCE MAP 1\""), std::string::npos);
    EXPECT_TRUE(made(files).empty());
}

TEST(KitExportCommand, BrokenDefFileIsAnError)
{
    SmallExport files(U, U_IN_DEF + "- v INV + PLACED ( x 0 ) N ;\n");
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("in.def:9: error: "), std::string::npos) << outcome.error;
    EXPECT_TRUE(made(files).empty());
}

struct BadResult {
    const char* name;
    const char* json;
    const char* error;
};

class KitExportResult : public testing::TestWithParam<BadResult> {};

TEST_P(KitExportResult, IsOneOfPlace)
{
    SmallExport files(U, U_IN_DEF);
    files.json = GetParam().json;
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.error, std::string("vireloce-kit: out.json ") + GetParam().error + "\n");
    EXPECT_EQ(outcome.status, 2);
}

INSTANTIATE_TEST_SUITE_P(
    Each, KitExportResult,
    testing::Values(
        BadResult{"NoJson", "{", "is no result of vireloce-kit place, version 1"},
        BadResult{"List", "[]", "is no result of vireloce-kit place, version 1"},
        BadResult{"OtherSchema", R"({"schema":1})", "is no result of vireloce-kit place, version 1"},
        BadResult{"OtherVersion", R"({"schema":"vireloce-place","version":2,"placement":{}})",
                  "is no result of vireloce-kit place, version 1"},
        BadResult{"NoPlacement", R"({"schema":"vireloce-place","version":1,"placement":null})",
                  "is the result of a run that ended without a placement"},
        BadResult{"NoOptions", R"({"schema":"vireloce-place","version":1,"placement":{}})",
                  "does not say where the colour files are: give --cell-path"},
        BadResult{"PathIsNoText",
                  R"({"schema":"vireloce-place","version":1,"placement":{},"options":{"cell_path":7}})",
                  "does not say where the colour files are: give --cell-path"}),
    [](const auto& param) { return param.param.name; });

TEST(KitExportCommand, ResultIsNamedByItsJson)
{
    const SmallExport files(U, U_IN_DEF);
    files.run();
    const KitOutcome other = runKit(
        {"export", files.path("out.place"), "--def", files.path("in.def"), "-o", files.path("new2.def")});
    EXPECT_EQ(other.status, 2);
    EXPECT_NE(other.error.find("out.place does not end in .json"), std::string::npos);
}

TEST(KitExportCommand, PlacementIsBesideTheResult)
{
    const SmallExport files(U, U_IN_DEF);
    files.run();
    std::filesystem::remove(files.path("out.place"));
    const KitOutcome outcome = runKit(
        {"export", files.path("out.json"), "--def", files.path("in.def"), "-o", files.path("new2.def")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("there is no " + files.path("out.place")), std::string::npos);
}

TEST(KitExportCommand, NothingIsReplacedWithoutForce)
{
    const SmallExport files(U, U_IN_DEF);
    EXPECT_EQ(files.run().status, 0);
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "vireloce-kit: new.def exists: choose another name, or --force to replace it\n");
    EXPECT_EQ(files.run({"--force"}).status, 0);
}

TEST(KitExportCommand, FilesNamedGzAreCompressed)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = U_COLORS;
    ASSERT_EQ(files.run({"--gds", files.path("new.gds")}).status, 0);
    ASSERT_EQ(test::runKit({"export", files.path("out.json"), "--def", files.path("in.def"), "-o",
                            files.path("new.def.gz"), "--gds", files.path("new.gds.gz"), "--force"})
                  .status,
              0);
    EXPECT_EQ(kit::readUnpacked(files.path("new.def.gz")), files.output("new.def"));
    EXPECT_EQ(kit::readUnpacked(files.path("new.gds.gz")), files.output("new.gds"));
    EXPECT_NE(files.output("new.def.gz"), files.output("new.def"));
    EXPECT_TRUE(std::filesystem::exists(files.path("new.lyp")));
    EXPECT_FALSE(std::filesystem::exists(files.path("new.gds.lyp")));
}

TEST(KitExportCommand, LayerPropertiesAreNotReplacedWithoutForce)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = U_COLORS;
    files.write("new.lyp", "mine");
    const KitOutcome outcome = files.run({"--gds", files.path("new.gds")});
    EXPECT_EQ(outcome.error, "vireloce-kit: new.lyp exists: choose another name, or --force to replace it\n");
    EXPECT_EQ(files.output("new.lyp"), "mine");
}

class KitExportInput : public testing::TestWithParam<std::string> {};

TEST_P(KitExportInput, IsNeverReplaced)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = U_COLORS;
    const std::string path = files.path(GetParam());
    files.run(); // so that all files are there
    const KitOutcome outcome =
        files.run({"--lef", files.path("lef"), "--layer", "M1", "--force", "--gds", path});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error,
              "vireloce-kit: " + GetParam() + " is an input: choose another name for the result\n");
}

INSTANTIATE_TEST_SUITE_P(Each, KitExportInput,
                         testing::Values("in.def", "out.json", "out.place", "out.colors", "lef",
                                         "lib/INV.color", "lib/../in.def"));

TEST(KitExportCommand, TwoResultsHaveTwoNames)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = U_COLORS;
    EXPECT_EQ(files.run({"--gds", files.path("new.def")}).error,
              "vireloce-kit: new.def is the name of two results: choose different ones\n");
    EXPECT_EQ(files.run({"--gds", files.path("new.lyp")}).error,
              "vireloce-kit: new.lyp is the name of two results: choose different ones\n");
}

TEST(KitExportCommand, NothingIsLeftOfAnExportThatFails)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = U_COLORS;
    const KitOutcome outcome = files.run({"--gds", files.path("none/new.gds")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("cannot write none/new.gds"), std::string::npos) << outcome.error;
    EXPECT_TRUE(made(files).empty());
}

struct BadWords {
    const char* name;
    Words words;
    const char* error;
};

class KitExportUsage : public testing::TestWithParam<BadWords> {};

TEST_P(KitExportUsage, IsChecked)
{
    const SmallExport files(U, U_IN_DEF);
    const KitOutcome outcome = files.run(GetParam().words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find(GetParam().error), std::string::npos) << outcome.error;
}

INSTANTIATE_TEST_SUITE_P(
    Each, KitExportUsage,
    testing::Values(
        BadWords{"LefMasksWithoutLef", {"--lef-masks", "new.lef"}, "--lef-masks requires --lef"},
        BadWords{"DefMasksWithoutLefMasks", {"--def-masks", "new2.def"}, "--def-masks requires --lef-masks"},
        BadWords{"LefThatIsNotThere",
                 {"--lef", "/nowhere/a.lef", "--layer", "M1"},
                 "cannot open file /nowhere/a.lef"}),
    [](const auto& param) { return param.param.name; });

struct Coloured {
    const char* name;
    const char* colors;
    int status;
    const char* error;
};

class KitExportColours : public testing::TestWithParam<Coloured> {};

TEST_P(KitExportColours, AreThoseOfTheCells)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = GetParam().colors;
    const KitOutcome outcome = files.run({"--gds", files.path("new.gds")});
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_NE(outcome.error.find(GetParam().error), std::string::npos) << outcome.error;
    EXPECT_EQ(made(files).empty(), GetParam().status == 2);
}

INSTANTIATE_TEST_SUITE_P(
    Each, KitExportColours,
    testing::Values(
        Coloured{"Right", "u INV 1 0 0 0 1 2\n", 0, ""},
        Coloured{
            "NoneChosen", "u INV -1 0\n", 1,
            "out.colors:3: warning: u has no colour solution: its metal is on no mask; place with --rescue "
            "[no-solution]\n0 errors, 1 warning, 0 notes\n"},
        Coloured{"None", "", 2,
                 "out.place:4: error: u (INV) has no colours; export a placement with the colours and colour "
                 "files that "
                 "it was made with [no-colors]"},
        Coloured{"OtherMasks", "u INV 1 0 0 0 1 1\n", 2, "[masks-differ]"},
        Coloured{"NoSuchSolution", "u INV 3 0 0 0 1 1\n", 2, "[bad-solution]"},
        Coloured{"OtherCell", "u BUF 1 0 0 0 1 2\n", 2, "[cell-differs]"},
        Coloured{"BrokenFile", "u INV\n", 2, "[colors-record]"}),
    [](const auto& param) { return param.param.name; });

TEST(KitExportCommand, PlacesAloneNeedNoColours)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = "broken\n";
    EXPECT_EQ(files.run().status, 0);
}

TEST(KitExportCommand, CellPathIsWhereTheColourFilesAre)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = U_COLORS;
    files.json = R"({"schema":"vireloce-place","version":1,"placement":{}})";
    const KitOutcome outcome = files.run({"--gds", files.path("new.gds"), "--cell-path", files.path("lib")});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    const KitOutcome other =
        files.run({"--gds", files.path("new.gds"), "--cell-path", "/nowhere", "--force"});
    EXPECT_EQ(other.status, 2);
    EXPECT_NE(other.error.find("cannot open file /nowhere/INV.color"), std::string::npos) << other.error;
}

TEST(KitExportCommand, RelativeColourFilesLieBesideTheResult)
{
    SmallExport files(U, U_IN_DEF); // in another folder than this process
    files.colors = U_COLORS;
    files.json = R"({"schema":"vireloce-place","version":1,"placement":{},"options":{"cell_path":"lib"}})";
    const KitOutcome outcome = files.run({"--gds", files.path("new.gds")});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
}

TEST(KitExportCommand, LayoutNeedsTheUnitsOfTheDefFile)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = U_COLORS;
    files.def.replace(files.def.find("UNITS DISTANCE MICRONS 1000 ;\n"), 30, "");
    const KitOutcome outcome = files.run({"--gds", files.path("new.gds")});
    EXPECT_EQ(outcome.error, "vireloce-kit: in.def does not say its UNITS, which layouts and masters need\n");
    EXPECT_TRUE(made(files).empty());
}

TEST(KitExportCommand, LayoutNeedsAStepForItsSites)
{
    SmallExport files("- u INV + PLACED ( 380 0 ) N\n ;\n", U_IN_DEF);
    files.colors = U_COLORS;
    files.place = files.place.substr(files.place.find("COMPONENTS"));
    const KitOutcome outcome = files.run({"--gds", files.path("new.gds")});
    EXPECT_EQ(outcome.error,
              "vireloce-kit: out.place has no row with a positive step, which tells the site width\n");
}

TEST(KitExportCommand, SaysWhatItWrote)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = U_COLORS;
    const KitOutcome outcome =
        files.run({"--gds", files.path("new.gds"), "--lef", files.path("lef"), "--layer", "M1", "--lef-masks",
                   files.path("new.lef"), "--def-masks", files.path("new2.def")});
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.output, "new.def: 1 component, 1 in a new place\n"
                              "new2.def: 1 component, 1 in a new place\n"
                              "new.lef: 1 master\n"
                              "new.gds: 1000 database units per micrometre\n"
                              "new.lyp: layer properties\n");
    EXPECT_EQ(made(files), (Words{"new.def", "new.gds", "new.lef", "new.lyp", "new2.def"}));
}

TEST(KitExportCommand, SaysWhatItWroteAsJson)
{
    SmallExport files(U, U_IN_DEF);
    const KitOutcome outcome = files.run({"--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(kit::Json::parse(outcome.output), kit::Json::parse(R"({"schema": 1, "files":
                  [{"path": "new.def", "summary": "1 component, 1 in a new place"}]})"));
}

TEST(KitExportCommand, SameInputGivesTheSameBytes)
{
    SmallExport files(U, U_IN_DEF);
    files.colors = U_COLORS;
    files.run({"--gds", files.path("new.gds")});
    const std::string first = files.output("new.gds");
    files.run({"--gds", files.path("new.gds"), "--force"});
    EXPECT_EQ(files.output("new.gds"), first);
    EXPECT_FALSE(first.empty());
}

/// The files of an import as those of a result in which nothing has moved.
void takeAsResult(const TempDir& dir, const std::string& base)
{
    for (const char* extension : {".place", ".map"}) {
        std::filesystem::copy_file(base + extension, dir.path(std::string("out") + extension));
    }
    dir.write("out.json",
              R"({"schema":"vireloce-place","version":1,"placement":{},"options":{"cell_path":"/nowhere"}})");
}

TEST(KitExportImported, DesignThatDidNotMoveGivesTheSameBytes)
{
    const std::string def = VIRELOCE_KIT_EXAMPLES "/raw/gcd_nangate45.def";
    const std::string lef = VIRELOCE_KIT_EXAMPLES "/raw/Nangate45_stdcell.lef";
    const TempDir dir;
    ASSERT_EQ(runKit({"import", "--def", def, "--lef", lef, "-o", dir.path("in")}).status, 0);
    takeAsResult(dir, dir.path("in"));
    const KitOutcome outcome = runKit({"export", dir.path("out.json"), "--def", def, "-o",
                                       dir.path("new.def"), "--lef", lef, "--layer", "metal1"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, dir.path("new.def") + ": 426 components, 0 in a new place\n");
    EXPECT_EQ(contentOf(dir.path("new.def")), contentOf(def));
}

TEST(KitExportImported, WhatTheImportLeftOutIsNotTold)
{
    SmallExport files(U, U_IN_DEF + "- v INV + PLACED ( 0 0 ) N ;\n");
    kit::design::NameMap map{.def = "in.def", .hash = kit::design::hashOf(files.def)};
    map.siteWidth = map.siteHeight = 1;
    test::writeOutput(files.path("out.map"),
                      [&map](kit::OutputFile& out) { kit::design::writeNameMap(map, out); });
    EXPECT_EQ(files.run().error, "");
}

TEST(KitExportLimit, KeepsTheFirstOfEachCode)
{
    kit::Findings findings;
    for (int i = 0; i < 5; ++i) {
        findings.push_back({.code = "a", .file = "f", .line = i, .what = "w", .advice = "do"});
    }
    findings.push_back({.code = "b", .file = "f", .what = "w", .advice = "do"});
    kit::limitFindings(findings, 2);
    ASSERT_EQ(findings.size(), 3U);
    EXPECT_EQ(findings[0].advice, "do");
    EXPECT_EQ(findings[1].line, 1);
    EXPECT_EQ(findings[1].advice, "do; 3 more like this");
    EXPECT_EQ(findings[2].code, "b");
    EXPECT_EQ(findings[2].advice, "do");
}

} // namespace
