// SPDX-License-Identifier: BSD-3-Clause
// Why a cell cannot be coloured.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/engines/color/parts.h"
#include "kit/engines/color/search.h"

namespace kit::color {

/// Two polygons that are closer than the distance.
struct Closeness {
    size_t a = 0; ///< index in CellMetal::polygons
    size_t b = 0;
    Rect rectA; ///< the closest rectangles
    Rect rectB;
    int64_t squared = 0; ///< square of their distance
};

struct Trouble {
    std::vector<size_t> polygons; ///< that cannot be coloured, while any of them less can; indices in
                                  ///< CellMetal::polygons
    std::vector<Closeness> close; ///< pairs of them
    int32_t goodDistance = 0;     ///< largest distance below at which the cell can be coloured
};

/// Explains why a cell cannot be coloured.
///
/// The polygons are found by leaving out one after the other, as long as the rest cannot be coloured either.
/// The distance is the first one downwards that will do.
///
/// @param graph  of the cell, which cannot be coloured
Trouble explain(const CellMetal& metal, const Graph& graph, const Rules& rules, int32_t bottom,
                const Limits& limits);

/// Square of the distance of two polygons, with their closest rectangles.
Closeness closenessOf(const CellMetal& metal, size_t a, size_t b);

/// A trouble in words, for a message: the polygons with the pairs that are close, and the distance.
std::string textOf(const Trouble& trouble, const CellMetal& metal, const Rules& rules);

/// A distance with one digit behind the point, from its square.
std::string distanceText(int64_t squared);

} // namespace kit::color
