// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/rowOps.h"

#include <array>

namespace vireloce {

extern const RowOps ROW_OPS_BASELINE;
#ifdef VIRELOCE_X86_VARIANTS
extern const RowOps ROW_OPS_AVX2;
extern const RowOps ROW_OPS_AVX512;
#endif

std::span<const RowOps* const> rowOpsHere()
{
#ifdef VIRELOCE_X86_VARIANTS
    static constexpr std::array ALL{&ROW_OPS_BASELINE, &ROW_OPS_AVX2, &ROW_OPS_AVX512};
    static const size_t s_count = []() -> size_t {
        __builtin_cpu_init();
        if (__builtin_cpu_supports("avx2") == 0) {
            return 1;
        }
        return __builtin_cpu_supports("avx512f") == 0 || __builtin_cpu_supports("avx512vl") == 0 ? 2 : 3;
    }();
    return std::span(ALL).first(s_count);
#else
    static constexpr std::array ALL{&ROW_OPS_BASELINE};
    return ALL;
#endif
}

const RowOps& bestRowOps()
{
    static const RowOps& s_best = *rowOpsHere().back();
    return s_best;
}

} // namespace vireloce
