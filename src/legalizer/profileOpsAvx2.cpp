// SPDX-License-Identifier: BSD-3-Clause
// The profile operations for AVX2.
#include "legalizer/profileOpsKernel.h"

namespace vireloce {

extern const ProfileOps PROFILE_OPS_AVX2;
constinit const ProfileOps PROFILE_OPS_AVX2 = opsOf<8>("AVX2");

} // namespace vireloce
