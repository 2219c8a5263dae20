// SPDX-License-Identifier: BSD-3-Clause
// Segments made of literals for the kernels, and the programs a second time, rule by rule, over them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "legalizer/gridKernel.h"
#include "legalizer/randomDesign.h"
#include "legalizer/shiftKernel.h"
#include "qlib/exact.h"

namespace vireloce {

inline bool operator==(const GridPlace& a, const GridPlace& b)
{
    return a.site == b.site && a.solution == b.solution;
}

inline void PrintTo(const GridPlace& place, std::ostream* out)
{
    *out << "site " << place.site << " solution " << place.solution;
}

inline bool operator==(const ShiftPlace& a, const ShiftPlace& b)
{
    return a.shift == b.shift && a.solution == b.solution;
}

inline void PrintTo(const ShiftPlace& place, std::ostream* out)
{
    *out << "shift " << place.shift << " solution " << place.solution;
}

} // namespace vireloce

namespace test {

using Ints = std::vector<int32_t>;
using GridPlaces = std::vector<vireloce::GridPlace>;
using ShiftPlaces = std::vector<vireloce::ShiftPlace>;

/// A component of a hand-made segment.
struct HandMadeComp {
    int32_t width = 1;             ///< sites
    Ints stitches = {0};           ///< [solution]
    std::vector<Ints> behind = {}; ///< [solution of the left neighbour][solution] sites; all 0 if empty
    Ints lefts = {};               ///< what its centre must not be left of, sites
    Ints rights = {};              ///< what its centre must not be right of, sites
    int32_t site = 0;              ///< left end before a shift
};

/// A segment.
struct HandMade {
    int32_t numSites = 10;
    float weight = 1.4F;
    std::vector<HandMadeComp> comps = {};

    /// Sites between a component's left neighbour and itself.
    int32_t behind(size_t comp, size_t left, size_t solution) const
    {
        const std::vector<Ints>& sites = comps[comp].behind;
        return sites.empty() ? 0 : sites.at(left).at(solution);
    }

    /// Cost of a component at a site: what sticks out of its ranges, truncated term by term.
    int32_t cost(size_t comp, int32_t site, size_t solution) const
    {
        const HandMadeComp& c = comps[comp];
        int32_t sum = c.stitches.at(solution);
        for (const int32_t right : c.rights) {
            sum = vireloce::addTruncated(sum, std::max(site + c.width / 2 - right, 0), weight);
        }
        for (const int32_t left : c.lefts) {
            sum = vireloce::addTruncated(sum, std::max(left - c.width / 2 - site, 0), weight);
        }
        return sum;
    }
};

/// The flat arrays of a hand-made segment. Every solution has a column of its own, or equal ones share one.
class HandMadeArrays {
public:
    HandMadeArrays(const HandMade& made, bool shareColumns)
    {
        segment.numSites = made.numSites;
        for (const HandMadeComp& comp : made.comps) {
            segment.comps.push_back(nullptr);
            segment.width.push_back(comp.width);
            segment.leftEndBegin.push_back(static_cast<int32_t>(segment.leftEnds.size()));
            segment.leftEnds.insert(segment.leftEnds.end(), comp.lefts.begin(), comp.lefts.end());
            segment.rightEndBegin.push_back(static_cast<int32_t>(segment.rightEnds.size()));
            segment.rightEnds.insert(segment.rightEnds.end(), comp.rights.begin(), comp.rights.end());
            stitches.emplace_back(comp.stitches);
            sites.push_back(comp.site);
        }
        segment.leftEndBegin.push_back(static_cast<int32_t>(segment.leftEnds.size()));
        segment.rightEndBegin.push_back(static_cast<int32_t>(segment.rightEnds.size()));
        terms.prepare(made.weight, made.numSites);
        behind.push_back(nullptr);
        for (size_t q = 1; q < made.comps.size(); ++q) {
            addSpacing(made, q, shareColumns);
        }
    }
    HandMadeArrays(const HandMadeArrays&) = delete;
    HandMadeArrays& operator=(const HandMadeArrays&) = delete;

    vireloce::GridProblem grid(int32_t unreached) const
    {
        return {segment, behind, stitches, terms, unreached};
    }

    vireloce::ShiftProblem shifts(int32_t range, bool prune) const
    {
        return {segment, behind, stitches, sites, terms, -range - 1, 2 * range + 1, prune};
    }

    vireloce::SegmentData segment;
    vireloce::TermTable terms;
    std::vector<const vireloce::PairSpacing*> behind;
    std::vector<std::span<const int32_t>> stitches;
    Ints sites;

private:
    struct Owned {
        vireloce::PairSpacing spacing;
        Ints columnOf;
        Ints sites;
    };

    void addSpacing(const HandMade& made, size_t comp, bool shareColumns)
    {
        const size_t numLeft = made.comps[comp - 1].stitches.size();
        const size_t numRight = made.comps[comp].stitches.size();
        Owned& owned = *m_owned.emplace_back(std::make_unique<Owned>());
        std::vector<Ints> columns; // [column][left solution]
        for (size_t j = 0; j < numRight; ++j) {
            Ints column;
            for (size_t i = 0; i < numLeft; ++i) {
                column.push_back(made.behind(comp, i, j));
            }
            const auto at = shareColumns ? std::find(columns.begin(), columns.end(), column) : columns.end();
            owned.columnOf.push_back(static_cast<int32_t>(at - columns.begin()));
            if (at == columns.end()) {
                columns.push_back(column);
            }
        }
        for (size_t i = 0; i < numLeft; ++i) {
            for (const Ints& column : columns) {
                owned.sites.push_back(column[i]);
            }
        }
        owned.spacing.numColumns = static_cast<int32_t>(columns.size());
        owned.spacing.columnOf = owned.columnOf.data();
        owned.spacing.sites = owned.sites.data();
        if (!owned.sites.empty()) {
            owned.spacing.least = *std::min_element(owned.sites.begin(), owned.sites.end());
            owned.spacing.most = *std::max_element(owned.sites.begin(), owned.sites.end());
        }
        behind.push_back(&owned.spacing);
    }

    std::vector<std::unique_ptr<Owned>> m_owned;
};

/// Sum modulo 2^32.
inline int32_t wrapped(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

/// The placement grid over its full width, node by node in the order of their numbers.
class LiteralGrid {
public:
    LiteralGrid(const HandMade& made, int32_t unreached) : m_made(made), m_rowLength(made.numSites + 1)
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
            if (comp >= 0 && before / m_rowLength != i / m_rowLength) {
                const auto q = static_cast<size_t>(comp);
                all[q] = {i % m_rowLength - m_made.comps[q].width, solution};
            }
            i = before;
        }
        return all;
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
            const int32_t dist = comp < 0 ? 0 : m_made.behind(next, static_cast<size_t>(solution), j);
            const int32_t end = site + dist + m_made.comps[next].width;
            if (end <= m_made.numSites) {
                relax(from, number(to, end), m_made.cost(next, site + dist, j));
            }
        }
        if (comp >= 0 && site == m_made.numSites) {
            const auto unplaced = static_cast<int32_t>(m_made.comps.size()) - comp;
            relax(from, static_cast<int32_t>(m_dist.size()) - 1, 10 * m_made.numSites * unplaced);
        }
    }

    const HandMade& m_made;
    int32_t m_rowLength;
    std::vector<std::pair<int, int>> m_rows; ///< component and solution
    Ints m_dist;
    Ints m_pred;
};

/// The local shift program by its three tables; empty if nothing fits.
inline ShiftPlaces literalShifts(const HandMade& made, int32_t range, bool prune)
{
    struct State {
        int32_t cost = vireloce::INFINITE_COST;
        vireloce::ShiftPlace before = {};
        bool pruned = false;
    };
    const size_t n = made.comps.size();
    const int32_t shifts = 2 * range + 1;
    std::vector<std::vector<std::vector<State>>> table(n);
    for (size_t q = 0; q < n; ++q) {
        table[q].assign(made.comps[q].stitches.size(), std::vector<State>(static_cast<size_t>(shifts)));
    }
    const auto siteOf = [&](size_t q, int32_t shift) { return made.comps[q].site - range - 1 + shift; };
    const auto stepCost = [&](size_t q, int32_t a, int32_t from, int32_t b, int32_t to) {
        const int32_t left = siteOf(q, from);
        const int32_t right = siteOf(q + 1, to);
        const auto i = static_cast<size_t>(a);
        const auto j = static_cast<size_t>(b);
        if (left < 0 || right + made.comps[q + 1].width > made.numSites ||
            right - left - made.comps[q].width < made.behind(q + 1, i, j)) {
            return vireloce::INFINITE_COST;
        }
        return wrapped(made.cost(q, left, i), made.cost(q + 1, right, j));
    };
    for (std::vector<State>& solution : table[0]) {
        solution.assign(solution.size(), State{.cost = 0});
    }
    for (size_t q = 0; q + 1 < n; ++q) {
        for (int32_t a = 0; a < static_cast<int32_t>(table[q].size()); ++a) {
            for (int32_t b = 0; b < static_cast<int32_t>(table[q + 1].size()); ++b) {
                for (int32_t from = 0; from < shifts; ++from) {
                    const State& source = table[q][static_cast<size_t>(a)][static_cast<size_t>(from)];
                    for (int32_t to = 0; to < shifts && !source.pruned && source.cost < 1073741822; ++to) {
                        State& target = table[q + 1][static_cast<size_t>(b)][static_cast<size_t>(to)];
                        const int32_t cost = wrapped(stepCost(q, a, from, b, to), source.cost);
                        if (cost < target.cost) {
                            target = {.cost = cost, .before = {.shift = from, .solution = a}};
                        }
                    }
                }
            }
        }
        for (std::vector<State>& solution : table[q + 1]) {
            for (size_t o = 0; o < solution.size() && prune; ++o) {
                solution[o].pruned = std::any_of(solution.begin(), solution.begin() + static_cast<int>(o),
                                                 [&](const State& s) { return s.cost < solution[o].cost; });
            }
        }
    }
    int32_t least = vireloce::INFINITE_COST;
    vireloce::ShiftPlace place;
    for (size_t b = 0; b < table[n - 1].size(); ++b) {
        for (size_t o = 0; o < table[n - 1][b].size(); ++o) {
            if (table[n - 1][b][o].cost < least) {
                least = table[n - 1][b][o].cost;
                place = {.shift = static_cast<int32_t>(o), .solution = static_cast<int32_t>(b)};
            }
        }
    }
    if (least > 1073741821) {
        return {};
    }
    ShiftPlaces all(n);
    for (size_t q = n; q-- > 0;) {
        all[q] = place;
        place = table[q][static_cast<size_t>(place.solution)][static_cast<size_t>(place.shift)].before;
    }
    return all;
}

/// A random hand-made segment: few distinct costs, spacings and widths, from nearly empty to over-full.
inline HandMade randomHandMade(uint32_t seed)
{
    Random random(seed);
    HandMade made;
    made.weight = random.oneOf<float>({0.0F, 0.05F, 0.3F, 1.0F, 1.4F, 1.4F, 2.7F, 10.0F});
    const int32_t mostSolutions = random.oneOf<int>({1, 2, 4, 9});
    const Ints spacings =
        random.oneOf<Ints>({{0}, {0, 1}, {0, 0, 0, 1}, {0, 1, 2}, {2, 3}, {0, 5, 16}, {3, 19}});
    const Ints stitchNums = random.oneOf<Ints>({{0, 1}, {0, 0, 1, 2}, {0, 7, 40}, {100, 300}});
    int32_t width = 0;
    for (int i = random.pick(1, random.oneOf<int>({2, 4, 9})); i > 0; --i) {
        HandMadeComp comp;
        comp.width = random.oneOf<int>({0, 1, 1, 2, 3, 4});
        comp.site = width + random.pick(-1, 2);
        width += comp.width;
        comp.stitches.resize(static_cast<size_t>(random.pick(1, mostSolutions)));
        for (int32_t& stitch : comp.stitches) {
            stitch = random.oneOf(stitchNums);
        }
        if (!made.comps.empty()) {
            comp.behind.assign(made.comps.back().stitches.size(), Ints(comp.stitches.size()));
            for (Ints& row : comp.behind) {
                for (int32_t& sites : row) {
                    sites = random.oneOf(spacings);
                }
            }
        }
        made.comps.push_back(comp);
    }
    made.numSites = std::max(1, width + random.oneOf<int>({-6, -2, -1, 0, 1, 2, 3, 5, 8, 20, 40}));
    for (HandMadeComp& comp : made.comps) {
        for (int i = random.pick(0, 3); i > 0; --i) {
            comp.lefts.push_back(random.pick(0, made.numSites));
        }
        for (int i = random.pick(0, 3); i > 0; --i) {
            comp.rights.push_back(random.pick(0, made.numSites));
        }
    }
    return made;
}

/// The same with numbers around the limits of what a kernel may take.
inline HandMade largeHandMade(uint32_t seed)
{
    HandMade made = randomHandMade(seed);
    Random random(seed + 1000000);
    made.weight = random.oneOf<float>({1.4F, 100.25F, 1000.5F, 4096.0F, 65536.0F, 151830.0F, 1e6F, 1e9F});
    const Ints stitchNums = random.oneOf<Ints>({{0, 1},
                                                {0, 12345600, 12345678},
                                                {0, (1 << 22) - 5, (1 << 23) - 1},
                                                {1 << 23, (1 << 24) - 1, 1 << 24},
                                                {0, 1 << 24, 1 << 28, 1 << 30},
                                                {-1, 0, 1}});
    for (HandMadeComp& comp : made.comps) {
        for (int32_t& stitch : comp.stitches) {
            stitch = random.oneOf(stitchNums);
        }
        for (int i = random.oneOf<int>({0, 0, 5, 70, 200}); i > 0; --i) {
            (random.pick(0, 1) == 0 ? comp.lefts : comp.rights).push_back(random.pick(0, made.numSites));
        }
    }
    return made;
}

} // namespace test
