// SPDX-License-Identifier: BSD-3-Clause
// The row operations for AVX-512.
#include "legalizer/rowOpsKernel.h"

namespace vireloce {

extern const RowOps ROW_OPS_AVX512;
constinit const RowOps ROW_OPS_AVX512{"AVX-512", VectorLoops<16>::add, VectorLoops<16>::fall};

} // namespace vireloce
