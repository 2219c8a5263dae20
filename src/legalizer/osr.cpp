// SPDX-License-Identifier: BSD-3-Clause
// The ordered placement program: one site per component, order and colours kept.
#include "db/design.h"
#include "legalizer/fastRoad.h"
#include "legalizer/gridProblem.h"
#include "legalizer/segLegalizer.h"

void SegLegalizer::solveOSR()
{
    if (segment->components.empty()) {
        return;
    }
    if (!s_useGraphs) {
        postGreedyColorAssignment();  // a neighbour's colour decides the gap to it
        if (segment->numSites >= 0) { // else there are no nodes, and nothing is written
            writePlaces(fastRoad().placeOrdered(*segment), /*colours=*/false);
        }
        return;
    }
    initFLRs();
    initLRIDs();
    initGraph_OSR();
    solveOSR_DP();
    cleanGraph();
}

void SegLegalizer::initGraph_OSR()
{
    if (segment->components.empty()) {
        return;
    }
    const auto numComps = static_cast<int32_t>(segment->components.size());
    requireSize((int64_t{2} * numComps + 1) * (int64_t{segment->numSites} + 1) * 2);

    postGreedyColorAssignment(); // a neighbour's colour decides the gap to it

    addGridRow(nullptr, -1);
    for (Component* comp : segment->components) {
        addGridRow(comp, comp->solution);
    }
    addEndNode();
    const Component* left = nullptr;
    size_t row = 1;
    for (Component* comp : segment->components) {
        const int32_t dist =
            left == nullptr ? 0 : design().safeSites(*left, left->solution, *comp, comp->solution);
        addPlacements(nodeGrid[row - 1], nodeGrid[row], dist);
        left = comp;
        ++row;
    }
    for (int32_t r = 1; r <= numComps && !nodeGrid[0].empty(); ++r) {
        addEdge(nodeGrid[static_cast<size_t>(r)].back(), endNode,
                vireloce::endCost(segment->numSites, numComps + 1 - r));
    }
    relationGraphNodes();
}

void SegLegalizer::solveOSR_DP()
{
    if (edges.empty() || nodeGrid.empty()) {
        return;
    }
    shift2RightBnd();
    const std::vector<int32_t> pred = solveGrid(vireloce::ORDERED_UNREACHED);
    // The waiting nodes of a row come first on the way back, so the last node written is where the component
    // was placed. The start node, which has no predecessor, is never written.
    int32_t i = pred.back();
    while (i >= 0 && pred[static_cast<size_t>(i)] >= 0) {
        const myNode* node = getMyNode(i);
        if (node->comp != nullptr) {
            placeAt(*node->comp, node->site - cellOf(*node->comp).siteWidth);
        }
        i = pred[static_cast<size_t>(i)];
    }
}
