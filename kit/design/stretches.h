// SPDX-License-Identifier: BSD-3-Clause
// The free stretches of the rows, and the components in them.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/formats/placer/design.h"

namespace kit::design {

/// A free stretch of a row: what no macro covers.
struct Stretch {
    int32_t row = 0;      ///< index in Design::rows
    int32_t x = 0;        ///< left end, DBU
    int32_t numSites = 0; ///< whole sites from there
    int64_t end = 0;      ///< where the next macro begins, or the row ends, DBU
};

/// Height of the design's rows, DBU: the least distance of two of them; with fewer than two, the height of
/// the library's cells. At least 1.
int32_t rowHeight(const placer::Design& design);

/// Site width of the design, DBU: the first row's step; with fewer than two rows the library's, as in the
/// placer. At least 1.
int32_t siteWidth(const placer::Design& design);

/// The free stretches of all rows, row by row, from the left. Those under one site are left out.
std::vector<Stretch> freeStretches(const placer::Design& design);

/// Width of a component, sites: its cell's width over the library's site width of 190, rounded up; 0 if the
/// cell is unknown.
int32_t widthInSites(const placer::Design& design, const placer::Component& comp);

/// Which components stand in which free stretch.
struct Occupancy {
    std::vector<Stretch> stretches;               ///< as freeStretches()
    std::vector<std::vector<int32_t>> components; ///< [stretch] those in it, by x
    std::vector<int32_t> stretchOf;               ///< [component] index in stretches, -1 if it is in none
};

/// Puts each component into the stretch that its left edge stands in, or else into one that it overlaps; its
/// row is that of its own y, or else one that it overlaps vertically. Those that overlap none are in none.
Occupancy occupancyOf(const placer::Design& design);

} // namespace kit::design
