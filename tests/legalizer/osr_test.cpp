// SPDX-License-Identifier: BSD-3-Clause
// The ordered placement program: its grid, its choice among equals, and all of it against two other ways to
// the same.
#include <gtest/gtest.h>

#include <limits>

#include "legalizer/programs.h"

namespace {

using test::edgesOf;
using test::Exhaustive;
using test::expectAsTheModel;
using test::expectTheCheapest;
using test::FlatEdge;
using test::FlatNode;
using test::Literal;
using test::nodesOf;
using test::onRandomSegments;
using test::Places;
using test::RandomSegment;

using Edges = std::vector<FlatEdge>;
using Ints = std::vector<int>;

class InitGraphOSR : public test::ProgramTest {
protected:
    /// Fills what the costs need and builds the grid.
    void build()
    {
        solver.initDataHPWL();
        solver.initGraph_OSR();
    }
};

class SolveOSR : public test::ProgramTest {};

// --- the grid

TEST_F(InitGraphOSR, BuildsNothingForAnEmptySegment)
{
    build();
    EXPECT_TRUE(nodesOf(solver).empty());
    EXPECT_TRUE(solver.edges.empty());
}

TEST_F(InitGraphOSR, HasAStartRowARowPerComponentAndAnEndNode)
{
    segment->numSites = 1;
    const Component* a = add(1, {0, 0, 0}, 0, 2);
    const Component* b = add(5, {0}, 1, 0);
    build();
    EXPECT_EQ(nodesOf(solver), (std::vector<FlatNode>{{0, 0, 0, -1, nullptr},
                                                      {1, 0, 1, -1, nullptr},
                                                      {2, 1, 0, 2, a},
                                                      {3, 1, 1, 2, a},
                                                      {4, 2, 0, 0, b},
                                                      {5, 2, 1, 0, b},
                                                      {6, -1, -1, -1, nullptr}}));
    EXPECT_EQ(solver.nodeGrid.size(), 3U);
    EXPECT_EQ(solver.endNode->id, 6);
}

TEST_F(InitGraphOSR, AppendsWaitingEdgesThenPlacementsByComponentThenEndEdges)
{
    segment->numSites = 2;
    add(1, {0, 3}, 0, 1);
    add(1, {5}, 1);
    build();
    EXPECT_EQ(edgesOf(solver), (Edges{{0, 1, 0},
                                      {1, 2, 0},
                                      {3, 4, 0},
                                      {4, 5, 0},
                                      {6, 7, 0},
                                      {7, 8, 0},
                                      {0, 4, 3},
                                      {1, 5, 3},
                                      {3, 7, 5},
                                      {4, 8, 5},
                                      {5, 9, 40},
                                      {8, 9, 20}}));
}

TEST_F(InitGraphOSR, GivesTheEdgesToTheNodesThatTheyLeave)
{
    segment->numSites = 2;
    add(1, {0});
    build();
    EXPECT_EQ(solver.nodeGrid[0][1]->outEdges, (std::vector<myEdge*>{solver.edges[1], solver.edges[5]}));
    EXPECT_EQ(solver.nodeGrid[1][2]->outEdges, (std::vector<myEdge*>{solver.edges[6]}));
}

TEST_F(InitGraphOSR, LeavesTheSpacingOfTheColoursBetweenNeighbours)
{
    segment->numSites = 4;
    const Component* a = add(1, {0, 0}, 0, 1);
    const Component* b = add(1, {0, 0}, 1, 0);
    keepApart(a, 1, b, 0, 2);
    keepApart(a, 0, b, 0, 1);
    build();
    const Edges edges = edgesOf(solver);
    EXPECT_EQ(Edges(edges.begin() + 16, edges.end()),
              (Edges{{5, 13, 0}, {6, 14, 0}, {9, 15, 80}, {14, 15, 40}}));
}

TEST_F(InitGraphOSR, CostOfAPlacementIsThatOfTheComponentsLeftEndBehindTheSpacing)
{
    WEIGHT_WRLENG = 1.0F;
    segment->numSites = 4;
    const Component* a = add(1, {0});
    Component* b = add(1, {0}, 1);
    keepApart(a, 0, b, 0, 1);
    pull(b, 0, 0);
    build();
    EXPECT_EQ(edgesOf(solver)[16], (FlatEdge{5, 12, 1}));
    EXPECT_EQ(edgesOf(solver)[17], (FlatEdge{6, 13, 2}));
    EXPECT_EQ(edgesOf(solver)[18], (FlatEdge{7, 14, 3}));
}

TEST_F(InitGraphOSR, HasNoPlacementOfAComponentWiderThanTheSegment)
{
    segment->numSites = 1;
    add(2, {0});
    build();
    EXPECT_EQ(edgesOf(solver), (Edges{{0, 1, 0}, {2, 3, 0}, {3, 4, 10}}));
}

TEST_F(InitGraphOSR, AComponentWithoutWidthEndsWhereItBegins)
{
    segment->numSites = 1;
    add(0, {0});
    build();
    EXPECT_EQ(edgesOf(solver), (Edges{{0, 1, 0}, {2, 3, 0}, {0, 2, 0}, {1, 3, 0}, {3, 4, 10}}));
}

TEST_F(InitGraphOSR, AMissingSolutionBecomesTheOneClosestToTheLeftNeighbour)
{
    const Component* a = add(1, {0, 0}, 0, 1);
    const Component* b = add(1, {0, 0, 0}, 1, -1);
    keepApart(a, 1, b, 0, 2);
    keepApart(a, 1, b, 2, 1);
    build();
    EXPECT_EQ(solutions(), (Ints{1, 1}));
    EXPECT_EQ(solver.nodeGrid[2][0]->colorId, 1);
}

TEST_F(InitGraphOSR, OfEquallyCloseSolutionsAMissingOneBecomesTheLowest)
{
    const Component* a = add(1, {0});
    const Component* b = add(1, {0, 0, 0}, 1, -1);
    keepApart(a, 0, b, 0, 2);
    keepApart(a, 0, b, 1, 1);
    keepApart(a, 0, b, 2, 1);
    build();
    EXPECT_EQ(solutions(), (Ints{0, 1}));
}

TEST_F(InitGraphOSR, AMissingSolutionOfACellWithoutAnyBecomesZero)
{
    add(1, {0});
    add(1, {}, 1, -1);
    build();
    EXPECT_EQ(solutions(), (Ints{0, 0}));
}

TEST_F(InitGraphOSR, AMissingSolutionOfTheFirstComponentStaysMissing)
{
    add(1, {0}, 0, -1);
    build();
    EXPECT_EQ(solutions(), Ints{-1});
}

TEST_F(InitGraphOSR, AFilledInSolutionCountsForTheNextComponent)
{
    const Component* a = add(1, {0});
    const Component* b = add(1, {0, 0}, 1, -1);
    const Component* c = add(1, {0, 0}, 2, -1);
    keepApart(a, 0, b, 0, 1);
    keepApart(b, 1, c, 0, 1);
    build();
    EXPECT_EQ(solutions(), (Ints{0, 1, 1}));
}

TEST(InitGraphOSROnRandomSegments, AppendsTheEdgesThatTheRulesList)
{
    onRandomSegments([](RandomSegment& random) {
        Literal model(random.design, *random.segment);
        model.fillMissingSolutions();
        SegLegalizer solver(&random.legalizer, random.segment);
        solver.initDataHPWL();
        solver.initGraph_OSR();
        EXPECT_EQ(edgesOf(solver), random.segment->components.empty() ? Edges{} : model.placementEdges());
        EXPECT_EQ(random.places(), model.places()); // missing solutions are in, nothing has moved
        solver.cleanGraph();
    });
}

// --- the program

TEST_F(SolveOSR, LeavesAnEmptySegmentAlone)
{
    solver.solveOSR();
    EXPECT_TRUE(nodesOf(solver).empty());
}

TEST_F(SolveOSR, WithoutAGridTheProgramParksNothing)
{
    add(1, {0}, 4);
    solver.solveOSR_DP();
    EXPECT_EQ(sites(), Ints{4});
}

TEST_F(SolveOSR, ASegmentOfNegativeCapacityStaysAsItIs)
{
    add(1, {0}, 4);
    add(0, {0}, 5);
    for (Component* comp : segment->components) {
        comp->x += 3 * SITE_WIDTH; // parking would tell by siteX
    }
    const Places before = tiny.places();
    for (const int numSites : {-1, -4}) {
        segment->numSites = numSites;
        solver.solveOSR();
        EXPECT_EQ(tiny.places(), before);
    }
}

TEST_F(SolveOSR, ASegmentSmallerThanTheFirstComponentParksAll)
{
    segment->numSites = 3;
    add(4, {0}, 1);
    add(1, {0}, 2);
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{3, 3}));
}

TEST_F(SolveOSR, ComponentsWhoseWidthsAndSpacingsSumToTheCapacityAreAllPlaced)
{
    segment->numSites = 6;
    const Component* a = add(2, {0}, 5);
    const Component* b = add(3, {0}, 7);
    keepApart(a, 0, b, 0, 1);
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{0, 3}));
}

TEST_F(SolveOSR, OneSiteLessThanTheSumParksTheLastComponent)
{
    segment->numSites = 5;
    const Component* a = add(2, {0});
    const Component* b = add(3, {0});
    keepApart(a, 0, b, 0, 1);
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{0, 5}));
}

TEST_F(SolveOSR, OfTwoComponentsWithRoomForOneTheFirstIsPlacedAtTheCostOfTwoMissing)
{
    segment->numSites = 3;
    add(2, {0});
    add(2, {0});
    solver.initDataHPWL();
    solver.initGraph_OSR();
    EXPECT_EQ(edgesOf(solver).back(), (FlatEdge{11, 12, 30}));
    EXPECT_EQ(*(edgesOf(solver).end() - 2), (FlatEdge{7, 12, 20 * 3}));
    solver.solveOSR_DP();
    EXPECT_EQ(sites(), (Ints{0, 3}));
}

TEST_F(SolveOSR, PlacingMayCostTenTimesTheSitesButNoMore)
{
    segment->numSites = 2;
    add(1, {0});
    add(1, {20, 21});
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{0, 1})) << "of equals the later row wins";
    segment->components.back()->solution = 1;
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{0, 2}));
}

TEST_F(SolveOSR, OfEquallyCheapPlacesTheLeftmostIsTaken)
{
    WEIGHT_WRLENG = 1.0F;
    Component* comp = add(2, {0});
    pull(comp, 4, 7);
    solver.solveOSR();
    EXPECT_EQ(sites(), Ints{3}) << "3 to 6 cost nothing";
}

TEST_F(SolveOSR, EveryComponentTakesItsLeftmostPlaceByItself)
{
    WEIGHT_WRLENG = 1.0F;
    add(1, {0});
    Component* comp = add(1, {0});
    pull(comp, 6, 7);
    add(1, {0});
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{0, 6, 7}));
}

TEST_F(SolveOSR, ACheaperPlaceFurtherRightIsTaken)
{
    WEIGHT_WRLENG = 1.0F;
    Component* comp = add(1, {0});
    pull(comp, 9, 10);
    solver.solveOSR();
    EXPECT_EQ(sites(), Ints{9});
}

TEST_F(SolveOSR, TheListsOrderIsKeptWhateverThePullOrThePosition)
{
    WEIGHT_WRLENG = 1.0F;
    Component* a = add(1, {0}, 8);
    Component* b = add(1, {0}, 1);
    pull(a, 5, 5);
    pull(b, 2, 2);
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{1, 2})) << "as cheap as up to 5 and 6";
}

TEST_F(SolveOSR, APathOf12345678IsTaken)
{
    segment->numSites = 2;
    add(1, {12345678 - 20}, 1);
    solver.solveOSR();
    EXPECT_EQ(sites(), Ints{0});
}

TEST_F(SolveOSR, APathDearerThan12345678ParksAll)
{
    segment->numSites = 2;
    add(1, {12345678 - 19}, 1);
    solver.solveOSR();
    EXPECT_EQ(sites(), Ints{2});
}

TEST_F(SolveOSR, APathThatNeverReachedItsStartWinsWithANegativeCost)
{
    segment->numSites = 3;
    add(5, {0}, 1);
    add(1, {-100}, 2);
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{3, 0}));
}

TEST_F(SolveOSR, AComponentThatAPathOnlyWaitsInIsLeftAtItsFirstWaitingNode)
{
    WEIGHT_WRLENG = 1.0F;
    segment->numSites = 4;
    add(1, {12345679}, 3); // dearer than not being reached
    Component* b = add(1, {-100}, 3);
    pull(b, 2, 2); // the path comes from the first row's node of end site 2
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{0, 2}));
}

TEST_F(SolveOSR, AComponentWrittenLeftOfSiteZeroKeepsItsParkedX)
{
    WEIGHT_WRLENG = 1.0F;
    segment->numSites = 4;
    add(5, {0}, 3);
    Component* b = add(1, {-100}, 3);
    pull(b, 2, 2);
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{4, 2}));
}

TEST_F(SolveOSR, CostsOfAPathWrapAroundIn32Bits)
{
    segment->numSites = 2;
    add(1, {1});
    add(1, {std::numeric_limits<int>::max()});
    solver.solveOSR();
    EXPECT_EQ(sites(), (Ints{0, 1})) << "the sum is negative, and cheaper than leaving the second out";
}

TEST_F(SolveOSR, KeepsColoursAndRows)
{
    Component* a = add(1, {9, 0}, 3, 0);
    const Component* b = add(1, {0, 0, 0}, 4, 2);
    a->y = segment->y + 1;
    solver.solveOSR();
    EXPECT_EQ(solutions(), (Ints{0, 2}));
    EXPECT_EQ(a->y, segment->y + 1);
    EXPECT_EQ(b->y, segment->y);
}

TEST_F(SolveOSR, EveryCallMeasuresTheNetsAnew)
{
    WEIGHT_WRLENG = 1.0F;
    Component* comp = add(1, {0});
    pull(comp, 5, 5);
    solver.solveOSR();
    EXPECT_EQ(sites(), Ints{5});
    for (Pin* pin : tiny.design.pins) {
        pin->x += 2 * SITE_WIDTH;
    }
    solver.solveOSR();
    EXPECT_EQ(sites(), Ints{7});
}

TEST_F(SolveOSR, ReleasesItsGrid)
{
    add(1, {0});
    solver.solveOSR();
    EXPECT_TRUE(nodesOf(solver).empty());
    EXPECT_TRUE(solver.edges.empty());
}

TEST(SolveOSROnRandomSegments, PlacesAsASecondImplementationDoes)
{
    expectAsTheModel(&Literal::solveOSR, &SegLegalizer::solveOSR);
}

TEST(SolveOSROnRandomSegments, TakesTheCheapestOfAllPlacementsAndOfEqualsTheLeftmostFromTheRight)
{
    expectTheCheapest(&Exhaustive::placement, &SegLegalizer::solveOSR);
}

} // namespace
