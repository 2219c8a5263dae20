// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace kit::importing {

/// Adds the subcommand `import` to the program.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::importing
