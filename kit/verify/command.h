// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <CLI/CLI.hpp>

namespace kit::verify {

/// Adds the subcommand `verify`, which judges a placement and its colours.
void addCommand(CLI::App& program, int& exitStatus);

} // namespace kit::verify
