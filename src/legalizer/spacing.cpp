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
    const size_t numRight = m_design.lut.cells[static_cast<size_t>(rightCell)]->colors.size();

    auto toSites = [entry = 0, sites = 0](int32_t next) mutable {
        if (next != 0 && next != entry) { // few distinct entries, and a division for each
            entry = next;
            sites = ceilSites(entry, SITE_WIDTH);
        }
        return next == 0 ? 0 : sites;
    };
    std::pmr::polymorphic_allocator<int32_t> numbers(&m_storage);
    int32_t* columnOf = numbers.allocate(numRight);
    std::vector<size_t> columns; // the first solution of each
    for (size_t j = 0; j < numRight; ++j) {
        const auto at = std::find_if(columns.begin(), columns.end(), [&](size_t column) {
            return std::all_of(block.begin(), block.end(), [&](const std::vector<int32_t>& row) {
                return toSites(row[j]) == toSites(row[column]);
            });
        });
        columnOf[j] = static_cast<int32_t>(at - columns.begin());
        if (at == columns.end()) {
            columns.push_back(j);
        }
    }

    PairSpacing pair{.least = std::numeric_limits<int32_t>::max(),
                     .most = std::numeric_limits<int32_t>::min(),
                     .numColumns = static_cast<int32_t>(columns.size())};
    int32_t* sites = numbers.allocate(block.size() * columns.size());
    int32_t* next = sites;
    for (const std::vector<int32_t>& row : block) {
        for (const size_t column : columns) {
            const int32_t dist = toSites(row[column]);
            *next++ = dist;
            pair.least = std::min(pair.least, dist);
            pair.most = std::max(pair.most, dist);
        }
    }
    pair.columnOf = columnOf;
    pair.sites = sites;
    return new (std::pmr::polymorphic_allocator<PairSpacing>(&m_storage).allocate(1)) PairSpacing(pair);
}

} // namespace vireloce
