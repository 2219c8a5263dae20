// SPDX-License-Identifier: BSD-3-Clause
// Numbers of sides that are alike, and how far apart they must be.
#include "kit/engines/refine/views.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using kit::refine::Edge;
using kit::refine::Side;
using kit::refine::Views;

constexpr int64_t LEAST = 100 * 190; ///< fine units
constexpr int32_t FLOOR = -500;      ///< DBU

/// DBU between two sides, over all pairs of their rectangles.
int32_t gapOf(const Side& a, const Side& b)
{
    const bool anyStays = a.stays || b.stays;
    int32_t gap = anyStays ? FLOOR : 0;
    for (size_t k = 0; k < (anyStays ? 6U : 3U); ++k) {
        for (const Edge& one : a.groups[k]) {
            for (const Edge& other : b.groups[k]) {
                const int64_t dy = kit::geometry::gapOf(one.yl, one.yh, other.yl, other.yh);
                int64_t apart = -1000; // DBU between the sides
                const auto isClose = [&] {
                    const int64_t dx = apart * 190 + one.inset + other.inset;
                    return dy < LEAST && (dx < 0 || dx * dx + dy * dy < LEAST * LEAST);
                };
                while (isClose()) {
                    ++apart;
                }
                if (apart > -1000 && !(a.stays && b.stays)) {
                    gap = std::max(gap, static_cast<int32_t>(apart));
                }
            }
        }
    }
    return gap;
}

Side randomSide(std::mt19937& random, bool stays, bool turned)
{
    const auto upTo = [&random](int64_t most) {
        return static_cast<int64_t>(random() % static_cast<size_t>(most + 1));
    };
    Side side{.stays = stays};
    for (size_t k = 0; k < Side::GROUPS; ++k) {
        const bool isThere = stays ? (k >= 3) == turned : true;
        for (int64_t count = isThere ? upTo(3) : 0; count > 0; --count) {
            const int64_t yl = upTo(4) * 50 * 190;
            side.groups[k].push_back({.inset = upTo(6) * 30 * 190 - 10 * 190,
                                      .yl = yl,
                                      .yh = yl + upTo(4) * 50 * 190,
                                      .stays = stays});
        }
    }
    return side;
}

TEST(KitRefineViews, GapsAreThoseOfAllPairsOfRectangles)
{
    std::mt19937 random(3);
    Views views(LEAST, FLOOR);
    std::vector<Side> sides;
    std::vector<int32_t> numbers;
    for (int i = 0; i < 150; ++i) {
        sides.push_back(randomSide(random, i % 10 == 0, i % 20 == 0));
        numbers.push_back(views.add(sides.back()));
    }
    const Views::Table table = views.table();
    int positive = 0;
    int negative = 0;
    for (size_t i = 0; i < sides.size(); ++i) {
        for (size_t j = 0; j < sides.size(); ++j) {
            const auto row = static_cast<size_t>(table.viewOf.at(static_cast<size_t>(numbers[i])));
            const auto column = static_cast<size_t>(table.viewOf.at(static_cast<size_t>(numbers[j])));
            const int32_t gap = table.gaps.at(row * static_cast<size_t>(table.views) + column);
            ASSERT_EQ(gap, gapOf(sides[i], sides[j])) << i << " " << j;
            positive += gap > 0 ? 1 : 0;
            negative += gap < 0 ? 1 : 0;
        }
    }
    EXPECT_GT(positive, 5000);
    EXPECT_GT(negative, 50);
}

TEST(KitRefineViews, SidesThatAskForTheSameAreOne)
{
    Views views(LEAST, FLOOR);
    Side plain;
    plain.groups[0] = {{.inset = 0, .yl = 0, .yh = 500 * 190}};
    Side more = plain; // what is behind the first asks for nothing more
    more.groups[0].push_back({.inset = 190, .yl = 190, .yh = 190 * 190});
    Side far = plain; // what is beyond all reach asks for nothing
    far.groups[1] = {{.inset = LEAST, .yl = 0, .yh = 190}};
    const int32_t numbers[] = {views.add(plain), views.add(more), views.add(far), views.add({})};
    const Views::Table table = views.table();
    EXPECT_EQ(numbers[0], numbers[1]);
    EXPECT_EQ(table.viewOf[static_cast<size_t>(numbers[0])], table.viewOf[static_cast<size_t>(numbers[2])]);
    EXPECT_EQ(table.views, 2);
}

} // namespace
