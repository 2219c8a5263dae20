// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/colourKernel.h"

#include <algorithm>
#include <cassert>

#include "qlib/exact.h"

namespace vireloce {

std::span<const int32_t> ColourKernel::solve(int32_t first, std::span<const PairCosts> pairs)
{
    size_t total = static_cast<size_t>(first);
    assert(first >= 0);
    for (const PairCosts& pair : pairs) {
        total += static_cast<size_t>(pair.numRight);
    }
    m_values.resize(total);
    std::fill_n(m_values.begin(), first, 0);
    int32_t* layer = m_values.data();
    for (const PairCosts& pair : pairs) {
        assert(layer + pair.numLeft + pair.numRight <= m_values.data() + total);
        relax(pair, layer, layer + pair.numLeft);
        layer += pair.numLeft;
    }

    m_solutions.assign(pairs.size() + 1, -1);
    const int32_t* const end = m_values.data() + total;
    int32_t value = INFINITE_COST;
    int32_t solution = -1;
    for (const int32_t* at = layer; at != end; ++at) {
        if (*at <= value) { // the last of equals
            value = *at;
            solution = static_cast<int32_t>(at - layer);
        }
    }
    for (size_t q = pairs.size(); solution >= 0; --q) {
        m_solutions[q] = solution;
        if (q == 0) {
            break;
        }
        layer -= pairs[q - 1].numLeft;
        solution = stepBefore(pairs[q - 1], layer, value, solution);
        value = solution >= 0 ? layer[solution] : 0;
    }
    return m_solutions;
}

void ColourKernel::relax(const PairCosts& pair, const int32_t* before, int32_t* out) const
{
    std::fill_n(out, pair.numRight, INFINITE_COST);
    const int32_t* costs = pair.costs;
    for (int32_t i = 0; i < pair.numLeft; ++i, costs += pair.numRight) {
        for (int32_t j = 0; j < pair.numRight; ++j) {
            out[j] = std::min(out[j], before[i] + costs[j]);
        }
    }
}

int32_t ColourKernel::stepBefore(const PairCosts& pair, const int32_t* before, int32_t value,
                                 int32_t right) const
{
    for (int32_t i = pair.numLeft; i-- > 0;) {
        if (before[i] + pair.costs[i * pair.numRight + right] == value) {
            return i;
        }
    }
    return -1;
}

} // namespace vireloce
