// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <list>

struct Component;

/// A stretch of a row that no macro covers.
struct Segment {
    std::list<Component*> components; ///< sorted by siteX, not owned; a list, for cells come and go singly
    int32_t id = 0;                   ///< index in Design::segments
    int32_t x = 0;                    ///< left end, DBU
    int32_t y = 0;                    ///< bottom edge, DBU, that of its row
    int32_t numSites = 0;             ///< capacity, sites

    /// x of its right end, DBU.
    int32_t rightEnd(int32_t siteWidth) const { return x + numSites * siteWidth; }
};
