// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <utility>
#include <vector>

#include "kit/engines/color/cuts.h"

namespace kit::color {

/// A polygon in pieces.
struct Pieces {
    std::vector<std::vector<Rect>> rects;          ///< [piece] rectangles without common area
    std::vector<std::pair<size_t, size_t>> joined; ///< [cut] the pieces on its two sides; a cut that parts
                                                   ///< nothing has the same on both
};

/// Cuts a polygon.
///
/// Pieces are in the order of their leftmost, then lowest places. A piece has all of the boxes of its cuts.
Pieces cutUp(const std::vector<Rect>& polygon, const std::vector<Cut>& cuts);

} // namespace kit::color
