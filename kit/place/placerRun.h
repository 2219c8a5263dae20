// SPDX-License-Identifier: BSD-3-Clause
// One run of the placer inside the kit, with its report on standard output as the placer itself prints it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "legalizer/legalizer.h"

class Design;

namespace kit::place {

/// A pass over all segments.
struct Pass {
    int32_t overfull = 0; ///< segments that components had to be moved out of
    int32_t movedOut = 0; ///< components moved out
};

/// How a run went.
struct PlacerRun {
    bool readable = false; ///< the inputs were read and set up
    bool complete = false; ///< the report ends with the final statistics
    std::string report;    ///< as printed
    std::vector<Pass> passes;
};

/// Who looks on.
struct Onlookers {
    std::function<void(Design&)> afterSetUp;
    std::function<void(const vireloce::Progress&)> onProgress;
    std::function<void(Design&)> afterEvaluation;
};

/// Runs the placer.
///
/// @param arguments  the placer's name and options
/// @param onlookers  each of them set
PlacerRun runPlacer(std::vector<std::string> arguments, const Onlookers& onlookers);

} // namespace kit::place
