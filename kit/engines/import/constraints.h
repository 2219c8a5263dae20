// SPDX-License-Identifier: BSD-3-Clause
// What a DEF asks of a placement beside its rows, for a placer that knows rows and blocks: regions, groups,
// halos and soft blockages.
#pragma once

#include <vector>

#include "kit/engines/import/cells.h"
#include "kit/engines/import/nets.h"
#include "kit/formats/lefdef/def.h"

namespace kit::importing {

/// Says what becomes of each region and group.
///
/// An error, "region", names those that must keep movable cells inside: of TYPE FENCE, and without a type. A
/// fence without movable members only keeps others out, and is kept as a block. A GUIDE, and a group without
/// a region, are a note.
///
/// @return what is blocked
std::vector<lefdef::DefRect> keepRegions(const lefdef::Def& def, const Names& names, const Cells& cells,
                                         lefdef::SourceReporter& reporter);

/// Keeps the halos of components that stay where they are as blocks, and says which it does not keep: soft
/// ones, those of movable cells, and those in which movable cells stand.
///
/// @return what is blocked
std::vector<lefdef::DefRect> keepHalos(const lefdef::Def& def, const lefdef::Lef& lef, const Names& names,
                                       const Cells& cells, lefdef::SourceReporter& reporter);

/// The hard placement blockages. The others are a note.
///
/// @return what is blocked
std::vector<lefdef::DefRect> keepBlockages(const lefdef::Def& def, lefdef::SourceReporter& reporter);

} // namespace kit::importing
