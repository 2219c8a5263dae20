// SPDX-License-Identifier: BSD-3-Clause
// Room at the ends of segments, where cells are too close to what stays where it is.
#pragma once

#include <vector>

#include "kit/engines/place/fixedSolutions.h"
#include "kit/engines/place/state.h"

class Design;

namespace kit::place {

/// Takes a site from a segment's end for each component that is too close to what is there, and has the
/// component rescued, which finds another place for it or moves its neighbours. Where that finds none, all
/// stays as it is.
///
/// @param crowded  of these the first hundred
/// @param start    [component] positions before the placement
/// @return whether a component has another place
bool makeRoom(Design& design, const std::vector<CrowdedCell>& crowded, const std::vector<Point>& start);

} // namespace kit::place
