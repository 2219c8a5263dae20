// SPDX-License-Identifier: BSD-3-Clause
// The spacing table against the safe distance of every pair of solutions.
#include "lut/facing.h"

#include <gtest/gtest.h>

#include "lut/cells.h"
#include "lut/lutable.h"
#include "lut/randomCell.h"
#include "support/extremes.h"
#include "support/guards.h"
#include "support/property.h"

namespace {

using test::LARGEST;
using test::makeCell;
using test::reportOf;
using test::SMALLEST;
using vireloce::Edge;

/// Fills the table entry by entry, as the rules are written.
void fillLiterally(LUTable& lut)
{
    const size_t n = lut.cells.size();
    lut.distTable.assign(2 * n, std::vector<std::vector<std::vector<int32_t>>>(2 * n));
    for (size_t i = 0; i < 2 * n; ++i) {
        for (size_t j = 0; j < 2 * n; ++j) {
            lut.distTable[i][j].resize(lut.cells[i % n]->colors.size());
            for (size_t s = 0; s < lut.distTable[i][j].size(); ++s) {
                for (size_t t = 0; t < lut.cells[j % n]->colors.size(); ++t) {
                    lut.distTable[i][j][s].push_back(
                        lut.getSafeSiteDist(lut.cells[i % n], i >= n, static_cast<int32_t>(s),
                                            lut.cells[j % n], j >= n, static_cast<int32_t>(t)));
                }
            }
        }
    }
    lut.evaluateLUT();
}

/// Compares the table of a random library, and the lines printed on the way to it, with the literal ones.
void compareTables(int32_t minDist, int32_t scale)
{
    const test::ParameterGuard parameters;
    MINDPLDIST = minDist;
    const auto stickOut = test::drawOne({0, 0, 3, 60});
    LUTable lut;
    for (int n = test::draw(1, 4); n > 0; --n) {
        lut.cells.push_back(test::pickCell(scale, stickOut).release());
    }
    // A width that is not the outline's comes from no file, but a caller may set it.
    lut.cells[0]->outlineXh += test::drawOne({0, 0, 0, 0, 0, 0, 0, 0, 0, 7, -7});
    const std::string want = reportOf([&lut] { fillLiterally(lut); });
    const auto wantTable = lut.distTable;
    RC_ASSERT(reportOf([&lut] { lut.genLUTable(); }) == want);
    RC_ASSERT(lut.distTable == wantTable);
}

PROPERTY(SpacingTable, IsTheLiteralOne)
{
    // Entries count sites of 190: only large distances tell one pair of rectangles from another.
    const auto scale = test::drawOne({1, 20, 100});
    compareTables(test::draw(1, 400) * scale, scale);
}

PROPERTY(SpacingTable, IsTheLiteralOneAtAnyMinimumDistance)
{
    const auto minDist =
        test::drawOne({test::drawOne({0, -1, -60, 1, 46340, 46341, 65536, 65537, LARGEST, SMALLEST}),
                       test::draw(-200, 200000), test::drawInt()});
    compareTables(minDist, test::drawOne({1, 100, 300, 1000000, 5000000}));
}

constexpr int32_t MIN_DIST = 185;

Edge leftOf(const Cell& cell)
{
    return Edge(cell, /*isLeft=*/true, MIN_DIST);
}

Edge rightOf(const Cell& cell)
{
    return Edge(cell, /*isLeft=*/false, MIN_DIST);
}

TEST(Edge, ShowsWhatIsNearerThanTheMinimumDistance)
{
    const auto cell = makeCell(600, 1400, {{{184, 500, 416, 900}}, {{185, 500, 415, 900}}}, {{1, 2}});
    const Edge left = leftOf(*cell);
    const Edge right = rightOf(*cell);
    for (const Edge& edge : {left, right}) {
        EXPECT_EQ(edge.facings, (std::vector<vireloce::Facing>{{{1, {{184, 500, 900}}}}}));
        EXPECT_EQ(edge.nearest, 184);
    }
    EXPECT_EQ(Edge(*cell, /*isLeft=*/true, 186).facings.at(0).size(), 2U);
}

TEST(Edge, ShowsNeitherRailsNorOtherMasks)
{
    const auto cell = makeCell(600, 1400, {{{0, 0, 600, 90}}, {{0, 500, 600, 900}}}, {{0, 3}, {0, -1}});
    const Edge edge = leftOf(*cell);
    EXPECT_EQ(edge.facings, std::vector<vireloce::Facing>(1));
    EXPECT_EQ(edge.nearest, LARGEST);
}

TEST(Edge, SolutionsThatDifferFarFromItShowTheSame)
{
    const auto cell =
        makeCell(600, 1400, {{{0, 500, 90, 900}}, {{300, 500, 600, 900}}}, {{1, 0}, {2, 0}, {1, 2}, {2, 1}});
    EXPECT_EQ(leftOf(*cell).shown, (std::vector<size_t>{0, 1, 0, 1}));
    EXPECT_EQ(rightOf(*cell).shown, (std::vector<size_t>{0, 0, 1, 2}));
}

TEST(Edge, IsClearOfAnotherUnlessRectanglesWouldOverlap)
{
    const auto sticksOutBy20 = makeCell(600, 1400, {{{0, 500, 620, 900}}}, {{1}});
    const auto twentyInside = makeCell(600, 1400, {{{20, 500, 600, 900}}}, {{1}});
    const auto nineteenInside = makeCell(600, 1400, {{{19, 500, 600, 900}}}, {{1}});
    const Edge edge = rightOf(*sticksOutBy20);
    EXPECT_TRUE(edge.isClear(leftOf(*twentyInside)));
    EXPECT_FALSE(edge.isClear(leftOf(*nineteenInside)));
}

TEST(Edge, OfAnOutlineThatIsNotTheWidthIsNeverClear)
{
    const auto good = makeCell(600, 1400, {}, {{}});
    const auto odd = makeCell(600, 1400, {}, {{}});
    odd->outlineXh = 590;
    EXPECT_TRUE(leftOf(*good).isClear(rightOf(*good)));
    EXPECT_FALSE(leftOf(*good).isClear(rightOf(*odd)));
    EXPECT_FALSE(leftOf(*odd).isClear(rightOf(*good)));
}

TEST(Edge, OfAWidthWhoseSumsCouldWrapIsNeverClear)
{
    const auto widest = makeCell(1 << 28, 1400, {}, {{}});
    const auto tooWide = makeCell((1 << 28) + 1, 1400, {}, {{}});
    EXPECT_TRUE(leftOf(*widest).isClear(rightOf(*widest)));
    EXPECT_FALSE(leftOf(*tooWide).isClear(rightOf(*widest)));
}

} // namespace
