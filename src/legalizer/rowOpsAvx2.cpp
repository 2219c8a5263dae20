// SPDX-License-Identifier: BSD-3-Clause
// The row operations for AVX2.
#include "legalizer/rowOpsKernel.h"

namespace vireloce {

extern const RowOps ROW_OPS_AVX2;
constinit const RowOps ROW_OPS_AVX2{"AVX2", VectorLoops<8>::add, VectorLoops<8>::fall};

} // namespace vireloce
