// SPDX-License-Identifier: BSD-3-Clause
// The page, and its data as viewer.js reads them.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/engines/view/scene.h"

namespace kit::view {

/// The cells by rows, and from the left in each, so that those in a window are found without a look at all.
///
/// A row here is a stripe of one row height, counted from `y`; a cell is in the stripe of its bottom edge, on
/// a row or not.
struct RowIndex {
    int32_t y = 0;              ///< bottom edge of the first stripe, DBU
    std::vector<int32_t> begin; ///< [stripes + 1] first entry of each stripe in order
    std::vector<int32_t> order; ///< index in Scene::cells
};

/// Index of a placement.
///
/// @param scene   the placement
/// @param before  where the cells stood in the input placement
RowIndex indexRows(const Scene& scene, bool before);

/// In the page's arrays: no kind, or no colouring.
inline constexpr uint16_t NO_INDEX = 65'535;

/// Writes a page that shows a placement, with everything it needs in it.
///
/// What is small is JSON; positions, names and nets are arrays of 32-bit integers (and smaller ones) in
/// base64, in the order of the rows, so that the page has its index at once.
void writeHtml(OutputFile& file, const Scene& scene);

} // namespace kit::view
