// SPDX-License-Identifier: BSD-3-Clause
// Fillers for the gaps of a new placement, in place of those that it has pushed out.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "kit/engines/export/fillers.h"
#include "kit/engines/export/matching.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::exporter {

/// A filler in its place.
struct Filled {
    std::string name{};   ///< that no component has
    size_t master = 0;    ///< index in Filling::masters
    int32_t solution = 0; ///< of that
    int32_t x = 0;        ///< lower left corner, DBU
    int32_t y = 0;
    lefdef::Orient orient = lefdef::Orient::N; ///< its row's
};

/// What stands for a filler among cells and their solutions: a cell's index is not negative, a filler's is.
inline std::pair<int32_t, int32_t> keyOf(const Filled& filler)
{
    return {-1 - static_cast<int32_t>(filler.master), filler.solution};
}

/// Fillers, and what they are made of.
struct Filling {
    std::vector<placer::Cell> masters; ///< those with rails alone have one solution, all on mask 0
    std::vector<Filled> fillers;
};

/// What is filled.
struct FillParts {
    const lefdef::Def& def;
    const lefdef::Lef& lef;
    const Matching& matching;
    const MacroIndex& macros;
    const std::vector<bool>& fillers; ///< [component of the DEF file] whether it is one
    const std::vector<bool>& dropped; ///< [component of the DEF file] of these, those that go
    const placer::Design& design;     ///< the placement, with its cells
    const std::vector<const placer::ColorRecord*>& colours; ///< [component of the placement] nullptr for none
    const std::string& cellDir;                             ///< folder of the colour files
    int32_t minDist = 0;        ///< distance that shapes of one mask need, library units
    const std::string& defPath; ///< for the findings
    int32_t micron = 0;         ///< DBU per micrometre, positive
    int64_t siteWidth = 0;      ///< of 190 library units, DBU
    int64_t rowHeight = 0;      ///< of rows whose site no LEF file has, DBU
};

/// Fills the free sites of the rows with the masters of the dropped fillers, so that no master fits into what
/// is left. Of the ways that leave the fewest sites free, that with the widest first is taken; of masters of
/// one width, that which the DEF file has most. Nothing is put on a component, or on a placement blockage
/// that had no filler on it. A master with other metal than rails gets the solution of its colour file with
/// the fewest stitches that is far enough from all metal around; where there is none, another master stands.
///
/// @param findings  out: "no-macro", an error for a component of unknown size; "filler-metal", a note for a
///                  master with other metal than rails and without a colour file: it is left out;
///                  "filler-height", one for a master that is not as high as any row
Filling fillGaps(const FillParts& parts, Findings& findings);

} // namespace kit::exporter
