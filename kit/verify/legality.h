// SPDX-License-Identifier: BSD-3-Clause
// Whether cells stand where cells may stand.
#pragma once

#include "kit/input/design.h"
#include "kit/verify/issue.h"
#include "kit/verify/standing.h"

namespace kit::verify {

/// Checks every component by itself: that its cell is known, its orientation one of a row, and that it is
/// inside a row, on its sites.
///
/// @param issues  out: what is not so; also components that the placer leaves out
void checkPlaces(const input::Design& design, const Scale& scale, Issues& issues);

/// Checks that no cell overlaps a macro.
///
/// @param issues  out: an issue for each pair of a cell and a macro
void checkMacros(const input::Design& design, const Layout& layout, Issues& issues);

} // namespace kit::verify
