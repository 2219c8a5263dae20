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
    m_weight = weight;
    m_most = 0 <= most && most <= MOST_SITES ? most : -1;
    m_reach.fill(0);
    if (m_most >= 0 && weight >= 0.0F && std::isfinite(weight)) {
        fill();
    }
}

void TermTable::fill()
{
    constexpr int32_t MOST_EXACT = 1 << MOST_POWER;
    const auto size = static_cast<size_t>(m_most) + 1;
    m_rising.resize(size);
    int32_t power = MOST_POWER; // the limit so far is two to it
    for (size_t d = 0; d < size; ++d) {
        const float term = static_cast<float>(d) * m_weight;
        m_rising[d] = toInt(term);
        const auto fraction =
            static_cast<double>(term - std::trunc(term)); // exact: both have the same last place
        // Of the largest limit the fraction must be 0; half the limit, twice the room below 1.
        while (power >= 0 &&
               (term >= static_cast<float>(MOST_EXACT) ||
                (fraction > 0.0 && fraction >= 1.0 - static_cast<double>(1 << power) / MOST_EXACT))) {
            m_reach[static_cast<size_t>(power--)] = static_cast<int32_t>(d);
        }
    }
    for (; power >= 0; --power) {
        m_reach[static_cast<size_t>(power)] = m_most + 1;
    }
    m_falling.assign(m_rising.rbegin(), m_rising.rend());
}

} // namespace vireloce
