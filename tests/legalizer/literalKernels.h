// SPDX-License-Identifier: BSD-3-Clause
// The placement and local shift programs a second time, rule by rule, over hand-made segments.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "legalizer/handMade.h"
#include "qlib/exact.h"

namespace test {

/// Sum modulo 2^32.
inline int32_t wrapped(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

/// The placement grid over its full width, node by node in the order of their numbers.
class LiteralGrid {
public:
    /// As the joint program, or from the start value of the ordered one as that.
    LiteralGrid(const HandMade& made, int32_t unreached)
        : LiteralGrid(made, unreached, unreached == vireloce::ORDERED_UNREACHED)
    {
    }

    /// @param unreached      start value
    /// @param placesWaiting  whether waiting nodes of the path are places, too
    LiteralGrid(const HandMade& made, int32_t unreached, bool placesWaiting)
        : m_made(made), m_rowLength(made.numSites + 1), m_placesWaiting(placesWaiting)
    {
        m_rows.push_back({-1, -1});
        for (size_t q = 0; q < made.comps.size(); ++q) {
            for (size_t j = 0; j < made.comps[q].stitches.size(); ++j) {
                m_rows.emplace_back(static_cast<int>(q), static_cast<int>(j));
            }
        }
        m_dist.assign(m_rows.size() * static_cast<size_t>(m_rowLength) + 1, unreached);
        m_pred.assign(m_dist.size(), -1);
        m_dist[0] = 0;
        for (size_t row = 0; row < m_rows.size(); ++row) {
            for (int32_t site = 0; site < m_rowLength; ++site) {
                leave(row, site);
            }
        }
    }

    /// What the best path costs.
    int32_t best() const { return m_dist.back(); }

    GridPlaces places() const
    {
        GridPlaces all(m_made.comps.size());
        for (int32_t i = m_pred.back(); i >= 0 && m_pred[static_cast<size_t>(i)] >= 0;) {
            const auto [comp, solution] = m_rows[static_cast<size_t>(i / m_rowLength)];
            const int32_t before = m_pred[static_cast<size_t>(i)];
            if (comp >= 0 && (m_placesWaiting || before / m_rowLength != i / m_rowLength)) {
                const auto q = static_cast<size_t>(comp);
                const int32_t site = i % m_rowLength - m_made.comps[q].width;
                all[q] = {site >= 0 ? site : all[q].site, solution}; // what sticks out is not written
            }
            i = before;
        }
        return all;
    }

    /// Whether the best path begins at a node that has not been reached.
    bool beginsUnreached() const
    {
        int32_t i = m_pred.back();
        while (i > 0 && m_pred[static_cast<size_t>(i)] >= 0) {
            i = m_pred[static_cast<size_t>(i)];
        }
        return i > 0;
    }

private:
    int32_t number(size_t row, int32_t site) const { return static_cast<int32_t>(row) * m_rowLength + site; }

    void relax(int32_t from, int32_t to, int32_t cost)
    {
        const int32_t candidate = wrapped(m_dist[static_cast<size_t>(from)], cost);
        if (m_dist[static_cast<size_t>(to)] >= candidate) {
            m_dist[static_cast<size_t>(to)] = candidate;
            m_pred[static_cast<size_t>(to)] = from;
        }
    }

    void leave(size_t row, int32_t site)
    {
        const int32_t from = number(row, site);
        if (site < m_made.numSites) {
            relax(from, from + 1, 0);
        }
        const auto [comp, solution] = m_rows[row];
        const auto next = static_cast<size_t>(comp + 1);
        for (size_t to = row + 1; to < m_rows.size(); ++to) {
            const auto j = static_cast<size_t>(m_rows[to].second);
            if (m_rows[to].first != comp + 1) {
                continue;
            }
            const int32_t dist = comp < 0 ? 0 : m_made.gap(next, static_cast<size_t>(solution), j);
            const int64_t end = int64_t{site} + dist + m_made.comps[next].width;
            if (end <= m_made.numSites) {
                relax(from, number(to, static_cast<int32_t>(end)), m_made.cost(next, site + dist, j));
            }
        }
        if (comp >= 0 && site == m_made.numSites) {
            const auto unplaced = static_cast<int32_t>(m_made.comps.size()) - comp;
            relax(from, static_cast<int32_t>(m_dist.size()) - 1, 10 * m_made.numSites * unplaced);
        }
    }

    const HandMade& m_made;
    int32_t m_rowLength;
    bool m_placesWaiting;
    std::vector<std::pair<int, int>> m_rows; ///< component and solution
    Ints m_dist;
    Ints m_pred;
};

/// The local shift program by its tables; empty if nothing fits.
inline ShiftPlaces literalShifts(const HandMade& made, const ShiftRange& range)
{
    struct State {
        int32_t cost = vireloce::INFINITE_COST;
        size_t shift = 0; ///< of the left neighbour on the way here
        size_t solution = 0;
        bool pruned = false;
    };
    const size_t n = made.comps.size();
    const auto shifts = static_cast<size_t>(std::max<int64_t>(range.count, 0));
    const auto solutions = static_cast<size_t>(range.solutions);
    using Table = std::vector<std::vector<State>>; // [solution][shift]
    std::vector<Table> table(n, Table(solutions, std::vector<State>(shifts)));
    const auto siteOf = [&](size_t q, size_t shift) {
        return wrapped(wrapped(made.comps[q].site, range.first), static_cast<int32_t>(shift));
    };
    const auto solutionsOf = [&](size_t q) { return std::min(made.comps[q].stitches.size(), solutions); };
    const auto stepCost = [&](size_t q, size_t a, size_t from, size_t b, size_t to) {
        const int32_t left = siteOf(q, from);
        const int32_t right = siteOf(q + 1, to);
        if (left < 0 || right + made.comps[q + 1].width > made.numSites ||
            right - left - made.comps[q].width < made.gap(q + 1, a, b)) {
            return vireloce::INFINITE_COST;
        }
        return wrapped(made.cost(q, left, a), made.cost(q + 1, right, b));
    };
    for (std::vector<State>& solution : table[0]) {
        solution.assign(solution.size(), State{.cost = 0});
    }
    for (size_t q = 0; q + 1 < n; ++q) {
        for (size_t a = 0; a < solutionsOf(q); ++a) {
            for (size_t b = 0; b < solutionsOf(q + 1); ++b) {
                for (size_t from = 0; from < shifts; ++from) {
                    const State& source = table[q][a][from];
                    for (size_t to = 0; to < shifts && !source.pruned && source.cost < 1073741822; ++to) {
                        State& target = table[q + 1][b][to];
                        const int32_t cost = wrapped(stepCost(q, a, from, b, to), source.cost);
                        if (cost < target.cost) {
                            target = {.cost = cost, .shift = from, .solution = a};
                        }
                    }
                }
            }
        }
        for (std::vector<State>& solution : table[q + 1]) {
            for (size_t o = 0; o < solution.size() && range.prune; ++o) {
                solution[o].pruned = std::any_of(solution.begin(), solution.begin() + static_cast<int>(o),
                                                 [&](const State& s) { return s.cost < solution[o].cost; });
            }
        }
    }
    int32_t least = vireloce::INFINITE_COST;
    size_t solution = 0;
    size_t shift = 0;
    for (size_t b = 0; b < solutions; ++b) {
        for (size_t o = 0; o < shifts; ++o) {
            if (table[n - 1][b][o].cost < least) {
                least = table[n - 1][b][o].cost;
                shift = o;
                solution = b;
            }
        }
    }
    if (least > 1073741821) {
        return {};
    }
    ShiftPlaces all(n);
    for (size_t q = n; q-- > 0;) {
        all[q] = {range.first + static_cast<int32_t>(shift), static_cast<int32_t>(solution)};
        const State& state = table[q][solution][shift];
        shift = state.shift;
        solution = state.solution;
    }
    return all;
}

/// Places of a local shift kernel, nothing if it does not take the segment.
template <class Kernel>
std::optional<ShiftPlaces> solved(Kernel& kernel, const HandMade& made, const ShiftRange& range,
                                  bool shareClasses = true)
{
    const HandMadeArrays arrays(made, shareClasses);
    if (!kernel.solve(arrays.shifts(range))) {
        return std::nullopt;
    }
    return ShiftPlaces(kernel.places().begin(), kernel.places().end());
}

/// The same of a new kernel.
template <class Kernel>
std::optional<ShiftPlaces> solvedBy(const HandMade& made, const ShiftRange& range)
{
    Kernel kernel;
    return solved(kernel, made, range);
}

} // namespace test
