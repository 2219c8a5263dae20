// SPDX-License-Identifier: BSD-3-Clause
// Building, walking and releasing the explicit graphs.
#include "legalizer/graph.h"

#include "db/component.h"
#include "db/segment.h"
#include "legalizer/segLegalizer.h"
#include "lut/cell.h"

void SegLegalizer::addEdge(myNode* from, myNode* to, int32_t cost)
{
    edges.push_back(new myEdge{from, to, cost});
}

void SegLegalizer::addGridRow(Component* comp, int32_t colour)
{
    const auto rowIndex = static_cast<int32_t>(nodeGrid.size());
    const int32_t rowLength = segment->numSites + 1;
    std::vector<myNode*>& row = nodeGrid.emplace_back();
    for (int32_t site = 0; site < rowLength; ++site) {
        auto* node = new myNode;
        node->id = rowIndex * rowLength + site;
        node->compIdx = rowIndex;
        node->site = site;
        node->colorId = colour;
        node->comp = comp;
        row.push_back(node);
    }
    for (int32_t site = 1; site < rowLength; ++site) { // the component may end at a site before
        addEdge(row[static_cast<size_t>(site) - 1], row[static_cast<size_t>(site)], 0);
    }
}

void SegLegalizer::addPlacement(const std::vector<myNode*>& from, const std::vector<myNode*>& to,
                                int32_t site, int32_t dist)
{
    Component* comp = to[0]->comp;
    const int32_t end = site + cellOf(*comp).siteWidth;
    addEdge(from[static_cast<size_t>(site - dist)], to[static_cast<size_t>(end)],
            getEdgeCost(comp, site, to[0]->colorId));
}

void SegLegalizer::addPlacements(const std::vector<myNode*>& from, const std::vector<myNode*>& to,
                                 int32_t dist)
{
    const int32_t width = to.empty() ? 0 : cellOf(*to[0]->comp).siteWidth;
    const int32_t lastSite = segment->numSites - width; // both 0 or more; a sum with dist could wrap around
    for (int32_t site = dist; site <= lastSite; ++site) {
        addPlacement(from, to, site, dist);
    }
}

void SegLegalizer::addEndNode()
{
    endNode = new myNode;
    endNode->id = static_cast<int32_t>(nodeGrid.size()) * (segment->numSites + 1);
}

void SegLegalizer::relationGraphNodes()
{
    for (const std::vector<myNode*>& row : nodeGrid) {
        for (myNode* node : row) {
            node->outEdges.clear();
        }
    }
    for (myNode* node : nodes) {
        node->outEdges.clear();
    }
    if (endNode != nullptr) {
        endNode->outEdges.clear();
    }
    for (myEdge* edge : edges) {
        edge->from->outEdges.push_back(edge);
    }
}

void SegLegalizer::cleanGraph()
{
    for (const std::vector<myNode*>& row : nodeGrid) {
        for (myNode* node : row) {
            delete node;
        }
    }
    nodeGrid.clear();
    for (myNode* node : nodes) {
        delete node;
    }
    nodes.clear();
    delete endNode;
    endNode = nullptr;
    for (myEdge* edge : edges) {
        delete edge;
    }
    edges.clear();
}

myNode* SegLegalizer::getMyNode(int id)
{
    if (nodeGrid.empty() || nodeGrid[0].empty()) {
        return nullptr;
    }
    const auto rowLength = static_cast<int>(nodeGrid[0].size());
    return nodeGrid[static_cast<size_t>(id / rowLength)][static_cast<size_t>(id % rowLength)];
}

std::vector<int32_t> SegLegalizer::solveGrid(int32_t start)
{
    const size_t count = nodeGrid.size() * nodeGrid[0].size() + 1;
    return vireloce::cheapestPaths(count, start, [this, count](size_t u) {
        return u + 1 < count ? getMyNode(static_cast<int>(u)) : endNode;
    });
}
