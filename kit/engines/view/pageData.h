// SPDX-License-Identifier: BSD-3-Clause
// The data of the page, as viewer.js reads them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/engines/view/density.h"
#include "kit/engines/view/index.h"
#include "kit/engines/view/scene.h"

namespace kit::view {

/// The arrays of the page. Cells are in the order of their rows: index i here is not that of Scene::cells.
struct PageArrays {
    static constexpr uint16_t NONE = 65'535; ///< no kind, or no colouring

    std::vector<int32_t> x;          ///< [cells] DBU
    std::vector<int32_t> y;          ///< [cells] DBU
    std::vector<uint16_t> kind;      ///< [cells]
    std::vector<uint16_t> colouring; ///< [cells]
    std::vector<uint8_t> turns;      ///< [cells] bits 0 and 1: mirrored, flipped; 2 and 3: as it stood before
    std::string names;               ///< [cells] one per line
    std::vector<int32_t> stripes;    ///< RowIndex::begin
    std::vector<int32_t> beforeX;    ///< [cells] DBU; empty if nothing is known, as are the next three
    std::vector<int32_t> beforeY;    ///< [cells] DBU
    std::vector<int32_t> beforeOrder;   ///< RowIndex::order of the input placement, of the cells here
    std::vector<int32_t> beforeStripes; ///< RowIndex::begin of the input placement
    std::vector<int32_t> netBegin;      ///< [nets + 1]
    std::vector<int32_t> members;       ///< index of a cell here, or -1 - that of a pin
    std::vector<int32_t> conflicts;     ///< [6 * conflicts] two cells, then the box
};

/// Rearranges the cells of a placement for the page.
PageArrays arrange(const Scene& scene);

/// What the page needs besides: sizes, rows, macros, library, density. JSON, safe in a script element.
std::string describe(const Scene& scene);

} // namespace kit::view
