// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include "kit/lefdef/def.h"

namespace kit::lefdef {

/// A corner of a polygon, DBU.
struct DefPoint {
    int32_t x = 0;
    int32_t y = 0;
};

/// Whether all edges of a polygon, the closing one too, are horizontal or vertical.
bool isRectilinear(const std::vector<DefPoint>& corners);

/// Cuts the inside of a rectilinear polygon into rectangles, at the height of its corners only: bands of one
/// width on top of each other are one rectangle. Where edges cross, what is inside changes at each of them.
///
/// Cost: corners squared.
std::vector<DefRect> cutIntoRects(const std::vector<DefPoint>& corners);

} // namespace kit::lefdef
