// SPDX-License-Identifier: BSD-3-Clause
// The program: one run of the placer, from the banner to the last line of the report.
#pragma once

#include "app/placeOptions.h"

/// Prints the banner.
void printWelcome();

/// Prints the usage text.
void printUsage();

namespace vireloce {

/// Prints what a report begins with, the banner and the options, and reads the options.
///
/// @param argc     number of entries of argv, the program's name included
/// @param argv     [argc] the program's name, then the options in pairs
/// @param options  what the arguments name is replaced
/// @return false after the usage, over options that cannot be read
bool beginReport(int argc, const char* const* argv, PlaceOptions& options);

/// Runs the placer as the program does: place() with all of its report, an error line included.
///
/// @param argc  as for beginReport()
/// @param argv  as for beginReport()
/// @return exit status, 0 in every case
int runPlacer(int argc, const char* const* argv);

} // namespace vireloce
