// SPDX-License-Identifier: BSD-3-Clause
// The explicit graphs of the segment solver. They are the model that faster code is checked against.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct Component;
struct myNode;

/// An edge, from the left to the right: node ids increase along it.
struct myEdge {
    myNode* from;
    myNode* to;
    int32_t cost; ///< dimensionless
};

/// A vertex.
struct myNode {
    int32_t id = 0;                ///< position in `nodes`, or row-major number in `nodeGrid`
    int32_t compIdx = -1;          ///< row in `nodeGrid`; -1 elsewhere
    int32_t site = -1;             ///< end site in `nodeGrid`; -1 elsewhere
    int32_t colorId = -1;          ///< colour solution; -1 where there is none
    Component* comp = nullptr;     ///< not owned; nullptr for start, start row and end
    std::vector<myEdge*> outEdges; ///< edges that leave the node, not owned
};

namespace vireloce {

/// Cheapest paths from node 0, with sums modulo 2^32.
///
/// Ids increase along every edge, so their order is a topological one. Required: a node that was never
/// reached is relaxed like any other, and of equally cheap predecessors the last one wins.
///
/// @param count   nodes that distances are kept of
/// @param start   distance of a node that has not been reached
/// @param nodeAt  called as nodeAt(id) for the node of an id; nullptr for one without edges
/// @return [count] predecessor, -1 if none
///
/// Source: shortest path in a directed acyclic graph by topological order (Cormen et al., Introduction to
///         Algorithms).
template <class NodeAt>
std::vector<int32_t> cheapestPaths(size_t count, int32_t start, NodeAt nodeAt)
{
    std::vector<int32_t> dist(count, start);
    std::vector<int32_t> pred(count, -1);
    dist[0] = 0;
    for (size_t u = 0; u < count; ++u) {
        const myNode* node = nodeAt(u);
        if (node == nullptr) {
            continue;
        }
        for (const myEdge* edge : node->outEdges) {
            const int32_t candidate = dist[u] + edge->cost;
            const auto v = static_cast<size_t>(edge->to->id);
            if (dist[v] >= candidate) {
                dist[v] = candidate;
                pred[v] = static_cast<int32_t>(u);
            }
        }
    }
    return pred;
}

} // namespace vireloce
