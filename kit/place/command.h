// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace kit::place {

/// Adds the subcommand `place`, which runs the placer and keeps its result.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::place
