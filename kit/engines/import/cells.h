// SPDX-License-Identifier: BSD-3-Clause
// The components of a DEF: those that are placed, and those that are in the way.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "kit/design/fixedCells.h"
#include "kit/engines/import/core.h"
#include "kit/engines/import/nets.h"

namespace kit::importing {

/// A component that the placer places.
struct Cell {
    size_t component = 0;  ///< index in Def::components
    size_t row = NONE;     ///< index in Core::rows, NONE without a legal place
    int64_t x = 0;         ///< left edge, DBU
    int64_t y = 0;         ///< bottom edge, DBU
    int64_t width = 0;     ///< whole sites, DBU
    bool placed = false;   ///< it has a place, legal or not
    bool mirrored = false; ///< left and right exchanged
    bool flipped = false;  ///< top and bottom lie other than in its row
};

/// The components by what becomes of them.
struct Cells {
    std::vector<Cell> movable;           ///< in the order of the file
    std::vector<lefdef::DefRect> blocks; ///< outlines of what stays where it is
    std::vector<size_t> masterOf;        ///< [component] index in Lef::macros, NONE if unknown
    std::vector<bool> isFixed;           ///< [component] it stays where it is
    design::FixedParts fixed;            ///< those of them that have metal
    int64_t fillers = 0;                 ///< left out
    std::set<size_t> fillerMasters;      ///< theirs, indices in Lef::macros
};

/// The masters of the components: [component] index in Lef::macros, NONE if no file has it.
std::vector<size_t> findMasters(const lefdef::Def& def, const lefdef::Lef& lef);

/// [macro] how many components of it are not fixed, and stand in rows for what their class says; fillers
/// count as none.
std::vector<int64_t> countMovable(const lefdef::Def& def, const lefdef::Lef& lef,
                                  const std::vector<size_t>& masterOf);

/// Sorts the components: fillers (class SPACER) are left out; fixed and cover components, macros, pads, end
/// caps and well taps, and cells that do not stand upright in one row stay where they are; the rest is
/// movable.
///
/// Of those that stay, the ones that stand upright in one row are cells with masks. Of the others the metal
/// near their edges is kept; of those that are of a class for rows, without that of their supply pins, which
/// are rails.
///
/// Errors, by name: unknown masters, and unplaced components unless `legalize`.
///
/// @param cells  in: the masters; out: the rest
/// @return whether there was no error
bool takeCells(const lefdef::Def& def, const lefdef::Lef& lef, const Core& core, bool legalize,
               lefdef::SourceReporter& reporter, Cells& cells);

/// Finds the rows of the movable cells; those off their rows stay without one.
void findRows(const lefdef::Def& def, const Core& core, Cells& cells);

/// Puts cells on free sites: those off their row, off its sites, over one another (the first from the left
/// stays), and those without a place, the widest first. Each goes to the free place nearest to where it was;
/// one that was nowhere, to that nearest to the middle of what its nets join it to. A moved cell lies as its
/// row does.
///
/// @param cells  those with a legal row as findRows() leaves them
/// @return indices in Cells::movable of those for which there is no room
std::vector<size_t> legalize(const lefdef::Def& def, const Core& core, const Nets& nets, Cells& cells);

} // namespace kit::importing
