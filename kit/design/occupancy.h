// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

#include "kit/design/stretches.h"
#include "kit/formats/placer/design.h"

namespace kit::design {

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
