// SPDX-License-Identifier: BSD-3-Clause
// The explicit graphs: their records, how they are walked and released, how large they may be.
#include "legalizer/graph.h"

#include <gtest/gtest.h>

#include <functional>

#include "legalizer/randomDesign.h"
#include "legalizer/roads.h"
#include "legalizer/segLegalizer.h"
#include "support/tinyDesign.h"

namespace {

using test::LimitGuard;
using test::RandomDesign;
using test::reportOf;
using test::reportOfEndedRun;
using test::TinyDesign;

TEST(MyNode, StandsForNothingUntilItIsFilled)
{
    const myNode node;
    EXPECT_EQ(node.compIdx, -1);
    EXPECT_EQ(node.site, -1);
    EXPECT_EQ(node.colorId, -1);
    EXPECT_EQ(node.comp, nullptr);
    EXPECT_TRUE(node.outEdges.empty());
}

class Graph : public testing::Test {
protected:
    /// Expects a solver without any node or edge.
    void expectEmpty()
    {
        EXPECT_TRUE(solver.nodeGrid.empty());
        EXPECT_TRUE(solver.nodes.empty());
        EXPECT_EQ(solver.endNode, nullptr);
        EXPECT_TRUE(solver.edges.empty());
    }

    myNode* newNode(int id)
    {
        auto* node = new myNode;
        node->id = id;
        return node;
    }

    /// A grid of so many rows of nodes, numbered row by row.
    void makeGrid(int rows, int rowLength)
    {
        for (int row = 0; row < rows; ++row) {
            solver.nodeGrid.emplace_back();
            for (int i = 0; i < rowLength; ++i) {
                solver.nodeGrid.back().push_back(newNode(row * rowLength + i));
            }
        }
    }

    void addEdge(myNode* from, myNode* to, int cost) { solver.edges.push_back(new myEdge{from, to, cost}); }

    ~Graph() override { solver.cleanGraph(); }

    TinyDesign tiny;
    Segment* segment = tiny.addSegment(0, 0, 4);
    SegLegalizer solver{&tiny.legalizer, segment};
};

TEST_F(Graph, SolverStartsWithItsSegmentAndNoGraph)
{
    EXPECT_EQ(solver.legalizer, &tiny.legalizer);
    EXPECT_EQ(solver.segment, segment);
    EXPECT_TRUE(solver.netFLRs.empty());
    expectEmpty();
}

TEST_F(Graph, RelationGivesEveryEdgeToTheNodeItLeavesInTheOrderOfTheEdges)
{
    makeGrid(1, 2);
    solver.nodes = {newNode(0), newNode(1)};
    solver.endNode = newNode(2);
    myNode* inGrid = solver.nodeGrid[0][0];
    addEdge(inGrid, solver.endNode, 1);
    addEdge(solver.nodes[0], solver.nodes[1], 2);
    addEdge(inGrid, solver.nodeGrid[0][1], 3);
    addEdge(inGrid, solver.endNode, 4);
    solver.relationGraphNodes();
    EXPECT_EQ(inGrid->outEdges, (std::vector<myEdge*>{solver.edges[0], solver.edges[2], solver.edges[3]}));
    EXPECT_EQ(solver.nodes[0]->outEdges, std::vector<myEdge*>{solver.edges[1]});
    EXPECT_TRUE(solver.nodes[1]->outEdges.empty());
    EXPECT_TRUE(solver.endNode->outEdges.empty());
}

TEST_F(Graph, RelationForgetsWhatTheNodesHadBefore)
{
    makeGrid(1, 1);
    solver.nodes = {newNode(0)};
    solver.endNode = newNode(1);
    myEdge stale{nullptr, nullptr, 0};
    for (myNode* node : {solver.nodeGrid[0][0], solver.nodes[0], solver.endNode}) {
        node->outEdges.push_back(&stale);
    }
    solver.relationGraphNodes();
    for (const myNode* node : {solver.nodeGrid[0][0], solver.nodes[0], solver.endNode}) {
        EXPECT_TRUE(node->outEdges.empty());
    }
    addEdge(solver.nodes[0], solver.endNode, 1);
    solver.relationGraphNodes();
    solver.relationGraphNodes();
    EXPECT_EQ(solver.nodes[0]->outEdges, solver.edges);
}

TEST_F(Graph, CleaningReleasesEveryNodeAndEdge)
{
    makeGrid(2, 3);
    solver.nodes = {newNode(0), newNode(1)};
    solver.endNode = newNode(6);
    addEdge(solver.nodes[0], solver.nodes[1], 0);
    addEdge(solver.nodeGrid[0][0], solver.endNode, 0);
    solver.cleanGraph();
    expectEmpty();
}

TEST_F(Graph, CleaningAnEmptyGraphDoesNothing)
{
    solver.cleanGraph();
    expectEmpty();
}

TEST_F(Graph, EveryProgramReleasesItsGraph)
{
    const int cell = tiny.addCell(1, {0, 1});
    tiny.addComponent(segment, cell, 0);
    tiny.addComponent(segment, cell, 2);
    for (const int algo : {0, 1, 2, 3, 4}) {
        tiny.design.algo = algo;
        solver.solveStep1();
        expectEmpty();
        solver.solveStep2();
        expectEmpty();
    }
}

TEST_F(Graph, GetMyNodeWithoutRowsOrWithEmptyRowsIsNone)
{
    EXPECT_EQ(solver.getMyNode(0), nullptr);
    solver.nodeGrid.resize(2);
    EXPECT_EQ(solver.getMyNode(0), nullptr);
    EXPECT_EQ(solver.getMyNode(1), nullptr);
}

TEST_F(Graph, GetMyNodeCountsRowByRow)
{
    makeGrid(3, 4);
    for (int id = 0; id < 12; ++id) {
        EXPECT_EQ(solver.getMyNode(id)->id, id);
        EXPECT_EQ(solver.getMyNode(id),
                  solver.nodeGrid[static_cast<size_t>(id / 4)][static_cast<size_t>(id % 4)]);
    }
}

TEST(GraphOfRandomDesigns, EdgesRunFromLowerToHigherIdsAndGetMyNodeFindsEveryId)
{
    using Build = void (SegLegalizer::*)();
    for (uint32_t seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        for (const Build build :
             {&SegLegalizer::initGraph_TPL, &SegLegalizer::initGraph_OSR, &SegLegalizer::initGraph_TPLOSR}) {
            SegLegalizer solver(&tiny.legalizer, tiny.anySegment());
            solver.initDataHPWL();
            (solver.*build)();
            size_t outEdges = 0;
            for (const myEdge* edge : solver.edges) {
                EXPECT_LT(edge->from->id, edge->to->id);
            }
            for (size_t i = 0; i < solver.nodes.size(); ++i) {
                EXPECT_EQ(solver.nodes[i]->id, static_cast<int>(i));
                outEdges += solver.nodes[i]->outEdges.size();
            }
            int id = 0;
            for (const auto& row : solver.nodeGrid) {
                for (const myNode* node : row) {
                    EXPECT_EQ(node->id, id);
                    EXPECT_EQ(solver.getMyNode(id++), node);
                    outEdges += node->outEdges.size();
                }
            }
            EXPECT_EQ(outEdges, solver.edges.size());
            if (solver.endNode != nullptr) {
                EXPECT_EQ(solver.endNode->id, id);
            }
            solver.cleanGraph();
        }
    }
}

TEST(ExternalGraphLibrary, PlacesForItDoNothing)
{
    RandomDesign tiny(4);
    const auto before = tiny.places();
    for (Segment* segment : tiny.design.segments) {
        SegLegalizer solver(&tiny.legalizer, segment);
        EXPECT_EQ(reportOf([&] {
                      solver.solveTPL_LEDA();
                      solver.solveOSR_LEDA();
                      solver.solveTPLOSR_LEDA();
                  }),
                  "");
        EXPECT_TRUE(solver.nodes.empty() && solver.nodeGrid.empty() && solver.edges.empty());
        EXPECT_TRUE(solver.netFLRs.empty());
    }
    EXPECT_EQ(tiny.places(), before);
}

// --- the limit

/// A program on a segment of 4 sites with a cell of 2 and a cell of 3 solutions.
struct LimitCase {
    const char* name;
    std::function<void(SegLegalizer&)> solve;
    int size; ///< of what it builds, as it is counted against the limit
};

void PrintTo(const LimitCase& row, std::ostream* out)
{
    *out << row.name;
}

class GraphLimit : public testing::TestWithParam<LimitCase> {
protected:
    GraphLimit()
    {
        LDP_M = 2;
        tiny.addComponent(segment, tiny.addCell(1, {0, 0}), 0);
        tiny.addComponent(segment, tiny.addCell(1, {0, 0, 0}), 2);
    }

    test::RoadGuard road{/*graphs=*/true};
    TinyDesign tiny;
    Segment* segment = tiny.addSegment(-570, 1900, 4);
    SegLegalizer solver{&tiny.legalizer, segment};
};

TEST_P(GraphLimit, GraphOfJustThatSizeIsSolved)
{
    const LimitGuard limit(GetParam().size);
    EXPECT_EQ(reportOf([&] { GetParam().solve(solver); }), "");
}

TEST_P(GraphLimit, LargerGraphEndsTheRunBeforeItIsBuilt)
{
    const LimitGuard limit(GetParam().size - 1);
    const auto before = tiny.places();
    EXPECT_EQ(reportOfEndedRun([&] { GetParam().solve(solver); }),
              "ERROR| the segment at (-570, 1900) of 4 sites and 2 components is too large to solve: " +
                  std::to_string(GetParam().size) + " states of at most " +
                  std::to_string(GetParam().size - 1) + "\n");
    EXPECT_TRUE(solver.nodes.empty() && solver.nodeGrid.empty() && solver.edges.empty());
    EXPECT_EQ(tiny.places(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Graph, GraphLimit,
    testing::Values(
        // Nodes and edges: start, end, solutions; to the first, between them, from the last.
        LimitCase{"Colouring", [](SegLegalizer& s) { s.solveTPL(); }, 2 + 5 + 2 + 2 * 3 + 3},
        // Per site: two edges and more than two nodes for each row, at most.
        LimitCase{"Placement", [](SegLegalizer& s) { s.solveOSR(); }, (2 * 2 + 1) * 5 * 2},
        // Per site: nodes and waiting edges of the rows, placement edges between them.
        LimitCase{"Joint", [](SegLegalizer& s) { s.solveTPLOSR(); }, (2 * (1 + 5) + 2 + 2 * 3) * 5},
        // Components, the most solutions, shifts.
        LimitCase{"LocalShift", [](SegLegalizer& s) { s.solveLdp(1); }, 2 * 3 * 5},
        LimitCase{"LocalShiftFast", [](SegLegalizer& s) { s.solveLdpFast(2); }, 2 * 3 * 5}),
    [](const auto& row) { return row.param.name; });

TEST(GraphLimitDefault, IsFarAboveARealSegment)
{
    // 300 sites, 60 components of 8 solutions, the joint program.
    EXPECT_GT(SegLegalizer::s_maxGraphSize, (2 * (1 + 60 * 8) + 60 * 64) * 301);
}

} // namespace
