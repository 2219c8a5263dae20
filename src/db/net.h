// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct Component;
struct Pin;

/// A net of two or more members.
struct Net {
    int32_t id = 0;                     ///< index in Design::nets
    std::vector<Pin*> pins;             ///< fixed members, netlist order, not owned
    std::vector<Component*> components; ///< placed members, netlist order, not owned
    int32_t boxXl = 0;                  ///< bounding box, left edge, DBU; zero until evaluated
    int32_t boxYl = 0;                  ///< bottom edge, DBU
    int32_t boxXh = 0;                  ///< right edge, DBU
    int32_t boxYh = 0;                  ///< top edge, DBU

    /// Nets lie side by side in memory.
    ///@{
    static void* operator new(size_t size);
    static void operator delete(void* place);
    ///@}
};
