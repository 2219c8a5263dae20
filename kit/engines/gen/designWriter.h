// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/engines/gen/cellLibrary.h"
#include "kit/engines/gen/netlist.h"
#include "kit/engines/gen/options.h"
#include "kit/engines/gen/placement.h"

namespace kit::gen {

/// Checks that the files of the design may be written. Errors: as of checkOutputs().
void checkOutputsOf(const Options& options);

/// Writes the cell list and the colour files, their folder as well.
///
/// Errors: throws Fault if something cannot be written; so do the others.
void writeLibrary(const std::vector<LibraryCell>& library, const Options& options, OutputSet& set);

/// Writes rows, components and macros.
void writePlacement(const Placement& placement, const std::vector<LibraryCell>& library,
                    const Options& options, OutputFile& out);

/// Writes the pins.
void writePins(const Netlist& netlist, const Options& options, OutputFile& out);

/// Writes the nets.
void writeNets(const Netlist& netlist, OutputFile& out);

} // namespace kit::gen
