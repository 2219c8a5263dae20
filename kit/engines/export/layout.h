// SPDX-License-Identifier: BSD-3-Clause
// A placement as a layout: a structure per cell, colouring and orientation, and one with all instances.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/engines/export/fill.h"
#include "kit/engines/export/fillers.h"
#include "kit/engines/export/grid.h"
#include "kit/engines/export/matching.h"
#include "kit/formats/gds/gdsWriter.h"
#include "kit/formats/placer/colors.h"

namespace kit::exporter {

/// What a layout is made of.
struct LayoutParts {
    const std::string& topCell;   ///< name of the structure with all instances
    const placer::Design& design; ///< the placement, with its cells
    const lefdef::Def& def;
    const std::vector<Placed>& placed;
    const std::vector<const placer::ColorRecord*>& colours; ///< [component of the placement] nullptr for none
    const std::vector<Kept>& kept;     ///< components of the DEF file that stay where they are, with colours
    const std::vector<size_t>& others; ///< all that stay, by index
    const MacroIndex& macros;          ///< for those without colours
    const Filling& filling;            ///< fillers that are new
    const Grid& grid;
};

/// Writes the layout: outlines, metal 1, and the metal of each mask on layers of their own. Components of the
/// DEF file that stay where they are have outline and metal of the library; those without a known macro are
/// left out.
///
/// @return how many are left out
///
/// Errors: throws Fault as GdsWriter does.
int64_t writeLayout(const LayoutParts& parts, OutputFile& out);

} // namespace kit::exporter
