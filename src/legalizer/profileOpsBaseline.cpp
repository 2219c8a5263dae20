// SPDX-License-Identifier: BSD-3-Clause
// The profile operations for what every x86-64 has, and any other processor.
#include "legalizer/profileOpsKernel.h"

namespace vireloce {

extern const ProfileOps PROFILE_OPS_BASELINE;
constinit const ProfileOps PROFILE_OPS_BASELINE = opsOf<4>("baseline");

} // namespace vireloce
