// SPDX-License-Identifier: BSD-3-Clause
// The row operations for what every x86-64 has, and any other processor.
#include "legalizer/rowOpsKernel.h"

namespace vireloce {

extern const RowOps ROW_OPS_BASELINE;
constinit const RowOps ROW_OPS_BASELINE{"baseline", VectorLoops<4>::add, VectorLoops<4>::fall};

} // namespace vireloce
