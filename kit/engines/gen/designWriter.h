// SPDX-License-Identifier: BSD-3-Clause
// The generated design as files.
#pragma once

#include <vector>

#include "kit/engines/gen/cellLibrary.h"
#include "kit/engines/gen/netlist.h"
#include "kit/engines/gen/placement.h"

namespace kit::gen {

/// Checks that the files of the design may be written. Errors: as of checkOutputs().
void checkOutputsOf(const Options& options);

/// Writes all files of the design, with LEF and DEF if the options say so.
///
/// Errors: throws Fault if something cannot be written; then nothing is.
void writeDesign(const std::vector<LibraryCell>& library, const Placement& placement, const Netlist& netlist,
                 const Options& options);

} // namespace kit::gen
