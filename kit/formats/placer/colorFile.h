// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/base/files/outputFile.h"
#include "kit/formats/placer/design.h"

namespace kit::placer {

/// Writes the colour file of a cell.
void writeColorFile(OutputFile& file, const Cell& cell);

} // namespace kit::placer
