// SPDX-License-Identifier: BSD-3-Clause
// Legal places for the cells that the placer left without one, and for those that are too close to others.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/engines/place/state.h"
#include "kit/engines/place/trueDesign.h"

class Design;

namespace kit::place {

/// A component that had no place.
struct Rescued {
    int32_t component = 0; ///< index in Design::components
    bool helped = false;
    int32_t fromX = 0; ///< where it was, DBU
    int32_t fromY = 0;
};

/// What a rescue did.
struct Rescue {
    std::vector<Rescued> cells;    ///< in the order of their turns
    int32_t pairs = 0;             ///< of other cells that were too close in their row
    int32_t mendedPairs = 0;       ///< of these, those that are not any more
    int32_t movedNeighbours = 0;   ///< other components that were moved
    int32_t recolored = 0;         ///< other components that got another solution
    std::vector<int32_t> mirrored; ///< components that lie the other way round now
    int32_t searchesGivenUp = 0;   ///< cells and pairs for which not everything was tried
};

/// Makes a placement legal: every cell on free sites of a row, and none too close to another in its row by
/// the rule of `verify`.
///
/// Pairs that are too close are mended first, then each component without a place of its own, one that is in
/// no segment, off the sites, beyond its segment or over another, gets one, in its row if there is an
/// arrangement of all that stand there. Few cells are moved, and not far; other solutions and, where that is
/// known to be allowed, mirroring may save a move; wirelength comes last. Cells may change places in their
/// row, also across blocks. What cannot stay in its row goes to another near where it began, so that
/// wirelength grows least. What cannot be helped stays as it is, as does everything in a design without
/// sites.
///
/// A row of up to EVERY_ORDER cells is searched whole; in a longer one the search has bounds.
///
/// @param truth  the design in its own cells and orientations, components and solutions as in `design`
/// @param stray  indices of the components without a place, as the placer sees it
/// @param start  [component] positions before the placement
Rescue rescue(Design& design, const TrueDesign& truth, const std::vector<int32_t>& stray,
              const std::vector<Point>& start);

} // namespace kit::place
