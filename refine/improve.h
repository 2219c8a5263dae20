// SPDX-License-Identifier: BSD-3-Clause
// Shorter wires for a placed and coloured design: cells are moved, mirrored and given other colourings, and
// no two are ever closer than their masks allow.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "refine/model.h"

namespace refine {

/// What a run is to do.
struct Options {
    static constexpr int32_t MOST_EFFORT = 9;
    static constexpr int64_t PRICE_PARTS = 32;
    static constexpr int64_t MOST_STITCH_PRICE = 1 << 17; ///< units; a higher price is taken as this one

    int32_t effort = 3;            ///< 0 (nothing) to MOST_EFFORT (until nothing helps any more)
    int32_t jobs = 1;              ///< threads; the result is the same for any number
    int64_t stitchPrice = 0;       ///< of a stitch, in wirelength of weight 1, units
    int64_t displacementPrice = 0; ///< of a unit that a cell is from its start, in parts of 1 / PRICE_PARTS
    int32_t maxDisplacement = FARTHEST; ///< |dx| + |dy| from its start, units
};

/// The moves, in the order of the report.
enum class Move { INSERT, SWAP, ROW, REORDER };
inline constexpr int32_t MOVES = 4;

/// What a move did in a pass.
struct MoveFigures {
    int64_t tried = 0;
    int64_t taken = 0;
    int64_t gain = 0;     ///< of the objective, units
    double seconds = 0.0; ///< wall time
};

/// A pass over the design.
struct Pass {
    MoveFigures moves[MOVES];
    int64_t wirelength = 0; ///< after it
    int64_t stitches = 0;   ///< after it
};

/// A cell without a legal place.
struct Homeless {
    int32_t cell = 0;
    bool isProved = false; ///< no run has as many free sites as it takes, whoever moves inside of runs
};

/// What came out.
struct Result {
    int64_t wirelengthBefore = 0;
    int64_t wirelengthAfter = 0;
    int64_t stitchesBefore = 0;
    int64_t stitchesAfter = 0;
    int64_t legalized = 0; ///< cells that a start with violations had to be changed in first
    std::vector<Homeless> homeless;
    std::vector<Pass> passes;
    bool stopped = false; ///< the hook ended the run
};

/// Looks on.
struct Hooks {
    /// Called a few times a second, with the passes that are done, the share of the current one and the
    /// wirelength. The run ends soon if it returns false; the model has the best placement so far.
    std::function<bool(int32_t pass, double share, int64_t wirelength)> onProgress;
};

/// Improves a placement. If it has violations, it is made legal first, as legalize() does. The objective is
/// wirelength plus stitches and displacement by their prices. It never becomes worse than that of the legal
/// start, and what is legal stays legal.
///
/// Errors: throws std::invalid_argument, with the text of faultOf(), for a model with faults.
Result improve(Model& model, const Options& options, const Hooks& hooks);

} // namespace refine
