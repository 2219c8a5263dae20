// SPDX-License-Identifier: BSD-3-Clause
// What can be wrong with where cells stand. Each check appends to the issues.
#pragma once

#include "kit/design/issue.h"
#include "kit/design/standing.h"
#include "kit/engines/verify/verify.h"
#include "kit/formats/placer/design.h"

namespace kit::verify {

/// Checks every component by itself: that its cell is known, its orientation one of a row, and that it is
/// inside a row, on its sites.
///
/// @param issues  out: what is not so; also components that the placer leaves out
void checkPlaces(const placer::Design& design, const design::Scale& scale, design::Issues& issues);

/// Checks that no cell overlaps a macro.
///
/// @param issues  out: an issue for each pair of a cell and a macro
void checkMacros(const placer::Design& design, const design::Layout& layout, design::Issues& issues);

/// Checks every pair of cells: that they do not overlap, and that metal of one mask keeps its distance.
///
/// @param issues  out: one CELL_OVERLAP and one CONFLICT (ROW_CONFLICT, if their bottom edges are not at one
///                height) at most for a pair; one RAIL_CONFLICT for a pair if they are errors, else for all
void checkPairs(const placer::Design& design, const design::Layout& layout, const design::Scale& scale,
                const Rules& rules, design::Issues& issues);

} // namespace kit::verify
