// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/base/files/outputFile.h"
#include "kit/engines/color/cell.h"

namespace kit::color {

/// Writes a picture of a cell as SVG: its solutions side by side, with masks in colours, stitches as diamonds
/// and conflicts that are left as lines between the shapes. A cell without solutions is drawn once, with the
/// shapes that cannot be coloured dark.
void writePicture(OutputFile& file, const CellMetal& metal, const ColouredCell& cell, const Rules& rules);

} // namespace kit::color
