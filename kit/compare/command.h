// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace kit::compare {

/// Adds the subcommand `compare`, which puts results of `place` side by side.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::compare
