// SPDX-License-Identifier: BSD-3-Clause
// The companion program around its subcommands.
#pragma once

#include <CLI/CLI.hpp>

#include <vector>

namespace kit {

/// Adds a subcommand with its options to the program; its callback does the work.
using AddCommand = void (*)(CLI::App& program);

/// Reads the arguments and runs the subcommand that they name.
///
/// @param argc      number of entries of argv, the program's name included
/// @param argv      [argc]
/// @param commands  the subcommands, in the order of the help text
/// @return exit status: 0 good; 2 after one line on standard error, for wrong arguments and for every Fault
int runProgram(int argc, char** argv, const std::vector<AddCommand>& commands);

} // namespace kit
