// SPDX-License-Identifier: BSD-3-Clause
// The local shift program, with and without pruning: its range, its choice among equals, its way out where
// nothing fits, and all of it against two other ways to the same.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "legalizer/programs.h"
#include "legalizer/roads.h"

namespace {

using test::Exhaustive;
using test::expectAsTheModel;
using test::expectTheCheapest;
using test::Literal;
using test::nodesOf;
using test::onRandomSegments;
using test::Places;
using test::RandomSegment;
using test::reportOfEndedRun;

using Ints = std::vector<int>;

std::string programName(const testing::TestParamInfo<bool>& pruned)
{
    return pruned.param ? "Pruned" : "Plain";
}

/// The two programs under one name.
class SolveLdp : public test::ProgramTest, public testing::WithParamInterface<bool> {
protected:
    SolveLdp() { LDP_M = 0; }

    void solve(int step) { GetParam() ? solver.solveLdpFast(step) : solver.solveLdp(step); }

    /// Whether the program found a choice: whether it moved a first component that could move one site left.
    bool foundChoice()
    {
        const int before = segment->components.front()->siteX;
        solve(1); // the way out of step 1 moves nothing
        return segment->components.front()->siteX == before - 1;
    }
};

INSTANTIATE_TEST_SUITE_P(Both, SolveLdp, testing::Bool(), programName);

// --- the range

TEST_P(SolveLdp, OneComponentMovesOneSiteMoreThanTheRangeToTheLeftAndTakesSolutionZero)
{
    LDP_M = 2;
    add(1, {9, 0}, 5, 1);
    solve(1);
    EXPECT_EQ(sites(), Ints{2});
    EXPECT_EQ(solutions(), Ints{0});
}

TEST_P(SolveLdp, OneComponentMayEndUpOnSiteZero)
{
    LDP_M = 2;
    add(1, {0}, 3);
    solve(2);
    EXPECT_EQ(sites(), Ints{0});
}

TEST_P(SolveLdp, OneComponentThatWouldLeaveTheSegmentKeepsItsX)
{
    LDP_M = 2;
    Component* comp = add(1, {0, 0}, 2, 1);
    comp->x = segment->x + 4 * SITE_WIDTH + 1;
    solve(1);
    EXPECT_EQ(tiny.places(), (Places{{0, 5, segment->x + 4 * SITE_WIDTH + 1, segment->y}}));
}

TEST_P(SolveLdp, ShiftsRunFromOneMoreThanTheRangeLeftToOneLessRight)
{
    WEIGHT_WRLENG = 1.0F;
    LDP_M = 2;
    Component* a = add(1, {0}, 8);
    Component* b = add(1, {0}, 14);
    segment->numSites = 30;
    pull(a, 30, 30);
    pull(b, 30, 30);
    solve(1);
    EXPECT_EQ(sites(), (Ints{9, 15}));
    for (Pin* pin : tiny.design.pins) {
        pin->x = segment->x;
    }
    solve(1);
    EXPECT_EQ(sites(), (Ints{6, 12}));
}

TEST_P(SolveLdp, ARangeOfZeroLeavesOneShiftOneSiteToTheLeft)
{
    add(1, {0}, 5);
    add(1, {0}, 8);
    solve(1);
    EXPECT_EQ(sites(), (Ints{4, 7}));
}

// --- where nothing fits

TEST_P(SolveLdp, LeavesAnEmptySegmentAlone)
{
    for (const int step : {1, 2}) {
        solve(step);
        EXPECT_TRUE(nodesOf(solver).empty());
    }
}

TEST_P(SolveLdp, WithoutSolutionsInTheLibraryStepOneLeavesTheSegmentAlone)
{
    add(1, {}, 5, -1);
    add(1, {}, 8, -1);
    ASSERT_EQ(LDP_K, 0);
    solve(1);
    EXPECT_EQ(sites(), (Ints{5, 8}));
    EXPECT_EQ(solutions(), (Ints{-1, -1}));
}

TEST_P(SolveLdp, WithoutSolutionsInTheLibraryStepTwoPlacesTheSegmentAsAWhole)
{
    add(1, {}, 5, -1);
    add(1, {}, 8, -1);
    solve(2);
    EXPECT_EQ(sites(), (Ints{0, 1}));
    EXPECT_EQ(solutions(), (Ints{-1, 0}));
}

TEST_P(SolveLdp, ATableWithoutSolutionsAlwaysFails)
{
    for (const int solutionsInTable : {0, -1}) {
        add(1, {0, 0}, 5, 0);
        LDP_K = solutionsInTable;
        EXPECT_FALSE(foundChoice());
        EXPECT_EQ(segment->components.front()->solution, 1) << "the colouring program takes the highest";
    }
}

TEST_P(SolveLdp, ATableOfMoreSolutionsThanTheCellsHaveChangesNothing)
{
    add(1, {0, 0}, 5);
    add(1, {0, 0}, 8);
    LDP_K = 7;
    solve(1);
    EXPECT_EQ(sites(), (Ints{4, 7}));
    EXPECT_EQ(solutions(), (Ints{0, 0}));
}

TEST_P(SolveLdp, ANegativeRangeAlwaysFails)
{
    add(1, {0, 0}, 5, 0);
    for (const int range : {-1, -8, std::numeric_limits<int>::min()}) {
        LDP_M = range;
        EXPECT_FALSE(foundChoice());
        EXPECT_EQ(solutions(), Ints{1});
        solve(2);
        EXPECT_EQ(sites(), Ints{0});
    }
}

TEST_P(SolveLdp, ComponentsTooPackedToShiftAreColouredInStepOne)
{
    const Component* a = add(2, {0, 0}, 1);
    const Component* b = add(2, {0}, 3);
    keepApart(a, 0, b, 0, 1);
    keepApart(a, 1, b, 0, 1);
    solve(1);
    EXPECT_EQ(sites(), (Ints{1, 3}));
    EXPECT_EQ(solutions(), (Ints{1, 0}));
}

TEST_P(SolveLdp, ComponentsTooPackedToShiftArePlacedAsAWholeInAnyOtherStep)
{
    for (const int step : {2, 0, 3}) {
        const Component* a = add(2, {0, 0}, 1);
        const Component* b = add(2, {0}, 3);
        keepApart(a, 0, b, 0, 1);
        keepApart(a, 1, b, 0, 1);
        solve(step);
        EXPECT_EQ(sites(), (Ints{0, 3}));
        EXPECT_EQ(solutions(), (Ints{0, 0}));
        segment->components.clear();
    }
}

TEST_P(SolveLdp, OneSiteMoreBetweenThemIsEnough)
{
    const Component* a = add(2, {0}, 1);
    const Component* b = add(2, {0}, 4);
    keepApart(a, 0, b, 0, 1);
    solve(1);
    EXPECT_EQ(sites(), (Ints{0, 3}));
}

TEST_P(SolveLdp, AComponentOfAPairStaysInTheSegmentAtBothEnds)
{
    struct {
        int siteA, siteB;
        bool fits;
    } const cases[] = {{1, 5, true}, {0, 5, false}, {1, 9, true}, {1, 10, false}};
    for (const auto& row : cases) {
        segment->components.clear();
        add(2, {0, 0}, row.siteA);
        add(2, {0}, row.siteB);
        EXPECT_EQ(foundChoice(), row.fits) << row.siteA << ' ' << row.siteB;
    }
}

TEST_P(SolveLdp, AWayOutReleasesItsGraph)
{
    LDP_M = -1;
    add(1, {0});
    for (const int step : {1, 2}) {
        solve(step);
        EXPECT_TRUE(nodesOf(solver).empty());
        EXPECT_TRUE(solver.edges.empty());
    }
}

// --- costs

TEST_P(SolveLdp, TheCheapestSolutionsWinWhateverTheirIndex)
{
    add(1, {3, 1, 2}, 3);
    add(1, {5, 4}, 6);
    solve(1);
    EXPECT_EQ(solutions(), (Ints{1, 1}));
}

TEST_P(SolveLdp, AComponentBetweenTwoOthersCountsTwice)
{
    WEIGHT_WRLENG = 3.0F;
    LDP_M = 1;
    Component* a = add(1, {0}, 4);
    Component* b = add(1, {2, 0}, 6);
    add(1, {0}, 9);
    pull(a, 3, 3);
    pull(b, 5, 5);
    keepApart(a, 0, b, 1, 2); // pushes the first component one site off, which costs 3; two stitches cost 4
    solve(1);
    EXPECT_EQ(solutions(), (Ints{0, 1, 0}));
    EXPECT_EQ(sites(), (Ints{2, 5, 7}));
}

TEST_P(SolveLdp, EveryCallMeasuresTheNetsAnew)
{
    WEIGHT_WRLENG = 1.0F;
    LDP_M = 2;
    Component* a = add(1, {0}, 5);
    add(1, {0}, 9);
    pull(a, 6, 6);
    solve(1);
    EXPECT_EQ(a->siteX, 6);
    for (Pin* pin : tiny.design.pins) {
        pin->x -= SITE_WIDTH;
    }
    segment->components.back()->siteX = 9;
    solve(1);
    EXPECT_EQ(a->siteX, 5);
}

// --- ties

TEST_P(SolveLdp, OfEquallyCheapSolutionsOfALeftNeighbourTheLowestWins)
{
    add(1, {1, 0, 0}, 3);
    add(1, {0}, 6);
    solve(1);
    EXPECT_EQ(solutions(), (Ints{1, 0}));
}

TEST_P(SolveLdp, OfEquallyCheapShiftsOfALeftNeighbourTheLeftmostWins)
{
    WEIGHT_WRLENG = 1.0F;
    LDP_M = 2;
    Component* a = add(1, {0}, 4);
    add(1, {0}, 9);
    pull(a, 2, 4);
    solve(1);
    EXPECT_EQ(sites(), (Ints{2, 6})) << "2 to 4 cost nothing";
}

TEST_P(SolveLdp, OfEquallyCheapSolutionsOfTheLastComponentTheLowestWins)
{
    add(1, {0}, 3);
    add(1, {1, 0, 0}, 6);
    solve(1);
    EXPECT_EQ(solutions(), (Ints{0, 1}));
}

TEST_P(SolveLdp, OfEquallyCheapShiftsOfTheLastComponentTheLeftmostWins)
{
    WEIGHT_WRLENG = 1.0F;
    LDP_M = 2;
    Component* a = add(1, {0}, 3);
    Component* b = add(1, {0}, 8);
    pull(a, 3, 3);
    pull(b, 6, 8);
    solve(1);
    EXPECT_EQ(sites(), (Ints{3, 6})) << "6 to 8 cost nothing";
}

TEST_P(SolveLdp, ALowerSolutionWinsOverAShiftFurtherLeft)
{
    LDP_M = 1;
    const Component* a = add(1, {0}, 3);
    const Component* b = add(1, {0, 0}, 5);
    keepApart(a, 0, b, 0, 2);
    solve(1);
    EXPECT_EQ(solutions(), (Ints{0, 0}));
    EXPECT_EQ(sites(), (Ints{1, 4})) << "solution 1 would do with 3";
}

// --- limits

TEST_P(SolveLdp, AChoiceOf1073741821IsTakenAndADearerOneIsNot)
{
    Component* a = add(1, {1073741821}, 5);
    add(1, {0}, 8);
    EXPECT_TRUE(foundChoice());
    tiny.design.lut.cells[static_cast<size_t>(a->cellIdx)]->stitchNums = {1073741822};
    EXPECT_FALSE(foundChoice());
}

TEST_P(SolveLdp, NoWayGoesOnFromAStateOf1073741822)
{
    Component* a = add(1, {1073741821}, 4);
    add(1, {0}, 6);
    add(1, {-10}, 8);
    EXPECT_TRUE(foundChoice());
    tiny.design.lut.cells[static_cast<size_t>(a->cellIdx)]->stitchNums = {1073741822};
    EXPECT_FALSE(foundChoice());
}

TEST_P(SolveLdp, AStepThatDoesNotFitMayWinBehindANegativeCost)
{
    add(1, {0}, 3);
    Component* b = add(1, {-2}, 5);
    add(1, {0}, 5);
    solve(2);
    EXPECT_EQ(sites(), (Ints{2, 4, 4}));
    tiny.design.lut.cells[static_cast<size_t>(b->cellIdx)]->stitchNums = {-1};
    EXPECT_FALSE(foundChoice());
}

TEST_P(SolveLdp, CostsOfAStepWrapAroundIn32Bits)
{
    add(1, {std::numeric_limits<int>::max()}, 5);
    add(1, {1}, 8);
    EXPECT_TRUE(foundChoice());
}

TEST_P(SolveLdp, SumsOfStepsWrapAroundIn32Bits)
{
    add(1, {1000000000}, 2);
    add(1, {0}, 5);
    add(1, {1200000000}, 8);
    EXPECT_TRUE(foundChoice());
}

TEST_P(SolveLdp, ATableBeyondTheSizeLimitEndsTheRunBeforeItIsMade)
{
    const test::RoadGuard road(/*graphs=*/true);
    LDP_M = 2;
    add(1, {0, 0}, 3);
    add(1, {0, 0}, 8);
    {
        const test::LimitGuard limit(20);
        EXPECT_EQ(test::reportOf([&] { solve(1); }), "");
    }
    const test::LimitGuard limit(19);
    EXPECT_EQ(
        reportOfEndedRun([&] { solve(1); }),
        "ERROR| the segment at (570, 1900) of 10 sites and 2 components is too large to solve: 20 states of "
        "at most 19\n");
}

TEST_P(SolveLdp, ARangeOfMoreShiftsThanCanBeCountedIsBeyondTheSizeLimitOfTheTable)
{
    const test::RoadGuard road(/*graphs=*/true);
    add(1, {0}, 3);
    for (const int range : {1 << 30, std::numeric_limits<int>::max()}) {
        LDP_M = range;
        EXPECT_EQ(reportOfEndedRun([&] { solve(1); }),
                  "ERROR| the segment at (570, 1900) of 10 sites and 1 components is too large to solve: " +
                      std::to_string(2 * int64_t{range} + 1) + " states of at most 200000000\n");
    }
}

TEST_P(SolveLdp, OnlyShiftsToSitesOfTheSegmentTakeMemory)
{
    Component* left = add(1, {0}, 3);
    Component* right = add(1, {0}, 8);
    pull(left, 6, 6);
    pull(right, 2, 2);
    for (const int range : {20, 1 << 30, std::numeric_limits<int>::max() - 1}) {
        LDP_M = range;
        left->siteX = 3;
        right->siteX = 8;
        EXPECT_EQ(test::reportOf([&] { solve(1); }), "") << range;
        EXPECT_EQ(sites(), (Ints{2, 3})) << range;
    }
}

// --- pruning

class Pruning : public test::ProgramTest {};

TEST_F(Pruning, GoesOnFromTheCheaperStateFurtherLeftOnly)
{
    // The middle component costs -2e9, -1e9 or 0 on sites 4 to 6. Counted twice, the least wraps around and
    // is positive: the way over site 5 is the cheapest in the end, if it is looked at.
    WEIGHT_WRLENG = 1e9F;
    LDP_M = 1;
    add(1, {0}, 3);
    Component* c = add(1, {-2000000000}, 6);
    add(1, {0}, 9);
    pull(c, 4, 4);
    solver.solveLdp(1);
    EXPECT_EQ(sites(), (Ints{1, 5, 7}));
    c->siteX = 6;
    segment->components.front()->siteX = 3;
    segment->components.back()->siteX = 9;
    solver.solveLdpFast(1);
    EXPECT_EQ(sites(), (Ints{1, 4, 7}));
}

TEST_F(Pruning, GoesOnFromEquallyDearStates)
{
    // No site of the third component fits behind the second, so all cost the same; but the first of them is
    // left of the segment, and only from the others does a way lead on.
    LDP_M = 1;
    add(1, {0}, 3);
    add(1, {-10}, 6);
    add(1, {0}, 1);
    add(1, {0}, 4);
    solver.solveLdpFast(1);
    EXPECT_EQ(sites(), (Ints{1, 4, 0, 2}));
}

TEST(PruningOnRandomSegments, ChangesNothingWhereCostsArePlain)
{
    onRandomSegments([](RandomSegment& random) {
        if (random.wild) {
            return;
        }
        Literal model(random.design, *random.segment);
        model.solveLdp(2, /*prune=*/false);
        SegLegalizer(&random.legalizer, random.segment).solveLdpFast(2);
        EXPECT_EQ(random.places(), model.places());
    });
}

// --- both against the model and the search

class SolveLdpOnRandomSegments : public testing::TestWithParam<bool> {
protected:
    static void solve(SegLegalizer& solver, int step)
    {
        GetParam() ? solver.solveLdpFast(step) : solver.solveLdp(step);
    }
};

INSTANTIATE_TEST_SUITE_P(Both, SolveLdpOnRandomSegments, testing::Bool(), programName);

TEST_P(SolveLdpOnRandomSegments, SolvesAsASecondImplementationDoes)
{
    for (const int step : {1, 2}) {
        expectAsTheModel([step](Literal& model) { model.solveLdp(step, GetParam()); },
                         [step](SegLegalizer& solver) { solve(solver, step); });
    }
}

TEST_P(SolveLdpOnRandomSegments, TakesTheCheapestOfAllChoicesAndOfEqualsTheLowestSolutionThenTheLeftmostShift)
{
    // Where nothing fits, the search has nothing to say.
    expectTheCheapest([](Exhaustive& search) { return LDP_K <= 0 ? std::nullopt : search.shifts(); },
                      [](SegLegalizer& solver) { solve(solver, 2); }, /*oneIn=*/4);
}

} // namespace
