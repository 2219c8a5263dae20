// SPDX-License-Identifier: BSD-3-Clause
// The profile operations for AVX-512.
#include "legalizer/profileOpsKernel.h"

namespace vireloce {

extern const ProfileOps PROFILE_OPS_AVX512;
constinit const ProfileOps PROFILE_OPS_AVX512 = opsOf<16>("AVX-512");

} // namespace vireloce
