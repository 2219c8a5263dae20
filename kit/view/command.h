// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace kit::view {

/// Adds the subcommand `view` to the companion program.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::view
