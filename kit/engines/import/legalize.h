// SPDX-License-Identifier: BSD-3-Clause
// Legal places for the cells that have none.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/engines/import/cells.h"
#include "kit/engines/import/core.h"
#include "kit/engines/import/nets.h"

namespace kit::importing {

/// Puts cells on free sites: those off their row, off its sites, over one another (the first from the left
/// stays), and those without a place, the widest first. Each goes to the free place nearest to where it was;
/// one that was nowhere, to that nearest to the middle of what its nets join it to. A moved cell lies as its
/// row does.
///
/// @param cells  those with a legal row as findRows() leaves them
/// @return indices in Cells::movable of those for which there is no room
std::vector<size_t> legalize(const lefdef::Def& def, const Core& core, const Nets& nets, Cells& cells);

} // namespace kit::importing
