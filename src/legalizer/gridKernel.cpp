// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/gridKernel.h"

#include <algorithm>
#include <limits>

#include "legalizer/siteCost.h"

namespace vireloce {

namespace {

/// Entries before a row that say "not to be reached": the largest spacing over the least of a pair.
constexpr int32_t PAD = ROW_BLOCK;

/// Price of a site for each component that a path leaves out.
constexpr int64_t LEFT_OUT = 10;

constexpr int32_t NO_SOLUTION = std::numeric_limits<int32_t>::max();

/// Index of the first of some values that never rise which equals the one at k.
int32_t firstEqual(const int32_t* values, int32_t k)
{
    const auto* at =
        std::partition_point(values, values + k, [value = values[k]](int32_t v) { return v > value; });
    return static_cast<int32_t>(at - values);
}

} // namespace

int64_t GridKernel::mostEntries()
{
    return int64_t{1} << 28; // 1 GiB
}

bool GridKernel::solve(const GridProblem& problem)
{
    m_work = {};
    if (!isSane(problem)) {
        return false;
    }
    m_places.assign(problem.segment.comps.size(), {});
    const int32_t fitting = layOut(problem);
    if (fitting == 0) {
        return true; // every path costs more than the start value: all are left out
    }
    int32_t last = fitting - 1;
    int32_t back = 1; // components that `last` is taken back by if it cannot be placed
    while (true) {
        if (!window(problem, fitting, last) || !fillRows(problem, fitting)) {
            return false;
        }
        const End end = bestEnd(problem, fitting, last);
        if (end.comp < 0 && last > 0) {
            last = std::max(0, last - back);
            back *= 2;
            continue;
        }
        const int32_t needed = firstCheaperEnd(problem, last, end.cost);
        if (needed < last) {
            last = needed;
            continue;
        }
        if (end.comp < 0 || end.cost >= problem.unreached) {
            return false;
        }
        traceBack(problem, end);
        return true;
    }
}

/// Whether costs at all sites are 0 or more and sums stay far below UNREACHABLE.
bool GridKernel::isSane(const GridProblem& problem) const
{
    const SegmentData& segment = problem.segment;
    const int64_t limit = problem.terms.additiveLimit();
    if (segment.numSites < 1 || segment.comps.empty() || limit == 0 || !endsWithin(segment) ||
        LEFT_OUT * segment.numSites * segment.size() >= UNREACHABLE) {
        return false;
    }
    for (size_t q = 0; q < segment.comps.size(); ++q) {
        const auto [least, most] =
            std::minmax_element(problem.stitches[q].begin(), problem.stitches[q].end());
        if (least == problem.stitches[q].end() || *least < 0 || *most >= limit) {
            return false;
        }
        // The grid's own sum, in floats, may be larger, but not four times as large. It must not wrap around
        // on top of the start value either, on sites that are not looked at here.
        if (mostCost(segment, problem.terms, q, *most) >= UNREACHABLE / 4) {
            return false;
        }
        if (q > 0 && !isSane(*problem.behind[q])) {
            return false;
        }
    }
    return true;
}

/// Whether spacings fit into the blocks before the rows, and the ways between columns into memory.
bool GridKernel::isSane(const PairSpacing& spacing)
{
    constexpr int32_t MOST_COLUMNS = 1000; // of two neighbours a million ways, for every spacing
    return spacing.least >= 0 && spacing.most - spacing.least <= PAD && spacing.numColumns <= MOST_COLUMNS;
}

/// Makes the layers of the components that may fit.
///
/// @return their number
int32_t GridKernel::layOut(const GridProblem& problem)
{
    const SegmentData& segment = problem.segment;
    m_layers.clear();
    int64_t end = 0;
    for (size_t q = 0; q < segment.comps.size(); ++q) {
        end += int64_t{segment.width[q]} + (q > 0 ? problem.behind[q]->least : 0);
        if (end > segment.numSites) {
            break;
        }
        const auto& stitches = problem.stitches[q];
        m_layers.push_back({.least = static_cast<int32_t>(end),
                            .count = 0,
                            .columns = q > 0 ? problem.behind[q]->numColumns : 1,
                            .floor = *std::min_element(stitches.begin(), stitches.end()),
                            .row = 0});
    }
    return static_cast<int32_t>(m_layers.size());
}

/// Sets the sites that are looked at if component `last` is placed, and finds room for the rows.
bool GridKernel::window(const GridProblem& problem, int32_t fitting, int32_t last)
{
    const int32_t numSites = problem.segment.numSites;
    const int32_t slack = numSites - m_layers[static_cast<size_t>(last)].least;
    m_stride = static_cast<size_t>(PAD) + static_cast<size_t>(rowSpace(slack + 1));
    size_t next = 0;
    for (int32_t q = 0; q < fitting; ++q) {
        Layer& layer = m_layers[static_cast<size_t>(q)];
        layer.count = std::min(slack, numSites - layer.least) + 1;
        layer.row = next + PAD;
        next += static_cast<size_t>(layer.columns) * m_stride;
    }
    if (static_cast<int64_t>(next) > mostEntries()) {
        return false;
    }
    if (m_room < next) {
        m_rows.reset(); // nothing in them is needed again
        m_room = next + next / 2;
        m_rows = std::make_unique_for_overwrite<int32_t[]>(m_room);
    }
    m_costs.resize(std::max(m_costs.size(), m_stride));
    m_zeros.resize(std::max(m_zeros.size(), m_stride), 0);
    return true;
}

/// Fills the rows from the left.
///
/// @return false if costs of a component are too large to be added in any order
bool GridKernel::fillRows(const GridProblem& problem, int32_t fitting)
{
    for (int32_t q = 0; q < fitting; ++q) {
        if (!fillCosts(problem, q)) {
            return false;
        }
        const Layer& layer = m_layers[static_cast<size_t>(q)];
        if (q == 0) {
            m_terms.assign(1, {m_zeros.data(), 0}); // the first may begin anywhere
        } else {
            fillCheapest(problem, q);
        }
        for (int32_t column = 0; column < layer.columns; ++column) {
            if (q > 0) {
                chooseTerms(problem, q, column);
            }
            int32_t* out = m_rows.get() + rowBegin(q, column);
            std::fill_n(out - PAD, PAD, UNREACHABLE);
            m_work.terms += static_cast<int64_t>(m_terms.size());
            m_ops.fall(out, m_terms.data(), static_cast<int32_t>(m_terms.size()), m_costs.data(),
                       layer.count);
        }
        m_work.rows += layer.columns;
        m_work.entries += int64_t{layer.columns} * layer.count;
    }
    return true;
}

/// Fills m_costs with the costs of a component's end sites, without stitches.
bool GridKernel::fillCosts(const GridProblem& problem, int32_t comp)
{
    const auto q = static_cast<size_t>(comp);
    const Layer& layer = m_layers[q];
    const int32_t* rising = problem.terms.rising();
    const int32_t width = problem.segment.width[q];
    const int32_t centre = layer.least - width + width / 2; // at the first end site
    std::fill_n(m_costs.begin(), rowSpace(layer.count), 0);
    int64_t most = *std::max_element(problem.stitches[q].begin(), problem.stitches[q].end());
    for (const int32_t right : problem.segment.rightOf(q)) {
        const int32_t over = centre - right; // sites beyond it at the first end site
        const int32_t from = std::max(0, 1 - over);
        if (from < layer.count) {
            m_ops.add(m_costs.data() + from, rising + over + from, layer.count - from);
            most += rising[over + layer.count - 1];
        }
    }
    for (const int32_t left : problem.segment.leftOf(q)) {
        const int32_t under = left - centre; // sites before it at the first end site
        if (under > 0) {
            m_ops.add(m_costs.data(), problem.terms.falling(under), std::min(layer.count, under));
            most += rising[under];
        }
    }
    return most < problem.terms.additiveLimit();
}

/// Fills m_cheapest for a component and its left neighbour.
void GridKernel::fillCheapest(const GridProblem& problem, int32_t comp)
{
    const auto q = static_cast<size_t>(comp);
    const PairSpacing& behind = *problem.behind[q];
    const int32_t* const leftColumns = comp > 1 ? problem.behind[q - 1]->columnOf : nullptr;
    const std::span<const int32_t> stitches = problem.stitches[q - 1];
    const int32_t spread = behind.most - behind.least + 1;
    const size_t perColumn = static_cast<size_t>(m_layers[q - 1].columns) * static_cast<size_t>(spread);
    m_cheapest.assign(static_cast<size_t>(behind.numColumns) * perColumn, NO_SOLUTION);
    const int32_t* sites = behind.sites;
    for (size_t i = 0; i < stitches.size(); ++i) {
        const int32_t leftColumn = leftColumns != nullptr ? leftColumns[i] : 0;
        int32_t* cheapest = m_cheapest.data() + static_cast<ptrdiff_t>(leftColumn) * spread;
        for (int32_t column = 0; column < behind.numColumns; ++column, cheapest += perColumn, ++sites) {
            int32_t& least = cheapest[*sites - behind.least];
            least = std::min(least, stitches[i]);
        }
    }
}

/// Fills m_terms with the ways to a row from those of the left neighbour, as m_cheapest has them.
void GridKernel::chooseTerms(const GridProblem& problem, int32_t comp, int32_t column)
{
    const PairSpacing& behind = *problem.behind[static_cast<size_t>(comp)];
    const int32_t spread = behind.most - behind.least + 1;
    const int32_t leftColumns = m_layers[static_cast<size_t>(comp) - 1].columns;
    const int32_t* cheapest = m_cheapest.data() + static_cast<ptrdiff_t>(column) * leftColumns * spread;
    m_terms.clear();
    for (int32_t left = 0; left < leftColumns; ++left) {
        int32_t least = NO_SOLUTION; // values never rise, so that farther away only fewer stitches help
        for (int32_t excess = 0; excess < spread; ++excess, ++cheapest) {
            if (*cheapest < least) {
                least = *cheapest;
                m_terms.push_back({row(comp - 1, left) - excess, least});
            }
        }
    }
}

/// Price of a path that ends with a component: for it and for every one behind it.
int64_t GridKernel::price(const GridProblem& problem, int32_t comp) const
{
    return LEFT_OUT * problem.segment.numSites * (problem.segment.size() - comp);
}

/// The best end of a path at component `last` or behind it.
GridKernel::End GridKernel::bestEnd(const GridProblem& problem, int32_t fitting, int32_t last) const
{
    End best{UNREACHABLE, -1, -1};
    for (int32_t q = last; q < fitting; ++q) {
        const auto& stitches = problem.stitches[static_cast<size_t>(q)];
        for (size_t j = 0; j < stitches.size(); ++j) {
            const int32_t column = q > 0 ? problem.behind[static_cast<size_t>(q)]->columnOf[j] : 0;
            const int32_t value = row(q, column)[m_layers[static_cast<size_t>(q)].count - 1];
            const int64_t cost = value + stitches[j] + price(problem, q);
            if (value < UNREACHABLE && cost <= best.cost) { // of equals the last
                best = {cost, q, static_cast<int32_t>(j)};
            }
        }
    }
    return best;
}

/// The first component up to `last` that may end a path which is cheaper than the best one found.
int32_t GridKernel::firstCheaperEnd(const GridProblem& problem, int32_t last, int64_t best) const
{
    int64_t floor = 0;
    for (int32_t q = 0; q < last; ++q) {
        floor += m_layers[static_cast<size_t>(q)].floor;
        if (floor + price(problem, q) < best) {
            return q;
        }
    }
    return last;
}

/// The solution of the left neighbour on the way to a component.
///
/// @param k  in: index of the component's end site where it is placed; out: that of the neighbour's
int32_t GridKernel::stepBefore(const GridProblem& problem, int32_t comp, int32_t solution, int32_t& k) const
{
    const auto q = static_cast<size_t>(comp);
    const PairSpacing& behind = *problem.behind[q];
    const int32_t column = behind.columnOf[solution];
    const int32_t end = m_layers[q].least + k;
    const int32_t wanted =
        row(comp, column)[k] - siteCost(problem.segment, problem.terms, q, end - problem.segment.width[q]);
    const std::span<const int32_t> stitches = problem.stitches[q - 1];
    for (auto i = static_cast<int32_t>(stitches.size()); i-- > 0;) {
        const int32_t at = k - (behind.sites[i * behind.numColumns + column] - behind.least);
        const int32_t leftColumn = comp > 1 ? problem.behind[q - 1]->columnOf[i] : 0;
        if (row(comp - 1, leftColumn)[at] + stitches[static_cast<size_t>(i)] == wanted) {
            k = at;
            return i;
        }
    }
    return -1; // not reached: some way led to the value
}

void GridKernel::traceBack(const GridProblem& problem, End end)
{
    int32_t k = m_layers[static_cast<size_t>(end.comp)].count - 1;
    int32_t solution = end.solution;
    for (int32_t q = end.comp; q >= 0; --q) {
        const Layer& layer = m_layers[static_cast<size_t>(q)];
        const int32_t column = q > 0 ? problem.behind[static_cast<size_t>(q)]->columnOf[solution] : 0;
        k = firstEqual(row(q, column), k);
        m_places[static_cast<size_t>(q)] = {layer.least + k - problem.segment.width[static_cast<size_t>(q)],
                                            solution};
        if (q > 0) {
            solution = stepBefore(problem, q, solution, k);
        }
    }
}

} // namespace vireloce
