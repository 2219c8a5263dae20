// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/engines/gen/colouring.h"
#include "kit/engines/gen/geometry.h"
#include "kit/engines/gen/options.h"
#include "kit/engines/gen/sides.h"

namespace kit::gen {

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
