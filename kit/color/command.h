// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/program.h"

namespace kit::color {

/// Adds the subcommand `color`: colour files from LEF files.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::color
