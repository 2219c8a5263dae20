// SPDX-License-Identifier: BSD-3-Clause
#include "kit/geometry/polygon.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/property.h"

namespace {

using namespace kit::geometry;

/// Whether the middle of a unit square is inside by the edges to its right.
bool isInside(const std::vector<Point>& corners, int64_t x, int64_t y)
{
    bool inside = false;
    for (size_t i = 0; i < corners.size(); ++i) {
        const Point& a = corners[i];
        const Point& b = corners[(i + 1) % corners.size()];
        inside ^= (a.y > y) != (b.y > y) && a.x > x;
    }
    return inside;
}

PROPERTY(Polygon, IsCutWithoutGapsAndOverlaps)
{
    // Any walk with turns at right angles, on a small grid so that edges meet and cross.
    std::vector<Point> corners;
    Point at{test::draw(0, 8), test::draw(0, 8)};
    for (int32_t i = test::draw(1, 9); i > 0; --i) {
        at.x = test::draw(0, 8);
        corners.push_back(at);
        at.y = test::draw(0, 8);
        corners.push_back(at);
    }
    corners.push_back({corners[0].x, at.y}); // closes it
    RC_ASSERT(isRectilinear(corners));
    const std::vector<Rect> rects = cutIntoRects(corners);
    for (int32_t x = 0; x < 8; ++x) {
        for (int32_t y = 0; y < 8; ++y) {
            const auto covers = [&](const Rect& rect) {
                return rect.xl <= x && x < rect.xh && rect.yl <= y && y < rect.yh;
            };
            RC_ASSERT(std::count_if(rects.begin(), rects.end(), covers) == (isInside(corners, x, y) ? 1 : 0));
        }
    }
}

TEST(Polygon, BandsOfOneWidthAreOneRectangle)
{
    // A comb: the teeth are one rectangle each, although the right one has more corners.
    const std::vector<Point> comb{{0, 0},   {0, 10},  {10, 10}, {10, 30}, {20, 30},
                                  {20, 10}, {30, 10}, {30, 20}, {40, 20}, {40, 0}};
    const std::vector<Rect> rects = cutIntoRects(comb);
    ASSERT_EQ(rects.size(), 3U);
    EXPECT_EQ(rects[1].yh, 30);
}

TEST(Polygon, IsRectilinearWithItsClosingEdge)
{
    EXPECT_TRUE(isRectilinear({{0, 0}, {0, 1}, {1, 1}, {1, 0}}));
    EXPECT_FALSE(isRectilinear({{0, 0}, {0, 1}, {1, 1}}));
    EXPECT_FALSE(isRectilinear({{0, 0}, {1, 1}, {1, 0}, {0, 0}}));
}

TEST(Polygon, WithASlantedEdgeHasNoRectangles)
{
    EXPECT_TRUE(cutIntoRects({{0, 0}, {0, 6}, {2, 5}}).empty());
}

TEST(Polygon, OfALineHasNoRectangles)
{
    EXPECT_TRUE(cutIntoRects({{0, 0}, {5, 0}, {5, 7}, {5, 0}}).empty());
    EXPECT_TRUE(cutIntoRects({}).empty());
}

TEST(Polygon, HasAreaUnlessItIsALine)
{
    EXPECT_TRUE(hasArea({{0, 0}, {0, 6}, {2, 5}}));
    EXPECT_TRUE(hasArea(
        {{INT32_MIN, INT32_MIN}, {INT32_MIN, INT32_MAX}, {INT32_MAX, INT32_MAX}, {INT32_MAX, INT32_MIN}}));
    EXPECT_FALSE(hasArea({{0, 0}, {5, 0}, {5, 7}, {5, 0}}));
    EXPECT_FALSE(hasArea({{1, 1}, {4, 4}, {3, 3}}));
    EXPECT_FALSE(hasArea({}));
}

} // namespace
