// SPDX-License-Identifier: BSD-3-Clause
// LEF masters whose metal has masks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/source.h"
#include "kit/formats/placer/design.h"

namespace kit::exporter {

/// A cell in one of its colour solutions.
struct Colouring {
    const placer::Cell& cell;
    const placer::Solution& solution;
    lefdef::Length siteWidth = 0; ///< picometres, of 190 library units
};

/// What became of a master.
struct MaskedMacro {
    std::string text;      ///< from MACRO to END and the name, without a line end
    int64_t bareMetal = 0; ///< shapes of which the colour file has not all metal: it has no mask
};

/// A macro of a LEF file under another name, with the mask of each shape of the layer: the mask's number in
/// the colour file, and one more. Statements whose metal is on several masks become RECTs, cut where the mask
/// changes; all other text stays as it is.
///
/// Corners of the colour file, which are whole library units, are taken to be those of the macro that are
/// nearest within a unit.
MaskedMacro maskedMacro(const lefdef::Source& source, const lefdef::LefMacro& macro,
                        const Colouring& colouring, std::string_view name);

/// Whether a LEF file defines a layer, and does not say that it has three masks or more.
bool lacksMasks(const lefdef::Source& source, std::string_view layer);

/// The head of a file for masters of a LEF file: version 5.8, which knows masks, and the characters for buses
/// and dividers that the file has.
std::string lefHead(const lefdef::Source& source);

} // namespace kit::exporter
