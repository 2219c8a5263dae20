// SPDX-License-Identifier: BSD-3-Clause
// Where the components of a DEF file go.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/nameMap.h"
#include "kit/formats/lefdef/def.h"
#include "kit/formats/lefdef/source.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::exporter {

/// A component of the DEF file in its new place.
struct Placed {
    size_t inDef = 0;   ///< index in Def::components
    size_t inPlace = 0; ///< index in Design::components
    int32_t x = 0;      ///< lower left corner, DBU
    int32_t y = 0;
    lefdef::Orient orient = lefdef::Orient::N; ///< as the cell really lies, its row's flip with it

    /// Whether the place is another one than in the DEF file.
    bool differs(const lefdef::DefComponent& component) const;
};

/// What is brought together.
struct Sides {
    const placer::Design& placement;
    const std::string& placementPath;
    const design::NameMap& map;
    const lefdef::Def& def;
    const lefdef::Source& defSource;
};

/// Components of both files, and those of one alone.
struct Matching {
    std::vector<Placed> placed;    ///< in the order of the placement
    std::vector<size_t> untouched; ///< others of the DEF file that have a place, by index, in its order
};

/// Finds the new place of every component of the placement in the DEF file.
///
/// Where a cell is on no row, the DEF file tells whether it is upside down.
///
/// @param findings  out: "no-component", "off-row", "unknown-name" and "fixed" as warnings; "other-macro" and
///                  "same-component" as errors
///
/// Errors: throws Fault if the placement has components, and none of them is in the DEF file.
Matching matchComponents(const Sides& sides, Findings& findings);

/// A component of the DEF file that stays where it is, with its colours.
struct Kept {
    size_t inDef = 0;     ///< index in Def::components
    int32_t cell = -1;    ///< index in Design::cells
    int32_t solution = 0; ///< of that
};

/// Finds the fixed cells of the placement that have a solution in the DEF file.
///
/// @param colours  [cell of Design::fixed] its colours
std::vector<Kept> matchKept(const lefdef::Def& def, const Matching& matching, const placer::Design& placement,
                            const std::vector<placer::ColorRecord>& colours);

/// Tells those of the untouched components that the placement should have had: they are PLACED, no fillers,
/// and not among the placement's macros. Code "left-out", warnings.
///
/// @param fillers  [component of the DEF file] whether it is one
void tellLeftOut(const Sides& sides, const Matching& matching, const std::vector<bool>& fillers,
                 Findings& findings);

} // namespace kit::exporter
