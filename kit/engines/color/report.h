// SPDX-License-Identifier: BSD-3-Clause
// What the user is told and shown.
#pragma once

#include <iosfwd>
#include <string>

#include "kit/base/files/outputFile.h"
#include "kit/engines/color/cell.h"
#include "kit/engines/color/run.h"

namespace kit::color {

/// Writes findings, a line each: "FILE:LINE:COLUMN: error: what; what to do".
void writeMessages(const Findings& findings, std::ostream& out);

/// Why a cell has no colouring without conflicts, in words.
///
/// @param site  width of a site
std::string troubleText(const CellMetal& metal, const ColouredCell& cell, const Rules& rules,
                        lefdef::Length site);

/// Writes the summary: how many cells, solutions and stitches, and which cells have no colouring. As JSON:
/// "schema" (1), "summary", and how many "cells", "files" and cells "without_coloring" there are.
void writeSummary(const Result& result, const Options& options, std::ostream& out);

/// Writes a picture of a cell as SVG: its solutions side by side, with masks in colours, stitches as diamonds
/// and conflicts that are left as lines between the shapes. A cell without solutions is drawn once, with the
/// shapes that cannot be coloured dark.
void writePicture(OutputFile& file, const CellMetal& metal, const ColouredCell& cell, const Rules& rules);

} // namespace kit::color
