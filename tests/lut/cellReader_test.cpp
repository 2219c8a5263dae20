// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <sstream>

#include "lut/cells.h"
#include "lut/library.h"
#include "support/property.h"

namespace {

using test::Corners;
using test::cornersOf;
using test::Library;
using test::reportOf;
using test::reportOfEndedRun;
using test::ShapeList;

/// A cell with a header box, two shapes and two solutions.
const char* const GOOD = "380 1400\n"
                         "1\n0 0 380 1400\n"
                         "2\n"
                         "2 20 30 40 60 50 60 90 100\n"
                         "1 200 25 210 900\n"
                         "2\n"
                         "3 0 1\n"
                         "0 2 2\n";

/// A cell without shapes and with one solution.
const char* const EMPTY_CELL = "190 1400 0 0 1 0";

TEST(ReadCell, TakesEveryFieldInTheOrderOfTheFile)
{
    Library library;
    library.addFile("NAND", GOOD);
    EXPECT_EQ(reportOf([&] { library.lut.readCell("NAND"); }), "");
    ASSERT_EQ(library.lut.cells.size(), 1U);
    const Cell& cell = *library.lut.cells[0];
    EXPECT_EQ(cell.id, 0);
    EXPECT_EQ(cell.name, "NAND");
    EXPECT_EQ(cell.width, 380);
    EXPECT_EQ(cell.height, 1400);
    EXPECT_EQ(cell.siteWidth, 2);
    EXPECT_EQ(cell.stitchNums, (std::vector<int32_t>{3, 0}));
    EXPECT_EQ(cell.colors, (std::vector<std::vector<int32_t>>{{0, 1}, {2, 2}}));
    EXPECT_EQ(cell.headerBoxes[0]->id, -1);
    EXPECT_EQ(cell.shapes[0][0]->id, -1);
}

TEST(ReadCell, ShapesLieRelativeToTheirLowerLeftExtentAndTheBoxIsTheOutline)
{
    Library library;
    library.addFile("NAND", GOOD);
    library.lut.readCell("NAND");
    const Cell& cell = *library.lut.cells[0];
    EXPECT_EQ(cornersOf(cell.shapes), (ShapeList{{{0, 5, 20, 35}, {30, 35, 70, 75}}, {{180, 0, 190, 875}}}));
    EXPECT_EQ(cornersOf(cell.headerBoxes), (std::vector<Corners>{{-20, -25, 360, 1375}}));
    EXPECT_EQ(&cell.outlineYl + 1, &cell.outlineYh);
    EXPECT_EQ(&cell.outlineXl + 1, &cell.outlineXh);
    EXPECT_EQ(cell.outlineYl, 0);
    EXPECT_EQ(cell.outlineYh, 1400);
    EXPECT_EQ(cell.outlineXl, 0);
    EXPECT_EQ(cell.outlineXh, 380);
}

TEST(ReadCell, HeaderBoxesDoNotWidenTheExtent)
{
    Library library;
    library.addFile("A", "190 1400  2 -500 -500 -400 -400 900 900 950 950  1 1 10 20 30 40  0");
    library.lut.readCell("A");
    EXPECT_EQ(cornersOf(library.lut.cells[0]->shapes), (ShapeList{{{0, 0, 20, 20}}}));
}

TEST(ReadCell, RectangleGivenFromTheUpperRightCornerIsStoredTheSame)
{
    Library library;
    library.addFile("A", "190 1400 1 1 2 3 4 2 1 10 20 30 40 2 0 0 5 5 50 60 70 80 0");
    library.addFile("B", "190 1400 1 3 4 1 2 2 1 30 40 10 20 2 5 5 0 0 50 80 70 60 0");
    library.lut.readCell("A");
    library.lut.readCell("B");
    EXPECT_EQ(cornersOf(library.lut.cells[0]->headerBoxes), cornersOf(library.lut.cells[1]->headerBoxes));
    EXPECT_EQ(cornersOf(library.lut.cells[0]->shapes), cornersOf(library.lut.cells[1]->shapes));
    EXPECT_EQ(cornersOf(*library.lut.cells[0]->shapes[1][1]), (Corners{50, 60, 70, 80}));
}

TEST(ReadCell, CellOfWidth191HasTwoSitesAndOneOf190HasOne)
{
    Library library;
    library.addFile("A", "191 1400 0 0 0");
    library.addFile("B", "190 1400 0 0 0");
    library.lut.readCell("A");
    library.lut.readCell("B");
    EXPECT_EQ(library.lut.cells[0]->siteWidth, 2);
    EXPECT_EQ(library.lut.cells[1]->siteWidth, 1);
}

TEST(ReadCell, SiteWidthOfTheOptionCounts)
{
    Library library;
    library.addFile("A", "191 1400 0 0 0");
    SITE_WIDTH = 100;
    library.lut.readCell("A");
    EXPECT_EQ(library.lut.cells[0]->siteWidth, 2);
    SITE_WIDTH = 1000;
    library.lut.readCell("A");
    EXPECT_EQ(library.lut.cells[1]->siteWidth, 1);
}

TEST(ReadCell, CellWithoutShapesHasItsHeaderBoxesMovedByTheUnsetExtent)
{
    Library library;
    library.addFile("A", "190 1400 1 0 0 190 1400 0 1 5");
    library.lut.readCell("A");
    const Cell& cell = *library.lut.cells[0];
    EXPECT_EQ(cornersOf(cell.headerBoxes),
              (std::vector<Corners>{{-2147483647, -2147483647, -2147483457, -2147482247}}));
    EXPECT_EQ(cell.outlineXh, 190);
    EXPECT_EQ(cell.outlineYh, 1400);
    EXPECT_EQ(cell.stitchNums, std::vector<int32_t>{5});
    EXPECT_EQ(cell.colors, std::vector<std::vector<int32_t>>(1));
}

TEST(ReadCell, ShapeMayHaveNoRectangles)
{
    Library library;
    library.addFile("A", "190 1400 0 2 0 1 5 5 10 10 1 0 1 2");
    library.lut.readCell("A");
    EXPECT_EQ(cornersOf(library.lut.cells[0]->shapes), (ShapeList{{}, {{0, 0, 5, 5}}}));
    EXPECT_EQ(library.lut.cells[0]->colors, (std::vector<std::vector<int32_t>>{{1, 2}}));
}

TEST(ReadCell, AnyWhiteSpaceSeparatesNumbers)
{
    Library library;
    library.addFile("A", "190\t1400\r\n\v0\f1 \n\n 1 0\n0\n5\n5\n1\n0\n1");
    library.lut.readCell("A");
    EXPECT_EQ(cornersOf(library.lut.cells[0]->shapes), (ShapeList{{{0, 0, 5, 5}}}));
}

TEST(ReadCell, TextBehindTheLastNumberIsNotRead)
{
    Library library;
    library.addFile("A", std::string(EMPTY_CELL) + " trailing -1 99999999999");
    EXPECT_EQ(reportOf([&] { library.lut.readCell("A"); }), "");
    EXPECT_EQ(library.lut.cells.size(), 1U);
}

TEST(ReadCell, MissingFileEndsTheRun)
{
    Library library;
    EXPECT_EQ(reportOfEndedRun([&] { library.lut.readCell("NONE"); }),
              "ERROR| cannot open file " + library.path("lib/NONE.color") + "\n");
    EXPECT_TRUE(library.lut.cells.empty());
    EXPECT_TRUE(library.lut.cellIndex.empty());
}

TEST(ReadCell, FileIsLookedForUnderTheCellPath)
{
    Library library;
    const test::TempDir other;
    other.write("X.color", EMPTY_CELL);
    library.addFile("X", "570 1400 0 0 0");
    library.lut.setCellPath(other.path("") + "//");
    library.lut.readCell("X");
    EXPECT_EQ(library.lut.cells[0]->width, 190);
}

TEST(ReadCell, NameListedTwiceIsAppendedTwiceAndMeansTheSecond)
{
    Library library;
    library.addFile("A", "190 1400 0 0 0");
    library.addFile("B", "380 1400 0 0 0");
    const std::string list = library.addList("3 A B A");
    EXPECT_EQ(reportOf([&] { library.lut.readCells(list); }), "STAT | cell type #              = 3\n");
    ASSERT_EQ(library.lut.cells.size(), 3U);
    EXPECT_EQ(library.lut.cells[0]->name, "A");
    EXPECT_EQ(library.lut.cells[2]->name, "A");
    EXPECT_NE(library.lut.cells[0], library.lut.cells[2]);
    for (int32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(library.lut.cells[static_cast<size_t>(i)]->id, i);
    }
    EXPECT_EQ(library.lut.getCellIndex("A"), 2);
    EXPECT_EQ(library.lut.getCellIndex("B"), 1);
    EXPECT_EQ(library.lut.cellIndex.size(), 2U);
}

TEST(GetCellIndex, UnknownNameIsMinusOne)
{
    Library library;
    EXPECT_EQ(library.lut.getCellIndex("A"), -1);
    EXPECT_EQ(library.lut.getCellIndex(""), -1);
    library.addFile("A", EMPTY_CELL);
    library.lut.readCell("A");
    EXPECT_EQ(library.lut.getCellIndex("A"), 0);
    EXPECT_EQ(library.lut.getCellIndex("a"), -1);
    EXPECT_EQ(library.lut.cellIndex.size(), 1U) << "a look-up adds nothing";
}

struct PathCase {
    const char* name;
    const char* given;
    const char* want;
};

void PrintTo(const PathCase& row, std::ostream* out)
{
    *out << row.name;
}

class SetCellPath : public testing::TestWithParam<PathCase> {};

TEST_P(SetCellPath, StripsEveryTrailingSlash)
{
    LUTable lut;
    lut.setCellPath(GetParam().given);
    EXPECT_EQ(lut.cellPath, GetParam().want);
}

const PathCase PATHS[] = {
    {"none", "lib", "lib"},      {"one", "lib/", "lib"},
    {"three", "lib///", "lib"},  {"inner_stay", "/a//b/", "/a//b"},
    {"nothing_else", "///", ""}, {"empty", "", ""},
    {"dot", "./", "."},
};
INSTANTIATE_TEST_SUITE_P(Slashes, SetCellPath, testing::ValuesIn(PATHS),
                         [](const auto& row) { return row.param.name; });

TEST(SetCellPath, SecondPathReplacesTheFirst)
{
    LUTable lut;
    lut.setCellPath("first");
    lut.setCellPath("second/");
    EXPECT_EQ(lut.cellPath, "second");
}

TEST(ReadCells, CountIsPrintedOnceAfterAllCells)
{
    Library library;
    library.addFile("A", EMPTY_CELL);
    library.addFile("B", EMPTY_CELL);
    const std::string list = library.addList("2\nA\nB\n");
    EXPECT_EQ(reportOf([&] { library.lut.readCells(list); }), "STAT | cell type #              = 2\n");
}

TEST(ReadCells, CountIsThatOfTheWholeLibrary)
{
    Library library;
    library.addFile("A", EMPTY_CELL);
    const std::string list = library.addList("1 A");
    reportOf([&] { library.lut.readCells(list); });
    EXPECT_EQ(reportOf([&] { library.lut.readCells(list); }), "STAT | cell type #              = 2\n");
}

TEST(ReadCells, MissingListPrintsAnErrorAndTheRunGoesOnWithoutCells)
{
    Library library;
    const std::string list = library.path("none.cells");
    EXPECT_EQ(reportOf([&] { library.lut.readCells(list); }),
              "ERROR| cannot open file " + list + "\nSTAT | cell type #              = 0\n");
    EXPECT_TRUE(library.lut.cells.empty());
    EXPECT_EQ(library.lut.getCellIndex("A"), -1);
}

TEST(ReadCells, CellFileThatIsMissingEndsTheRunBeforeTheCount)
{
    Library library;
    library.addFile("A", EMPTY_CELL);
    const std::string list = library.addList("2 A B");
    EXPECT_EQ(reportOfEndedRun([&] { library.lut.readCells(list); }),
              "ERROR| cannot open file " + library.path("lib/B.color") + "\n");
    EXPECT_EQ(library.lut.cells.size(), 1U);
}

TEST(ReadCells, NamesBeyondTheCountAreNotRead)
{
    Library library;
    library.addFile("A", EMPTY_CELL);
    const std::string list = library.addList("1 A MISSING");
    EXPECT_EQ(reportOf([&] { library.lut.readCells(list); }), "STAT | cell type #              = 1\n");
}

TEST(ReadCells, AnyWhiteSpaceSeparatesNames)
{
    Library library;
    library.addFile("A_1", EMPTY_CELL);
    library.addFile("B[0]", EMPTY_CELL);
    const std::string list = library.addList("\r\n 2\tA_1\r\n\n  B[0]\r\n");
    reportOf([&] { library.lut.readCells(list); });
    EXPECT_EQ(library.lut.getCellIndex("A_1"), 0);
    EXPECT_EQ(library.lut.getCellIndex("B[0]"), 1);
}

struct EmptyListCase {
    const char* name;
    const char* text;
};

void PrintTo(const EmptyListCase& row, std::ostream* out)
{
    *out << row.name;
}

class ReadCellsOfNone : public testing::TestWithParam<EmptyListCase> {};

TEST_P(ReadCellsOfNone, GoesOnWithoutCells)
{
    Library library;
    library.addFile("A", EMPTY_CELL);
    const std::string list = library.addList(GetParam().text);
    EXPECT_EQ(reportOf([&] { library.lut.readCells(list); }), "STAT | cell type #              = 0\n");
}

const EmptyListCase EMPTY_LISTS[] = {
    {"empty_file", ""},
    {"count_0", "0 A"},
    {"negative_count", "-1 A"},
    {"count_that_is_no_number", "A 1 A"},
};
INSTANTIATE_TEST_SUITE_P(List, ReadCellsOfNone, testing::ValuesIn(EMPTY_LISTS),
                         [](const auto& row) { return row.param.name; });

TEST(ReadCells, ListThatEndsEarlyEndsTheRun)
{
    Library library;
    library.addFile("A", EMPTY_CELL);
    const std::string list = library.addList("3\nA\n\n");
    EXPECT_EQ(reportOfEndedRun([&] { library.lut.readCells(list); }),
              "ERROR| " + list + ":4: the list ends before cell 2 of 3\n");
}

TEST(ReadCells, CountFarLargerThanTheListEndsTheRun)
{
    Library library;
    library.addFile("A", EMPTY_CELL);
    const std::string list = library.addList("2147483647 A");
    EXPECT_EQ(reportOfEndedRun([&] { library.lut.readCells(list); }),
              "ERROR| " + list + ":1: the list ends before cell 2 of 2147483647\n");
}

/// Writes a cell as its file would be, after moving everything by (dx, dy).
std::string colorText(const Cell& cell, int32_t dx, int32_t dy)
{
    std::ostringstream out;
    const auto boxes = [&](const std::vector<qBox*>& list) {
        out << list.size() << '\n';
        for (const qBox* box : list) {
            out << box->xl + dx << ' ' << box->yh + dy << ' ' << box->xh + dx << ' ' << box->yl + dy << '\n';
        }
    };
    out << cell.width << ' ' << cell.height << '\n';
    boxes(cell.headerBoxes);
    out << cell.shapes.size() << '\n';
    for (const std::vector<qBox*>& shape : cell.shapes) {
        boxes(shape);
    }
    out << cell.colors.size() << '\n';
    for (size_t s = 0; s < cell.colors.size(); ++s) {
        out << cell.stitchNums[s];
        for (const int32_t mask : cell.colors[s]) {
            out << ' ' << mask;
        }
        out << '\n';
    }
    return out.str();
}

PROPERTY(ReadCell, GivesBackWhatWasWrittenWhereverTheShapesStand)
{
    const auto coordinate = [] { return test::draw(0, 500); };
    const auto corners = [&coordinate] {
        return Corners{coordinate(), coordinate(), coordinate(), coordinate()};
    };
    const auto shapeCount = test::draw(0, 5);
    // One rectangle at the origin, so that the shapes already stand at their lower-left extent.
    ShapeList shapes{{{0, 0, 1, 1}}};
    for (int i = 0; i < shapeCount; ++i) {
        shapes.emplace_back();
        for (int r = test::draw(0, 4); r > 0; --r) {
            shapes.back().push_back(corners());
        }
    }
    test::MaskList colors(test::draw<size_t>(0, 4), std::vector<int32_t>(shapes.size()));
    for (std::vector<int32_t>& masks : colors) {
        std::generate(masks.begin(), masks.end(), [] { return test::draw(-1, 5); });
    }
    const auto written = test::makeCell(test::draw(0, 2000), coordinate(), shapes, colors);
    written->headerBoxes = test::boxesOf({corners(), corners()});
    for (int32_t& stitches : written->stitchNums) {
        stitches = test::draw(0, 9);
    }

    Library library;
    library.addFile("X", colorText(*written, test::draw(-900, 900), test::draw(-900, 900)));
    RC_ASSERT(reportOf([&] { library.lut.readCell("X"); }) == "");
    const Cell& cell = *library.lut.cells.at(0);
    RC_ASSERT(cell.width == written->width);
    RC_ASSERT(cell.height == written->height);
    RC_ASSERT(cornersOf(cell.headerBoxes) == cornersOf(written->headerBoxes));
    RC_ASSERT(cornersOf(cell.shapes) == cornersOf(written->shapes));
    RC_ASSERT(cell.colors == written->colors);
    RC_ASSERT(cell.stitchNums == written->stitchNums);
    RC_ASSERT(cell.outlineXh == written->width);
    RC_ASSERT(cell.outlineYh == written->height);
}

} // namespace
