// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/spacing.h"

#include <algorithm>
#include <limits>
#include <new>

#include "app/parameters.h"
#include "db/design.h"
#include "qlib/exact.h"

namespace vireloce {

SpacingCache::SpacingCache(const Design& design)
    : m_design(design), m_numCells(design.lut.cells.size()), m_pairs(m_numCells * m_numCells)
{
}

const PairSpacing& SpacingCache::between(int32_t leftCell, int32_t rightCell)
{
    const PairSpacing*& pair =
        m_pairs[static_cast<size_t>(leftCell) * m_numCells + static_cast<size_t>(rightCell)];
    if (pair == nullptr) {
        pair = make(leftCell, rightCell);
    }
    return *pair;
}

const PairSpacing* SpacingCache::make(int32_t leftCell, int32_t rightCell)
{
    const auto& block = m_design.lut.distTable[static_cast<size_t>(leftCell)][static_cast<size_t>(rightCell)];
    const size_t numLeft = block.size();
    const size_t numRight = m_design.lut.cells[static_cast<size_t>(rightCell)]->colors.size();

    std::vector<std::vector<int32_t>> columns; // distinct, [column][left solution]
    std::vector<int32_t> column(numLeft);
    std::pmr::polymorphic_allocator<int32_t> numbers(&m_storage);
    int32_t* columnOf = numbers.allocate(numRight);
    for (size_t j = 0; j < numRight; ++j) {
        std::transform(block.begin(), block.end(), column.begin(),
                       [j](const std::vector<int32_t>& row) { return ceilSites(row[j], SITE_WIDTH); });
        const auto at = std::find(columns.begin(), columns.end(), column);
        columnOf[j] = static_cast<int32_t>(at - columns.begin());
        if (at == columns.end()) {
            columns.push_back(column);
        }
    }

    PairSpacing pair{.least = std::numeric_limits<int32_t>::max(),
                     .most = std::numeric_limits<int32_t>::min(),
                     .numColumns = static_cast<int32_t>(columns.size())};
    int32_t* sites = numbers.allocate(numLeft * columns.size());
    for (size_t i = 0; i < numLeft; ++i) {
        for (size_t c = 0; c < columns.size(); ++c) {
            const int32_t dist = columns[c][i];
            sites[i * columns.size() + c] = dist;
            pair.least = std::min(pair.least, dist);
            pair.most = std::max(pair.most, dist);
        }
    }
    pair.columnOf = columnOf;
    pair.sites = sites;
    return new (std::pmr::polymorphic_allocator<PairSpacing>(&m_storage).allocate(1)) PairSpacing(pair);
}

} // namespace vireloce
