// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include "kit/gen/cellLibrary.h"
#include "kit/gen/netlist.h"
#include "kit/gen/options.h"
#include "kit/gen/placement.h"

namespace kit::gen {

/// Ends with a Fault if a file of the design exists and must not be replaced.
void requireNoFiles(const Options& options);

/// Writes the cell list and the colour files, their folder as well.
///
/// Errors: throws Fault if something cannot be written; so do the others.
void writeLibrary(const std::vector<LibraryCell>& library, const Options& options);

/// Writes rows, components and macros.
void writePlacement(const Placement& placement, const std::vector<LibraryCell>& library,
                    const Options& options);

/// Writes the pins.
void writePins(const Netlist& netlist, const Options& options);

/// Writes the nets.
void writeNets(const Netlist& netlist, const Options& options);

} // namespace kit::gen
