// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace kit::sweep {

/// Adds the subcommand `sweep` with its own subcommands to the program.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::sweep
