// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/pairCosts.h"

#include "app/parameters.h"
#include "db/design.h"
#include "qlib/exact.h"

namespace vireloce {

PairCostCache::PairCostCache(const Design& design, SpacingCache& spacings)
    : m_design(design), m_spacings(spacings), m_numCells(design.lut.cells.size()),
      m_costs(m_numCells * m_numCells)
{
}

PairCosts PairCostCache::between(int32_t leftCell, int32_t rightCell)
{
    const int32_t*& costs =
        m_costs[static_cast<size_t>(leftCell) * m_numCells + static_cast<size_t>(rightCell)];
    if (costs == nullptr) {
        costs = make(leftCell, rightCell);
    }
    const auto numColours = [this](int32_t cell) {
        return static_cast<int32_t>(m_design.lut.cells[static_cast<size_t>(cell)]->colors.size());
    };
    return {costs, numColours(leftCell), numColours(rightCell)};
}

const int32_t* PairCostCache::make(int32_t leftCell, int32_t rightCell)
{
    const Cell& left = *m_design.lut.cells[static_cast<size_t>(leftCell)];
    const Cell& right = *m_design.lut.cells[static_cast<size_t>(rightCell)];
    const PairSpacing& spacing = m_spacings.between(leftCell, rightCell);
    const auto numLeft = static_cast<int32_t>(left.colors.size());
    const auto numRight = static_cast<int32_t>(right.colors.size());
    int32_t* costs = std::pmr::polymorphic_allocator<int32_t>(&m_storage)
                         .allocate(left.colors.size() * right.colors.size());
    int32_t* next = costs;
    for (int32_t i = 0; i < numLeft; ++i) {
        for (int32_t j = 0; j < numRight; ++j) {
            *next++ =
                addTruncated(left.stitchesOf(i) + right.stitchesOf(j), spacing.between(i, j), WEIGHT_WRLENG);
        }
    }
    return costs;
}

} // namespace vireloce
