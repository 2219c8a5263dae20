// SPDX-License-Identifier: BSD-3-Clause
// The inner loops of the ordered program, per instruction set. All give the same numbers.
#pragma once

#include <cstdint>
#include <span>

#include "refine/orderedProgram.h"

namespace refine {

/// One cell of the program. A profile is `width` numbers between as many on each side: NEVER on the left of
/// them, the last one on the right.
struct ProgramStep {
    int32_t width = 0; ///< of profiles: 8, 16, 32 or 64
    int32_t sites = 0; ///< of the window, at most the width
    int32_t leftClasses = 0;
    int32_t rightClasses = 0;
    int32_t classesBefore = 0;       ///< right classes of the cell before
    const int32_t* before = nullptr; ///< profiles of the cell before; unused for the first cell
    const int32_t* shifts = nullptr; ///< [right class before * leftClasses + left class] from site to site
    int32_t* arrivals = nullptr; ///< [left class] room for `width` numbers; of the first cell already filled
    const ProgramOption* options = nullptr;
    int32_t optionCount = 0;
    const int32_t* costs[2] = {nullptr, nullptr}; ///< [mirrored] `width` numbers
    int32_t* profiles = nullptr;                  ///< out: [right class]
};

/// A way to do a step.
using ProgramStepFunction = void (*)(const ProgramStep& step);

/// Those that this processor can do, from the slowest to the fastest.
std::span<const ProgramStepFunction> programStepsHere();

} // namespace refine
