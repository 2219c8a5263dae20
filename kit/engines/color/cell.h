// SPDX-License-Identifier: BSD-3-Clause
// A cell from its metal to its colour file, or why it has none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kit/design/spacing.h"
#include "kit/engines/color/parts.h"
#include "kit/engines/color/search.h"
#include "kit/formats/placer/design.h"

namespace kit::color {

/// Two polygons that are closer than the distance.
struct Closeness {
    size_t a = 0; ///< index in CellMetal::polygons
    size_t b = 0;
    design::Closest rects; ///< their closest rectangles
};

/// Why a cell cannot be coloured.
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

/// A trouble in words, for a message: the polygons with the pairs that are close, and the distance.
std::string textOf(const Trouble& trouble, const CellMetal& metal, const Rules& rules);

/// A distance with one digit behind the point, from its square.
std::string distanceText(int64_t squared);

/// How cells are coloured.
struct Settings {
    Rules rules;
    Limits limits;
    size_t mostSolutions = 12;
    bool allowConflicts = false;
};

/// A conflict that is left in a solution.
struct LeftConflict {
    size_t shapeA = 0; ///< index in the file
    size_t shapeB = 0;
    int64_t squared = 0; ///< square of their distance
};

/// What came of a cell.
struct ColouredCell {
    std::optional<placer::Cell> file; ///< what its colour file says
    std::optional<Trouble> trouble;   ///< why it cannot be coloured without conflicts
    bool tooLarge = false;            ///< the search was given up
    bool isClearOfRails = false; ///< rails conflict with nothing; only told where Rules::railsConflict asks
    bool meetsRows = false;      ///< no row need conflict with the next; only told where Rules::rowsMeet asks
    std::vector<std::string> shapeNames;              ///< [shape of the file] net
    std::vector<std::vector<LeftConflict>> conflicts; ///< [solution of the file]
};

/// Colours a cell.
///
/// Where rows meet, each solution has a second one behind all of them, with masks 1 and 2 exchanged: it is
/// for every second row. So metal near the next row is on mask 1 in one row and on mask 2 in the next.
///
/// @param bottom  lowest metal in all cells of the library, at most 0
ColouredCell colour(const CellMetal& metal, const Settings& settings, int32_t bottom);

/// The lowest metal of some cells, at most 0.
int32_t bottomOf(const std::vector<CellMetal>& cells);

/// How far metal but rails is at least from the bottom and the top edge of some cells: less than 0 beyond
/// them, 0 if there is none.
int32_t leastDepthOf(const std::vector<CellMetal>& cells);

/// The rails as shapes of the file, with what the placer needs to read the cell right.
///
/// The placer moves a cell's lowest and leftmost metal to 0 0, and takes a shape of mask 0 for a rail if it
/// reaches the bottom or the top then. So that all cells move alike, and every rail is taken for one, a line
/// without width is added at the left edge to rails that do not do so by themselves; to a cell without rails
/// as a shape of its own.
std::vector<placer::Shape> railsOf(const CellMetal& metal, int32_t bottom);

} // namespace kit::color
