// SPDX-License-Identifier: BSD-3-Clause
// The grid kernel against the grid itself: places, its choice among equals, and what it must not take.
#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "legalizer/handMade.h"

namespace {

using test::GridPlaces;
using test::HandMade;
using test::HandMadeArrays;
using test::HandMadeComp;
using test::Ints;
using test::largeHandMade;
using test::LiteralGrid;
using test::randomHandMade;
using vireloce::GridKernel;
using vireloce::GridPlace;
using vireloce::INFINITE_COST;
using vireloce::RowOps;
using vireloce::rowOpsHere;

constexpr int32_t ORDERED_START = 12345678; ///< start value of the ordered program
constexpr GridPlace LEFT_OUT{};

/// The kernel's places, nothing if it does not take the segment.
std::optional<GridPlaces> solved(GridKernel& kernel, const HandMade& made, int32_t unreached = INFINITE_COST,
                                 bool shareColumns = true)
{
    const HandMadeArrays arrays(made, shareColumns);
    if (!kernel.solve(arrays.grid(unreached))) {
        return std::nullopt;
    }
    return GridPlaces(kernel.places().begin(), kernel.places().end());
}

std::optional<GridPlaces> solved(const HandMade& made, int32_t unreached = INFINITE_COST)
{
    GridKernel kernel;
    return solved(kernel, made, unreached);
}

/// Name of an instruction set as a test may be called.
std::string nameOf(const testing::TestParamInfo<const RowOps*>& row)
{
    std::string name(row.param->name);
    std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
    return name;
}

class EveryGridKernel : public testing::TestWithParam<const RowOps*> {};

TEST_P(EveryGridKernel, FindsTheGridsPathOnRandomSegments)
{
    GridKernel kernel(*GetParam()); // one for all: its memory must not show
    int refused = 0;
    constexpr uint32_t COUNT = 1500;
    for (uint32_t seed = 1; seed <= COUNT && !HasFailure(); ++seed) {
        const HandMade made = randomHandMade(seed);
        const int32_t unreached = seed % 2 == 0 ? INFINITE_COST : ORDERED_START;
        const auto places = solved(kernel, made, unreached, /*shareColumns=*/seed % 3 != 0);
        refused += places.has_value() ? 0 : 1;
        if (places.has_value()) {
            ASSERT_EQ(*places, LiteralGrid(made, unreached).places()) << "seed " << seed;
        }
    }
    EXPECT_LT(refused, static_cast<int>(COUNT / 100)) << "ordinary segments";
}

INSTANTIATE_TEST_SUITE_P(GridKernel, EveryGridKernel,
                         testing::ValuesIn(rowOpsHere().begin(), rowOpsHere().end()), nameOf);

// --- where the best path leads

struct PathCase {
    const char* name;
    HandMade made;
    GridPlaces want;
};

void PrintTo(const PathCase& row, std::ostream* out)
{
    *out << row.name;
}

class GridKernelPath : public testing::TestWithParam<PathCase> {};

TEST_P(GridKernelPath, IsThatOfTheGrid)
{
    EXPECT_EQ(LiteralGrid(GetParam().made, INFINITE_COST).places(), GetParam().want);
    EXPECT_EQ(solved(GetParam().made), GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GridKernelPath,
    testing::Values(
        PathCase{"WaitingWinsOverPlacing", {.comps = {{.width = 2}}}, {{0, 0}}},
        PathCase{"LaterSolutionWins", {.comps = {{.stitches = {1, 1, 1, 2}}}}, {{0, 2}}},
        PathCase{"LaterSolutionOfTheLeftNeighbourWins",
                 {.comps = {{.stitches = {0, 3, 0, 3}}, {}}},
                 {{0, 2}, {1, 0}}},
        PathCase{"LaterSolutionWinsWhereStitchesMakeUpForSites",
                 {.numSites = 2,
                  .weight = 1.0F,
                  .comps = {{.stitches = {0, 1}}, {.behind = {{0}, {0}}, .lefts = {1}}}},
                 {{0, 0}, {1, 0}}},
        PathCase{"LaterSolutionOfASharedColumnWins",
                 {.comps = {{}, {.stitches = {2, 2, 2}, .behind = {{1, 0, 0}}}, {}}},
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
                 {.numSites = 5, .comps = {{.width = 2}, {.width = 2, .behind = {{1}}}}},
                 {{0, 0}, {3, 0}}},
        PathCase{"TakesDearerSolutionsThatAllFitWith",
                 {.numSites = 2, .comps = {{.stitches = {0, 9}}, {.behind = {{1}, {0}}}}},
                 {{0, 1}, {1, 0}}},
        PathCase{
            "LeastSpacingsThatExcludeEachOther", // the last one seems to fit, but never does
            {.numSites = 3, .comps = {{}, {.stitches = {0, 0}, .behind = {{0, 1}}}, {.behind = {{1}, {0}}}}},
            {{0, 0}, {2, 1}, LEFT_OUT}},
        PathCase{"TakenBackByMoreThanOne",
                 {.numSites = 5,
                  .comps = {{},
                            {.stitches = {0, 0}, .behind = {{0, 3}}},
                            {.behind = {{3}, {0}}},
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
        PathCase{"SpacingsAsFarApartAsThePad",
                 {.numSites = 20, .comps = {{.stitches = {0, 5}}, {.behind = {{17}, {1}}, .rights = {3}}}},
                 {{0, 1}, {2, 0}}}),
    [](const auto& row) { return row.param.name; });

// --- the window

TEST(GridKernel, FillsTheRowsOnceWhereAllFit)
{
    GridKernel kernel;
    const HandMade made{.numSites = 10, .comps = {{.width = 3}, {.width = 4}}};
    ASSERT_TRUE(solved(kernel, made).has_value());
    EXPECT_EQ(kernel.work().entries, 2 * (10 - 7 + 1));
}

TEST(GridKernel, FillsThemAgainWithAnEarlierLastComponent)
{
    GridKernel kernel;
    const HandMade made{.numSites = 10, .comps = {{.width = 3}, {.width = 4, .stitches = {1000}}}};
    EXPECT_EQ(solved(kernel, made), (GridPlaces{{0, 0}, LEFT_OUT}));
    EXPECT_EQ(kernel.work().entries, 2 * (10 - 7 + 1) + (10 - 3 + 1) + (10 - 7 + 1));
}

TEST(GridKernel, GivesAnEarlierEndNoChanceWhereItIsAsDear)
{
    GridKernel kernel;
    const HandMade made{.numSites = 2, .comps = {{}, {.stitches = {20}}}};
    ASSERT_TRUE(solved(kernel, made).has_value());
    EXPECT_EQ(kernel.work().entries, 2);
}

TEST(GridKernel, TakesCostsThatAreTooLargeOnlyWhereNoPathLeads)
{
    HandMade made{.numSites = 1000, .weight = 1000.5F, .comps = {{.width = 999}, {.width = 1}}};
    made.comps[1].lefts = Ints(30, 999); // 30 million on the leftmost site, none on the only one
    const auto places = solved(made);
    ASSERT_TRUE(places.has_value());
    EXPECT_EQ(*places, LiteralGrid(made, INFINITE_COST).places());
}

// --- what it does not take

struct RefusedCase {
    const char* name;
    HandMade made;
};

void PrintTo(const RefusedCase& row, std::ostream* out)
{
    *out << row.name;
}

class GridKernelRefuses : public testing::TestWithParam<RefusedCase> {};

TEST_P(GridKernelRefuses, LeavesIt)
{
    EXPECT_EQ(solved(GetParam().made), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GridKernelRefuses,
    testing::Values(
        RefusedCase{"NoComponents", {}}, RefusedCase{"NoSites", {.numSites = 0, .comps = {{.width = 0}}}},
        RefusedCase{"NoSolution", {.comps = {{}, {.stitches = {}, .behind = {{}}}}}},
        RefusedCase{"NegativeStitches", {.comps = {{.stitches = {0, -1}}}}},
        RefusedCase{"StitchesBeyondFloats", {.comps = {{.stitches = {0, 1 << 24}}}}},
        RefusedCase{"NegativeWeight", {.weight = -1.4F, .comps = {{}}}},
        RefusedCase{"WeightThatIsNoNumber", {.weight = std::nanf(""), .comps = {{}}}},
        RefusedCase{"InfiniteWeight", {.weight = std::numeric_limits<float>::infinity(), .comps = {{}}}},
        RefusedCase{"TermsBeyondFloats", {.weight = 2e6F, .comps = {{}}}},
        RefusedCase{"NegativeSpacing", {.comps = {{}, {.stitches = {0, 0}, .behind = {{0, -1}}}}}},
        RefusedCase{"SpacingsFartherApartThanThePad",
                    {.numSites = 50, .comps = {{}, {.stitches = {0, 0}, .behind = {{1, 18}}}}}},
        RefusedCase{"CostsThatDependOnTheirOrder",
                    {.numSites = 100, .weight = 1000.5F, .comps = {{.width = 99, .lefts = Ints(200, 100)}}}},
        RefusedCase{"PricesBeyondTheRange", {.numSites = 1 << 20, .comps = std::vector<HandMadeComp>(103)}},
        RefusedCase{"LeftEndBeyondTheSegment", {.comps = {{.lefts = {11}}}}}),
    [](const auto& row) { return row.param.name; });

TEST(GridKernel, TakesSpacingsAsFarApartAsThePadAllows)
{
    EXPECT_TRUE(
        solved({.numSites = 50, .comps = {{}, {.stitches = {0, 0}, .behind = {{1, 17}}}}}).has_value());
}

TEST(GridKernel, LeavesAPathThatIsNotCheaperThanTheStartValue)
{
    const HandMade made{.numSites = 10, .comps = {{.stitches = {5}}, {.stitches = {7}}}};
    ASSERT_EQ(LiteralGrid(made, INFINITE_COST).best(), 112);
    EXPECT_EQ(solved(made, 112), std::nullopt);
    EXPECT_EQ(solved(made, 113), (GridPlaces{{0, 0}, {1, 0}}));
}

TEST(GridKernel, AgreesWithTheGridForEveryStartValueThatItTakes)
{
    for (uint32_t seed = 1; seed <= 60; ++seed) {
        const HandMade made = randomHandMade(seed);
        const int32_t best = LiteralGrid(made, INFINITE_COST).best();
        for (int32_t start = std::max(1, best - 30); start < best + 30 && best < INFINITE_COST; ++start) {
            const auto places = solved(made, start);
            if (places.has_value()) {
                ASSERT_EQ(*places, LiteralGrid(made, start).places())
                    << "seed " << seed << " start " << start;
            }
            EXPECT_EQ(places.has_value(), best < start) << "seed " << seed;
        }
    }
}

TEST(GridKernel, AgreesWithTheGridOnLargeNumbersWhereItTakesThem)
{
    GridKernel kernel;
    int taken = 0;
    int refused = 0;
    for (uint32_t seed = 1; seed <= 1500 && !HasFailure(); ++seed) {
        const HandMade made = largeHandMade(seed);
        const int32_t unreached = seed % 2 == 0 ? INFINITE_COST : ORDERED_START;
        const auto places = solved(kernel, made, unreached);
        (places.has_value() ? taken : refused) += 1;
        if (places.has_value()) {
            ASSERT_EQ(*places, LiteralGrid(made, unreached).places()) << "seed " << seed;
        }
    }
    EXPECT_GT(taken, 100);
    EXPECT_GT(refused, 100);
}

TEST(GridKernel, LeavesCostsThatWouldWrapAroundOnTopOfANodeThatIsNotReached)
{
    // The only place of the second component costs nothing. On site 0, which no path reaches, its 68 terms
    // are less than 2^30 by their whole parts, but more as floats: on top of the start value that is
    // negative.
    HandMade made{.numSites = 104, .weight = 151830.0F, .comps = {{.width = 104}, {.width = 0}}};
    made.comps[1].lefts = Ints(68, 104);
    ASSERT_LT(static_cast<int64_t>(104 * made.weight) * 68, int64_t{1} << 30);
    ASSERT_GT(made.cost(1, 0, 0), 1 << 30);
    ASSERT_EQ(LiteralGrid(made, INFINITE_COST).places(), (GridPlaces{LEFT_OUT, {0, 0}}));
    const auto places = solved(made);
    if (places.has_value()) {
        EXPECT_EQ(*places, LiteralGrid(made, INFINITE_COST).places());
    }
}

} // namespace
