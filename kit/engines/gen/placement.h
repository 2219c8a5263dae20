// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kit/engines/gen/cellLibrary.h"
#include "kit/engines/gen/floorplan.h"
#include "kit/engines/gen/generate.h"

namespace kit::gen {

/// A cell in its row.
struct Placed {
    int32_t row = 0;
    int32_t site = 0; ///< left edge, sites from the left end of the row
    uint16_t type = 0;
    bool mirrored = false;
};

/// Rows with cells in them.
struct Placement {
    Floorplan plan;
    std::vector<Placed> cells; ///< by row, then from left to right
    int64_t cellSites = 0;     ///< width of all cells together, sites
};

/// Places all cells: none overlaps another, each lies on one stretch, the free sites are spread at random.
///
/// Every stretch has room for the spacings that its cells need in their best colouring without stitches. So a
/// placer that keeps the cells in their stretches finds a solution. Mirroring does not enter: the placer
/// reads the spacings of unmirrored cells.
///
/// @param types    [component] index of its cell
/// @param library  the cells
Placement placeAll(const std::vector<uint16_t>& types, const std::vector<LibraryCell>& library,
                   const Options& options);

} // namespace kit::gen
