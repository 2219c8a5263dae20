// SPDX-License-Identifier: BSD-3-Clause
// One run of the placer, from the banner to the last line of the report.
#pragma once

#include <functional>

#include "legalizer/legalizer.h"

/// Prints the banner.
void printWelcome();

/// Prints the usage text.
void printUsage();

namespace vireloce {

/// Where somebody may look on while the placer runs. None of them changes the report.
struct RunHooks {
    std::function<void(Design&)> afterSetUp;         ///< with the design as it is before its placement
    std::function<void(const Progress&)> onProgress; ///< after every segment of every pass
    std::function<void(Design&)> afterEvaluation;    ///< with the design as it is in the end
};

/// Runs the placer as the program does: options, set-up, placement, evaluation, all on the report stream.
///
/// @param argc   number of entries of argv, the program's name included
/// @param argv   [argc] the program's name, then the options in pairs
/// @param hooks  called on the way; those that are empty are not
/// @return exit status, 0 in every case
///
/// Errors: bad options print the usage; every other error ends the run by endRun() (see qlib/report.h).
int runPlacer(int argc, char** argv, const RunHooks& hooks = {});

} // namespace vireloce
