// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/engines/view/scene.h"

namespace kit::view {

/// How full a placement is, in square bins.
struct Density {
    static constexpr uint8_t NO_ROWS = 255; ///< in place of a share: the bin has no free stretch and no cell
    static constexpr uint8_t MOST = 254;    ///< greatest share, also of cells where there is no free stretch

    int32_t x = 0;               ///< left edge of the first column, DBU
    int32_t y = 0;               ///< bottom edge of the first row of bins, DBU
    int32_t side = 0;            ///< of a bin, DBU, a multiple of the row height
    int32_t columns = 0;         ///< bins side by side
    int32_t lines = 0;           ///< bins above each other
    std::vector<uint8_t> shares; ///< [lines * columns] cells' share of the free stretches, per cent
};

/// Density of a placement.
///
/// @param scene   the placement
/// @param before  where the cells stood in the input placement
Density densityOf(const Scene& scene, bool before);

/// Colour of a density as "#rrggbb": from white for none to dark blue for 100 per cent and more. Its
/// lightness falls all the way, so that it needs no sense of hue.
///
/// @param share  per cent, as in Density
std::string rampColour(uint8_t share);

} // namespace kit::view
