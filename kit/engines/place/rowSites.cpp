// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/rowSites.h"

#include <utility>

namespace kit::place {

RowSites::RowSites(const RowProblem& problem, RowDistances& apart)
    : m_problem(problem), m_apart(apart), m_tables(problem.ways.size(), -1)
{
    for (const SiteRun& run : problem.runs) {
        for (int64_t x = run.x; x < run.end; x += run.step) {
            m_x.push_back(x);
            m_end.push_back(run.end);
        }
    }
    m_room.assign(m_x.size() + 1, 0);
    for (size_t site = m_x.size(); site-- > 0;) {
        const bool isLast = site + 1 == m_x.size() || m_end[site] != m_end[site + 1];
        m_room[site] = m_room[site + 1] + (isLast ? m_end[site] : m_x[site + 1]) - m_x[site];
    }
    for (const RowCell& cell : problem.cells) {
        for (const int32_t way : cell.ways) {
            addWay(way);
        }
    }
}

void RowSites::addWay(int32_t way)
{
    int32_t& table = m_tables[static_cast<size_t>(way)];
    if (table >= 0) {
        return;
    }
    std::vector<int64_t> key{m_problem.ways[static_cast<size_t>(way)].width};
    for (const Spot& spot : m_problem.fixed) {
        key.push_back(m_apart(way, spot.way));
        key.push_back(m_apart(spot.way, way));
    }
    const auto [at, isNew] = m_known.try_emplace(std::move(key), static_cast<int32_t>(m_next.size()));
    if (isNew) {
        m_next.push_back(nextFree(way));
    }
    table = at->second;
}

std::vector<int32_t> RowSites::nextFree(int32_t way) const
{
    std::vector<char> isFree(m_x.size());
    for (size_t site = 0; site < m_x.size(); ++site) {
        isFree[site] = m_x[site] + m_problem.ways[static_cast<size_t>(way)].width <= m_end[site] ? 1 : 0;
    }
    for (const Spot& spot : m_problem.fixed) {
        const auto first = std::ranges::upper_bound(m_x, spot.x - m_apart(way, spot.way));
        const auto last = std::ranges::lower_bound(m_x, spot.x + m_apart(spot.way, way));
        for (auto x = first; x < last; ++x) {
            isFree[static_cast<size_t>(x - m_x.begin())] = 0;
        }
    }
    std::vector<int32_t> next(m_x.size() + 1, count());
    for (size_t site = m_x.size(); site-- > 0;) {
        next[site] = isFree[site] != 0 ? static_cast<int32_t>(site) : next[site + 1];
    }
    return next;
}

} // namespace kit::place
