// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/termTable.h"

#include <algorithm>
#include <cmath>

#include "qlib/exact.h"

namespace vireloce {

namespace {

/// Largest distance that a table is made for: two tables of 32 MiB.
constexpr int32_t MOST_SITES = 1 << 23;

} // namespace

void TermTable::prepare(float weight, int32_t most)
{
    if (0 <= most && most <= m_most && weight == m_weight) {
        return;
    }
    m_limit = 0;
    m_weight = weight;
    m_most = 0 <= most && most <= MOST_SITES ? most : -1;
    if (m_most >= 0) {
        fill();
    }
}

void TermTable::fill()
{
    if (!(m_weight >= 0.0F) || !std::isfinite(m_weight)) {
        return;
    }
    const auto size = static_cast<size_t>(m_most) + 1;
    m_rising.resize(size);
    float fraction = 0.0F; // largest of any term
    for (size_t d = 0; d < size; ++d) {
        const float term = static_cast<float>(d) * m_weight;
        m_rising[d] = toInt(term);
        fraction = std::max(fraction, term - std::trunc(term)); // exact: both have the same last place
    }
    m_falling.assign(m_rising.rbegin(), m_rising.rend());

    constexpr int32_t MOST_EXACT = 1 << 24; // whole numbers up to here are floats
    int32_t limit = MOST_EXACT;
    // Of the largest limit the fraction must be 0; half the limit, twice the room below 1.
    while (limit > 1 && fraction > 0.0F &&
           static_cast<double>(fraction) >= 1.0 - static_cast<double>(limit) / MOST_EXACT) {
        limit /= 2;
    }
    m_limit = static_cast<float>(m_most) * m_weight < static_cast<float>(limit) ? limit : 0;
}

} // namespace vireloce
