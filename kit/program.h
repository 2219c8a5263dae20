// SPDX-License-Identifier: BSD-3-Clause
// The companion program around its subcommands.
#pragma once

#include <CLI/CLI.hpp>

#include <vector>

namespace kit {

/// Adds a subcommand with its options to the program; its callback does the work.
///
/// @param exitStatus  the program's, 0 unless the callback sets it: 1 if the work is done and the result is
/// not
///                    good, 2 if there is an error in the input
using AddCommand = void (*)(CLI::App& program, int& exitStatus);

/// Reads the arguments and runs the subcommand that they name.
///
/// @param argc      number of entries of argv, the program's name included
/// @param argv      [argc]
/// @param commands  the subcommands, in the order of the help text
/// @return exit status: the subcommand's; 2 after one line on standard error, for wrong arguments and for
/// every
///         Fault
int runProgram(int argc, char** argv, const std::vector<AddCommand>& commands);

} // namespace kit
