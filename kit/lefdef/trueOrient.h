// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include "kit/input/design.h"
#include "kit/input/finding.h"

namespace kit::lefdef {

/// Gives the components of an imported design the orientations that they have in the layout: the placement
/// says only which are mirrored, the rows and the map beside it say which are upside down. A placement
/// without a map stays as it is.
///
/// @param placement  path of the placement file; its map has ".map" in place of ".place"
/// @param findings   out: problems of the map
void restoreOrientations(const std::string& placement, input::Design& design, input::Findings& findings);

} // namespace kit::lefdef
