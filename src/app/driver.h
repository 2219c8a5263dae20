// SPDX-License-Identifier: BSD-3-Clause
// One run of the placer, from the banner to the last line of the report.
#pragma once

/// Prints the banner.
void printWelcome();

/// Prints the usage text.
void printUsage();

namespace vireloce {

/// Runs the placer as the program does: options, set-up, placement, evaluation, all on the report stream.
///
/// @param argc  number of entries of argv, the program's name included
/// @param argv  [argc] the program's name, then the options in pairs
/// @return exit status, 0 in every case
///
/// Errors: bad options print the usage; every other error ends the run by endRun() (see qlib/report.h).
int runPlacer(int argc, char** argv);

} // namespace vireloce
