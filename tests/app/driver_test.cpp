// SPDX-License-Identifier: BSD-3-Clause
// A run from the banner to the last line, inside this process.
#include "app/driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/commandLine.h"
#include "db/designFiles.h"
#include "support/pattern.h"

namespace {

using test::DesignFiles;
using Words = std::vector<std::string>;

const std::string BANNER = "\n"
                           "==================================================================\n"
                           "                      Vireloce - Version 3.1                      \n"
                           "==================================================================\n";

const std::string USAGE =
    "\n"
    "===================================================================\n"
    "                        Vireloce Usage                             \n"
    "\"-inlib\"   : followed by input def layout (default: \"sparc_exu_alu\"). \n"
    "\"-cellPath\": followed by the path to cell color files (default: \"../benchNangate_shifted\"). \n"
    "\"-mindp\"   : coloring distance (default: 185)\n"
    "\"-siteW\"   : site width on the row [min cell shift distance] (default: 190)\n"
    "\"-algo\"    : detailed placement methods (0: Vireloce; 1: Vireloce-SPD; -1: Greedy)\n"
    "\"-M\"       : M value in detailed placement (default: 8)\n"
    "\"-W\"       : importance of wirelength vs. stitch# (default: 10)\n"
    "===================================================================\n"
    "\n";

const std::string SET_UP_TIME = "\nSTAT | LUT CPU time             = * s\n\n";
const std::string PLACE_TIME = "\nSTAT | Virelocer CPU time       = * s\n\n";

/// Set-up statistics of the small design.
const std::string SET_UP = "STAT | cell type #              = 2\n"
                           "STAT | LUTable item #           = 36\n"
                           "STAT | net #                    = 2\n"
                           "STAT | row #                    = 2\n"
                           "STAT | segment #                = 2\n"
                           "STAT | component #              = 3\n"
                           "STAT | macro #                  = 0\n"
                           "STAT | max solution # for cells = 2\n"
                           "STAT | max site # on rows       = 10\n"
                           "STAT | max componnet # on rows  = 2\n"
                           "STAT | init HPWL                = 5130\n"
                           "STAT | stitch # lowerB          = 2\n";

/// The options of a run on some files, with more behind them.
Words wordsFor(const DesignFiles& files, const Words& more = {})
{
    Words words{"-inlib", files.base(), "-cellPath", files.lib()};
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

std::string echoOf(const Words& words)
{
    std::string line = "STAT | Parameters: ";
    for (const std::string& word : words) {
        line += word + " ";
    }
    return line + "\n";
}

/// The report of a run, with stars for the times.
std::string run(const Words& words)
{
    test::CommandLine line(words);
    int status = -1;
    const std::string report =
        test::reportOf([&] { status = vireloce::runPlacer(line.argc(), line.argv()); });
    EXPECT_EQ(status, 0);
    return test::withoutTimes(report);
}

/// The report of a run on some files, from the line behind the echo on.
std::string faultOf(const DesignFiles& files, const Words& more = {})
{
    const Words words = wordsFor(files, more);
    const std::string report = run(words);
    const std::string start = BANNER + echoOf(words);
    EXPECT_EQ(report.substr(0, start.size()), start);
    return report.substr(std::min(start.size(), report.size()));
}

TEST(PrintWelcome, IsExactToTheByte)
{
    EXPECT_EQ(test::reportOf(printWelcome), BANNER);
}

TEST(PrintUsage, IsExactToTheByte)
{
    EXPECT_EQ(test::reportOf(printUsage), USAGE);
}

TEST(PrintUsage, FramesAndTitlesHaveTheirWidth)
{
    const std::string texts = test::reportOf([] {
        printWelcome();
        printUsage();
    });
    const std::string banner(66, '=');
    const std::string usage(67, '=');
    EXPECT_NE(texts.find("\n" + banner + "\n" + std::string(22, ' ') + "Vireloce - Version 3.1" +
                         std::string(22, ' ') + "\n" + banner + "\n"),
              std::string::npos);
    EXPECT_NE(texts.find("\n" + usage + "\n" + std::string(24, ' ') + "Vireloce Usage" +
                         std::string(29, ' ') + "\n"),
              std::string::npos);
    EXPECT_NE(texts.find("\n" + usage + "\n\n"), std::string::npos);
}

TEST(RunPlacer, ReportsTheWholeRunInOrder)
{
    const DesignFiles files;
    const Words words = wordsFor(files, {"-algo", "-1"});
    EXPECT_EQ(run(words), BANNER + echoOf(words) + SET_UP + SET_UP_TIME +
                              "STAT | final HPWL               = 5130\n"
                              "STAT | HPWL increases           = 0(0.000%)\n"
                              "STAT | final stitch   #         = 4\n"
                              "STAT | final conflict #         = 0\n" +
                              PLACE_TIME);
}

class Method : public testing::TestWithParam<std::string> {};

TEST_P(Method, ReachesTheEndOfTheReport)
{
    const DesignFiles files;
    const Words words = wordsFor(files, {"-algo", GetParam()});
    const std::string report = run(words);
    const std::string start =
        BANNER + echoOf(words) + SET_UP + SET_UP_TIME + "STAT | final HPWL               = ";
    EXPECT_EQ(report.substr(0, start.size()), start);
    EXPECT_NE(report.find("STAT | final conflict #         = 0\n" + PLACE_TIME), std::string::npos) << report;
}

INSTANTIATE_TEST_SUITE_P(RunPlacer, Method, testing::Values("0", "1", "2", "3", "4", "5", "-1", "greedy"));

TEST(RunPlacer, TimesHaveThreeDigitsBetweenAnEmptyLineAndAnother)
{
    const DesignFiles files;
    test::CommandLine line(wordsFor(files));
    const std::string report = test::reportOf([&] { vireloce::runPlacer(line.argc(), line.argv()); });
    const std::string form =
        "[^]*\n\nSTAT \\| LUT CPU time             = [0-9]+\\.[0-9]{3} s\n\nSTAT \\| final HPWL[^]*"
        "[0-9]\n\nSTAT \\| Virelocer CPU time       = [0-9]+\\.[0-9]{3} s\n\n";
    EXPECT_TRUE(test::isMatch(report, form)) << report;
}

TEST(RunPlacer, DesignWithoutAnythingRunsToTheEnd)
{
    const DesignFiles files;
    files.write("d.cells", "0");
    files.write("d.place", "");
    files.write("d.pins", "");
    files.write("d.netlist", "");
    const std::string report = run(wordsFor(files));
    EXPECT_NE(report.find("STAT | max site # on rows       = -2147483648\n"
                          "STAT | max componnet # on rows  = -2147483648\n"
                          "STAT | init HPWL                = 0\n"
                          "STAT | stitch # lowerB          = 0\n" +
                          SET_UP_TIME + "STAT | final HPWL               = 0\n"),
              std::string::npos)
        << report;
    EXPECT_NE(report.find("STAT | final stitch   #         = 0\nSTAT | final conflict #         = 0\n" +
                          PLACE_TIME),
              std::string::npos)
        << report;
}

TEST(RunPlacer, TwoRunsInOneProcessGiveOneReport)
{
    const DesignFiles files;
    const std::string first = run(wordsFor(files, {"-algo", "0"}));
    EXPECT_EQ(run(wordsFor(files, {"-algo", "0"})), first);
}

// Options

TEST(RunPlacer, UnknownOptionShowsTheUsageAndReadsNothing)
{
    EXPECT_EQ(run({"-x", "1"}), BANNER + echoOf({"-x", "1"}) + "ERROR| can NOT parse: -x\n" + USAGE);
}

TEST(RunPlacer, OddNumberOfArgumentsShowsTheUsageForTheLastWord)
{
    EXPECT_EQ(run({"-M", "3", "-algo"}),
              BANNER + echoOf({"-M", "3", "-algo"}) + "ERROR| can NOT parse: -algo\n" + USAGE);
}

TEST(RunPlacer, OptionWordsMatchWhole)
{
    EXPECT_EQ(run({"-M8", "1"}), BANNER + echoOf({"-M8", "1"}) + "ERROR| can NOT parse: -M8\n" + USAGE);
    EXPECT_EQ(run({"-inlibx", "d"}),
              BANNER + echoOf({"-inlibx", "d"}) + "ERROR| can NOT parse: -inlibx\n" + USAGE);
}

TEST(RunPlacer, NoArgumentsReadTheDefaultDesign)
{
    EXPECT_EQ(run({}), BANNER + "STAT | Parameters: \n"
                                "ERROR| cannot open file sparc_exu_alu.cells\n"
                                "STAT | cell type #              = 0\n"
                                "STAT | LUTable item #           = 0\n"
                                "ERROR| cannot open file: sparc_exu_alu.place\n");
}

TEST(RunPlacer, EmptyDesignPathStaysEmpty)
{
    EXPECT_EQ(run({"-inlib", ""}), BANNER + "STAT | Parameters: -inlib  \n"
                                            "ERROR| cannot open file .cells\n"
                                            "STAT | cell type #              = 0\n"
                                            "STAT | LUTable item #           = 0\n"
                                            "ERROR| cannot open file: .place\n");
}

TEST(RunPlacer, TrailingDotOfTheDesignPathIsDropped)
{
    const DesignFiles files;
    const Words words{"-inlib", files.base() + ".", "-cellPath", files.lib()};
    const std::string start = BANNER + echoOf(words) + SET_UP;
    EXPECT_EQ(run(words).substr(0, start.size()), start);
}

TEST(RunPlacer, SiteWidthOptionCountsForTheLibraryAndTheRowStepForTheRest)
{
    const DesignFiles files;
    // Cells of 2 and 3 sites of 190 have 4 and 6 sites of 95, which do not fit side by side any more.
    const std::string wide = run(wordsFor(files, {"-algo", "0"}));
    const std::string narrow = run(wordsFor(files, {"-algo", "0", "-siteW", "95"}));
    EXPECT_NE(narrow.find("STAT | max site # on rows       = 10\n"), std::string::npos) << narrow;
    EXPECT_NE(wide.substr(wide.find("STAT | final")), narrow.substr(narrow.find("STAT | final")));
}

// Input that ends the run

TEST(RunPlacer, MissingCellListIsReportedAndTheRunGoesOn)
{
    const DesignFiles files;
    files.remove("d.cells");
    files.write("d.place", DesignFiles::rows());
    files.write("d.netlist", "0");
    const Words words = wordsFor(files);
    const std::string start = BANNER + echoOf(words) + "ERROR| cannot open file " + files.base() +
                              ".cells\nSTAT | cell type #              = 0\n";
    const std::string report = run(words);
    EXPECT_EQ(report.substr(0, start.size()), start);
    EXPECT_NE(report.find(PLACE_TIME), std::string::npos) << report;
}

const std::string LIBRARY_LINES = "STAT | cell type #              = 2\n"
                                  "STAT | LUTable item #           = 36\n";

TEST(RunPlacer, MissingColourFileEndsTheRun)
{
    const DesignFiles files;
    files.remove("lib/A.color");
    EXPECT_EQ(faultOf(files), "ERROR| cannot open file " + files.lib() + "/A.color\n");
}

TEST(RunPlacer, MissingDesignFileEndsTheRun)
{
    for (const std::string name : {"d.place", "d.pins", "d.netlist"}) {
        const DesignFiles files;
        files.remove(name);
        EXPECT_EQ(faultOf(files), LIBRARY_LINES + "ERROR| cannot open file: " + files.path(name) + "\n");
    }
}

TEST(RunPlacer, UnknownNetMemberEndsTheRun)
{
    const DesignFiles files;
    files.write("d.netlist", "1\n2 u0 u9\n");
    EXPECT_EQ(faultOf(files), LIBRARY_LINES + "WARNING| invalid compID and pinID, pname = u9\n");
}

TEST(RunPlacer, UnknownCellEndsTheRunAfterTheReaders)
{
    const DesignFiles files;
    files.write("d.cells", "1\nB\n");
    EXPECT_EQ(faultOf(files), "STAT | cell type #              = 1\n"
                              "STAT | LUTable item #           = 4\n"
                              "ERROR| component u0: its cell A is not in the library\n");
}

TEST(RunPlacer, DamagedPlacementFileEndsTheRunWithItsLine)
{
    const DesignFiles files;
    files.write("d.place", DesignFiles::rows() + "COMPONENTS 1 ;\n- u0 A + PLACED ( 0 0\n");
    EXPECT_EQ(faultOf(files),
              LIBRARY_LINES + "ERROR| " + files.base() + ".place:4: component record ends after 8 tokens\n");
}

TEST(RunPlacer, SiteWidthThatIsNotPositiveEndsTheRun)
{
    const DesignFiles files;
    EXPECT_EQ(faultOf(files, {"-siteW", "0"}), "ERROR| the site width is 0: -siteW must be positive\n");
}

TEST(RunPlacer, CellWithoutSolutionsEndsTheRunAfterTheStatisticsAndTheSetUpTime)
{
    const DesignFiles files;
    files.write("lib/B.color", "570 1900\n0\n0\n0\n");
    EXPECT_EQ(faultOf(files), "STAT | cell type #              = 2\n"
                              "STAT | LUTable item #           = 16\n"
                              "STAT | net #                    = 2\n"
                              "STAT | row #                    = 2\n"
                              "STAT | segment #                = 2\n"
                              "STAT | component #              = 3\n"
                              "STAT | macro #                  = 0\n"
                              "STAT | max solution # for cells = 2\n"
                              "STAT | max site # on rows       = 10\n"
                              "STAT | max componnet # on rows  = 2\n"
                              "STAT | init HPWL                = 5130\n"
                              "STAT | stitch # lowerB          = 2147483647\n" +
                                  SET_UP_TIME + "ERROR| component u1: its cell B has no colour solution\n");
}

TEST(RunPlacer, UnusedCellWithoutSolutionsDoesNotMatter)
{
    const DesignFiles files;
    files.write("d.cells", "3\nA\nB\nC\n");
    files.write("lib/C.color", "190 1900\n0\n0\n0\n");
    for (const char* algo : {"0", "1", "2", "3", "4", "-1"}) {
        const std::string report = run(wordsFor(files, {"-algo", algo}));
        EXPECT_NE(report.find("STAT | cell type #              = 3\n"), std::string::npos) << report;
        EXPECT_NE(report.find(PLACE_TIME), std::string::npos) << report;
    }
}

TEST(RunPlacer, ComponentsInNoSegmentAreLeftOutOfTheRun)
{
    const DesignFiles files;
    files.write("d.place", DesignFiles::components() + "ROW r core 0 9500 N DO 10 BY 1 STEP 190 0 ;\n");
    for (const char* algo : {"0", "1", "2", "3", "4", "-1"}) {
        const std::string report = run(wordsFor(files, {"-algo", algo}));
        EXPECT_NE(report.find("WARNING| cannot assign component: u2(A)| (380, 1900) \n"), std::string::npos);
        EXPECT_NE(report.find("STAT | final stitch   #         = 0\n"), std::string::npos) << report;
        EXPECT_NE(report.find(PLACE_TIME), std::string::npos) << report;
    }
}

} // namespace
