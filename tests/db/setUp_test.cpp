// SPDX-License-Identifier: BSD-3-Clause
// The set-up as a whole, and its smaller steps.
#include <gtest/gtest.h>

#include <string>

#include "app/parameters.h"
#include "db/designFiles.h"
#include "support/extremes.h"
#include "support/tinyDesign.h"

namespace {

using test::DesignFiles;
using test::LARGEST;
using test::SMALLEST;
using test::TinyDesign;

/// Gives a design rows at some heights, each with its own site step.
void addRows(Design& design, const std::vector<std::pair<int, int>>& yAndStep)
{
    for (const auto& [y, step] : yAndStep) {
        auto* row = new Row;
        row->y = y;
        row->step = step;
        design.rows.push_back(row);
    }
}

// resizeCell()

TEST(ResizeCell, WithASingleRowChangesNothing)
{
    TinyDesign t;
    t.addCell(2, {0});
    SITE_WIDTH = 200;
    addRows(t.design, {{500, 100}});
    t.design.resizeCell();
    EXPECT_EQ(SITE_WIDTH, 200);
    EXPECT_EQ(SITE_HEIGHT, 1900);
    EXPECT_EQ(t.design.lut.cells[0]->width, 380);
    EXPECT_EQ(t.design.lut.cells[0]->height, 1900);
}

TEST(ResizeCell, WithoutRowsChangesNothing)
{
    TinyDesign t;
    t.addCell(2, {0});
    t.design.resizeCell();
    EXPECT_EQ(SITE_WIDTH, 190);
    EXPECT_EQ(SITE_HEIGHT, 1900);
    EXPECT_EQ(t.design.lut.cells[0]->width, 380);
}

struct HeightCase {
    const char* name;
    std::vector<int> y; ///< of the rows, file order
    int want;
};

void PrintTo(const HeightCase& row, std::ostream* out)
{
    *out << testing::PrintToString(row.y);
}

class SiteHeight : public testing::TestWithParam<HeightCase> {};

TEST_P(SiteHeight, IsTheSmallestDistanceToTheFirstRow)
{
    TinyDesign t;
    t.addCell(2, {0});
    for (const int y : GetParam().y) {
        addRows(t.design, {{y, 190}});
    }
    t.design.resizeCell();
    EXPECT_EQ(SITE_HEIGHT, GetParam().want);
    EXPECT_EQ(t.design.lut.cells[0]->height, GetParam().want);
}

const HeightCase HEIGHT_CASES[] = {
    {"Ascending", {0, 1900, 3800}, 1900},
    {"FirstRowOnTop", {3800, 0, 1900}, 1900},
    {"FirstRowInTheMiddle", {1900, 3800, 100}, 1800},
    {"NotToTheNeighbour", {0, 3800, 5700}, 3800},
    {"SecondRowAtTheSameY", {1900, 1900, 0}, 0},
    {"LaterRowAtTheSameY", {0, 1900, 0}, 0},
    {"NegativeY", {-1900, -5700}, 3800},
};

INSTANTIATE_TEST_SUITE_P(ResizeCell, SiteHeight, testing::ValuesIn(HEIGHT_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ResizeCell, SiteWidthIsTheFirstRowsStep)
{
    TinyDesign t;
    SITE_WIDTH = 300;
    addRows(t.design, {{0, 200}, {1900, 190}});
    t.design.resizeCell();
    EXPECT_EQ(SITE_WIDTH, 200);
}

TEST(ResizeCell, CellWidth400AtStep200Becomes421)
{
    TinyDesign t;
    t.design.lut.cells.push_back(new Cell(400, 1400));
    addRows(t.design, {{0, 200}, {1800, 200}});
    t.design.resizeCell();
    EXPECT_EQ(t.design.lut.cells[0]->width, 421);
    EXPECT_EQ(t.design.lut.cells[0]->height, 1800);
}

TEST(ResizeCell, ScalesByTheLibrarysSiteWhateverTheOptionSays)
{
    TinyDesign t;
    SITE_WIDTH = 95;
    t.design.lut.cells.push_back(new Cell(380, 1400));
    addRows(t.design, {{0, 380}, {2800, 380}});
    t.design.resizeCell();
    EXPECT_EQ(t.design.lut.cells[0]->width, 760);
}

TEST(ResizeCell, ProductIsOf32BitsAndItsQuotientIsTruncatedTowardZero)
{
    TinyDesign t;
    t.design.lut.cells.push_back(new Cell(20'000'000, 1400));
    t.design.lut.cells.push_back(new Cell(-3, 1400));
    addRows(t.design, {{0, 200}, {1900, 200}});
    t.design.resizeCell();
    EXPECT_EQ(t.design.lut.cells[0]->width, (4'000'000'000 - 4'294'967'296) / 190);
    EXPECT_EQ(t.design.lut.cells[1]->width, -3);
}

TEST(ResizeCell, KeepsTheWidthInSites)
{
    TinyDesign t;
    t.addCell(2, {0});
    addRows(t.design, {{0, 95}, {1900, 95}});
    t.design.resizeCell();
    EXPECT_EQ(t.design.lut.cells[0]->width, 190);
    EXPECT_EQ(t.design.lut.cells[0]->siteWidth, 2);
}

// initDesignBound(), initNetInComp(), getMaxSiteNum(), getMaxCompNum()

TEST(InitDesignBound, CoversAllSegments)
{
    TinyDesign t;
    t.design.boundXl = t.design.boundYl = -999999;
    t.design.boundXh = t.design.boundYh = 999999;
    t.addSegment(380, 1900, 3);
    t.addSegment(-190, 3800, 1);
    t.addSegment(570, -1900, 10);
    t.design.initDesignBound();
    EXPECT_EQ(t.design.boundXl, -190);
    EXPECT_EQ(t.design.boundXh, 570 + 1900);
    EXPECT_EQ(t.design.boundYl, -1900);
    EXPECT_EQ(t.design.boundYh, 3800 + 1900);
}

TEST(InitDesignBound, SegmentOfNoSitesCounts)
{
    TinyDesign t;
    t.addSegment(0, 0, 1);
    t.addSegment(5000, 0, 0);
    t.design.initDesignBound();
    EXPECT_EQ(t.design.boundXh, 5000);
}

TEST(InitDesignBound, WithoutSegmentsStaysInsideOut)
{
    Design design;
    design.initDesignBound();
    EXPECT_EQ(design.boundXl, LARGEST);
    EXPECT_EQ(design.boundYl, LARGEST);
    EXPECT_EQ(design.boundXh, SMALLEST);
    EXPECT_EQ(design.boundYh, SMALLEST);
}

TEST(InitNetInComp, LinksEveryMembershipInNetOrder)
{
    TinyDesign t;
    const int cell = t.addCell(1, {0});
    Component* u = t.addComponent(nullptr, cell, 0);
    Component* v = t.addComponent(nullptr, cell, 0);
    Component* alone = t.addComponent(nullptr, cell, 0);
    Net* first = t.addNet({u, v});
    Net* second = t.addNet({v, u, v});
    u->nets.clear();
    v->nets.clear();
    t.design.initNetInComp();
    EXPECT_EQ(u->nets, (std::vector<Net*>{first, second}));
    EXPECT_EQ(v->nets, (std::vector<Net*>{first, second, second})) << "twice in a net, twice the net";
    EXPECT_TRUE(alone->nets.empty());
}

TEST(GetMax, AreTheLargestOverAllSegments)
{
    TinyDesign t;
    const int cell = t.addCell(1, {0});
    Segment* a = t.addSegment(0, 0, 7);
    Segment* b = t.addSegment(0, 1900, 12);
    t.addSegment(0, 3800, 3);
    t.addComponent(a, cell, 0);
    t.addComponent(a, cell, 1);
    t.addComponent(b, cell, 0);
    EXPECT_EQ(t.design.getMaxSiteNum(), 12);
    EXPECT_EQ(t.design.getMaxCompNum(), 2);
}

TEST(GetMax, WithoutSegmentsAreTheSmallestInteger)
{
    Design design;
    EXPECT_EQ(design.getMaxSiteNum(), SMALLEST);
    EXPECT_EQ(design.getMaxCompNum(), SMALLEST);
}

// initAll()

/// Runs the set-up of some files; a failure if that ends the run.
std::string setUp(const DesignFiles& files, Design& design)
{
    files.bind(design);
    return test::reportOf([&] { design.initAll(); });
}

/// Runs the set-up of some files, which must end the run.
std::string setUpFault(const DesignFiles& files)
{
    Design design;
    files.bind(design);
    return test::reportOfEndedRun([&] { design.initAll(); });
}

const std::string LIBRARY_LINES = "STAT | cell type #              = 2\n"
                                  "STAT | LUTable item #           = 36\n";

TEST(InitAll, PrintsTheLibraryAndTheTenStatistics)
{
    const DesignFiles files;
    Design design;
    EXPECT_EQ(setUp(files, design), LIBRARY_LINES + "STAT | net #                    = 2\n"
                                                    "STAT | row #                    = 2\n"
                                                    "STAT | segment #                = 2\n"
                                                    "STAT | component #              = 3\n"
                                                    "STAT | macro #                  = 0\n"
                                                    "STAT | max solution # for cells = 2\n"
                                                    "STAT | max site # on rows       = 10\n"
                                                    "STAT | max componnet # on rows  = 2\n"
                                                    "STAT | init HPWL                = 5130\n"
                                                    "STAT | stitch # lowerB          = 2\n");
    EXPECT_EQ(design.initHPWL, 5130);
    EXPECT_EQ(LDP_K, 2);
}

TEST(InitAll, LeavesEveryComponentInOneSortedSegmentWithItsNets)
{
    const DesignFiles files;
    Design design;
    setUp(files, design);
    const auto& u = design.components;
    EXPECT_EQ(design.segments.at(0)->components, (std::list<Component*>{u[0], u[1]}));
    EXPECT_EQ(design.segments.at(1)->components, (std::list<Component*>{u[2]}));
    EXPECT_EQ(u[0]->siteX, 0);
    EXPECT_EQ(u[1]->siteX, 5);
    EXPECT_EQ(u[2]->siteX, 2);
    EXPECT_EQ(u[0]->nets, (std::vector<Net*>{design.nets[0]}));
    EXPECT_EQ(u[1]->nets, (std::vector<Net*>{design.nets[0], design.nets[1]}));
}

TEST(InitAll, CountsMacrosAndTheSegmentsAroundThem)
{
    const DesignFiles files;
    files.write("d.place", DesignFiles::rows() +
                               "BIGNODES 1 ;\n- m + FIXED ( 1520 0 ) N 190 1900 SIZE ;\n  + WEIGHT 1 ;\n" +
                               DesignFiles::components());
    Design design;
    const std::string report = setUp(files, design);
    EXPECT_NE(report.find("STAT | segment #                = 3\n"), std::string::npos) << report;
    EXPECT_NE(report.find("STAT | macro #                  = 1\n"), std::string::npos) << report;
}

TEST(InitAll, RecomputesTheBoundFromTheSegments)
{
    const DesignFiles files;
    const std::string value = " DESIGN BOX REAL 77 ;\n";
    files.write("d.place", "PROPERTYDEFINITIONS\n;\n" + value + value + value + value + DesignFiles::rows() +
                               DesignFiles::components());
    Design design;
    setUp(files, design);
    EXPECT_EQ(design.boundXl, 0);
    EXPECT_EQ(design.boundXh, 1900);
    EXPECT_EQ(design.boundYl, 0);
    EXPECT_EQ(design.boundYh, 3800);
}

TEST(InitAll, SiteWidthOfTheOptionCountsWhileTheLibraryIsReadAndTheRowsAfterwards)
{
    const DesignFiles files;
    files.write("lib/A.color", "381 1900\n0\n0\n2\n1\n0\n");
    Design design;
    SITE_WIDTH = 200;
    setUp(files, design);
    EXPECT_EQ(design.lut.cells[0]->siteWidth, 2) << "3 sites of 190";
    EXPECT_EQ(design.lut.cells[0]->width, 381);
    EXPECT_EQ(SITE_WIDTH, 190);
    EXPECT_EQ(design.segments[0]->numSites, 10);
}

TEST(InitAll, ColouringDistanceOfTheOptionCountsInTheTable)
{
    const DesignFiles files;
    // A shape in the middle, 50 from either side, and one in the corner, which keeps the other in its place
    // when the cell is normalised.
    files.write("lib/A.color", "380 1900\n0\n2\n1\n0 0 1 1\n1\n50 800 330 900\n1\n0 3 0\n");
    const auto entry = [&](int32_t distance) {
        Design design;
        MINDPLDIST = distance;
        setUp(files, design);
        return design.lut.distTable[0][0][0][0];
    };
    EXPECT_EQ(entry(100), 0) << "the shapes are 100 apart";
    EXPECT_EQ(entry(101), 1);
}

TEST(InitAll, TrailingSlashesOfTheCellPathAreStripped)
{
    const DesignFiles files;
    Design design;
    files.bind(design);
    design.cellPath += "//";
    test::reportOf([&] { design.initAll(); });
    EXPECT_EQ(design.lut.cellPath, files.lib());
    EXPECT_EQ(design.cellPath, files.lib() + "//");
}

TEST(InitAll, LargestSolutionCountIsThatOfAnyCellEvenUnused)
{
    const DesignFiles files;
    files.write("d.cells", "3\nA\nC\nB\n");
    files.write("lib/C.color", "190 1900 0 0 4 9 9 9 9");
    Design design;
    setUp(files, design);
    EXPECT_EQ(LDP_K, 4);
}

TEST(InitAll, WithoutCellsTheLargestSolutionCountIsMinusOne)
{
    const DesignFiles files;
    files.write("d.cells", "0\n");
    files.write("d.place", DesignFiles::rows());
    files.write("d.netlist", "0\n");
    Design design;
    const std::string report = setUp(files, design);
    EXPECT_EQ(LDP_K, -1);
    EXPECT_NE(report.find("STAT | max solution # for cells = -1\n"), std::string::npos) << report;
}

TEST(InitAll, WithoutSegmentsTheTwoMaximumLinesAreTheSmallestInteger)
{
    const DesignFiles files;
    files.write("d.place", "DESIGN d ;\n");
    files.write("d.netlist", "0\n");
    Design design;
    EXPECT_EQ(setUp(files, design), LIBRARY_LINES + "STAT | net #                    = 0\n"
                                                    "STAT | row #                    = 0\n"
                                                    "STAT | segment #                = 0\n"
                                                    "STAT | component #              = 0\n"
                                                    "STAT | macro #                  = 0\n"
                                                    "STAT | max solution # for cells = 2\n"
                                                    "STAT | max site # on rows       = -2147483648\n"
                                                    "STAT | max componnet # on rows  = -2147483648\n"
                                                    "STAT | init HPWL                = 0\n"
                                                    "STAT | stitch # lowerB          = 0\n");
}

TEST(InitAll, MissingCellListGetsAnErrorLineAndTheRunGoesOn)
{
    const DesignFiles files;
    files.remove("d.cells");
    files.write("d.place", DesignFiles::rows());
    files.write("d.netlist", "0\n");
    Design design;
    const std::string report = setUp(files, design);
    const std::string want = "ERROR| cannot open file " + files.base() +
                             ".cells\n"
                             "STAT | cell type #              = 0\n"
                             "STAT | LUTable item #           = 0\n"
                             "STAT | net #                    = 0\n";
    EXPECT_EQ(report.substr(0, want.size()), want);
}

TEST(InitAll, MissingColourFileEndsTheRunAtOnce)
{
    const DesignFiles files;
    files.remove("lib/B.color");
    EXPECT_EQ(setUpFault(files), "ERROR| cannot open file " + files.lib() + "/B.color\n");
}

struct MissingCase {
    const char* name;
    std::vector<const char*> removed;
    const char* reported;
};

void PrintTo(const MissingCase& row, std::ostream* out)
{
    *out << testing::PrintToString(row.removed);
}

class MissingFile : public testing::TestWithParam<MissingCase> {};

TEST_P(MissingFile, EndsTheRunInTheOrderOfTheReaders)
{
    const DesignFiles files;
    for (const char* name : GetParam().removed) {
        files.remove(name);
    }
    EXPECT_EQ(setUpFault(files),
              LIBRARY_LINES + "ERROR| cannot open file: " + files.path(GetParam().reported) + "\n");
}

const MissingCase MISSING_CASES[] = {
    {"Placement", {"d.place"}, "d.place"},
    {"Pins", {"d.pins"}, "d.pins"},
    {"Netlist", {"d.netlist"}, "d.netlist"},
    {"PlacementBeforePins", {"d.place", "d.pins", "d.netlist"}, "d.place"},
    {"PinsBeforeNetlist", {"d.pins", "d.netlist"}, "d.pins"},
};

INSTANTIATE_TEST_SUITE_P(InitAll, MissingFile, testing::ValuesIn(MISSING_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(InitAll, UnknownCellEndsTheRunAfterTheReaders)
{
    const DesignFiles files;
    files.write("d.cells", "1\nA\n");
    const std::string want = "STAT | cell type #              = 1\nSTAT | LUTable item #           = 16\n";
    EXPECT_EQ(setUpFault(files), want + "ERROR| component u1: its cell B is not in the library\n");
    files.write("d.netlist", "1 2 u0 nobody");
    EXPECT_EQ(setUpFault(files), want + "WARNING| invalid compID and pinID, pname = nobody\n");
}

TEST(InitAll, CellWithoutSolutionsDoesNotEndTheSetUp)
{
    const DesignFiles files;
    files.write("lib/B.color", "570 1900 0 0 0");
    Design design;
    const std::string report = setUp(files, design);
    EXPECT_NE(report.find("STAT | stitch # lowerB          = 2147483647\n"), std::string::npos) << report;
}

TEST(InitAll, FirstComponentsThatOverlapNoSegmentAreReportedAndLeftOut)
{
    const DesignFiles files;
    files.write("d.place", DesignFiles::components() + "ROW r core 0 9500 N DO 10 BY 1 STEP 190 0 ;\n");
    Design design;
    const std::string report = setUp(files, design);
    const std::string want = LIBRARY_LINES + "WARNING| cannot assign component: u0(A)| (0, 0) \n"
                                             "WARNING| cannot assign component: u1(B)| (950, 0) \n"
                                             "WARNING| cannot assign component: u2(A)| (380, 1900) \n"
                                             "STAT | net # ";
    EXPECT_EQ(report.substr(0, want.size()), want);
    EXPECT_TRUE(design.segments.at(0)->components.empty());
}

// Site widths that nothing can be divided by.

const std::string NO_SITE_WIDTH =
    ": the first row's step, or -siteW with fewer than two rows, must be positive\n";

/// Rows with a site step, and no components.
std::string rowsOfStep(const std::string& step)
{
    return "ROW a core 0 0 N DO 10 BY 1 STEP " + step + " 0 ;\nROW b core 0 1900 N DO 10 BY 1 STEP 190 0 ;\n";
}

TEST(SiteWidth, FirstRowOfStepZeroEndsTheRunBeforeTheRowsAreCut)
{
    const DesignFiles files;
    files.write("d.place", rowsOfStep("0") + DesignFiles::components());
    EXPECT_EQ(setUpFault(files), LIBRARY_LINES + "ERROR| the site width is 0" + NO_SITE_WIDTH);
}

TEST(SiteWidth, FirstRowOfNegativeStepEndsTheRun)
{
    const DesignFiles files;
    files.write("d.place", rowsOfStep("-190") + DesignFiles::components());
    EXPECT_EQ(setUpFault(files), LIBRARY_LINES + "ERROR| the site width is -190" + NO_SITE_WIDTH);
}

TEST(SiteWidth, StepOfAnotherRowDoesNotMatter)
{
    const DesignFiles files;
    files.write("d.place",
                "ROW a core 0 0 N DO 10 BY 1 STEP 190 0 ;\nROW b core 0 1900 N DO 10 BY 1 STEP 0 0 ;\n" +
                    DesignFiles::components());
    Design design;
    setUp(files, design);
    EXPECT_EQ(SITE_WIDTH, 190);
}

TEST(SiteWidth, OptionOfZeroEndsTheRunAtTheFirstCell)
{
    const DesignFiles files;
    SITE_WIDTH = 0;
    EXPECT_EQ(setUpFault(files), "ERROR| the site width is 0: -siteW must be positive\n");
}

TEST(SiteWidth, NegativeOptionMakesCellsOfNegativeWidthAndEndsTheRun)
{
    const DesignFiles files;
    SITE_WIDTH = -190;
    EXPECT_EQ(setUpFault(files),
              "ERROR| " + files.lib() + "/A.color:1: the cell is 380 wide, -2 sites of -190\n");
}

TEST(SiteWidth, CellOfNegativeWidthEndsTheRun)
{
    const DesignFiles files;
    files.write("lib/A.color", "-380 1900\n0\n0\n2\n1\n0\n");
    EXPECT_EQ(setUpFault(files),
              "ERROR| " + files.lib() + "/A.color:1: the cell is -380 wide, -2 sites of 190\n");
}

TEST(SiteWidth, OptionOfZeroOrLessEndsTheRunWithFewerThanTwoRowsAndNoCells)
{
    const DesignFiles files;
    files.write("d.cells", "0");
    files.write("d.netlist", "0");
    for (const std::string rows : {"", "ROW a core 0 0 N DO 10 BY 1 STEP 190 0 ;\n"}) {
        for (const int width : {0, -1}) {
            files.write("d.place", rows);
            SITE_WIDTH = width;
            EXPECT_EQ(setUpFault(files), "STAT | cell type #              = 0\n"
                                         "STAT | LUTable item #           = 0\n"
                                         "ERROR| the site width is " +
                                             std::to_string(width) + NO_SITE_WIDTH);
        }
    }
}

TEST(SiteWidth, OptionOfZeroIsReplacedByTheRowsIfThereAreNoCells)
{
    const DesignFiles files;
    files.write("d.cells", "0");
    files.write("d.netlist", "0");
    files.write("d.place", DesignFiles::rows());
    SITE_WIDTH = 0;
    Design design;
    setUp(files, design);
    EXPECT_EQ(SITE_WIDTH, 190);
}

} // namespace
