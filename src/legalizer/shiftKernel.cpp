// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/shiftKernel.h"

#include <algorithm>
#include <cstdlib>

#include "legalizer/siteCost.h"
#include "qlib/exact.h"

namespace vireloce {

namespace {

/// Bound of costs and positions.
constexpr int64_t FAR = int64_t{1} << 28;

} // namespace

bool ShiftKernel::solve(const ShiftProblem& problem)
{
    if (!isSane(problem)) {
        return false;
    }
    m_begins.clear();
    size_t total = 0;
    for (const auto& stitches : problem.stitches) {
        m_begins.push_back(total);
        total += stitches.size() * static_cast<size_t>(problem.numShifts);
    }
    m_states.resize(total);
    std::fill_n(m_states.begin(), total == 0 || m_begins.size() == 1 ? total : m_begins[1], 0);
    for (size_t q = 1; q < m_begins.size(); ++q) {
        extend(problem, q);
    }

    m_places.clear();
    ShiftPlace place = bestEnd(problem);
    if (place.solution < 0) {
        return true;
    }
    m_places.resize(m_begins.size());
    for (size_t q = m_begins.size() - 1; q > 0; --q) {
        m_places[q] = place;
        place = stepBefore(problem, q, place);
    }
    m_places[0] = place;
    return true;
}

bool ShiftKernel::isSane(const ShiftProblem& problem)
{
    const SegmentData& segment = problem.segment;
    const int64_t limit = problem.terms.additiveLimit();
    if (segment.comps.empty() || problem.numShifts < 1 || problem.numShifts >= FAR || limit == 0 ||
        segment.numSites < 0 || !endsWithin(segment)) {
        return false;
    }
    for (size_t q = 0; q < segment.comps.size(); ++q) {
        const auto [least, most] =
            std::minmax_element(problem.stitches[q].begin(), problem.stitches[q].end());
        if (least == problem.stitches[q].end() || *least < 0 || segment.width[q] >= FAR ||
            std::abs(int64_t{problem.sites[q]}) >= FAR ||
            mostCost(segment, problem.terms, q, *most) >= std::min(limit, FAR)) {
            return false;
        }
        if (q > 0 && (problem.behind[q]->least < 0 || problem.behind[q]->most >= FAR)) {
            return false;
        }
    }
    return segment.numSites < FAR;
}

/// Fills the states of a component from those of its left neighbour.
void ShiftKernel::extend(const ShiftProblem& problem, size_t comp)
{
    fillSums(problem, comp - 1);
    fillSiteCosts(problem, comp, m_costs);
    const PairSpacing& behind = *problem.behind[comp];
    const auto numShifts = static_cast<size_t>(problem.numShifts);
    const std::span<const int32_t> stitches = problem.stitches[comp];
    for (int32_t column = 0; column < behind.numColumns; ++column) {
        fillLeast(problem, comp, column);
        for (size_t b = 0; b < stitches.size(); ++b) {
            if (behind.columnOf[b] != column) {
                continue;
            }
            int32_t* states = m_states.data() + m_begins[comp] + b * numShifts;
            for (size_t to = 0; to < numShifts; ++to) {
                const int32_t cost = std::min(m_least[to] + m_costs[to], INFINITE_COST);
                states[to] = std::min(cost + stitches[b], INFINITE_COST);
            }
        }
    }
}

/// Costs of a component at all its shifts, without stitches.
void ShiftKernel::fillSiteCosts(const ShiftProblem& problem, size_t comp, std::vector<int32_t>& costs) const
{
    const int32_t first = problem.sites[comp] + problem.firstShift;
    const int32_t last = problem.segment.numSites - problem.segment.width[comp];
    costs.resize(static_cast<size_t>(problem.numShifts));
    for (int32_t o = 0; o < problem.numShifts; ++o) {
        const int32_t site = first + o;
        costs[static_cast<size_t>(o)] =
            0 <= site && site <= last ? siteCost(problem.segment, problem.terms, comp, site) : INFINITE_COST;
    }
}

/// Fills m_sums and m_running for a component as the left one of two.
///
/// A row of m_running is as long as three times the shifts, its values in the middle: before them nothing is
/// possible, behind them all shifts are.
void ShiftKernel::fillSums(const ShiftProblem& problem, size_t left)
{
    const auto numShifts = static_cast<size_t>(problem.numShifts);
    const std::span<const int32_t> stitches = problem.stitches[left];
    fillSiteCosts(problem, left, m_left);
    m_sums.resize(stitches.size() * numShifts);
    m_running.resize(3 * stitches.size() * numShifts);
    const int32_t* states = statesOf(left);
    for (size_t a = 0; a < stitches.size(); ++a) {
        int32_t* running = m_running.data() + 3 * a * numShifts;
        std::fill_n(running, numShifts, INFINITE_COST);
        int32_t leastState = INFINITE_COST;
        int32_t leastSum = INFINITE_COST;
        for (size_t from = 0; from < numShifts; ++from) {
            const int32_t state = states[a * numShifts + from];
            const bool pruned = problem.prune && left > 0 && leastState < state;
            leastState = std::min(leastState, state);
            const bool possible = state < INFINITE_COST - 1 && !pruned && m_left[from] < INFINITE_COST;
            const int32_t sum =
                possible ? std::min(state + stitches[a] + m_left[from], INFINITE_COST) : INFINITE_COST;
            m_sums[a * numShifts + from] = sum;
            leastSum = std::min(leastSum, sum);
            running[numShifts + from] = leastSum;
        }
        std::fill_n(running + 2 * numShifts, numShifts, leastSum);
    }
}

/// Fills m_least for the solutions of a column.
void ShiftKernel::fillLeast(const ShiftProblem& problem, size_t comp, int32_t column)
{
    const PairSpacing& behind = *problem.behind[comp];
    const auto numShifts = static_cast<size_t>(problem.numShifts);
    m_least.assign(numShifts, INFINITE_COST);
    for (size_t a = 0; a < problem.stitches[comp - 1].size(); ++a) {
        const int32_t sites = behind.sites[static_cast<int32_t>(a) * behind.numColumns + column];
        const int32_t lastShift =
            std::clamp(lastShiftBefore(problem, comp, sites), -problem.numShifts, problem.numShifts);
        const int32_t* running = m_running.data() + (3 * a + 1) * numShifts;
        running += lastShift;
        for (size_t to = 0; to < numShifts; ++to) {
            m_least[to] = std::min(m_least[to], running[to]);
        }
    }
}

/// The first of the cheapest states of the last component; no solution if none is possible.
ShiftPlace ShiftKernel::bestEnd(const ShiftProblem& problem) const
{
    const int32_t* const states = statesOf(m_begins.size() - 1);
    const int32_t* const best = std::min_element(states, m_states.data() + m_states.size());
    if (*best > INFINITE_COST - 2) {
        return {};
    }
    const auto index = static_cast<int32_t>(best - states);
    return {.shift = index % problem.numShifts, .solution = index / problem.numShifts};
}

/// The left neighbour's state on the way to a component's.
ShiftPlace ShiftKernel::stepBefore(const ShiftProblem& problem, size_t comp, ShiftPlace place)
{
    fillSums(problem, comp - 1);
    fillSiteCosts(problem, comp, m_costs);
    const PairSpacing& behind = *problem.behind[comp];
    const auto solution = static_cast<size_t>(place.solution);
    const int32_t state = statesOf(comp)[place.solution * problem.numShifts + place.shift];
    const int32_t wanted =
        state - m_costs[static_cast<size_t>(place.shift)] - problem.stitches[comp][solution];
    for (size_t a = 0; a < problem.stitches[comp - 1].size(); ++a) {
        const int32_t sites = behind.between(static_cast<int32_t>(a), place.solution);
        const int32_t last =
            std::min(lastShiftBefore(problem, comp, sites) + place.shift, problem.numShifts - 1);
        const int32_t* sums = m_sums.data() + a * static_cast<size_t>(problem.numShifts);
        for (int32_t from = 0; from <= last; ++from) {
            if (sums[from] == wanted) {
                return {.shift = from, .solution = static_cast<int32_t>(a)};
            }
        }
    }
    return {}; // not reached: some way led to the state
}

} // namespace vireloce
