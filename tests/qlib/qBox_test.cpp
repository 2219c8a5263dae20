// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/qBox.h"
#include "support/extremes.h"

#include <gtest/gtest.h>

#include <array>

#include "support/property.h"

namespace {

using test::LARGEST;
using test::SMALLEST;

/// Left, right, bottom, top.
std::array<int32_t, 4> sides(const qBox& box)
{
    return {box.xl, box.xh, box.yl, box.yh};
}

TEST(QBox, DefaultIsAPointAtTheOriginWithoutId)
{
    const qBox box;
    EXPECT_EQ(sides(box), (std::array<int32_t, 4>{0, 0, 0, 0}));
    EXPECT_EQ(box.id, -1);
}

TEST(QBox, SidesStandInTheOrderLeftRightBottomTop)
{
    const qBox box(1, 2, 3, 4);
    EXPECT_LT(&box.xl, &box.xh);
    EXPECT_LT(&box.xh, &box.yl);
    EXPECT_LT(&box.yl, &box.yh);
    EXPECT_LT(&box.yh, &box.id);
    static_assert(sizeof(qBox) == 5 * sizeof(int32_t));
}

TEST(QBox, CornersMayBeGivenInAnyOrder)
{
    const std::array<int32_t, 4> want{10, 30, 20, 40};
    EXPECT_EQ(sides(qBox(10, 20, 30, 40)), want);
    EXPECT_EQ(sides(qBox(30, 40, 10, 20)), want);
    EXPECT_EQ(sides(qBox(30, 20, 10, 40)), want);
    EXPECT_EQ(sides(qBox(10, 40, 30, 20)), want);
    EXPECT_EQ(qBox(30, 40, 10, 20).id, -1);
}

TEST(QBox, MoveBackSubtracts)
{
    qBox box(10, 20, 30, 40);
    box.moveBack(3, -4);
    EXPECT_EQ(sides(box), (std::array<int32_t, 4>{7, 27, 24, 44}));
}

TEST(QBox, MoveBackSwapsSidesThatWrapAroundOutOfOrder)
{
    qBox box(-5, 0, 5, 1);
    box.moveBack(LARGEST, 0);
    EXPECT_EQ(sides(box), (std::array<int32_t, 4>{-2147483642, 2147483644, 0, 1}));
    qBox upright(0, SMALLEST, 1, SMALLEST + 2);
    upright.moveBack(0, 1);
    EXPECT_EQ(sides(upright), (std::array<int32_t, 4>{0, 1, SMALLEST + 1, LARGEST}));
}

PROPERTY(QBox, SidesAreAlwaysInOrder)
{
    qBox box(test::drawInt(), test::drawInt(), test::drawInt(), test::drawInt());
    RC_ASSERT(box.xl <= box.xh);
    RC_ASSERT(box.yl <= box.yh);
    box.moveBack(test::draw(SMALLEST, LARGEST), test::draw(SMALLEST, LARGEST));
    RC_ASSERT(box.xl <= box.xh);
    RC_ASSERT(box.yl <= box.yh);
}

} // namespace
