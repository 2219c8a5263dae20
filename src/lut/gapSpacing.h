// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "qlib/exact.h"

namespace vireloce {

/// "This pair of rectangles does not conflict."
inline constexpr int32_t NO_CONFLICT = std::numeric_limits<int32_t>::min();

/// Vertical gap between two rectangles that do not overlap in x, DBU; 0 where their heights meet.
inline int32_t verticalGap(int32_t leftYl, int32_t leftYh, int32_t rightYl, int32_t rightYh)
{
    if (rightYl >= leftYh) {
        return rightYl - leftYh;
    }
    return rightYh <= leftYl ? leftYl - rightYh : 0;
}

/// Spacing that two rectangles of one mask need, DBU, NO_CONFLICT if they are far enough apart.
///
/// @param dx       horizontal gap, DBU; negative if they overlap in x
/// @param dy       vertical gap, DBU
/// @param minDist  least distance of two rectangles of one mask, DBU
inline int32_t gapSpacing(int32_t dx, int32_t dy, int32_t minDist)
{
    if (dy >= minDist || dx >= minDist || dx * dx + dy * dy > minDist * minDist) {
        return NO_CONFLICT;
    }
    // Required: the root is taken over the horizontal gap and the vertical one is subtracted.
    const int32_t square = minDist * minDist - dx * dx;
    return toInt(std::sqrt(static_cast<double>(square)) - dy);
}

} // namespace vireloce
