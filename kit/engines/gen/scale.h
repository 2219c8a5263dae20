// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

#include "kit/engines/gen/options.h"

namespace kit::gen {

inline constexpr int32_t DBU_PER_MICROMETRE = 2000;

/// From sites and rows to DBU.
struct Scale {
    static constexpr int32_t BORDER_SITES = 6; ///< between the rows and the design's left and right edge
    static constexpr int32_t BORDER_ROWS = 1;  ///< between the rows and its lower and upper edge

    explicit Scale(const Options& options) : step(options.siteStep), height(rowHeight(options)) {}

    int32_t x(int32_t site) const { return (site + BORDER_SITES) * step; }
    int32_t y(int32_t row) const { return (row + BORDER_ROWS) * height; }

    int32_t step;   ///< site width, DBU
    int32_t height; ///< row height, DBU
};

/// Every other row is upside down, so that rails meet.
inline const char* orientOfRow(int32_t row)
{
    return row % 2 == 0 ? "N" : "FS";
}

} // namespace kit::gen
