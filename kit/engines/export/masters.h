// SPDX-License-Identifier: BSD-3-Clause
// Names and text of the LEF masters that a coloured placement needs.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "kit/engines/export/fill.h"
#include "kit/engines/export/fillers.h"
#include "kit/engines/export/inputs.h"

namespace kit::exporter {

/// Names of masters by the cell's index in Design::cells and its solution; those of fillers by keyOf().
using MasterNames = std::map<std::pair<int32_t, int32_t>, std::string>;

/// A name for every cell and solution that the components and the fillers have: the cell's, "_S" and
/// the solution. It gets more "_" in between if a macro of the library has it.
///
/// @param findings  out: "no-macro", an error for a cell that the library does not have
MasterNames nameMasters(const Inputs& inputs, const std::vector<Placed>& placed,
                        const std::vector<Kept>& kept, const Filling& filling, const MacroIndex& macros,
                        Findings& findings);

/// The LEF file of the masters.
///
/// @param siteWidth  of 190 library units
/// @param findings   out: "bare-metal", a warning for a macro whose metal is not that of the colour file
/// @pre   each cell has a macro (as nameMasters() tells)
std::string masterText(const Inputs& inputs, const MasterNames& names, const Filling& filling,
                       const MacroIndex& macros, lefdef::Length siteWidth, Findings& findings);

} // namespace kit::exporter
