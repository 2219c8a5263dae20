// SPDX-License-Identifier: BSD-3-Clause
// Whether cells stand where cells may stand.
#pragma once

#include "kit/design/issue.h"
#include "kit/design/standing.h"
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

} // namespace kit::verify
