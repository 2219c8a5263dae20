// SPDX-License-Identifier: BSD-3-Clause
// The joint program: its grid, its choice among equals, and all of it against two other ways to the same.
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

class InitGraphTPLOSR : public test::ProgramTest {
protected:
    /// Fills what the costs need and builds the grid.
    void build()
    {
        solver.initDataHPWL();
        solver.initGraph_TPLOSR();
    }
};

class SolveTPLOSR : public test::ProgramTest {};

// --- the grid

TEST_F(InitGraphTPLOSR, BuildsNothingForAnEmptySegment)
{
    build();
    EXPECT_TRUE(nodesOf(solver).empty());
    EXPECT_TRUE(solver.edges.empty());
}

TEST_F(InitGraphTPLOSR, HasAStartRowARowPerComponentAndSolutionAndAnEndNode)
{
    segment->numSites = 1;
    const Component* a = add(1, {0, 0}, 0, 1);
    const Component* b = add(5, {0}, 1, 0);
    build();
    EXPECT_EQ(nodesOf(solver), (std::vector<FlatNode>{{0, 0, 0, -1, nullptr},
                                                      {1, 0, 1, -1, nullptr},
                                                      {2, 1, 0, 0, a},
                                                      {3, 1, 1, 0, a},
                                                      {4, 2, 0, 1, a},
                                                      {5, 2, 1, 1, a},
                                                      {6, 3, 0, 0, b},
                                                      {7, 3, 1, 0, b},
                                                      {8, -1, -1, -1, nullptr}}));
    EXPECT_EQ(solver.nodeGrid.size(), 4U);
    EXPECT_EQ(solver.endNode->id, 8);
}

TEST_F(InitGraphTPLOSR, AppendsTheFirstComponentSiteBySiteAndTheOthersByPairsOfSolutions)
{
    segment->numSites = 2;
    add(1, {1, 2});
    add(1, {4, 8}, 1);
    build();
    EXPECT_EQ(edgesOf(solver),
              (Edges{
                  {0, 1, 0},    {1, 2, 0}, // waiting
                  {3, 4, 0},    {4, 5, 0},    {6, 7, 0},  {7, 8, 0},  {9, 10, 0}, {10, 11, 0}, {12, 13, 0},
                  {13, 14, 0},  {0, 4, 1},    {0, 7, 2},  {1, 5, 1},  {1, 8, 2}, // first component
                  {3, 10, 4},   {4, 11, 4},   {3, 13, 8}, {4, 14, 8},            // from its solution 0
                  {6, 10, 4},   {7, 11, 4},   {6, 13, 8}, {7, 14, 8},            // from its solution 1
                  {5, 15, 40},  {8, 15, 40},                                     // ends
                  {11, 15, 20}, {14, 15, 20},
              }));
}

TEST_F(InitGraphTPLOSR, GivesTheEdgesToTheNodesThatTheyLeave)
{
    segment->numSites = 1;
    add(1, {0, 0});
    build();
    EXPECT_EQ(solver.nodeGrid[0][0]->outEdges,
              (std::vector<myEdge*>{solver.edges[0], solver.edges[3], solver.edges[4]}));
    EXPECT_EQ(solver.nodeGrid[2][1]->outEdges, (std::vector<myEdge*>{solver.edges[6]}));
}

TEST_F(InitGraphTPLOSR, LeavesTheSpacingOfEveryPairOfSolutions)
{
    segment->numSites = 3;
    const Component* a = add(1, {0, 0});
    const Component* b = add(1, {0}, 1);
    keepApart(a, 0, b, 0, 1);
    keepApart(a, 1, b, 0, 2);
    build();
    const Edges edges = edgesOf(solver);
    EXPECT_EQ(Edges(edges.begin() + 18, edges.end()),
              (Edges{{4, 14, 0}, {5, 15, 0}, {8, 15, 0}, {7, 16, 60}, {11, 16, 60}, {15, 16, 30}}));
}

TEST_F(InitGraphTPLOSR, CostOfAPlacementIsThatOfTheComponentsLeftEndBehindTheSpacing)
{
    WEIGHT_WRLENG = 1.0F;
    segment->numSites = 3;
    const Component* a = add(1, {0});
    Component* b = add(1, {7}, 1);
    keepApart(a, 0, b, 0, 1);
    pull(b, 0, 0);
    build();
    EXPECT_EQ(edgesOf(solver)[12], (FlatEdge{4, 10, 8}));
    EXPECT_EQ(edgesOf(solver)[13], (FlatEdge{5, 11, 9}));
}

TEST_F(InitGraphTPLOSR, ColoursAndPositionsDoNotMatter)
{
    segment->numSites = 3;
    Component* a = add(1, {1, 2}, 0, -1);
    Component* b = add(1, {3, 4}, 0, 5);
    build();
    const Edges before = edgesOf(solver);
    solver.cleanGraph();
    a->solution = 1;
    b->solution = 0;
    b->siteX = 2;
    build();
    EXPECT_EQ(edgesOf(solver), before);
}

TEST_F(InitGraphTPLOSR, AComponentWithoutSolutionsHasNoRows)
{
    segment->numSites = 1;
    add(1, {0});
    add(1, {}, 1, -1);
    const Component* c = add(1, {0}, 2);
    build();
    EXPECT_EQ(nodesOf(solver)[4], (FlatNode{4, 2, 0, 0, c}));
    EXPECT_EQ(edgesOf(solver), (Edges{{0, 1, 0}, {2, 3, 0}, {4, 5, 0}, {0, 3, 0}, {3, 6, 30}, {5, 6, 10}}));
}

TEST_F(InitGraphTPLOSR, EndCostsWrapAroundIn32Bits)
{
    segment->numSites = 10000;
    const Component* first = add(1, {0}, 5);
    const int bare = tiny.addCell(1, {});
    while (segment->components.size() < 21475) { // no rows, but missing all the same
        tiny.addComponent(segment, bare, 0);
    }
    build();
    EXPECT_EQ(edgesOf(solver).back(), (FlatEdge{20001, 20002, 2147500000 - 4294967296}));
    solver.solveTPLOSR_DP();
    EXPECT_EQ(first->siteX, 0);
}

TEST(InitGraphTPLOSROnRandomSegments, AppendsTheEdgesThatTheRulesList)
{
    onRandomSegments([](RandomSegment& random) {
        const Literal model(random.design, *random.segment);
        SegLegalizer solver(&random.legalizer, random.segment);
        solver.initDataHPWL();
        solver.initGraph_TPLOSR();
        EXPECT_EQ(edgesOf(solver), random.segment->components.empty() ? Edges{} : model.jointEdges(1));
        EXPECT_EQ(random.places(), model.places()); // nothing has changed yet
        solver.cleanGraph();
    });
}

// --- the program

TEST_F(SolveTPLOSR, LeavesAnEmptySegmentAlone)
{
    solver.solveTPLOSR();
    EXPECT_TRUE(nodesOf(solver).empty());
}

TEST_F(SolveTPLOSR, WithoutAGridTheProgramParksNothing)
{
    add(1, {0}, 4);
    solver.solveTPLOSR_DP();
    EXPECT_EQ(sites(), Ints{4});
}

TEST_F(SolveTPLOSR, ASegmentOfNegativeCapacityStaysAsItIs)
{
    add(1, {0, 0}, 4);
    add(0, {0}, 5);
    for (Component* comp : segment->components) {
        comp->x += 3 * SITE_WIDTH; // parking would tell by siteX
    }
    const Places before = tiny.places();
    for (const int numSites : {-1, -4}) {
        segment->numSites = numSites;
        solver.solveTPLOSR();
        EXPECT_EQ(tiny.places(), before);
    }
}

TEST_F(SolveTPLOSR, ASpaciousPairOfColoursIsAvoidedForOneThatLetsAllFit)
{
    segment->numSites = 2;
    const Component* a = add(1, {0, 0});
    const Component* b = add(1, {0, 9});
    keepApart(a, 0, b, 0, 1);
    keepApart(a, 1, b, 0, 1);
    keepApart(a, 1, b, 1, 1);
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{0, 1}));
    EXPECT_EQ(solutions(), (Ints{0, 1}));
}

TEST_F(SolveTPLOSR, ASegmentTooShortForAllParksTheLastAtTenTimesTheSitesEach)
{
    segment->numSites = 3;
    for (int i = 0; i < 4; ++i) {
        add(2, {0, 0}, 0, -1);
    }
    solver.initDataHPWL();
    solver.initGraph_TPLOSR();
    const Edges edges = edgesOf(solver);
    Ints ends;
    for (size_t i = edges.size() - 8; i < edges.size(); ++i) {
        ends.push_back(edges[i].cost);
    }
    EXPECT_EQ(ends, (Ints{120, 120, 90, 90, 60, 60, 30, 30}));
    solver.solveTPLOSR_DP();
    EXPECT_EQ(sites(), (Ints{0, 3, 3, 3}));
    EXPECT_EQ(solutions(), (Ints{1, -1, -1, -1})) << "what is parked keeps the colour it had";
}

TEST_F(SolveTPLOSR, PlacingMayCostTenTimesTheSitesButNoMore)
{
    segment->numSites = 2;
    add(1, {0});
    const Component* b = add(1, {20});
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{0, 1})) << "of equals the later row wins";
    tiny.design.lut.cells[static_cast<size_t>(b->cellIdx)]->stitchNums = {21};
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{0, 2}));
}

TEST_F(SolveTPLOSR, ASegmentSmallerThanTheFirstComponentParksAll)
{
    segment->numSites = 3;
    add(4, {0, 0}, 1);
    add(1, {0, 0}, 2);
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{3, 3}));
    EXPECT_EQ(solutions(), (Ints{0, 0}));
}

TEST_F(SolveTPLOSR, ComponentsWhoseWidthsAndSpacingsSumToTheCapacityAreAllPlaced)
{
    segment->numSites = 6;
    const Component* a = add(2, {0}, 5);
    const Component* b = add(3, {0}, 7);
    keepApart(a, 0, b, 0, 1);
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{0, 3}));
}

TEST_F(SolveTPLOSR, NothingRightOfAComponentWithoutSolutionsIsPlaced)
{
    add(1, {0}, 3);
    add(1, {}, 4, -1);
    add(1, {0}, 5);
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{0, 10, 10}));
}

TEST_F(SolveTPLOSR, OfEquallyCheapPlacesTheLeftmostIsTaken)
{
    WEIGHT_WRLENG = 1.0F;
    Component* comp = add(2, {0});
    pull(comp, 4, 7);
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), Ints{3}) << "3 to 6 cost nothing";
}

TEST_F(SolveTPLOSR, EveryComponentTakesItsLeftmostPlaceByItself)
{
    WEIGHT_WRLENG = 1.0F;
    add(1, {0});
    Component* comp = add(1, {0});
    pull(comp, 6, 7);
    add(1, {0});
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{0, 6, 7}));
}

TEST_F(SolveTPLOSR, OfEquallyCheapSolutionsOfALeftNeighbourTheHighestWins)
{
    add(1, {0, 0, 1});
    add(1, {0});
    solver.solveTPLOSR();
    EXPECT_EQ(solutions(), (Ints{1, 0}));
}

TEST_F(SolveTPLOSR, OfEquallyCheapSolutionsOfTheLastComponentTheHighestWins)
{
    add(1, {0});
    add(1, {2, 1, 1, 2});
    solver.solveTPLOSR();
    EXPECT_EQ(solutions(), (Ints{0, 2}));
}

TEST_F(SolveTPLOSR, AHigherSolutionWinsOverAPlaceFurtherLeft)
{
    const Component* a = add(1, {0});
    const Component* b = add(1, {0, 0});
    keepApart(a, 0, b, 1, 4);
    solver.solveTPLOSR();
    EXPECT_EQ(solutions(), (Ints{0, 1}));
    EXPECT_EQ(sites(), (Ints{0, 5}));
}

TEST_F(SolveTPLOSR, StitchesOfEveryComponentCountOnce)
{
    segment->numSites = 3;
    const Component* a = add(1, {0});
    const Component* b = add(1, {29, 0}); // without stitches there is no room for the third
    add(1, {0});
    keepApart(a, 0, b, 1, 1);
    solver.solveTPLOSR();
    EXPECT_EQ(solutions(), (Ints{0, 0, 0})) << "29 stitches cost less than a missing component's 30";
    EXPECT_EQ(sites(), (Ints{0, 1, 2}));
}

TEST_F(SolveTPLOSR, APathAsDearAsNoPathIsTaken)
{
    segment->numSites = 2;
    add(1, {1073741823 - 20}, 0, -1);
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), Ints{0});
    EXPECT_EQ(solutions(), Ints{0});
}

TEST_F(SolveTPLOSR, APathDearerThanNoPathParksAll)
{
    segment->numSites = 2;
    add(1, {1073741823 - 19}, 0, -1);
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), Ints{2});
    EXPECT_EQ(solutions(), Ints{-1});
}

TEST_F(SolveTPLOSR, APathThatNeverReachedItsStartWinsWithANegativeCost)
{
    segment->numSites = 3;
    add(5, {0}, 1, -1);
    add(1, {-100}, 2, -1);
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{3, 0}));
    EXPECT_EQ(solutions(), (Ints{-1, 0}));
}

TEST_F(SolveTPLOSR, AComponentThatAPathOnlyWaitsInStaysParkedAndUncoloured)
{
    WEIGHT_WRLENG = 1.0F;
    segment->numSites = 4;
    add(1, {1073741824}, 3, -1); // dearer than not being reached
    Component* b = add(1, {-100}, 3, -1);
    pull(b, 2, 2); // the path comes from the first row's node of end site 2
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{4, 2}));
    EXPECT_EQ(solutions(), (Ints{-1, 0}));
}

TEST_F(SolveTPLOSR, CostsOfAPathWrapAroundIn32Bits)
{
    segment->numSites = 2;
    add(1, {1});
    add(1, {std::numeric_limits<int>::max()});
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), (Ints{0, 1})) << "the sum is negative, and cheaper than leaving the second out";
}

TEST_F(SolveTPLOSR, EveryCallMeasuresTheNetsAnew)
{
    WEIGHT_WRLENG = 1.0F;
    Component* comp = add(1, {0});
    pull(comp, 5, 5);
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), Ints{5});
    for (Pin* pin : tiny.design.pins) {
        pin->x += 2 * SITE_WIDTH;
    }
    solver.solveTPLOSR();
    EXPECT_EQ(sites(), Ints{7});
}

TEST_F(SolveTPLOSR, ReleasesItsGrid)
{
    add(1, {0});
    solver.solveTPLOSR();
    EXPECT_TRUE(nodesOf(solver).empty());
    EXPECT_TRUE(solver.edges.empty());
}

TEST(SolveTPLOSROnRandomSegments, SolvesAsASecondImplementationDoes)
{
    expectAsTheModel(&Literal::solveTPLOSR, &SegLegalizer::solveTPLOSR);
}

TEST(SolveTPLOSROnRandomSegments, TakesTheCheapestOfAllWaysAndOfEqualsTheHighestSolutionThenTheLeftmostPlace)
{
    expectTheCheapest(&Exhaustive::joint, &SegLegalizer::solveTPLOSR);
}

TEST(SolveTPLOSROnRandomSegments, WithOneSolutionPerCellPlacesAsTheOrderedProgramDoes)
{
    onRandomSegments([](RandomSegment& random) {
        if (random.wild) { // the programs differ in what they take for unreachable
            return;
        }
        for (Cell* cell : random.design.lut.cells) {
            cell->colors.resize(1);
            cell->stitchNums.resize(1);
        }
        for (auto& blocks : random.design.lut.distTable) {
            for (auto& block : blocks) {
                block.resize(1);
                block[0].resize(1);
            }
        }
        for (Component* comp : random.segment->components) {
            comp->solution = 0;
        }
        Literal model(random.design, *random.segment);
        model.solveOSR();
        SegLegalizer(&random.legalizer, random.segment).solveTPLOSR();
        EXPECT_EQ(random.places(), model.places());
    });
}

} // namespace
