// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/program.h"

namespace kit::exporter {

/// Adds the subcommand `export`: a result of `place` as DEF, GDSII and LEF.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::exporter
