// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

#include "kit/design/issue.h"
#include "kit/design/standing.h"
#include "kit/formats/placer/design.h"

namespace kit::verify {

/// Pairs of cells with an issue after which the search is given up: cells in a heap have too many.
inline constexpr size_t MOST_PAIRS = 1'000'000;

/// What the search for pairs needs to know.
struct PairRules {
    int32_t minDist = 185;         ///< distance that shapes of one mask need, library coordinates
    size_t mostPairs = MOST_PAIRS; ///< issues after which it ends
};

/// Checks every pair of cells: that they do not overlap, and that metal of one mask keeps its distance.
///
/// @param issues  out: one CELL_OVERLAP and one CONFLICT (ROW_CONFLICT, if their bottom edges are not at one
///                height) at most for a pair
void checkPairs(const placer::Design& design, const design::Layout& layout, const design::Scale& scale,
                const PairRules& rules, design::Issues& issues);

} // namespace kit::verify
