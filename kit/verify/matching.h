// SPDX-License-Identifier: BSD-3-Clause
// Which colours belong to which component, and whether they are those of its cell.
#pragma once

#include <vector>

#include "kit/input/colors.h"
#include "kit/input/design.h"
#include "kit/verify/issue.h"

namespace kit::verify {

/// [component] its colours, nullptr if there are none.
using Matching = std::vector<const input::ColorRecord*>;

/// Matches components and colours by name; of a name that comes again, in file order.
///
/// @param records  must outlive the result
/// @param issues   out: components and colours that have no partner, names that come again
Matching matchColors(const input::Design& design, const std::vector<input::ColorRecord>& records,
                     Issues& issues);

/// Compares all colours with the solutions of the components' cells.
///
/// @param issues  out: cells, solutions, masks and stitches that are not as they should be
void checkColors(const input::Design& design, const Matching& matching, Issues& issues);

} // namespace kit::verify
