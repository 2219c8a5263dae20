// SPDX-License-Identifier: BSD-3-Clause
// What a segment covers, and where the ends of something outside lie on its sites.
#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "legalizer/stretch.h"
#include "qlib/exact.h"

namespace {

using vireloce::Extent;
using vireloce::Stretch;

using Sites = std::pair<int32_t, int32_t>;

const Stretch STRETCH({.components = {}, .id = 0, .x = 1000, .y = 1900, .numSites = 10},
                      /*siteWidth=*/190); // up to 2900

Sites sitesOf(int32_t lo, int32_t hi)
{
    Extent extent;
    extent.include(lo);
    extent.include(hi);
    return STRETCH.sitesOf(extent);
}

TEST(Stretch, ContainsLeftEdgesFromItsLeftEndOnAndBelowItsRightEnd)
{
    EXPECT_TRUE(STRETCH.contains(1000, 1900));
    EXPECT_FALSE(STRETCH.contains(999, 1900));
    EXPECT_TRUE(STRETCH.contains(2899, 1900));
    EXPECT_FALSE(STRETCH.contains(2900, 1900));
}

TEST(Stretch, ContainsNothingOfAnotherRow)
{
    EXPECT_FALSE(STRETCH.contains(1500, 1899));
    EXPECT_FALSE(STRETCH.contains(1500, 1901));
}

TEST(Stretch, HasNoSitesForAnExtentOfNothing)
{
    EXPECT_EQ(STRETCH.sitesOf(Extent{}), Sites(-1, -1));
}

TEST(Stretch, RoundsSitesUp)
{
    EXPECT_EQ(sitesOf(1000, 1001), Sites(0, 1));
    EXPECT_EQ(sitesOf(1190, 1191), Sites(1, 2));
}

TEST(Stretch, ClampsSitesToTheSegment)
{
    EXPECT_EQ(sitesOf(-5000, 999), Sites(0, 0));
    EXPECT_EQ(sitesOf(2900, 2901), Sites(10, 10));
    EXPECT_EQ(sitesOf(0, std::numeric_limits<int32_t>::max()), Sites(0, 10));
}

TEST(Stretch, MayEndBehindTheSegmentByTheRoundingOfLargeCoordinates)
{
    int32_t numSites = (1 << 24) / 1000;
    while (vireloce::ceilSites(numSites * 1000, 1000) == numSites) {
        ++numSites;
    }
    const Stretch wide({.components = {}, .id = 0, .x = 0, .y = 0, .numSites = numSites}, /*siteWidth=*/1000);
    Extent extent;
    extent.include(numSites * 1000);
    EXPECT_EQ(wide.sitesOf(extent), Sites(numSites + 1, numSites + 1));
    Extent farther;
    farther.include(numSites * 1000 + 1);
    EXPECT_EQ(wide.sitesOf(farther), Sites(numSites, numSites));
}

TEST(Extent, HoldsTheLeastAndTheLargestOfWhatItIncludes)
{
    Extent extent;
    for (const int32_t x : {5, -3, 9, 0}) {
        extent.include(x);
    }
    EXPECT_EQ(extent.lo, -3);
    EXPECT_EQ(extent.hi, 9);
}

} // namespace
