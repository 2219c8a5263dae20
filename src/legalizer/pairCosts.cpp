// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/pairCosts.h"

#include <new>

#include "lut/lutable.h"
#include "qlib/exact.h"

namespace vireloce {

PairCostCache::PairCostCache(const LUTable& library, GapCache& gaps, float weight)
    : m_library(library), m_gaps(gaps), m_weight(weight), m_pairs(library.cells.size())
{
}

const PairCosts& PairCostCache::between(int32_t leftCell, int32_t rightCell)
{
    return *m_pairs.between(leftCell, rightCell, [&] { return make(leftCell, rightCell); });
}

const PairCosts* PairCostCache::make(int32_t leftCell, int32_t rightCell)
{
    const Cell& left = *m_library.cells[static_cast<size_t>(leftCell)];
    const Cell& right = *m_library.cells[static_cast<size_t>(rightCell)];
    const PairGaps& gaps = m_gaps.between(leftCell, rightCell);
    const auto numLeft = static_cast<int32_t>(left.colors.size());
    const auto numRight = static_cast<int32_t>(right.colors.size());
    auto* costs = m_pairs.take<int32_t>(left.colors.size() * right.colors.size());
    int32_t* next = costs;
    for (int32_t i = 0; i < numLeft; ++i) {
        for (int32_t j = 0; j < numRight; ++j) {
            *next++ = addTruncated(left.stitchesOf(i) + right.stitchesOf(j), gaps.between(i, j), m_weight);
        }
    }
    return new (m_pairs.take<PairCosts>(1)) PairCosts{costs, numLeft, numRight};
}

} // namespace vireloce
