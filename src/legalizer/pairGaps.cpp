// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/pairGaps.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <new>

#include "lut/lutable.h"
#include "qlib/exact.h"

namespace vireloce {

GapCache::GapCache(const LUTable& library, int32_t siteWidth)
    : m_library(library), m_siteWidth(siteWidth), m_pairs(library.cells.size())
{
}

const PairGaps& GapCache::between(int32_t leftCell, int32_t rightCell)
{
    return *m_pairs.between(leftCell, rightCell, [&] { return make(leftCell, rightCell); });
}

const PairGaps* GapCache::make(int32_t leftCell, int32_t rightCell)
{
    const auto& block = m_library.distTable[static_cast<size_t>(leftCell)][static_cast<size_t>(rightCell)];
    const size_t numRight = m_library.cells[static_cast<size_t>(rightCell)]->colors.size();

    auto toSites = [this, entry = 0, sites = 0](int32_t next) mutable {
        if (next != 0 && next != entry) { // few distinct entries, and a division for each
            entry = next;
            sites = ceilSites(entry, m_siteWidth);
        }
        return next == 0 ? 0 : sites;
    };
    auto* classOf = m_pairs.take<int32_t>(numRight);
    std::vector<size_t> firsts; // [gap class] its first solution
    for (size_t j = 0; j < numRight; ++j) {
        const auto at = std::find_if(firsts.begin(), firsts.end(), [&](size_t first) {
            return std::all_of(block.begin(), block.end(), [&](const std::vector<int32_t>& row) {
                return toSites(row[j]) == toSites(row[first]);
            });
        });
        classOf[j] = static_cast<int32_t>(at - firsts.begin());
        if (at == firsts.end()) {
            firsts.push_back(j);
        }
    }

    PairGaps pair{.least = std::numeric_limits<int32_t>::max(),
                  .most = std::numeric_limits<int32_t>::min(),
                  .numClasses = static_cast<int32_t>(firsts.size())};
    auto* gaps = m_pairs.take<int32_t>(block.size() * firsts.size());
    int32_t* next = gaps;
    for (const std::vector<int32_t>& row : block) {
        for (const size_t first : firsts) {
            const int32_t gap = toSites(row[first]);
            *next++ = gap;
            pair.least = std::min(pair.least, gap);
            pair.most = std::max(pair.most, gap);
        }
    }
    assert(next == gaps + block.size() * firsts.size());
    pair.classOf = classOf;
    pair.gaps = gaps;
    return new (m_pairs.take<PairGaps>(1)) PairGaps(pair);
}

} // namespace vireloce
