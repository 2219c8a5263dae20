// SPDX-License-Identifier: BSD-3-Clause
// Rectilinear polygons as rectangles. Lengths are in whatever unit the caller has.
#pragma once

#include <vector>

#include "kit/geometry/rect.h"

namespace kit::geometry {

/// Whether all edges of a polygon, the closing one too, are horizontal or vertical.
bool isRectilinear(const std::vector<Point>& corners);

/// Whether what a polygon encloses, counted by how often its edges go around it, has an area.
///
/// @param corners  within 32 bits
bool hasArea(const std::vector<Point>& corners);

/// Cuts the inside of a rectilinear polygon into rectangles, at the height of its corners only: bands of one
/// width on top of each other are one rectangle. Where edges cross, what is inside changes at each of them.
///
/// @param corners  in order, in either direction; the first may come again at the end
/// @return rectangles with an area and without a common one, by their bottom edges, then from the left; none
///         if an edge is slanted
///
/// Cost: corners squared.
std::vector<Rect> cutIntoRects(const std::vector<Point>& corners);

} // namespace kit::geometry
