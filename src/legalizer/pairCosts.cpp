// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/pairCosts.h"

#include "lut/lutable.h"
#include "qlib/exact.h"

namespace vireloce {

PairCostCache::PairCostCache(const LUTable& library, GapCache& gaps, float weight)
    : m_library(library), m_gaps(gaps), m_weight(weight), m_costs(library.cells.size())
{
}

PairCosts PairCostCache::between(int32_t leftCell, int32_t rightCell)
{
    const auto numColours = [this](int32_t cell) {
        return static_cast<int32_t>(m_library.cells[static_cast<size_t>(cell)]->colors.size());
    };
    return {m_costs.between(leftCell, rightCell, [&] { return make(leftCell, rightCell); }),
            numColours(leftCell), numColours(rightCell)};
}

const int32_t* PairCostCache::make(int32_t leftCell, int32_t rightCell)
{
    const Cell& left = *m_library.cells[static_cast<size_t>(leftCell)];
    const Cell& right = *m_library.cells[static_cast<size_t>(rightCell)];
    const PairGaps& gaps = m_gaps.between(leftCell, rightCell);
    const auto numLeft = static_cast<int32_t>(left.colors.size());
    const auto numRight = static_cast<int32_t>(right.colors.size());
    auto* costs = m_costs.take<int32_t>(left.colors.size() * right.colors.size());
    int32_t* next = costs;
    for (int32_t i = 0; i < numLeft; ++i) {
        for (int32_t j = 0; j < numRight; ++j) {
            *next++ = addTruncated(left.stitchesOf(i) + right.stitchesOf(j), gaps.between(i, j), m_weight);
        }
    }
    return costs;
}

} // namespace vireloce
