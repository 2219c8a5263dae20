// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/base/outputFile.h"
#include "kit/input/design.h"

namespace kit::color {

/// Writes the colour file of a cell.
void writeColorFile(OutputFile& file, const input::Cell& cell);

} // namespace kit::color
