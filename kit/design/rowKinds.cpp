// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/rowKinds.h"

#include <algorithm>

namespace kit::design {

void exchangeMasks(std::vector<int32_t>& masks)
{
    for (int32_t& mask : masks) {
        mask = mask == 1 ? 2 : mask == 2 ? 1 : mask;
    }
}

bool isPaired(const placer::Cell& cell)
{
    const size_t half = cell.solutions.size() / 2;
    bool paired = half > 0 && 2 * half == cell.solutions.size();
    for (size_t i = 0; i < half && paired; ++i) {
        placer::Solution exchanged = cell.solutions[half + i];
        exchangeMasks(exchanged.masks);
        paired =
            exchanged.masks == cell.solutions[i].masks && exchanged.stitches == cell.solutions[i].stitches;
    }
    return paired;
}

RowKinds::RowKinds(const std::vector<placer::Row>& rows)
{
    for (const placer::Row& row : rows) {
        m_bottoms.push_back(row.y);
    }
    std::ranges::sort(m_bottoms);
    m_bottoms.erase(std::unique(m_bottoms.begin(), m_bottoms.end()), m_bottoms.end());
}

bool RowKinds::isOther(int32_t y) const
{
    const auto below = std::ranges::upper_bound(m_bottoms, y) - m_bottoms.begin();
    return below > 0 && below % 2 == 0;
}

} // namespace kit::design
