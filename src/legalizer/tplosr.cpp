// SPDX-License-Identifier: BSD-3-Clause
// The joint program: one site and one colour solution per component, order kept.
#include <algorithm>
#include <iterator>

#include "db/design.h"
#include "legalizer/fastRoad.h"
#include "legalizer/gridProblem.h"
#include "legalizer/segLegalizer.h"
#include "qlib/exact.h"

void SegLegalizer::solveTPLOSR()
{
    if (segment->components.empty()) {
        return;
    }
    if (!s_useGraphs) {
        if (hasJointEdges()) { // else nothing is written
            writePlaces(fastRoad().placeJoint(*segment), /*colours=*/true);
        }
        return;
    }
    initFLRs();
    initLRIDs();
    initGraph_TPLOSR();
    solveTPLOSR_DP();
    cleanGraph();
}

bool SegLegalizer::hasJointEdges() const
{
    return segment->numSites > 0 ||
           (segment->numSites == 0 &&
            std::any_of(segment->components.begin(), segment->components.end(),
                        [this](const Component* comp) { return numColours(*comp) > 0; }));
}

void SegLegalizer::initGraph_TPLOSR()
{
    if (segment->components.empty()) {
        return;
    }
    int64_t rows = 1;
    int64_t rowPairs = 0;
    int64_t before = 1;
    for (const Component* comp : segment->components) {
        rows += numColours(*comp);
        rowPairs += before * numColours(*comp);
        before = numColours(*comp);
    }
    requireSize((2 * rows + rowPairs) * (int64_t{segment->numSites} + 1));

    addGridRow(nullptr, -1);
    for (Component* comp : segment->components) {
        for (int32_t colour = 0; colour < numColours(*comp); ++colour) {
            addGridRow(comp, colour);
        }
    }
    addEndNode();

    // The row of solution j of a component is the j-th of the component's rows.
    Component* first = segment->components.front();
    for (int32_t site = 0; site + cellOf(*first).siteWidth <= segment->numSites; ++site) {
        for (int32_t j = 0; j < numColours(*first); ++j) {
            addPlacement(nodeGrid[0], nodeGrid[1 + static_cast<size_t>(j)], site, /*dist=*/0);
        }
    }
    size_t row = 1 + static_cast<size_t>(numColours(*first));
    const Component* left = first;
    for (auto it = std::next(segment->components.begin()); it != segment->components.end(); ++it) {
        const size_t leftRow = row - static_cast<size_t>(numColours(*left));
        for (int32_t i = 0; i < numColours(*left); ++i) {
            for (int32_t j = 0; j < numColours(**it); ++j) {
                addPlacements(nodeGrid[leftRow + static_cast<size_t>(i)],
                              nodeGrid[row + static_cast<size_t>(j)], design().safeSites(*left, i, **it, j));
            }
        }
        left = *it;
        row += static_cast<size_t>(numColours(*left));
    }
    row = 1;
    auto notBefore = static_cast<int32_t>(segment->components.size());
    for (const Component* comp : segment->components) {
        for (int32_t j = 0; j < numColours(*comp) && !nodeGrid[0].empty(); ++j) {
            addEdge(nodeGrid[row++].back(), endNode, vireloce::endCost(segment->numSites, notBefore));
        }
        --notBefore;
    }
    relationGraphNodes();
}

void SegLegalizer::solveTPLOSR_DP()
{
    if (edges.empty() || nodeGrid.empty() || nodeGrid[0].empty()) {
        return;
    }
    shift2RightBnd();
    const std::vector<int32_t> pred = solveGrid(vireloce::INFINITE_COST);
    int32_t i = pred.back();
    while (i >= 0 && pred[static_cast<size_t>(i)] >= 0) {
        const int32_t before = pred[static_cast<size_t>(i)];
        const myNode* node = getMyNode(i);
        // Another row before it: the component was placed here, it did not wait.
        if (node->comp != nullptr && node->compIdx != getMyNode(before)->compIdx) {
            node->comp->solution = node->colorId;
            placeAt(*node->comp, node->site - cellOf(*node->comp).siteWidth);
        }
        i = before;
    }
}
