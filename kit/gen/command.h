// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace kit::gen {

/// Adds the subcommand `gen`, which writes a synthetic design.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::gen
