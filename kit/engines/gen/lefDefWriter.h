// SPDX-License-Identifier: BSD-3-Clause
// The generated design as a LEF and a DEF file.
#pragma once

#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/engines/gen/cellLibrary.h"
#include "kit/engines/gen/netlist.h"
#include "kit/engines/gen/options.h"
#include "kit/engines/gen/placement.h"

namespace kit::gen {

/// Writes OUT.lef: the site and the cells, each shape that no stitch may part from another as a pin; and a
/// block for every macro.
///
/// Errors: as of OutputFile.
void writeLef(const std::vector<LibraryCell>& library, const Floorplan& plan, const Options& options,
              OutputFile& out);

/// Writes OUT.def, with the names and places of the placement file. Cells lie as their rows do, mirrored or
/// not.
///
/// Errors: as of OutputFile.
void writeDef(const Placement& placement, const std::vector<LibraryCell>& library, const Netlist& netlist,
              const Options& options, OutputFile& out);

} // namespace kit::gen
