// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/profileOps.h"

#include <array>

namespace vireloce {

extern const ProfileOps PROFILE_OPS_BASELINE;
#ifdef VIRELOCE_X86_VARIANTS
extern const ProfileOps PROFILE_OPS_AVX2;
extern const ProfileOps PROFILE_OPS_AVX512;
#endif

std::span<const ProfileOps* const> profileOpsHere()
{
#ifdef VIRELOCE_X86_VARIANTS
    static constexpr std::array ALL{&PROFILE_OPS_BASELINE, &PROFILE_OPS_AVX2, &PROFILE_OPS_AVX512};
    static const size_t s_count = []() -> size_t {
        __builtin_cpu_init();
        if (__builtin_cpu_supports("avx2") == 0) {
            return 1;
        }
        return __builtin_cpu_supports("avx512f") == 0 || __builtin_cpu_supports("avx512vl") == 0 ? 2 : 3;
    }();
    return std::span(ALL).first(s_count);
#else
    static constexpr std::array ALL{&PROFILE_OPS_BASELINE};
    return ALL;
#endif
}

const ProfileOps& bestProfileOps()
{
    static const ProfileOps& s_best = *profileOpsHere().back();
    return s_best;
}

} // namespace vireloce
