// SPDX-License-Identifier: BSD-3-Clause
// Where the best path through the grid leads, as both grid kernels find it.
#include <gtest/gtest.h>

#include <algorithm>

#include "legalizer/fullGridKernel.h"
#include "legalizer/gridKernel.h"
#include "legalizer/literalKernels.h"

namespace {

using test::GridPlaces;
using test::HandMade;
using test::HandMadeArrays;
using test::LEFT_OUT;
using test::LiteralGrid;
using vireloce::FullGridKernel;
using vireloce::GridKernel;
using vireloce::INFINITE_COST;

struct PathCase {
    const char* name;
    HandMade made;
    GridPlaces want;
};

void PrintTo(const PathCase& row, std::ostream* out)
{
    *out << row.name;
}

class GridPath : public testing::TestWithParam<PathCase> {};

TEST_P(GridPath, IsThatOfTheGrid)
{
    EXPECT_EQ(LiteralGrid(GetParam().made, INFINITE_COST).places(), GetParam().want);
    const HandMadeArrays arrays(GetParam().made);
    for (const int32_t narrow : {384, 0}) {
        GridKernel kernel(vireloce::bestProfileOps(), {.narrow = narrow});
        ASSERT_TRUE(kernel.solve(arrays.grid(INFINITE_COST)));
        EXPECT_TRUE(std::ranges::equal(kernel.places(), GetParam().want)) << "narrow " << narrow;
    }
    FullGridKernel full;
    ASSERT_TRUE(full.solve(arrays.grid(INFINITE_COST)));
    EXPECT_TRUE(std::ranges::equal(full.places(), GetParam().want));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GridPath,
    testing::Values(
        PathCase{"WaitingWinsOverPlacing", {.comps = {{.width = 2}}}, {{0, 0}}},
        PathCase{"LaterSolutionWins", {.comps = {{.stitches = {1, 1, 1, 2}}}}, {{0, 2}}},
        PathCase{"LaterSolutionOfTheLeftNeighbourWins",
                 {.comps = {{.stitches = {0, 3, 0, 3}}, {}}},
                 {{0, 2}, {1, 0}}},
        PathCase{"LaterSolutionWinsWhereStitchesMakeUpForSites",
                 {.numSites = 2,
                  .weight = 1.0F,
                  .comps = {{.stitches = {0, 1}}, {.gaps = {{0}, {0}}, .lefts = {1}}}},
                 {{0, 0}, {1, 0}}},
        PathCase{"LaterSolutionOfASharedClassWins",
                 {.comps = {{}, {.stitches = {2, 2, 2}, .gaps = {{1, 0, 0}}}, {}}},
                 {{0, 0}, {1, 2}, {2, 0}}},
        PathCase{"LaterComponentWinsAtTheEnd", // leaving out the second costs what its stitches do
                 {.numSites = 2, .comps = {{}, {.stitches = {20}}}},
                 {{0, 0}, {1, 0}}},
        PathCase{"LeavesOutWhatIsDearerThanItsPrice",
                 {.numSites = 2, .comps = {{}, {.stitches = {21}}}},
                 {{0, 0}, LEFT_OUT}},
        PathCase{"LeavesOutAllFromTheDearOneOn",
                 {.numSites = 3, .comps = {{}, {.stitches = {100}}, {}}},
                 {{0, 0}, LEFT_OUT, LEFT_OUT}},
        PathCase{"LeavesOutWhatDoesNotFit",
                 {.numSites = 5, .comps = {{.width = 3}, {.width = 3}, {.width = 1}}},
                 {{0, 0}, LEFT_OUT, LEFT_OUT}},
        PathCase{"LeavesOutAllWhereTheFirstIsTooWide",
                 {.numSites = 2, .comps = {{.width = 3}, {.width = 1}}},
                 {LEFT_OUT, LEFT_OUT}},
        PathCase{"FillsASegmentToTheLastSite",
                 {.numSites = 5, .comps = {{.width = 2}, {.width = 2, .gaps = {{1}}}}},
                 {{0, 0}, {3, 0}}},
        PathCase{"TakesDearerSolutionsThatAllFitWith",
                 {.numSites = 2, .comps = {{.stitches = {0, 9}}, {.gaps = {{1}, {0}}}}},
                 {{0, 1}, {1, 0}}},
        PathCase{"LeastGapsThatExcludeEachOther", // the last one seems to fit, but never does
                 {.numSites = 3, .comps = {{}, {.stitches = {0, 0}, .gaps = {{0, 1}}}, {.gaps = {{1}, {0}}}}},
                 {{0, 0}, {2, 1}, LEFT_OUT}},
        PathCase{"TakenBackByMoreThanOne",
                 {.numSites = 5,
                  .comps = {{},
                            {.stitches = {0, 0}, .gaps = {{0, 3}}},
                            {.gaps = {{3}, {0}}},
                            {.width = 0},
                            {.width = 0},
                            {.width = 0}}},
                 {{0, 0}, {4, 1}, LEFT_OUT, LEFT_OUT, LEFT_OUT, LEFT_OUT}},
        PathCase{"StaysWhereItsNetsAre",
                 {.numSites = 20, .comps = {{.width = 3, .lefts = {9}, .rights = {12}}}},
                 {{8, 0}}},
        PathCase{"LeftmostOfEqualSitesWithOpposingPulls",
                 {.numSites = 20, .weight = 1.0F, .comps = {{.lefts = {12}, .rights = {5}}}},
                 {{5, 0}}},
        PathCase{"TruncatesEveryTerm", // 1 site twice adds 1 + 1, not 2.8
                 {.numSites = 9, .comps = {{.lefts = {4, 4}, .rights = {3, 3}}}},
                 {{3, 0}}},
        PathCase{"ComponentsWithoutWidth",
                 {.numSites = 1, .comps = {{.width = 0}, {.width = 0, .lefts = {1}}, {.width = 0}}},
                 {{0, 0}, {1, 0}, {1, 0}}},
        PathCase{"GapsAsFarApartAsThePad",
                 {.numSites = 20, .comps = {{.stitches = {0, 5}}, {.gaps = {{17}, {1}}, .rights = {3}}}},
                 {{0, 1}, {2, 0}}}),
    [](const auto& row) { return row.param.name; });

} // namespace
