// SPDX-License-Identifier: BSD-3-Clause
// All the way from LEF and DEF, by the program itself.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "kit/base/process/childProcess.h"
#include "kit/base/text/json.h"
#include "kit/engines/place/schema.h"
#include "kit/kitRun.h"
#include "kit/tools/flow/cache.h"
#include "support/guards.h"

namespace {

using kit::Json;
using test::contentOf;
using test::Words;

constexpr const char* EXTENSIONS[] = {".def",    ".gds",   ".lyp",  ".lyrdb",   ".html", ".json",   ".place",
                                      ".colors", ".cells", ".pins", ".netlist", ".map",  ".offsets"};

class KitFlow : public testing::Test {
protected:
    /// Runs flow with a cache of the test's own. What it prints is in m_output and m_error.
    int flow(const std::string& lef, const std::string& def, const Words& more = {})
    {
        Words words{VIRELOCE_KIT_PROGRAM, "flow", "--lef", lef, "--def", def, "-o", out(), "--cache",
                    m_dir.path("cache")};
        words.insert(words.end(), more.begin(), more.end());
        const auto ending = kit::process::run(words, m_dir.path("stdout"), m_dir.path("stderr"));
        m_output = contentOf(m_dir.path("stdout"));
        m_error = contentOf(m_dir.path("stderr"));
        return ending.status;
    }

    int gcd(const Words& more = {})
    {
        const std::string raw = VIRELOCE_KIT_EXAMPLES "/raw/";
        return flow(raw + "Nangate45_stdcell.lef", raw + "gcd_nangate45.def", more);
    }

    std::string out() const { return m_dir.path("out"); }
    bool exists(const std::string& extension) const { return std::filesystem::exists(out() + extension); }

    /// Whether the table has a line of a step with some text.
    bool says(const std::string& step, const std::string& text) const
    {
        std::istringstream lines(m_output);
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind(step + " ", 0) == 0 && line.find(text) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    test::TempDir m_dir;
    std::string m_output;
    std::string m_error;
};

TEST_F(KitFlow, GoesFromLefAndDefToTheMasks)
{
    ASSERT_EQ(gcd({"--allow-conflicts"}), 0) << m_output << m_error;
    for (const char* extension : EXTENSIONS) {
        EXPECT_TRUE(exists(extension)) << extension;
    }
    EXPECT_TRUE(says("import", "426 components of 34 cells in 21 rows")) << m_output;
    EXPECT_TRUE(says("color", "41 cells")) << m_output;
    EXPECT_TRUE(says("lint", "0 errors")) << m_output;
    EXPECT_TRUE(says("place", "HPWL 4337460 -> ")) << m_output;
    EXPECT_TRUE(says("place", "; from pin to pin 2170.1 um -> ")) << m_output;
    EXPECT_TRUE(says("verify", "clean, 0 errors")) << m_output;
    EXPECT_TRUE(says("export", "426 components")) << m_output;
    EXPECT_TRUE(says("view", "out.html")) << m_output;
    EXPECT_FALSE(exists(".flow")) << "what was in between goes";
}

TEST_F(KitFlow, MakesTheWiresOfThePlacementShorter)
{
    ASSERT_EQ(gcd({"--allow-conflicts"}), 0) << m_output << m_error;
    EXPECT_TRUE(says("refine", "; before it was placed 2170.1 um")) << m_output;
    const Json result = Json::parse(contentOf(out() + ".json"));
    const Json& pins = result["hpwl_pins"];
    EXPECT_EQ(pins["before"]["um"], 2170.125);
    EXPECT_LT(pins["after"]["um"].asNumber(), pins["placed"]["um"].asNumber());
    EXPECT_EQ(pins["placed"], result["refine"]["wirelength"]["before"]);
    EXPECT_EQ(pins["after"], result["refine"]["wirelength"]["after"]);
    EXPECT_TRUE(result["refine"]["options"]["input"].isNull()) << "it is gone";
}

TEST_F(KitFlow, EffortOfNothingLeavesThePlacementAsItIs)
{
    ASSERT_EQ(gcd({"--allow-conflicts", "--effort", "0", "--keep"}), 0) << m_output << m_error;
    EXPECT_FALSE(says("refine", "")) << m_output;
    EXPECT_EQ(contentOf(out() + ".place"), contentOf(out() + ".flow/placed.place"));
    EXPECT_FALSE(Json::parse(contentOf(out() + ".json")).contains("refine"));
}

TEST_F(KitFlow, ItsResultIsExportedAgainFromAnyFolder)
{
    namespace fs = std::filesystem;
    const std::string lef = VIRELOCE_KIT_EXAMPLES "/raw/Nangate45_stdcell.lef";
    const std::string def = VIRELOCE_KIT_EXAMPLES "/raw/gcd_nangate45.def";
    const auto runIn = [this](const std::string& folder, const Words& words) {
        Words shell{"/bin/sh", "-c", "cd " + folder + " && exec \"$0\" \"$@\"", VIRELOCE_KIT_PROGRAM};
        shell.insert(shell.end(), words.begin(), words.end());
        return kit::process::run(shell, m_dir.path("stdout"), m_dir.path("stderr")).status;
    };
    ASSERT_EQ(runIn(m_dir.path(""), {"flow", "--lef", lef, "--def", def, "-o", "out", "--cache", "cache",
                                     "--allow-conflicts"}),
              0)
        << contentOf(m_dir.path("stderr"));
    fs::remove_all(m_dir.path("cache"));
    fs::create_directory(m_dir.path("moved"));
    for (const auto& entry : fs::directory_iterator(m_dir.path(""))) {
        if (entry.path().filename().string().starts_with("out.")) {
            fs::rename(entry.path(), fs::path(m_dir.path("moved")) / entry.path().filename());
        }
    }
    const std::string again = m_dir.path("again");
    ASSERT_EQ(runIn("/", {"export", m_dir.path("moved/out.json"), "--def", def, "-o", again + ".def", "--gds",
                          again + ".gds", "--lef", lef, "--fill"}),
              0)
        << contentOf(m_dir.path("stderr"));
    for (const std::string extension : {".def", ".gds", ".lyp"}) {
        EXPECT_EQ(contentOf(again + extension), contentOf(m_dir.path("moved/out") + extension)) << extension;
    }
    const Json result = Json::parse(contentOf(m_dir.path("moved/out.json")));
    EXPECT_EQ(test::faultsOf(result, test::placeSchema()), std::vector<std::string>());
}

TEST_F(KitFlow, FillsTheGapsUnlessItIsNotTo)
{
    ASSERT_EQ(gcd({"--allow-conflicts", "--effort", "0"}), 0) << m_error;
    EXPECT_TRUE(says("export", ", 266 fillers left out, 267 put in")) << m_output;
    EXPECT_NE(contentOf(out() + ".def").find("- FILLER_1 FILLCELL_X"), std::string::npos);
    ASSERT_EQ(gcd({"--allow-conflicts", "--no-fill", "--force"}), 0) << m_error;
    EXPECT_TRUE(says("export", ", 266 fillers left out")) << m_output;
    EXPECT_EQ(contentOf(out() + ".def").find("- FILLER_1 FILLCELL_X"), std::string::npos);
}

TEST_F(KitFlow, ReplacesTheColourFilesOfAnEarlierRunAndNoOthers)
{
    namespace fs = std::filesystem;
    const fs::path library = out() + ".library";
    ASSERT_EQ(gcd({"--allow-conflicts"}), 0) << m_error;
    EXPECT_TRUE(fs::exists(library / "OAI22_X1.color"));
    EXPECT_FALSE(fs::exists(library / "OAI33_X1.color")) << "gcd does not use it";
    fs::rename(library / "OAI22_X1.color", library / "OLD.color");
    ASSERT_EQ(gcd({"--allow-conflicts", "--force"}), 0) << m_error;
    EXPECT_TRUE(fs::exists(library / "OAI22_X1.color"));
    EXPECT_FALSE(fs::exists(library / "OLD.color"));
    fs::remove(library / "made-by-flow"); // as if somebody else had made it
    EXPECT_EQ(gcd({"--allow-conflicts", "--force"}), 2);
    EXPECT_NE(m_error.find("out.library exists, and no run of flow has made it"), std::string::npos)
        << m_error;
}

TEST_F(KitFlow, KeepsAllFilesIfWished)
{
    ASSERT_EQ(gcd({"--allow-conflicts", "--keep"}), 0) << m_output;
    for (const char* name : {"/design.place", "/design.map", "/placed.place", "/placed.colors",
                             "/refined.place", "/refined.lyrdb"}) {
        EXPECT_TRUE(exists(std::string(".flow") + name)) << name;
    }
}

TEST_F(KitFlow, ColoursCellsOnce)
{
    ASSERT_EQ(gcd({"--allow-conflicts"}), 0) << m_output;
    const std::string first = contentOf(out() + ".gds");
    ASSERT_EQ(gcd({"--allow-conflicts", "--force"}), 0) << m_output;
    EXPECT_TRUE(says("color", "known from before")) << m_output;
    EXPECT_EQ(contentOf(out() + ".gds"), first);
    // Another distance is another colouring.
    ASSERT_EQ(gcd({"--mindp", "120", "--force"}), 0) << m_output;
    EXPECT_FALSE(says("color", "known from before")) << m_output;
}

TEST_F(KitFlow, RemovesFromTheCacheWhatKilledRunsLeftAndNothingElse)
{
    namespace fs = std::filesystem;
    ASSERT_EQ(gcd({"--allow-conflicts"}), 0) << m_output;
    const fs::path coloured = fs::directory_iterator(m_dir.path("cache"))->path();
    const fs::path old = coloured.string() + ".part1";
    const fs::path young = coloured.string() + ".part2";
    const fs::path strange = coloured.string() + ".part3"; // without what flow puts into each
    for (const fs::path& path : {old, young, strange}) {
        fs::create_directory(path);
        if (path != strange) {
            std::ofstream(path / "made-by-flow");
        }
        if (path != young) {
            fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(25));
        }
    }
    ASSERT_EQ(gcd({"--mindp", "120", "--force"}), 0) << m_output; // colours the library anew
    EXPECT_FALSE(fs::exists(old));
    EXPECT_TRUE(fs::exists(young)) << "another run may be at work on it";
    EXPECT_TRUE(fs::exists(strange));
    EXPECT_TRUE(fs::exists(coloured));
}

TEST_F(KitFlow, TakesColourFilesThatAreThere)
{
    ASSERT_EQ(gcd({"--cell-path", VIRELOCE_KIT_EXAMPLES "/nangate45_color"}), 0) << m_output;
    EXPECT_TRUE(says("color", "given: ")) << m_output;
    EXPECT_FALSE(std::filesystem::exists(m_dir.path("cache")));
}

TEST_F(KitFlow, StopsAtCellsInUseWithoutAColouring)
{
    EXPECT_EQ(gcd(), 2);
    EXPECT_EQ(m_output.find("without a colouring:"), std::string::npos) << "failures go to standard error";
    EXPECT_NE(m_error.find("Cells in use without a colouring: OAI22_X1 XNOR2_X2\n"), std::string::npos)
        << m_error;
    EXPECT_NE(m_error.find("What to do: give --allow-conflicts"), std::string::npos) << m_error;
    EXPECT_FALSE(says("lint", "")) << m_output;
    EXPECT_TRUE(exists(".flow/design.place"));
    EXPECT_FALSE(exists(".def"));
}

TEST_F(KitFlow, StopsAtALayerWithoutMetal)
{
    for (const Words& more : {Words{}, Words{"--cell-path", VIRELOCE_KIT_EXAMPLES "/nangate45_color"}}) {
        Words words{"--layer", "M1", "--force"};
        words.insert(words.end(), more.begin(), more.end());
        EXPECT_EQ(gcd(words), 2);
        EXPECT_TRUE(says("import", "FAILED")) << m_output;
        EXPECT_NE(m_error.find("What went wrong: vireloce-kit: no cell in use has metal on the layer M1 in "),
                  std::string::npos)
            << m_error;
        EXPECT_NE(
            m_error.find("Nangate45_stdcell.lef: give another with --layer; they have shapes on metal1\n"),
            std::string::npos)
            << m_error;
    }
}

TEST_F(KitFlow, ReplacesNothingWithoutForce)
{
    m_dir.write("out.gds", "old");
    EXPECT_EQ(gcd({"--allow-conflicts"}), 2);
    EXPECT_NE(m_error.find("out.gds exists"), std::string::npos) << m_error;
    EXPECT_EQ(contentOf(out() + ".gds"), "old");
}

TEST_F(KitFlow, InputsInItsFolderAreRefusedAndFoldersOfOthersStay)
{
    std::filesystem::create_directory(out() + ".flow");
    m_dir.write("out.flow/d.def", "DESIGN d ;\n");
    EXPECT_EQ(flow(VIRELOCE_KIT_EXAMPLES "/raw/Nangate45_stdcell.lef", out() + ".flow/d.def", {"--force"}),
              2);
    EXPECT_NE(m_error.find("out.flow/d.def is in "), std::string::npos) << m_error;
    EXPECT_EQ(gcd({"--force", "--allow-conflicts"}), 2);
    EXPECT_NE(m_error.find("no run of flow has made it"), std::string::npos) << m_error;
    EXPECT_EQ(contentOf(out() + ".flow/d.def"), "DESIGN d ;\n");
}

TEST_F(KitFlow, NeverReplacesAnInput)
{
    const std::string def = m_dir.path("out.json");
    std::filesystem::copy_file(VIRELOCE_KIT_EXAMPLES "/raw/gcd_nangate45.def", def);
    EXPECT_EQ(flow(VIRELOCE_KIT_EXAMPLES "/raw/Nangate45_stdcell.lef", def, {"--force", "--allow-conflicts"}),
              2);
    EXPECT_NE(m_error.find("is an input"), std::string::npos) << m_error;
    EXPECT_EQ(contentOf(def), contentOf(VIRELOCE_KIT_EXAMPLES "/raw/gcd_nangate45.def"));
}

TEST_F(KitFlow, FolderWithoutTheCellsIsTold)
{
    EXPECT_EQ(gcd({"--cell-path", m_dir.path("none")}), 2);
    EXPECT_NE(m_error.find("What to do: give the folder that has them with --cell-path"), std::string::npos)
        << m_error;
}

TEST_F(KitFlow, OptionsAreCheckedBeforeTheFirstStep)
{
    for (const Words& more : {Words{"--site", "foo"}, Words{"--mindp", "-5"}, Words{"--jobs", "0"}}) {
        EXPECT_EQ(gcd(more), 2);
        EXPECT_EQ(m_output, "");
        EXPECT_NE(m_error.find(more[0]), std::string::npos) << m_error;
    }
}

/// A cell of two sites with metal at its right edge only.
constexpr const char* LEF = R"(UNITS DATABASE MICRONS 1000 ; END UNITS
SITE core CLASS CORE ; SIZE 0.2 BY 2 ; END core
MACRO C CLASS CORE ; SIZE 0.4 BY 2 ; SITE core ;
  PIN Z PORT LAYER metal1 ; RECT 0.34 0.5 0.39 1.5 ; END END Z
END C
)";

/// Two cells side by side.
constexpr const char* GOOD = "- u C + PLACED ( 1000 0 ) N ;\n- v C + PLACED ( 1400 0 ) N ;\n";

class SmallFlow : public KitFlow {
protected:
    int small(const std::string& components, const Words& more = {})
    {
        return small(
            LEF,
            "ROW r0 core 1000 0 N DO 20 BY 1 STEP 200 0 ;\nROW r1 core 1000 2000 FS DO 20 BY 1 STEP 200 "
            "0 ;\n",
            components, more);
    }

    /// Rows that are full, each with one pair of cells that are too close whatever their order: they have
    /// metal low at one edge and high at the other, and one is mirrored; the placer takes both as unmirrored.
    int unclean(int pairs, const Words& more = {}, const std::string& moreRows = "",
                const std::string& moreComponents = "")
    {
        std::string lef = LEF;
        lef.replace(lef.find("0.5 0.39 1.5 ;"), 14, "0.5 0.39 0.9 ; RECT 0.01 1.1 0.06 1.5 ;");
        std::string rows =
            "ROW last core 1000 " + std::to_string(2000 * pairs) + " N DO 1 BY 1 STEP 200 0 ;\n";
        std::string components;
        for (int i = 0; i < pairs; ++i) {
            const std::string y = std::to_string(2000 * i);
            rows += "ROW r" + y + " core 1000 " + y + " N DO 4 BY 1 STEP 200 0 ;\n";
            components += "- u" + y + " C + PLACED ( 1000 " + y + " ) N ;\n";
            components += "- v" + y + " C + PLACED ( 1400 " + y + " ) FN ;\n";
        }
        rows += moreRows;
        components += moreComponents;
        Words words{"--max-solutions", "1", "--no-true-orientation"};
        words.insert(words.end(), more.begin(), more.end());
        return small(lef, rows, components, words);
    }

private:
    int small(const std::string& lef, const std::string& rows, const std::string& components,
              const Words& more)
    {
        m_dir.write("l.lef", lef);
        m_dir.write("d.def", "UNITS DISTANCE MICRONS 1000 ;\n" + rows + "COMPONENTS " +
                                 std::to_string(std::count(components.begin(), components.end(), '\n')) +
                                 " ;\n" + components + "END COMPONENTS\nEND DESIGN\n");
        return flow(m_dir.path("l.lef"), m_dir.path("d.def"), more);
    }
};

TEST_F(SmallFlow, StopsAtImportWithItsMessages)
{
    EXPECT_EQ(small("- u C ;\n- v C + PLACED ( 1400 0 ) N ;\n"), 2);
    EXPECT_TRUE(says("import", "FAILED")) << m_output;
    EXPECT_NE(m_error.find("component u is not placed"), std::string::npos) << m_error;
    EXPECT_NE(m_error.find("What was run: "), std::string::npos) << m_error;
    EXPECT_FALSE(says("color", "")) << m_output;
}

TEST_F(SmallFlow, TellsWarningsOfStepsThatGoWell)
{
    EXPECT_EQ(small("- u C + PLACED ( 1000 2000 ) N ;\n- v C + PLACED ( 1400 0 ) N ;\n"), 0) << m_output;
    EXPECT_NE(m_error.find("warning: component u lies upside down in its row"), std::string::npos) << m_error;
}

TEST_F(SmallFlow, LayerThatImportFindsIsThatOfTheOtherSteps)
{
    std::string lef = LEF;
    // More cells have pins on M0 in the library, but not in the design.
    for (const char* const name : {"X", "Y", "Z"}) {
        lef += std::string("MACRO ") + name +
               " CLASS CORE ; SIZE 0.4 BY 2 ; PIN P PORT LAYER M0 ; RECT 0.1 0.5 0.2 1 ; END "
               "END P END " +
               name + "\n";
    }
    m_dir.write("m.lef", "LAYER M0 TYPE ROUTING ; END M0 LAYER metal1 TYPE ROUTING ; END metal1\n" + lef);
    ASSERT_EQ(small("- u C + PLACED ( 1000 0 ) N ;\n- v C + PLACED ( 1400 0 ) N ;\n"), 0) << m_error;
    ASSERT_EQ(flow(m_dir.path("m.lef"), m_dir.path("d.def"), {"--force", "--keep"}), 0) << m_error;
    EXPECT_NE(m_error.find("note: metal 1 is layer metal1"), std::string::npos) << m_error;
    EXPECT_NE(contentOf(out() + ".flow/color.log").find("layer metal1"), std::string::npos);
}

/// A cell whose metal cannot be read.
const std::string SLANTED =
    "MACRO D CLASS CORE ; SIZE 0.4 BY 2 ; PIN Z PORT LAYER metal1 ; POLYGON 0 0 0.1 0.1 0.2 0 ; END "
    "END Z END D\n";

TEST_F(SmallFlow, CellThatCannotBeColouredStopsItOnlyIfItIsUsed)
{
    EXPECT_EQ(small(GOOD), 0) << m_error;
    m_dir.write("more.lef", LEF + SLANTED);
    EXPECT_EQ(flow(m_dir.path("more.lef"), m_dir.path("d.def"), {"--force"}), 0) << m_error;
    EXPECT_EQ(m_error.find("D gets no colour file"), std::string::npos) << m_error;
    small("- u D + PLACED ( 1000 0 ) N ;\n- v C + PLACED ( 1400 0 ) N ;\n", {"--force"});
    EXPECT_EQ(flow(m_dir.path("more.lef"), m_dir.path("d.def"), {"--force"}), 2);
    EXPECT_NE(m_error.find("D gets no colour file"), std::string::npos) << m_error;
}

TEST_F(SmallFlow, ColoursAnewForOtherCellsOfALibrary)
{
    std::string other = LEF;
    other.replace(other.find("MACRO C"), 7, "MACRO D").replace(other.find("END C"), 5, "END D");
    m_dir.write("both.lef", LEF + other.substr(other.find("MACRO D")));
    EXPECT_EQ(small(GOOD), 0) << m_error;
    EXPECT_EQ(flow(m_dir.path("both.lef"), m_dir.path("d.def"), {"--force"}), 0) << m_error;
    EXPECT_TRUE(says("color", "1 cell, ")) << m_output;
    small("- u D + PLACED ( 1000 0 ) N ;\n- v C + PLACED ( 1400 0 ) N ;\n", {"--force"});
    EXPECT_EQ(flow(m_dir.path("both.lef"), m_dir.path("d.def"), {"--force"}), 0) << m_error;
    EXPECT_TRUE(says("color", "2 cells, ")) << m_output;
}

TEST_F(SmallFlow, LegalizesIfWished)
{
    EXPECT_EQ(small("- u C ;\n- v C + PLACED ( 1400 0 ) N ;\n", {"--legalize"}), 0) << m_output;
    EXPECT_NE(contentOf(out() + ".def").find("- u C + PLACED ( "), std::string::npos)
        << contentOf(out() + ".def");
}

TEST_F(SmallFlow, FailedStepsCountWhereTheParentIgnoredTheEndsOfChildren)
{
    std::signal(SIGCHLD, SIG_IGN); // what a program is started with stays so
    const std::string command = "exec '" VIRELOCE_KIT_PROGRAM "' flow --lef " + m_dir.path("l.lef") +
                                " --def " + m_dir.path("d.def") + " -o " + out() + " --cache " +
                                m_dir.path("cache") + " >/dev/null 2>&1";
    m_dir.write("l.lef", LEF);
    m_dir.write("d.def", "UNITS DISTANCE MICRONS 1000 ;\nEND DESIGN\n");
    const pid_t child = fork();
    if (child == 0) {
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        _exit(127);
    }
    std::signal(SIGCHLD, SIG_DFL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_FALSE(exists(".def"));
}

TEST_F(SmallFlow, NeverReadsTheCacheOfAnotherVersion)
{
    namespace fs = std::filesystem;
    ASSERT_EQ(small(GOOD), 0) << m_output << m_error;
    kit::flow::Options options;
    options.lefs = {m_dir.path("l.lef")};
    options.layer = "metal1";
    options.cache = m_dir.path("cache");
    const std::string site = "0.200000,2.000000";
    const std::string own = kit::flow::cachedFolder(options, site, {"C"});
    const std::string others = kit::flow::cachedFolder(options, site, {"C"}, "0.1");
    ASSERT_TRUE(fs::exists(own));
    fs::rename(own, others); // where another version would have put it
    std::ofstream(others + "/C.color") << "of another version";
    ASSERT_EQ(small(GOOD, {"--force"}), 0) << m_output << m_error;
    EXPECT_FALSE(says("color", "known from before")) << m_output;
    EXPECT_TRUE(fs::exists(own));
    EXPECT_EQ(contentOf(others + "/C.color"), "of another version");
}

TEST_F(SmallFlow, TheEndOfAVersionIsNoPartOfTheLayer)
{
    m_dir.write("l.lef", LEF);
    kit::flow::Options options;
    options.lefs = {m_dir.path("l.lef")};
    options.cache = m_dir.path("cache");
    const std::string longer = kit::flow::cachedFolder(options, "", {}, "0.10");
    options.layer = "0" + options.layer;
    EXPECT_NE(kit::flow::cachedFolder(options, "", {}, "0.1"), longer);
    const std::string plain = kit::flow::cachedFolder(options, "", {});
    options.railsConflict = true;
    EXPECT_NE(kit::flow::cachedFolder(options, "", {}), plain);
    options.railsConflict = false;
    options.rowsMeet = true;
    EXPECT_NE(kit::flow::cachedFolder(options, "", {}), plain);
}

/// A flow that has been run well, to be run again with less room.
class FullDiskFlow : public SmallFlow {
protected:
    FullDiskFlow()
    {
        EXPECT_EQ(small(GOOD), 0) << m_output;
        m_page = std::filesystem::file_size(out() + ".html");
        for (const char* extension : EXTENSIONS) {
            EXPECT_LE(std::filesystem::file_size(out() + extension), m_page) << extension;
            std::filesystem::remove(out() + extension);
        }
        std::filesystem::remove_all(out() + ".library");
    }

    /// Runs it where no file may have more than some blocks of 512 bytes. What it prints is in m_output.
    int again(uintmax_t blocks)
    {
        const std::string command = "ulimit -f " + std::to_string(blocks) +
                                    "; exec '" VIRELOCE_KIT_PROGRAM "' flow --lef " + m_dir.path("l.lef") +
                                    " --def " + m_dir.path("d.def") + " -o " + out() + " --cache " +
                                    m_dir.path("cache") + " 2>&1";
        FILE* const pipe = popen(command.c_str(), "r"); // of which there may be any amount
        m_output.clear();
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
            m_output += static_cast<char>(c);
        }
        return WEXITSTATUS(pclose(pipe));
    }

    uintmax_t m_page = 0; ///< bytes
};

TEST_F(FullDiskFlow, SaysWhatWentWrong)
{
    EXPECT_EQ(again(1), 2);
    EXPECT_TRUE(says("import", "FAILED")) << m_output;
    EXPECT_NE(m_output.find("What went wrong: vireloce-kit: cannot write "), std::string::npos) << m_output;
    EXPECT_NE(m_output.find(": File too large\n"), std::string::npos) << m_output;
}

TEST_F(SmallFlow, AResultThatCannotBeWrittenLeavesNone)
{
    std::filesystem::create_symlink("/dev/full", out() + ".json");
    EXPECT_EQ(small(GOOD), 2);
    EXPECT_TRUE(says("view", "out.html")) << "all steps are done";
    EXPECT_NE(m_error.find(".json: No space left on device\n"), std::string::npos) << m_error;
    for (const std::string extension : EXTENSIONS) {
        EXPECT_EQ(exists(extension), extension == ".json") << extension;
    }
    EXPECT_FALSE(exists(".library"));
}

TEST_F(FullDiskFlow, ResultsAppearTogetherOrNotAtAll)
{
    EXPECT_EQ(again((m_page - 1) / 512), 2);
    EXPECT_TRUE(says("export", "2 components")) << m_output;
    EXPECT_TRUE(says("view", "FAILED")) << "there is no room for the page, which comes after the masks";
    for (const char* extension : EXTENSIONS) {
        EXPECT_FALSE(exists(extension)) << extension;
    }
    EXPECT_FALSE(exists(".library"));
}

/// Two cells whose right edges meet, with one solution for both; the placer takes both as unmirrored.
constexpr const char* MIRRORED = "- u C + PLACED ( 1000 0 ) N ;\n- v C + PLACED ( 1400 0 ) FN ;\n";

TEST_F(SmallFlow, MirroredCellsKeepTheirDistance)
{
    EXPECT_EQ(small(MIRRORED, {"--max-solutions", "1"}), 0) << m_output << m_error;
    EXPECT_TRUE(says("verify", "clean, 0 errors, 0 notes")) << m_output;
    const Json result = Json::parse(test::contentOf(out() + ".json"));
    EXPECT_EQ(result["judge"]["conflicts"], Json(0));
    EXPECT_EQ(result["options"]["true_orientation"], Json(true));
}

TEST_F(SmallFlow, RescuesPairsThatThePlacerLeavesTooClose)
{
    EXPECT_EQ(small(MIRRORED, {"--max-solutions", "1", "--no-true-orientation"}), 0) << m_output << m_error;
    EXPECT_TRUE(says("place", "; rescued 0 of 0 cells and 1 of 1 pair, for which 1 other cell moved"))
        << m_output;
}

/// A cell with a bar at either edge of its row, and rails among its obstructions.
constexpr const char* MEETING_LEF = R"(MACRO M CLASS CORE ; SIZE 0.4 BY 2 ; SITE core ;
  PIN A PORT LAYER metal1 ; RECT 0.1 0.08 0.25 0.5 ; RECT 0.1 1.5 0.25 1.92 ; END END A
  OBS LAYER metal1 ; RECT 0 -0.05 0.4 0.05 ; RECT 0 1.95 0.4 2.05 ; END
END M
)";

TEST_F(SmallFlow, RowsMeetWithoutConflictsWhereAsked)
{
    m_dir.write("meeting.lef", MEETING_LEF);
    const std::string cells = "- u M + PLACED ( 1000 0 ) N ;\n- v M + PLACED ( 1000 2000 ) FS ;\n";
    const Words words{"--lef", m_dir.path("meeting.lef"), "--max-solutions", "1", "--allow-conflicts"};
    EXPECT_EQ(small(cells, words), 0) << m_output << m_error;
    EXPECT_TRUE(says("verify", "clean, 0 errors, 2 notes")) << m_output;
    Words meeting = words;
    meeting.insert(meeting.end(), {"--rows-meet", "--force"});
    EXPECT_EQ(small(cells, meeting), 0) << m_output << m_error;
    EXPECT_TRUE(says("verify", "clean, 0 errors, 0 notes")) << m_output;
}

TEST_F(SmallFlow, RowThatDoesNotMeetTheNextIsTold)
{
    m_dir.write("meeting.lef", "MACRO M CLASS CORE ; SIZE 0.4 BY 2 ; SITE core ;\n"
                               "  PIN A PORT LAYER metal1 ; RECT 0.05 0.05 0.15 0.5 ; END END A\n"
                               "  PIN B PORT LAYER metal1 ; RECT 0.2 0.05 0.3 0.5 ; END END B\nEND M\n");
    const std::string cells = "- u M + PLACED ( 1000 0 ) FS ;\n- v M + PLACED ( 1000 2000 ) N ;\n";
    EXPECT_EQ(small(cells, {"--lef", m_dir.path("meeting.lef"), "--rows-meet", "--max-solutions", "1"}), 1)
        << m_output << m_error;
    EXPECT_NE(m_error.find("; M has metal near the next rows on other masks than "), std::string::npos)
        << m_error;
}

/// A tap with metal, and an end cap whose metal reaches beyond it, so that it cannot be coloured.
constexpr const char* FIXED_LEF = R"(MACRO TAP CLASS CORE WELLTAP ; SIZE 0.2 BY 2 ;
  OBS LAYER metal1 ; RECT 0.02 0.5 0.18 1.5 ; END
END TAP
MACRO CAP CLASS ENDCAP PRE ; SIZE 0.2 BY 2 ; OBS LAYER metal1 ; RECT -0.1 0.5 0.18 1.5 ; END END CAP
)";

TEST_F(SmallFlow, FixedCellsAreColouredAndGetSolutions)
{
    m_dir.write("fixed.lef", FIXED_LEF);
    const std::string fixed = "- t TAP + FIXED ( 1400 0 ) FN ;\n- w C + FIXED ( 1600 0 ) N ;\n";
    EXPECT_EQ(small("- u C + PLACED ( 1000 0 ) N ;\n" + fixed, {"--lef", m_dir.path("fixed.lef")}), 0)
        << m_output << m_error;
    EXPECT_TRUE(says("verify", "clean, 0 errors, 0 notes")) << m_output;
    EXPECT_TRUE(std::filesystem::exists(out() + ".library/TAP.color"));
    EXPECT_NE(contentOf(out() + ".fixed").find("CELLS 2\nTAP 1400 0 FN "), std::string::npos);
    EXPECT_EQ(contentOf(out() + ".fixed").find(" -1 "), std::string::npos);
    const Json result = Json::parse(contentOf(out() + ".json"));
    EXPECT_EQ(test::faultsOf(result, test::placeSchema()), Words{});

    EXPECT_EQ(small(GOOD, {"--force"}), 0) << m_error;
    EXPECT_FALSE(exists(".fixed")) << "that of the earlier run";
}

TEST_F(SmallFlow, FixedCellThatCannotBeColouredDoesNotStopIt)
{
    m_dir.write("fixed.lef", FIXED_LEF);
    EXPECT_EQ(small("- u C + PLACED ( 1400 0 ) N ;\n- e CAP + FIXED ( 1000 0 ) N ;\n",
                    {"--lef", m_dir.path("fixed.lef")}),
              0)
        << m_output << m_error;
    EXPECT_TRUE(says("verify", "clean, 0 errors, 1 note")) << m_output;
    EXPECT_NE(contentOf(out() + ".fixed").find("CAP 1000 0 N -1 e\n"), std::string::npos);
}

TEST_F(SmallFlow, WritesWhatItHasOfAPlacementThatIsNotClean)
{
    EXPECT_EQ(unclean(1), 1) << m_output;
    EXPECT_TRUE(says("place", " 0 conflicts; rescued 0 of 0 cells and 0 of 1 pair, for which 0 other cells "
                              "moved; verify finds 1 error"))
        << m_output;
    EXPECT_TRUE(says("verify", "not clean, 1 error, 0 notes")) << m_output;
    EXPECT_TRUE(test::contentOf(out() + ".def").starts_with("# Not clean: verify finds 1 error\n"));
    for (const char* extension : {".gds", ".lyp", ".lyrdb", ".html", ".place", ".colors", ".library"}) {
        EXPECT_TRUE(exists(extension)) << extension;
    }
    EXPECT_FALSE(exists(".flow"));
    const Json flow = Json::parse(test::contentOf(out() + ".json"))["flow"];
    EXPECT_EQ(flow["status"], Json(1));
    std::string names;
    for (const Json& step : flow["steps"].items()) {
        names += step["name"].asString() + " ";
        EXPECT_GE(step["seconds"].asNumber(), 0);
    }
    EXPECT_EQ(names, "import color lint place refine verify export view ");
    EXPECT_EQ(flow["steps"][5]["result"], Json("not clean, 1 error, 0 notes"));
}

TEST_F(SmallFlow, WhatPlaceLeavesUncleanIsMadeLegalFromTheImport)
{
    // A cell of the pair fits into the other row if the small one there goes to the row of one site.
    m_dir.write("small.lef",
                "MACRO S CLASS CORE ; SIZE 0.2 BY 2 ; SITE core ;\n  PIN A PORT LAYER metal1 ; RECT "
                "0.08 1.75 0.12 1.85 ; END END A\nEND S\n");
    const std::string row = "ROW other core 1000 4000 N DO 4 BY 1 STEP 200 0 ;\n";
    const std::string cells = "- w C + PLACED ( 1000 4000 ) FN ;\n- s S + PLACED ( 1400 4000 ) N ;\n";
    const std::string lef = m_dir.path("small.lef");
    EXPECT_EQ(unclean(1, {"--lef", lef, "--effort", "0"}, row, cells), 1) << m_output;
    EXPECT_EQ(unclean(1, {"--lef", lef, "--force"}, row, cells), 0) << m_output << m_error;
    EXPECT_TRUE(says("place", "; verify finds 1 error")) << m_output;
    EXPECT_TRUE(says("refine", "; from the import, as place left errors")) << m_output;
    EXPECT_TRUE(says("verify", "clean, 0 errors, 0 notes")) << m_output;
    const Json result = Json::parse(contentOf(out() + ".json"));
    EXPECT_EQ(test::faultsOf(result, test::placeSchema()), Words{});
    EXPECT_EQ(result["refine"]["options"]["anew"], true);
    EXPECT_EQ(result["judge"]["errors"], 0);
    EXPECT_FALSE(test::contentOf(out() + ".def").starts_with("# Not clean"));
}

TEST_F(SmallFlow, SaysWhatTheJudgeHasAgainstAPlacementAndWhatToDo)
{
    EXPECT_EQ(unclean(1, {"--layer", "metal1"}), 1) << m_output;
    EXPECT_EQ(m_error.substr(0, m_error.find("What to do: ")),
              "vireloce-kit: no legal places for 1 pair of cells too close\n"
              "vireloce-kit: no legal place for component v0\n\n" +
                  out() +
                  ".place:17: error: u0 (C) at (1000, 0) and v0 (C) at (1400, 0) have shapes of mask "
                  "0 19.0 apart, 185 (0.194736 um) are needed; 1 pair of shapes too close [conflict]\n\n"
                  "Not clean:\n  1  conflict: pairs of cells in a row with metal of one mask too close\n");
    EXPECT_NE(m_error.find("What to do: try another --algo (0, 1, 3), more --max-solutions or"),
              std::string::npos)
        << m_error;
    EXPECT_NE(m_error.find(out() + ".lyrdb into a layout viewer"), std::string::npos) << m_error;
}

TEST_F(SmallFlow, SaysWhyThereIsNoPlacement)
{
    // Cells that are wider in their colour file than in the LEF: 25 sites in a row of 20, and the method
    // moves none.
    std::filesystem::create_directory(m_dir.path("cells"));
    m_dir.write("cells/C.color", "950 1900  0  1  1  0 500 5 900  1  0 1");
    std::string cells;
    for (int x = 1000; x < 3000; x += 400) {
        cells += "- u" + std::to_string(x) + " C + PLACED ( " + std::to_string(x) + " 0 ) N ;\n";
    }
    EXPECT_EQ(small(cells, {"--cell-path", m_dir.path("cells"), "--algo", "2"}), 2);
    EXPECT_TRUE(says("place", "FAILED: no placement")) << m_output;
    EXPECT_NE(m_error.find("What went wrong: vireloce-kit: cannot solve the placement"), std::string::npos)
        << m_error;
}

TEST_F(SmallFlow, TellsTheFirstErrorsAndWhereTheOthersAre)
{
    EXPECT_EQ(unclean(22), 1);
    size_t told = 0;
    for (size_t at = 0; (at = m_error.find(" error: ", at)) != std::string::npos; ++at) {
        ++told;
    }
    EXPECT_EQ(told, 20U) << m_error;
    EXPECT_NE(m_error.find("... and 2 more errors, in " + out() + ".lyrdb\n"), std::string::npos) << m_error;
}

} // namespace
