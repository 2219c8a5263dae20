// SPDX-License-Identifier: BSD-3-Clause
// Room beside what stays where it is, so that placed cells keep their distance from its metal.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/formats/placer/design.h"

namespace kit::place {

/// A macro that reaches further into its row than it is wide.
struct WiderMacro {
    int32_t macro = 0; ///< index in Design::macros
    int32_t x = 0;     ///< left edge, DBU
    int32_t width = 0; ///< DBU
};

/// Finds the macros that need to be wider: those whose fixed cell or block has metal so near its edge that
/// more than half of the design's cells would be too close in the next site, whatever solutions the two get.
/// They are widened as far as the cells that stand in the row leave room. Where fewer would be too close, it
/// is cheaper to choose solutions and places of the few that come to stand there.
///
/// @param design   with true orientations, and with what stays where it is; its macros are those of an
/// import:
///                 one row high
/// @param minDist  distance that shapes of one mask need, library coordinates
/// @return by index
std::vector<WiderMacro> widerMacros(const placer::Design& design, int32_t minDist);

} // namespace kit::place
