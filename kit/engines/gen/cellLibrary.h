// SPDX-License-Identifier: BSD-3-Clause
// The cells. Their metal are rails along the bottom and the top, and vertical bars on four tracks between.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/engines/gen/generate.h"
#include "kit/formats/placer/design.h"

namespace kit::gen {

inline constexpr int32_t LIBRARY_HEIGHT = 1400; ///< height of every cell, library units

/// A piece of metal that is on one mask as a whole.
struct Shape {
    placer::Rect box;    ///< library units
    bool rail = false;   ///< a power rail: mask 0, never conflicts with the neighbour
    bool joined = false; ///< touches the shape before it, of which a stitch may part it
};

/// One way to print a cell without a conflict inside it.
struct Solution {
    int32_t stitches = 0;
    std::vector<int32_t> masks; ///< [shape] 0, 1 or 2

    bool operator==(const Solution&) const = default;
};

/// The edges of a cell in one solution, as its neighbours need to know them.
///
/// A bit stands for a mask on a stretch of the height. `right` has the stretches that metal covers, `left`
/// those that come too close to it as well.
struct Sides {
    uint64_t left = 0;
    uint64_t right = 0;
};

/// Sites that two neighbours keep between them, 0 or 1; never less than the placer's table says.
inline int32_t spacing(const Sides& left, const Sides& right)
{
    return (left.right & right.left) != 0 ? 1 : 0;
}

/// A cell of the library.
struct LibraryCell {
    std::string name;
    int32_t sites = 0; ///< width, sites
    std::vector<Shape> shapes;
    std::vector<Solution> solutions;
    std::vector<Sides> plainSides; ///< [solution without a stitch]
};

/// Name of a cell.
std::string nameOfType(int32_t type);

/// Draws and colours the cells of the library, the narrow ones first.
///
/// @return [options.cellTypes]
std::vector<LibraryCell> makeLibrary(const Options& options);

/// Chooses the cell of every component. Cells are used unequally, widths as a real library's.
///
/// @return [options.components] index of the cell
std::vector<uint16_t> chooseTypes(const Options& options);

} // namespace kit::gen
