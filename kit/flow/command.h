// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace kit::flow {

/// Adds the subcommand `flow` to the program.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::flow
