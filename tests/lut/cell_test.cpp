// SPDX-License-Identifier: BSD-3-Clause
#include "lut/cell.h"

#include <gtest/gtest.h>

#include "lut/cells.h"
#include "support/extremes.h"
#include "support/guards.h"

namespace {

using test::boxesOf;
using test::Corners;
using test::cornersOf;
using test::LARGEST;
using test::makeCell;
using test::ShapeList;
using test::SMALLEST;

class CellTest : public testing::Test {
    test::ParameterGuard m_parameters;
};

TEST_F(CellTest, NewCellIsEmptyAndItsBoxWaitsForTheFirstRectangle)
{
    const Cell cell(380, 1400);
    EXPECT_EQ(cell.width, 380);
    EXPECT_EQ(cell.height, 1400);
    EXPECT_EQ(cell.siteWidth, 2);
    EXPECT_EQ(cell.name, "");
    EXPECT_EQ(cell.outlineYl, LARGEST);
    EXPECT_EQ(cell.outlineYh, SMALLEST);
    EXPECT_EQ(cell.outlineXl, LARGEST);
    EXPECT_EQ(cell.outlineXh, SMALLEST);
    EXPECT_TRUE(cell.headerBoxes.empty());
    EXPECT_TRUE(cell.shapes.empty());
    EXPECT_TRUE(cell.colors.empty());
    EXPECT_TRUE(cell.stitchNums.empty());
}

TEST_F(CellTest, BoxValuesStandInTheOrderBottomTopLeftRight)
{
    const Cell cell(190, 1400);
    EXPECT_EQ(&cell.outlineYh, &cell.outlineYl + 1);
    EXPECT_EQ(&cell.outlineXl, &cell.outlineYh + 1);
    EXPECT_EQ(&cell.outlineXh, &cell.outlineXl + 1);
}

TEST_F(CellTest, MembersStandInTheirOrder)
{
    const Cell cell(190, 1400);
    const std::vector<const void*> members{
        &cell.id,        &cell.width,     &cell.height,    &cell.siteWidth, &cell.name,
        &cell.outlineYl, &cell.outlineYh, &cell.outlineXl, &cell.outlineXh, &cell.headerBoxes,
        &cell.shapes,    &cell.colors,    &cell.stitchNums};
    EXPECT_TRUE(std::is_sorted(members.begin(), members.end()));
}

struct WidthCase {
    const char* name;
    int32_t width;
    int32_t siteWidth;
    int32_t want;
};

void PrintTo(const WidthCase& row, std::ostream* out)
{
    *out << row.name;
}

class CellSiteWidth : public testing::TestWithParam<WidthCase> {
    test::ParameterGuard m_parameters;
};

TEST_P(CellSiteWidth, IsTheWidthInSitesOfTheSiteWidthAsItIsNowOrIsGiven)
{
    SITE_WIDTH = GetParam().siteWidth;
    const Cell cell(GetParam().width, 1400);
    EXPECT_EQ(cell.siteWidth, GetParam().want);
    SITE_WIDTH = 1;
    EXPECT_EQ(Cell(GetParam().width, 1400, GetParam().siteWidth).siteWidth, GetParam().want);
    EXPECT_EQ(cell.siteWidth, GetParam().want);
}

const WidthCase WIDTHS[] = {{"width_190_of_190_is_one_site", 190, 190, 1},
                            {"width_191_of_190_is_two_sites", 191, 190, 2},
                            {"width_1_is_one_site", 1, 190, 1},
                            {"width_0_is_no_site", 0, 190, 0},
                            {"width_379_of_380_is_one_site", 379, 380, 1},
                            {"width_381_of_380_is_two_sites", 381, 380, 2},
                            {"width_1900_of_190_is_ten_sites", 1900, 190, 10}};
INSTANTIATE_TEST_SUITE_P(Width, CellSiteWidth, testing::ValuesIn(WIDTHS),
                         [](const auto& row) { return row.param.name; });

using Normalize = CellTest;

TEST_F(Normalize, ShapesAndHeaderBoxesMoveSoThatTheLowerLeftExtentIsTheOrigin)
{
    Cell cell(380, 1400);
    cell.headerBoxes = boxesOf({{100, 200, 480, 1600}, {-7, -8, 0, 0}});
    cell.shapes = {
        boxesOf({{150, 260, 170, 300}, {150, 300, 400, 320}}), {}, boxesOf({{200, 250, 210, 900}})};
    cell.outlineXl = 150;
    cell.outlineXh = 400;
    cell.outlineYl = 250;
    cell.outlineYh = 900;
    cell.normalize();
    EXPECT_EQ(cornersOf(cell.headerBoxes),
              (std::vector<Corners>{{-50, -50, 330, 1350}, {-157, -258, -150, -250}}));
    EXPECT_EQ(cornersOf(cell.shapes),
              (ShapeList{{{0, 10, 20, 50}, {0, 50, 250, 70}}, {}, {{50, 0, 60, 650}}}));
}

TEST_F(Normalize, BoxBecomesTheOutlineOfTheFileNotTheExtentOfTheShapes)
{
    Cell cell(380, 1400);
    cell.shapes = {boxesOf({{150, 260, 170, 300}})};
    cell.outlineXl = 150;
    cell.outlineXh = 170;
    cell.outlineYl = 260;
    cell.outlineYh = 300;
    cell.normalize();
    EXPECT_EQ(cell.outlineYl, 0);
    EXPECT_EQ(cell.outlineYh, 1400);
    EXPECT_EQ(cell.outlineXl, 0);
    EXPECT_EQ(cell.outlineXh, 380);
}

TEST_F(Normalize, WithoutShapesHeaderBoxesMoveByTheUnsetExtent)
{
    Cell cell(380, 1400);
    cell.headerBoxes = boxesOf({{0, 0, 380, 1400}, {-5, -3, 5, 4}});
    cell.normalize();
    // 0 - 2147483647 is -2147483647; -5 - 2147483647 wraps around to 2147483644 and is swapped with 5's.
    EXPECT_EQ(cornersOf(cell.headerBoxes),
              (std::vector<Corners>{{-2147483647, -2147483647, -2147483267, -2147482247},
                                    {-2147483642, -2147483643, 2147483644, 2147483646}}));
    EXPECT_EQ(cell.outlineXh, 380);
}

TEST_F(Normalize, SidesThatWrapAroundOutOfOrderAreSwapped)
{
    Cell cell(100, 100);
    cell.shapes = {boxesOf({{-10, 0, 0, 1}}), boxesOf({{0, 0, LARGEST, 1}})};
    cell.outlineXl = -10;
    cell.outlineYl = 0;
    cell.normalize();
    EXPECT_EQ(cornersOf(cell.shapes), (ShapeList{{{0, 0, 10, 1}}, {{SMALLEST + 9, 0, 10, 1}}}));
}

struct RailCase {
    const char* name;
    std::vector<Corners> shape; ///< in a cell of 400 by 1400
    int32_t mask;
    int want;
};

void PrintTo(const RailCase& row, std::ostream* out)
{
    *out << row.name;
}

class IsVDDGND : public testing::TestWithParam<RailCase> {
    test::ParameterGuard m_parameters;
};

TEST_P(IsVDDGND, IsMask0AtTheBottomOrTheTopEdge)
{
    const auto cell =
        makeCell(400, 1400, {{{10, 700, 20, 710}}, GetParam().shape}, {{0, 1}, {1, GetParam().mask}});
    EXPECT_EQ(cell->isVDDGND(/*shape=*/1, /*solution=*/1), GetParam().want);
}

const RailCase RAILS[] = {
    {"touches_the_bottom", {{0, 0, 400, 70}}, 0, 1},
    {"touches_the_top", {{0, 1330, 400, 1400}}, 0, 1},
    {"sticks_out_below", {{0, -70, 400, 70}}, 0, 1},
    {"sticks_out_above", {{0, 1330, 400, 1470}}, 0, 1},
    {"lies_below_the_cell", {{0, -70, 400, -10}}, 0, 1},
    {"one_above_the_bottom_is_none", {{0, 1, 400, 1399}}, 0, 0},
    {"one_rectangle_is_enough", {{10, 100, 20, 200}, {10, 200, 20, 1400}}, 0, 1},
    {"no_rectangle_touches", {{10, 100, 20, 200}, {10, 200, 20, 300}}, 0, 0},
    {"without_rectangles_is_none", {}, 0, 0},
    {"mask_1_at_the_bottom_is_none", {{0, 0, 400, 70}}, 1, 0},
    {"mask_2_at_the_top_is_none", {{0, 1330, 400, 1400}}, 2, 0},
    {"mask_3_at_the_top_is_none", {{0, 1330, 400, 1400}}, 3, 0},
    {"negative_mask_at_the_top_is_none", {{0, 1330, 400, 1400}}, -1, 0},
};
INSTANTIATE_TEST_SUITE_P(Shape, IsVDDGND, testing::ValuesIn(RAILS),
                         [](const auto& row) { return row.param.name; });

TEST_F(CellTest, ShapeIsARailOnlyInSolutionsThatGiveItMask0)
{
    const auto cell = makeCell(400, 1400, {{{0, 0, 400, 70}}}, {{0}, {1}, {0}});
    EXPECT_EQ(cell->isVDDGND(0, 0), 1);
    EXPECT_EQ(cell->isVDDGND(0, 1), 0);
    EXPECT_EQ(cell->isVDDGND(0, 2), 1);
}

TEST_F(CellTest, StitchesOfASolutionThatIsNotThereAreNone)
{
    Cell cell(190, 1400);
    EXPECT_EQ(cell.stitchesOf(0), 0);
    cell.stitchNums = {4, 0, 7};
    EXPECT_EQ(cell.stitchesOf(0), 4);
    EXPECT_EQ(cell.stitchesOf(1), 0);
    EXPECT_EQ(cell.stitchesOf(2), 7);
    EXPECT_EQ(cell.stitchesOf(3), 0);
    EXPECT_EQ(cell.stitchesOf(-1), 0);
    EXPECT_EQ(cell.stitchesOf(SMALLEST), 0);
}

} // namespace
