// SPDX-License-Identifier: BSD-3-Clause
// The explicit graphs of the segment solver. They are the model that faster code is checked against.
#pragma once

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
