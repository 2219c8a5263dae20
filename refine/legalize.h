// SPDX-License-Identifier: BSD-3-Clause
// Places for cells that have none: on the sites, over no other, and not closer than the masks allow.
#pragma once

#include <cstdint>
#include <vector>

#include "refine/improve.h"
#include "refine/model.h"

namespace refine {

/// Makes a placement legal, with little displacement: that of Cell::x and the row's bottom edge, whatever
/// Model::startX says. Cells that are legal move only to make room. Neighbours that are too close are
/// arranged anew where they stand; who has no place there is inserted elsewhere, one after the other, the
/// widest first, and cells on both sides make room in their order, as in the row programs of Spindler et al.
/// ("Abacus", 2008). Where there is room for nobody as wide, a narrower cell leaves, and is inserted in its
/// turn.
///
/// @return who has no place, and why; their cells are as they were
std::vector<Homeless> legalize(Model& model);

} // namespace refine
