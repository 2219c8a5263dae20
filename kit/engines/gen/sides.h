// SPDX-License-Identifier: BSD-3-Clause
// What two neighbours need to know of each other: the masks near the edge at which they meet, as bits.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/engines/gen/colouring.h"
#include "kit/engines/gen/geometry.h"

namespace kit::gen {

/// The edges of a cell in one solution.
///
/// A bit stands for a mask on a stretch of the height. `right` has the stretches that metal covers, `left`
/// those that come too close to it as well.
struct Sides {
    uint64_t left = 0;
    uint64_t right = 0;
};

/// The edges of a cell.
Sides findSides(const std::vector<Shape>& shapes, const Solution& solution, int32_t sites);

/// Sites that two neighbours keep between them, 0 or 1; never less than the placer's table says.
inline int32_t spacing(const Sides& left, const Sides& right)
{
    return (left.right & right.left) != 0 ? 1 : 0;
}

} // namespace kit::gen
