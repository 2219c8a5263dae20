// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

#include "kit/engines/view/scene.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::view {

/// More conflicts than these are not looked for: a picture of more says nothing.
inline constexpr size_t MOST_CONFLICTS = 200'000;

/// Cells in one row whose metal is on one mask and closer than allowed, by geometry; one conflict per pair of
/// cells, where they are closest.
///
/// @param colours  [as in Design::component()] nullptr where they are unknown
/// @param step     site width of the design, DBU
/// @param minDist  least distance, library units
std::vector<Conflict> findConflicts(const placer::Design& design,
                                    const std::vector<const placer::ColorRecord*>& colours, int32_t step,
                                    int32_t minDist);

/// Conflicts that are one mark from afar.
struct ConflictMark {
    int32_t x = 0; ///< mean of their middles, DBU
    int32_t y = 0;
    int32_t count = 0;
};

/// Gathers conflicts by squares.
///
/// @param side  of a square, DBU, positive
/// @return a mark for each square with conflicts, from the bottom upwards, then from the left
std::vector<ConflictMark> gathered(const std::vector<Conflict>& conflicts, int32_t side);

} // namespace kit::view
