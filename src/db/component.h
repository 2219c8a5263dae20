// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct Net;

/// A placed standard-cell instance.
struct Component {
    /// Orientations that the placer tells apart.
    enum Orient_e : int32_t {
        N = 0,  ///< unflipped
        FN = 1, ///< mirrored left to right
    };

    std::vector<int32_t> leftIDs;  ///< ids of the nets whose leftmost member in the segment this is
    std::vector<int32_t> rightIDs; ///< ids of the nets whose rightmost member in the segment this is
    std::vector<Net*> nets;        ///< its nets, one entry per membership, not owned
    std::string name;              ///< instance name
    std::string cellName;          ///< name of its library cell
    int32_t cellIdx = 0;           ///< index of its cell in LUTable::cells, -1 if unknown
    int32_t solution = 0;          ///< index of its colour solution; negative: none yet
    std::string orientName;        ///< orientation as in the placement file
    Orient_e orient = N;           ///< orientation by s_orientMap
    int32_t siteX = 0;             ///< position, sites from the left end of its segment
    int32_t x = 0;                 ///< left edge, DBU
    int32_t y = 0;                 ///< bottom edge, DBU
    int32_t id = -1;               ///< index in Design::components during a placement

    /// Orientation text to orientation, one map for the process.
    ///
    /// The design enters "N" and "FN". Required: any other text is entered when it is first met, as N: the
    /// placer knows unflipped and flipped cells only.
    static std::map<std::string, Orient_e> s_orientMap;

    /// The order of components in a segment: strictly by siteX, equals in no order.
    static bool bySiteX(const Component* a, const Component* b) { return a->siteX < b->siteX; }

    /// Components lie side by side in memory.
    ///@{
    static void* operator new(size_t size);
    static void operator delete(void* place);
    ///@}
};
