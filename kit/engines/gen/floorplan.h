// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

#include "kit/engines/gen/generate.h"

namespace kit::gen {

/// A macro, aligned to sites and rows.
struct MacroBox {
    int32_t site = 0;  ///< left edge, sites from the left end of the rows
    int32_t row = 0;   ///< bottom row
    int32_t sites = 0; ///< width, sites
    int32_t rows = 0;  ///< height, rows
};

/// A stretch of a row between macros.
struct Stretch {
    int32_t row = 0;
    int32_t site = 0;  ///< left end, sites from the left end of the row
    int32_t sites = 0; ///< capacity, sites
};

/// Rows of one length, and the macros on them.
struct Floorplan {
    int32_t rows = 0;
    int32_t sitesPerRow = 0;
    std::vector<MacroBox> macros;   ///< none overlaps another
    std::vector<Stretch> stretches; ///< by row, then from left to right
    int64_t capacity = 0;           ///< of all stretches, sites
};

/// Height of a row, DBU: that of the library's cells at the site step of the design.
int32_t rowHeight(const Options& options);

/// A floorplan of a given size. Every macro lies in a field of its own.
///
/// Errors: throws Fault if there are more macros than fit.
Floorplan makeFloorplan(int32_t rows, int32_t sitesPerRow, const Options& options);

/// The smallest floorplan, of at least two rows, in which cells have the utilisation wanted.
///
/// @param cellSites  width of all cells together, sites
///
/// Errors: as makeFloorplan(); a Fault if the rows would reach beyond 32-bit coordinates.
Floorplan fitFloorplan(int64_t cellSites, const Options& options);

} // namespace kit::gen
