// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/fixedCells.h"
#include "kit/engines/place/clearance.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::place {

/// A design as its own files tell it, whatever the placer was given.
struct TrueDesign {
    /// Rows, components and cells as in the input, macros as the placer had them, and what stays where it is.
    placer::Design design;
    std::vector<placer::ColorRecord> fixedColors; ///< [Design::fixed] as far as they are chosen
    std::vector<bool> upsideDown; ///< [component] whether it is, against its row in an imported design
    std::vector<bool> mirrorable; ///< [cell] whether it is known that it may be mirrored left to right
    std::set<int32_t> turnedRows; ///< bottom edges of rows whose cells lie upside down but for `upsideDown`
};

/// Reads the placement and the library, and of an imported design the map.
///
/// @param base      path of the design files without extension
/// @param cellDir   folder of the color files
/// @param parts     what stays where it is
/// @param wider     macros that were wider for the placer
/// @param findings  out: problems, which the judge tells as well
///
/// Errors: throws Fault if a file cannot be opened or read.
TrueDesign readTrueDesign(const std::string& base, const std::string& cellDir,
                          const design::FixedParts& parts, const std::vector<WiderMacro>& wider,
                          Findings& findings);

} // namespace kit::place
