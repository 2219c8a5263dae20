// SPDX-License-Identifier: BSD-3-Clause
// The solver of one segment: colours and sites for its components, in their order.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "legalizer/graph.h"

class Cell;
class Design;
class Legalizer;
struct Component;
struct Net;
struct Segment;

namespace vireloce {
class FastRoad;
class Stretch;
struct GridPlace;
} // namespace vireloce

/// Solves one segment and writes the result into its components: solution, siteX and x. Positions are sites
/// from the segment's left end; a component at site s of width w ends at site s + w.
///
/// Life: constructed, solveStep1(), perhaps solveStep2(), destroyed.
///
/// Each program can take two roads that give the same result. A run takes the fast road (FastRoad). The graph
/// road builds an explicit graph, solves it and releases it: it is the model that the fast road is tested
/// against.
class SegLegalizer {
public:
    /// Placement methods that Design::algo chooses; any other number only fills in missing colours.
    enum Algo_e : int32_t {
        ALGO_JOINT = 0,    ///< sites and colours in one program
        ALGO_SPD = 1,      ///< colours first, then sites
        ALGO_GREEDY = 2,   ///< left to right, no way back
        ALGO_LDP = 3,      ///< local shifts with colours
        ALGO_LDP_FAST = 4, ///< the same, with pruning
    };

    /// @param owner   reaches the design, not owned
    /// @param solved  the segment, not owned
    SegLegalizer(Legalizer* owner, Segment* solved);
    ~SegLegalizer();

    SegLegalizer(const SegLegalizer&) = delete;
    SegLegalizer& operator=(const SegLegalizer&) = delete;

    /// Colours the segment, and places it too by all methods but ALGO_SPD.
    ///
    /// @return sites that the coloured components need beyond the segment's capacity; 0 for an empty segment
    int solveStep1();

    /// Places what is in the segment now.
    ///
    /// @return 1
    int solveStep2();

    /// Places from left to right: every component takes the first solution that needs the least gap
    /// to its left neighbour, and moves right if it is too close. The first one's solution is drawn by
    /// rand().
    void solveGreedy();

    /// Gives every component without a solution the first one that needs the least gap to its left
    /// neighbour. The first component is left as it is.
    void postGreedyColorAssignment();

    // --- colouring: keeps positions

    /// Chooses the colour solutions that cost least, those of the graph of initGraph_TPL().
    void solveTPL();

    /// Builds the colouring graph: a layer of solutions per component, edges between neighbours' solutions.
    void initGraph_TPL();

    /// Finds the cheapest path through the graph and writes its colours.
    void solveTPL_DP();

    // --- ordered placement: keeps colours

    /// Places the components on the sites that cost least, in their order, those of the grid of
    /// initGraph_OSR(). What the best path leaves out is parked.
    void solveOSR();

    /// Builds the placement grid: a row of end sites per component.
    void initGraph_OSR();

    /// Finds the cheapest path through the grid and writes its positions; what is not on it is parked.
    void solveOSR_DP();

    // --- joint placement and colouring

    /// Chooses sites and colour solutions together, those of the grid of initGraph_TPLOSR(). What the best
    /// path leaves out is parked and keeps its colour.
    void solveTPLOSR();

    /// Builds the joint grid: a row of end sites per component and solution.
    void initGraph_TPLOSR();

    /// Finds the cheapest path through the grid and writes it; what is not on it is parked, colours kept.
    void solveTPLOSR_DP();

    // --- local shifts

    /// Shifts every component by at most LDP_M + 1 sites to the left or LDP_M - 1 to the right, and chooses
    /// its solution. Where that is impossible, step 1 colours and any other step places the segment as a
    /// whole.
    void solveLdp(int step);

    /// As solveLdp(), leaving out states that are dearer than one of the same colour further left.
    void solveLdpFast(int step);

    // --- model

    /// Fills netFLRs for every net of the design.
    void initFLRs();

    /// Fills leftIDs and rightIDs of every component of the segment.
    void initLRIDs();

    /// initFLRs(), then initLRIDs(). Not part of a run.
    void initDataHPWL();

    /// Hands every edge to the node that it leaves, in the order of `edges`.
    void relationGraphNodes();

    /// Releases all nodes and edges.
    void cleanGraph();

    /// Node of nodeGrid by its row-major number; nullptr without a grid.
    ///
    /// @param id  below the number of nodes
    myNode* getMyNode(int id);

    /// Parks every component at the segment's right end, where it counts as overflow.
    void shift2RightBnd();

    /// Stitches of a solution, plus the weighted sites by which the component's centre leaves the fixed range
    /// of a net on the side on which it is the net's outermost component. Truncated after every net.
    ///
    /// @param comp    a component of the segment, after initLRIDs()
    /// @param site    its left end
    /// @param colour  its solution
    int32_t getEdgeCost(Component* comp, int site, int colour);

    /// Stitches of two neighbours plus the weighted sites that they need between them, truncated.
    int32_t getEdgeCost_TPL(Component* a, int colA, Component* b, int colB);

    /// Cost of two shifted, coloured neighbours; INFINITE_COST if they do not fit.
    ///
    /// @param a     left component
    /// @param colA  its solution
    /// @param offA  its shift from siteX, sites
    /// @param b     right component
    /// @param colB  its solution
    /// @param offB  its shift from siteX, sites
    int32_t getLdpCost(Component* a, int colA, int offA, Component* b, int colB, int offB);

    /// An older cost, by Legalizer::metric. Not part of a run.
    int32_t getEdgeCost_bak(Component* comp, int site, int colour);

    /// Places for an external graph library. They do nothing.
    ///@{
    void solveTPL_LEDA();
    void solveOSR_LEDA();
    void solveTPLOSR_LEDA();
    ///@}

    Legalizer* legalizer; ///< not owned
    Segment* segment;     ///< not owned

    /// [net id] left and right end of what a net has outside the segment, in sites of the segment and clamped
    /// to it; (-1, -1) if it has nothing outside.
    std::vector<std::pair<int32_t, int32_t>> netFLRs;

    std::vector<std::vector<myNode*>> nodeGrid; ///< [row][end site] nodes of a placement grid, owned
    myNode* endNode = nullptr;                  ///< end of a placement grid, owned
    std::vector<myNode*> nodes;                 ///< nodes of the colouring graph, owned
    std::vector<myEdge*> edges;                 ///< all edges, owned

    /// Most nodes and edges of one graph, and most states of the local shift program on the graph road. A
    /// segment that would need more ends the run with an error line, before memory is taken.
    static int64_t s_maxGraphSize;

    /// Whether all programs take the graph road. For comparisons.
    static bool s_useGraphs;

private:
    /// The design of the legalizer.
    Design& design() const;

    /// The library cell of a component.
    const Cell& cellOf(const Component& comp) const;

    /// Number of colour solutions of a component's cell.
    int32_t numColours(const Component& comp) const;

    /// Ends the run if a graph would be larger than s_maxGraphSize.
    void requireSize(int64_t size) const;

    /// Appends an edge.
    void addEdge(myNode* from, myNode* to, int32_t cost);

    /// Appends a row of numSites + 1 nodes to nodeGrid, with the edges along it.
    void addGridRow(Component* comp, int32_t colour);

    /// Makes the edge between grid rows that places a component.
    ///
    /// @param from  row of the left neighbour, or the start row
    /// @param to    row of the component
    /// @param site  left end of the component
    /// @param dist  sites between it and its left neighbour
    void addPlacement(const std::vector<myNode*>& from, const std::vector<myNode*>& to, int32_t site,
                      int32_t dist);

    /// As addPlacement(), for every site from the left.
    void addPlacements(const std::vector<myNode*>& from, const std::vector<myNode*>& to, int32_t dist);

    /// Whether the joint grid has any edges: waiting ones, or those to the end node.
    bool hasJointEdges() const;

    /// Makes the end node, with the next free id.
    void addEndNode();

    /// Cheapest paths from node 0 of nodeGrid.
    ///
    /// @param start  distance of a node that has not been reached
    /// @return [node id, the end node last] predecessor, -1 if none
    std::vector<int32_t> solveGrid(int32_t start);

    /// Puts a component on a site; left of site 0 it keeps its x, and siteX follows from that.
    void placeAt(Component& comp, int32_t site) const;

    /// The first solution of a component that needs the least gap to its left neighbour, and that
    /// gap; 0 and the largest integer if its cell has none.
    std::pair<int32_t, int32_t> closestSolution(const Component& left, const Component& comp) const;

    /// What the segment covers.
    vireloce::Stretch stretch() const;

    /// Fixed range of a net, see netFLRs.
    std::pair<int32_t, int32_t> fixedRange(const Net& net) const;

    class LocalShift;

    /// The local shift program with its way out where nothing fits.
    void solveLocalShift(int step, bool prune);

    /// The fast road of the placement that is under way, or one made for now.
    vireloce::FastRoad& fastRoad();

    /// Ends the run, for lack of memory.
    [[noreturn]] void endTooLarge(const std::string& what) const;

    /// Writes what the fast road found; what the path leaves out is parked. Ends the run if it found nothing
    /// for lack of memory.
    void writePlaces(const std::optional<std::span<const vireloce::GridPlace>>& places, bool colours) const;

    /// The local shift program on either road.
    ///
    /// @return whether anything fits, and was written
    ///@{
    bool shiftFast(bool prune);
    bool shiftByTable(bool prune);
    ///@}

    std::unique_ptr<vireloce::FastRoad> m_ownRoad; ///< outside of a placement
};
