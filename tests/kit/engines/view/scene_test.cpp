// SPDX-License-Identifier: BSD-3-Clause
// What is drawn: boxes, density, index, joints.
#include <gtest/gtest.h>

#include "kit/engines/view/density.h"
#include "kit/engines/view/html.h"
#include "kit/engines/view/scene.h"
#include "kit/engines/view/scenes.h"
#include "support/property.h"

namespace kit::view {

void PrintTo(const Box& box, std::ostream* out)
{
    *out << '(' << box.xl << ' ' << box.yl << ' ' << box.xh << ' ' << box.yh << ')';
}

} // namespace kit::view

namespace {

using namespace kit::view;
using kit::view::Cell; // and not the placer's
using test::smallScene;

TEST(ViewScene, BoundsTakeInRowsMacrosAndCellsWhereverTheyStood)
{
    Scene scene = smallScene();
    EXPECT_EQ(boundsOf(scene), (Box{0, 0, 1000, 800}));
    scene.cells[0].before = {-500, 0};
    scene.cells[1].place = {2000, 1200};
    scene.macros[0].box.yl = -100;
    EXPECT_EQ(boundsOf(scene), (Box{-500, -100, 2300, 1600}));
}

TEST(ViewScene, BoundsOfNothingAreOneSiteAndOneRow)
{
    Scene scene;
    scene.siteWidth = 100;
    scene.rowHeight = 400;
    EXPECT_EQ(boundsOf(scene), (Box{0, 0, 100, 400}));
}

TEST(ViewScene, ACellOfAnUnknownKindIsOneSiteWide)
{
    Scene scene = smallScene();
    EXPECT_EQ(widthOf(scene, scene.cells[1]), 300);
    scene.cells[1].kind = -1;
    EXPECT_EQ(widthOf(scene, scene.cells[1]), 100);
}

TEST(ViewScene, MetalTurnsWithItsCell)
{
    const Scene scene = smallScene();
    Cell cell{"u", 0, {1000, 400}, {}, 0};
    const Box box{10, 50, 30, 200};
    EXPECT_EQ(placed(scene, cell, box), (Box{1010, 450, 1030, 600}));
    cell.place.mirrored = true;
    EXPECT_EQ(placed(scene, cell, box), (Box{1170, 450, 1190, 600}));
    cell.place.flipped = true;
    EXPECT_EQ(placed(scene, cell, box), (Box{1170, 600, 1190, 750}));
}

TEST(ViewScene, StitchesAreThoseOfTheChosenSolutions)
{
    Scene scene = smallScene();
    EXPECT_EQ(countStitches(scene), 1);
    scene.cells[0].colouring = 1;
    EXPECT_EQ(countStitches(scene), 2);
    scene.cells[0].colouring = -1;
    scene.cells[2].kind = -1;
    EXPECT_EQ(countStitches(scene), 0);
}

TEST(ViewJoints, ShapesThatTouchHaveOne)
{
    const std::vector<Metal> metal{{{0, 0, 10, 10}, 0}, {{0, 10, 10, 20}, 1}, {{30, 0, 40, 10}, 2}};
    const std::vector<Joint> joints = findJoints(metal);
    ASSERT_EQ(joints.size(), 1U);
    EXPECT_EQ(joints[0].first, 0);
    EXPECT_EQ(joints[0].second, 1);
    EXPECT_EQ(joints[0].box, (Box{0, 10, 10, 10}));
}

TEST(ViewJoints, ACornerIsNone)
{
    EXPECT_TRUE(findJoints({{{0, 0, 10, 10}, 0}, {{10, 10, 20, 20}, 1}}).empty());
}

TEST(ViewJoints, RectanglesOfOneShapeHaveNone)
{
    EXPECT_TRUE(findJoints({{{0, 0, 10, 10}, 3}, {{0, 5, 10, 20}, 3}}).empty());
}

TEST(ViewJoints, OfTwoShapesTheLargestContactCounts)
{
    const std::vector<Joint> joints =
        findJoints({{{0, 0, 10, 10}, 1}, {{0, 10, 4, 20}, 0}, {{10, 0, 20, 9}, 0}, {{0, -5, 3, 0}, 0}});
    ASSERT_EQ(joints.size(), 1U);
    EXPECT_EQ(joints[0].box, (Box{10, 0, 10, 9}));
}

TEST(ViewJoints, AreStitchesWhereMasksDiffer)
{
    const Joint joint{0, 2, {}};
    EXPECT_FALSE(isStitch(joint, {0, {1, 0, 1}}));
    EXPECT_TRUE(isStitch(joint, {1, {1, 0, 2}}));
}

TEST(ViewDensity, IsTheCellsShareOfTheFreeStretches)
{
    const Density grid = densityOf(smallScene(), /*before=*/false);
    EXPECT_EQ(grid.side, 800); // two rows
    EXPECT_EQ(grid.columns, 2);
    EXPECT_EQ(grid.lines, 1);
    // Cells of 200, 300 and 200 in stretches of 800 and 800; nothing in the other 200.
    EXPECT_EQ(grid.shares, (std::vector<uint8_t>{44, 0}));
}

TEST(ViewDensity, KnowsWhereCellsStood)
{
    Scene scene = smallScene();
    scene.cells[1].before = {700, 0}; // 100 in the first bin, 200 in the second
    EXPECT_EQ(densityOf(scene, /*before=*/true).shares, (std::vector<uint8_t>{31, 100}));
}

TEST(ViewDensity, BinsWithoutRowsAreToldFromEmptyOnes)
{
    Scene scene = smallScene();
    scene.macros.push_back({"far", {2000, 0, 2400, 800}});
    scene.cells[2].place = {1700, 0}; // outside of all stretches
    const std::vector<uint8_t> shares = densityOf(scene, /*before=*/false).shares;
    EXPECT_EQ(shares, (std::vector<uint8_t>{31, 0, Density::MOST}));
    scene.cells[2].place = {0, 0};
    EXPECT_EQ(densityOf(scene, /*before=*/false).shares[2], Density::NO_ROWS);
}

PROPERTY(ViewDensity, HasFewBinsWhateverTheSize)
{
    Scene scene = smallScene();
    const int32_t width = test::draw(1, 1'000'000'000);
    const int32_t height = test::draw(1, 1'000'000'000);
    scene.rows.push_back({"r", {0, 0, width, height}});
    const Density grid = densityOf(scene, /*before=*/false);
    const int64_t bins = int64_t{grid.columns} * grid.lines;
    RC_ASSERT(static_cast<int64_t>(grid.shares.size()) == bins);
    RC_ASSERT(bins <= 25'000);
    RC_ASSERT(int64_t{grid.columns} * grid.side >= width);
    RC_ASSERT(int64_t{grid.lines} * grid.side >= height);
}

PROPERTY(ViewIndex, DealsEveryCellToItsStripeFromTheLeft)
{
    Scene scene = smallScene();
    const auto count = test::draw<size_t>(0, 60);
    scene.cells.clear();
    for (size_t i = 0; i < count; ++i) {
        const Place place{test::draw(-1000, 1000), test::draw(-3000, 3000)};
        scene.cells.push_back({"u", 0, place, {place.x + 7, place.y - 400}, -1});
    }
    for (const bool before : {false, true}) {
        const RowIndex index = indexRows(scene, before);
        RC_ASSERT(index.y == boundsOf(scene).yl);
        RC_ASSERT(index.begin.front() == 0);
        RC_ASSERT(index.begin.back() == static_cast<int32_t>(count));
        std::vector<int> seen(count, 0);
        for (size_t stripe = 0; stripe + 1 < index.begin.size(); ++stripe) {
            for (int32_t i = index.begin[stripe]; i < index.begin[stripe + 1]; ++i) {
                const auto cell = static_cast<size_t>(index.order[static_cast<size_t>(i)]);
                const Place& place = before ? scene.cells[cell].before : scene.cells[cell].place;
                RC_ASSERT((place.y - index.y) / scene.rowHeight == static_cast<int32_t>(stripe));
                if (i > index.begin[stripe]) {
                    const Cell& left =
                        scene.cells[static_cast<size_t>(index.order[static_cast<size_t>(i) - 1])];
                    RC_ASSERT((before ? left.before.x : left.place.x) <= place.x);
                }
                ++seen[cell];
            }
        }
        RC_ASSERT(std::all_of(seen.begin(), seen.end(), [](int times) { return times == 1; }));
    }
}

} // namespace
