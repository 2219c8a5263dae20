// SPDX-License-Identifier: BSD-3-Clause
// The inner loops of the ordered program for AVX2.
#include "refine/programStepKernel.h"

namespace refine {

extern const ProgramStepFunction PROGRAM_STEP_AVX2;
constinit const ProgramStepFunction PROGRAM_STEP_AVX2 = stepOf;

} // namespace refine
