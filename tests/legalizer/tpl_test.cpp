// SPDX-License-Identifier: BSD-3-Clause
// The colouring program: its graph, its choice among equals, and all of it against two other ways to the
// same.
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

class InitGraphTPL : public test::ProgramTest {};
class SolveTPL : public test::ProgramTest {};

// --- the graph

TEST_F(InitGraphTPL, BuildsNothingForAnEmptySegment)
{
    solver.initGraph_TPL();
    EXPECT_TRUE(nodesOf(solver).empty());
    EXPECT_TRUE(solver.edges.empty());
}

TEST_F(InitGraphTPL, HasANodePerComponentAndSolutionBetweenStartAndEnd)
{
    const Component* a = add(1, {0, 0});
    const Component* b = add(2, {0});
    const Component* c = add(1, {0, 0, 0});
    solver.initGraph_TPL();
    EXPECT_EQ(nodesOf(solver), (std::vector<FlatNode>{{0, -1, -1, -1, nullptr},
                                                      {1, -1, -1, 0, a},
                                                      {2, -1, -1, 1, a},
                                                      {3, -1, -1, 0, b},
                                                      {4, -1, -1, 0, c},
                                                      {5, -1, -1, 1, c},
                                                      {6, -1, -1, 2, c},
                                                      {7, -1, -1, -1, nullptr}}));
    EXPECT_EQ(solver.nodes.size(), 8U);
}

TEST_F(InitGraphTPL, AppendsStartEdgesThenPairsThenEndEdgesFromTheHighestSolutionDown)
{
    add(1, {1, 2});
    add(1, {4, 8});
    add(1, {16, 32});
    solver.initGraph_TPL();
    EXPECT_EQ(edgesOf(solver), (Edges{{0, 1, 0},
                                      {0, 2, 0},
                                      {1, 3, 5},
                                      {1, 4, 9},
                                      {2, 3, 6},
                                      {2, 4, 10},
                                      {3, 5, 20},
                                      {3, 6, 36},
                                      {4, 5, 24},
                                      {4, 6, 40},
                                      {6, 7, 0},
                                      {5, 7, 0}}));
}

TEST_F(InitGraphTPL, GivesTheEdgesToTheNodesThatTheyLeave)
{
    add(1, {0});
    add(1, {0, 0});
    solver.initGraph_TPL();
    EXPECT_EQ(solver.nodes[1]->outEdges, (std::vector<myEdge*>{solver.edges[1], solver.edges[2]}));
}

TEST_F(InitGraphTPL, CostsOfAPairAreStitchesAndWeightedSpacingTruncatedTogether)
{
    const Component* a = add(1, {1});
    const Component* b = add(1, {2, 2});
    keepApart(a, 0, b, 0, 2);
    keepApart(a, 0, b, 1, 3);
    solver.initGraph_TPL();
    EXPECT_EQ(solver.edges[1]->cost, 5); // 3 + 2.8
    EXPECT_EQ(solver.edges[2]->cost, 7); // 3 + 4.2
}

TEST_F(InitGraphTPL, SpacingIsTheTablesEntryDividedBySiteWidthAndRoundedUp)
{
    WEIGHT_WRLENG = 1.0F;
    const Component* a = add(1, {0});
    const Component* b = add(1, {0, 0, 0, 0});
    const Ints entries{0, 1, 190, 191};
    for (int j = 0; j < 4; ++j) {
        tiny.setDist(a->cellIdx, b->cellIdx, 0, j, entries[static_cast<size_t>(j)]);
    }
    solver.initGraph_TPL();
    EXPECT_EQ(edgesOf(solver), (Edges{{0, 1, 0},
                                      {1, 2, 0},
                                      {1, 3, 1},
                                      {1, 4, 1},
                                      {1, 5, 2},
                                      {5, 6, 0},
                                      {4, 6, 0},
                                      {3, 6, 0},
                                      {2, 6, 0}}));
}

TEST_F(InitGraphTPL, StitchesOfAPairWrapAroundIn32Bits)
{
    add(1, {std::numeric_limits<int>::max()});
    add(1, {1});
    solver.initGraph_TPL();
    EXPECT_EQ(solver.edges[1]->cost, std::numeric_limits<int>::min());
}

TEST_F(InitGraphTPL, HasNoPairEdgesBesideAComponentWithoutSolutions)
{
    add(1, {0});
    add(1, {});
    add(1, {0, 0});
    solver.initGraph_TPL();
    EXPECT_EQ(edgesOf(solver), (Edges{{0, 1, 0}, {3, 4, 0}, {2, 4, 0}}));
}

TEST_F(InitGraphTPL, HasNoEndEdgesWhenTheLastComponentHasNoSolutions)
{
    add(1, {0, 0});
    add(1, {});
    solver.initGraph_TPL();
    EXPECT_EQ(edgesOf(solver), (Edges{{0, 1, 0}, {0, 2, 0}}));
}

TEST(InitGraphTPLOnRandomSegments, AppendsTheEdgesThatTheRulesList)
{
    onRandomSegments([](RandomSegment& random) {
        const Literal model(random.design, *random.segment);
        SegLegalizer solver(&random.legalizer, random.segment);
        solver.initGraph_TPL();
        EXPECT_EQ(edgesOf(solver), model.colouringEdges());
        solver.cleanGraph();
    });
}

// --- the program

TEST_F(SolveTPL, LeavesAnEmptySegmentAlone)
{
    const Component* elsewhere = tiny.addComponent(nullptr, tiny.addCell(1, {0, 0}), 0);
    solver.solveTPL();
    EXPECT_EQ(elsewhere->solution, 0);
    EXPECT_TRUE(nodesOf(solver).empty());
}

TEST_F(SolveTPL, WithoutAGraphTheProgramLeavesColoursAlone)
{
    add(1, {0, 0}, 0, -1);
    solver.solveTPL_DP();
    EXPECT_EQ(solutions(), Ints{-1});
}

TEST_F(SolveTPL, OneComponentGetsItsHighestSolutionWhateverTheStitches)
{
    add(1, {0, 5, 9});
    solver.solveTPL();
    EXPECT_EQ(solutions(), Ints{2});
}

TEST_F(SolveTPL, TwoComponentsWithOneSolutionEachTakeThose)
{
    add(1, {7}, 0, -1);
    add(1, {7}, 1, -1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{0, 0}));
}

TEST_F(SolveTPL, AComponentWithoutSolutionsAtTheEndLeavesAllColoursAsTheyWere)
{
    add(1, {0, 0}, 0, -1);
    add(1, {0, 0}, 1, 0);
    add(1, {}, 2, -1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{-1, 0, -1}));
}

TEST_F(SolveTPL, AComponentWithoutSolutionsIsLeftAsItWas)
{
    add(1, {}, 0, 3);
    solver.solveTPL();
    EXPECT_EQ(solutions(), Ints{3});
}

TEST_F(SolveTPL, ComponentsRightOfOneWithoutSolutionsAreColouredOverFreeEdges)
{
    add(1, {0, 0}, 0, -1);
    add(1, {}, 1, -1);
    add(1, {0, 0}, 2, -1);
    add(1, {0, 0}, 3, -1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{-1, -1, 1, 1}));
}

TEST_F(SolveTPL, NoPathThatNeverReachedItsStartRunsOverAnEdgeThatCosts)
{
    add(1, {}, 0, -1);
    add(1, {0, 0}, 1, -1);
    add(1, {1, 1}, 2, -1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{-1, -1, 1}));
}

TEST_F(SolveTPL, CheaperSolutionsWinWhateverTheirIndex)
{
    add(1, {0, 1});
    add(1, {1, 0, 1}, 1, 2);
    add(1, {0, 1}, 2, 1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{0, 1, 0}));
}

TEST_F(SolveTPL, NeedingLessSpaceWinsOverAnEqualNumberOfStitches)
{
    const Component* a = add(1, {0, 0});
    const Component* b = add(1, {0, 0}, 1);
    keepApart(a, 0, b, 1, 1);
    keepApart(a, 1, b, 0, 1);
    keepApart(a, 1, b, 1, 1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{0, 0}));
}

TEST_F(SolveTPL, StitchesOfAMiddleComponentCountTwice)
{
    const Component* a = add(1, {0});
    const Component* b = add(1, {0, 1}, 1);
    add(1, {0}, 2);
    keepApart(a, 0, b, 0, 1); // costs 1; the other solution's stitch costs 2, and would win a tie
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{0, 0, 0}));
}

TEST_F(SolveTPL, OfEquallyCheapSolutionsOfALeftNeighbourTheHighestWins)
{
    add(1, {0, 0, 1});
    add(1, {0}, 1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{1, 0}));
}

TEST_F(SolveTPL, OfEquallyCheapSolutionsOfTheLastComponentTheHighestWins)
{
    add(1, {0});
    add(1, {2, 1, 1, 2}, 1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{0, 2}));
}

TEST_F(SolveTPL, AmongEqualsTheRightComponentChoosesFirst)
{
    const Component* a = add(1, {0, 0});
    const Component* b = add(1, {0, 0}, 1);
    keepApart(a, 1, b, 1, 1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{0, 1}));
}

TEST_F(SolveTPL, APathAsDearAsNoPathIsTaken)
{
    add(1, {1073741760}, 0, -1);
    add(1, {0}, 1, -1);
    add(1, {63}, 2, -1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{0, 0, 0}));
}

TEST_F(SolveTPL, APathDearerThanNoPathColoursTheLastComponentOnly)
{
    add(1, {1073741760}, 0, -1);
    add(1, {0}, 1, -1);
    add(1, {64}, 2, -1);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{-1, -1, 0}));
}

TEST_F(SolveTPL, CostsOfAPathWrapAroundIn32Bits)
{
    add(1, {0});
    add(1, {0, 1000000000}, 1);
    add(1, {200000000}, 2);
    solver.solveTPL();
    EXPECT_EQ(solutions(), (Ints{0, 1, 0})) << "1.0e9 + 1.2e9 wraps to a negative cost";
}

TEST_F(SolveTPL, KeepsPositions)
{
    Component* comp = add(2, {0, 0}, 3);
    comp->x += 7;
    solver.solveTPL();
    EXPECT_EQ(tiny.places(), (Places{{1, 3, segment->x + 3 * SITE_WIDTH + 7, segment->y}}));
}

TEST_F(SolveTPL, ReleasesItsGraph)
{
    add(1, {0});
    solver.solveTPL();
    EXPECT_TRUE(nodesOf(solver).empty());
    EXPECT_TRUE(solver.edges.empty());
}

TEST(SolveTPLOnRandomSegments, ColoursAsASecondImplementationDoes)
{
    expectAsTheModel(&Literal::solveTPL, &SegLegalizer::solveTPL);
}

TEST(SolveTPLOnRandomSegments, TakesTheCheapestOfAllColouringsAndOfEqualsTheHighestFromTheRight)
{
    expectTheCheapest(&Exhaustive::colouring, &SegLegalizer::solveTPL);
}

} // namespace
