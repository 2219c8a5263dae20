// SPDX-License-Identifier: BSD-3-Clause
// The sites of a row for those who arrange cells on them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <vector>

#include "kit/engines/place/rowProblem.h"

namespace kit::place {

/// The distances of a problem that were asked for.
class RowDistances {
public:
    /// @param problem  not owned
    explicit RowDistances(const RowProblem& problem)
        : m_problem(problem), m_sides(static_cast<size_t>(problem.sides)), m_known(m_sides * m_sides, UNKNOWN)
    {
    }

    /// Of the left edges of two cells in two ways, the second one to the right.
    int64_t operator()(int32_t left, int32_t right)
    {
        return ofSides(m_problem.ways[static_cast<size_t>(left)].right,
                       m_problem.ways[static_cast<size_t>(right)].left);
    }

    /// Of the left edges of two cells that show these sides to each other.
    int64_t ofSides(int32_t right, int32_t left)
    {
        int64_t& known = m_known[static_cast<size_t>(right) * m_sides + static_cast<size_t>(left)];
        if (known == UNKNOWN) {
            known = m_problem.apart(right, left);
        }
        return known;
    }

private:
    static constexpr int64_t UNKNOWN = -1;

    const RowProblem& m_problem;
    size_t m_sides;
    std::vector<int64_t> m_known; ///< [right side * sides + left side]
};

/// The sites of a problem, and where a cell in each way may have its left edge.
class RowSites {
public:
    RowSites(const RowProblem& problem, RowDistances& apart);

    /// Sites.
    int32_t count() const { return static_cast<int32_t>(m_x.size()); }
    /// Left edge of a site.
    int64_t xOf(int32_t site) const { return m_x[static_cast<size_t>(site)]; }

    /// Free length from a site on, up to the right end of all.
    int64_t roomFrom(int32_t site) const { return m_room[static_cast<size_t>(site)]; }

    /// The first site from x on that is free for a way, count() if there is none.
    int32_t from(int64_t x, int32_t way) const
    {
        const auto at = std::ranges::lower_bound(m_x, x) - m_x.begin();
        return tableOf(way)[static_cast<size_t>(at)];
    }

    /// The last site up to x that is free for a way, -1 if there is none.
    int32_t upTo(int64_t x, int32_t way) const
    {
        int32_t site = lastUpTo(x);
        while (site >= 0 && !isFree(site, way)) {
            --site;
        }
        return site;
    }

    /// The last site up to x, -1 if there is none.
    int32_t lastUpTo(int64_t x) const
    {
        return static_cast<int32_t>(std::ranges::upper_bound(m_x, x) - m_x.begin()) - 1;
    }

    /// Whether a cell may have its left edge at a site.
    bool isFree(int32_t site, int32_t way) const { return tableOf(way)[static_cast<size_t>(site)] == site; }

private:
    void addWay(int32_t way);
    std::vector<int32_t> nextFree(int32_t way) const;

    const std::vector<int32_t>& tableOf(int32_t way) const
    {
        return m_next[static_cast<size_t>(m_tables[static_cast<size_t>(way)])];
    }

    const RowProblem& m_problem;
    RowDistances& m_apart;
    std::vector<int64_t> m_x;                        ///< [site] left edge
    std::vector<int64_t> m_end;                      ///< [site] end of its run
    std::vector<int64_t> m_room;                     ///< [site]
    std::vector<std::vector<int32_t>> m_next;        ///< [table][site] the first from there on that is free
    std::vector<int32_t> m_tables;                   ///< [way] its table, or -1
    std::map<std::vector<int64_t>, int32_t> m_known; ///< tables by width, and what fixed cells ask for
};

} // namespace kit::place
