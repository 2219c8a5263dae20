// SPDX-License-Identifier: BSD-3-Clause
// Places for the cells that the placer left without one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/engines/place/state.h"

class Design;

namespace kit::place {

/// A component that had no place.
struct Rescued {
    int32_t component = 0; ///< index in Design::components
    bool helped = false;
    int32_t fromX = 0; ///< where it was, DBU
    int32_t fromY = 0;
};

/// What a rescue did.
struct Rescue {
    std::vector<Rescued> cells;  ///< in the order of their turns
    int32_t movedNeighbours = 0; ///< components that made room
};

/// Gives components without a place of their own, those that are in no segment, stick out of theirs or
/// overlap, a place that is legal for its width and colours: in a segment near where it began, in any of its
/// solutions, its neighbours moved along the row if need be, so that wirelength grows least.
///
/// Legal is what the placer's spacings ask for and what the shapes themselves need, mirrored cells honoured.
/// Neighbours that were too close before stay so.
///
/// @param stray  indices of the components
/// @param start  [component] positions before the placement
Rescue rescue(Design& design, const std::vector<int32_t>& stray, const std::vector<Point>& start);

} // namespace kit::place
