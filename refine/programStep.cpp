// SPDX-License-Identifier: BSD-3-Clause
#include "refine/programStep.h"

#include <array>

#include "refine/programStepKernel.h"

namespace refine {

#ifdef REFINE_X86_VARIANTS
extern const ProgramStepFunction PROGRAM_STEP_AVX2;
#endif

std::span<const ProgramStepFunction> programStepsHere()
{
#ifdef REFINE_X86_VARIANTS
    static const std::array s_all{ProgramStepFunction{stepOf}, PROGRAM_STEP_AVX2};
    static const size_t s_count = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") == 0 ? size_t{1} : size_t{2};
    }();
    return std::span(s_all).first(s_count);
#else
    static constexpr std::array<ProgramStepFunction, 1> ALL{stepOf};
    return ALL;
#endif
}

} // namespace refine
