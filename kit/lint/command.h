// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace kit::lint {

/// Adds the subcommand `lint`, which looks for problems in the files of a design.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::lint
