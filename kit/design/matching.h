// SPDX-License-Identifier: BSD-3-Clause
// Which colours belong to which component, and whether they are those of its cell.
#pragma once

#include <vector>

#include "kit/design/issue.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::design {

/// [component] its colours, nullptr if there are none.
using Matching = std::vector<const placer::ColorRecord*>;

/// Matches components and colours by name; of a name that comes again, in file order.
///
/// @param records  must outlive the result
/// @param issues   out: components and colours that have no partner, names that come again
Matching matchColors(const placer::Design& design, const std::vector<placer::ColorRecord>& records,
                     Issues& issues);

/// Compares all colours with the solutions of the components' cells.
///
/// @param issues  out: cells, solutions, masks and stitches that are not as they should be
void checkColors(const placer::Design& design, const Matching& matching, Issues& issues);

} // namespace kit::design
