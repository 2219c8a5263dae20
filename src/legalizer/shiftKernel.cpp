// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/shiftKernel.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdlib>

#include "qlib/exact.h"

namespace vireloce {

bool ShiftKernel::solve(const ShiftProblem& problem)
{
    assert(problem.isComplete());
    const bool isSolved = findPath(problem);
    m_store.release();
    return isSolved;
}

bool ShiftKernel::findPath(const ShiftProblem& problem)
{
    if (!fits(problem)) {
        return false;
    }
    m_places.clear();
    if (problem.segment.size() == 1) { // no neighbour to fit to: the first of all states, which cost nothing
        m_places.push_back({problem.firstShift, 0});
        return true;
    }
    if (!setWindows(problem)) {
        return true;
    }
    m_store.clear();
    for (size_t q = 0; q < m_windows.size(); ++q) {
        if (!makeLayer(problem, q)) {
            return false;
        }
    }
    return traceBack(problem);
}

bool ShiftKernel::fits(const ShiftProblem& problem)
{
    const SegmentData& segment = problem.segment;
    if (segment.comps.empty() || problem.numShifts < 1 || segment.numSites < 0 ||
        segment.numSites >= FAR_AWAY || !(problem.weight >= 0.0F) || !std::isfinite(problem.weight)) {
        return false;
    }
    for (size_t q = 0; q < segment.comps.size(); ++q) {
        const auto stitches = problem.stitchesOf(q);
        const auto [least, most] = std::minmax_element(stitches.begin(), stitches.end());
        if (least == stitches.end() || *least < 0 || segment.width[q] < 0 || segment.width[q] >= FAR_AWAY ||
            std::abs(int64_t{problem.leftEnds[q]}) >= FAR_AWAY ||
            !hasSmallCosts(segment, problem.weight, q, *most)) {
            return false;
        }
        if (q > 0 && (problem.gapsToLeft[q]->least < 0 || problem.gapsToLeft[q]->most >= FAR_AWAY)) {
            return false;
        }
    }
    return true;
}

bool ShiftKernel::setWindows(const ShiftProblem& problem)
{
    const SegmentData& segment = problem.segment;
    m_windows.clear();
    for (size_t q = 0; q < segment.comps.size(); ++q) {
        const int64_t begin = int64_t{problem.leftEnds[q]} + problem.firstShift;
        const int64_t first = std::max<int64_t>(begin, 0);
        const int64_t end =
            std::min(begin + problem.numShifts, int64_t{segment.numSites} - segment.width[q] + 1);
        if (first >= end) {
            return false;
        }
        m_windows.push_back({static_cast<int32_t>(first), static_cast<int32_t>(end - first)});
    }
    return true;
}

void ShiftKernel::makeCosts(const ShiftProblem& problem, size_t comp, SiteCosts& costs) const
{
    costs.makeWhole(problem.segment, problem.weight, comp, problem.stitchesOf(comp), m_windows[comp].first,
                    m_windows[comp].count);
}

bool ShiftKernel::makeLayer(const ShiftProblem& problem, size_t comp)
{
    const auto count = static_cast<size_t>(m_windows[comp].count);
    const size_t numSolutions = problem.stitchesOf(comp).size();
    int32_t* const states = m_store.add(comp, numSolutions * count);
    if (states == nullptr) {
        return false;
    }
    if (comp == 0) {
        std::fill_n(states, numSolutions * count, 0);
        makeCosts(problem, comp, m_costs);
        return true;
    }
    std::swap(m_leftCosts, m_costs);
    makeCosts(problem, comp, m_costs);
    fillRunning(problem, comp);
    assert(m_costs.count() == m_windows[comp].count && m_leftCosts.count() == m_windows[comp - 1].count);
    const PairGaps& gaps = *problem.gapsToLeft[comp];
    for (int32_t gapClass = 0; gapClass < gaps.numClasses; ++gapClass) {
        fillLeast(problem, comp, gapClass);
        for (size_t b = 0; b < numSolutions; ++b) {
            if (gaps.classOf[b] != gapClass) {
                continue;
            }
            const int32_t* const costs = m_costs.profile(m_costs.profileOf(b));
            int32_t* const out = states + b * count;
            for (size_t to = 0; to < count; ++to) {
                out[to] = std::min(m_least[to] + costs[to], INFINITE_COST);
            }
        }
    }
    return true;
}

void ShiftKernel::fillRunning(const ShiftProblem& problem, size_t comp)
{
    const size_t left = comp - 1;
    const auto pad = static_cast<size_t>(m_windows[comp].count);
    const auto count = static_cast<size_t>(m_windows[left].count);
    const size_t numSolutions = problem.stitchesOf(left).size();
    m_running.resize(std::max(m_running.size(), numSolutions * (2 * pad + count)));
    int32_t* running = m_running.data();
    const int32_t* states = m_store.at(left);
    for (size_t a = 0; a < numSolutions; ++a, states += count) {
        const int32_t* const costs = m_leftCosts.profile(m_leftCosts.profileOf(a));
        running = std::fill_n(running, pad, INFINITE_COST);
        int32_t leastState = INFINITE_COST - 2; // dearer ones are no way
        int32_t leastSum = INFINITE_COST;
        for (size_t from = 0; from < count; ++from) {
            if (states[from] <= leastState) {
                leastSum = std::min(leastSum, states[from] + costs[from]);
            }
            if (problem.prune && left > 0) {
                leastState = std::min(leastState, states[from]);
            }
            *running++ = leastSum;
        }
        running = std::fill_n(running, pad, leastSum);
    }
}

void ShiftKernel::fillLeast(const ShiftProblem& problem, size_t comp, int32_t gapClass)
{
    const PairGaps& gaps = *problem.gapsToLeft[comp];
    const int32_t pad = m_windows[comp].count;
    const int32_t leftCount = m_windows[comp - 1].count;
    m_least.assign(static_cast<size_t>(pad), INFINITE_COST);
    const int32_t* running = m_running.data() + pad;
    for (size_t a = 0; a < problem.stitchesOf(comp - 1).size(); ++a, running += 2 * pad + leftCount) {
        const int32_t gap = gaps.gaps[static_cast<int32_t>(a) * gaps.numClasses + gapClass];
        const int32_t* const sums = running + std::clamp(lastSiteBefore(problem, comp, gap), -pad, leftCount);
        for (size_t to = 0; to < m_least.size(); ++to) {
            m_least[to] = std::min(m_least[to], sums[to]);
        }
    }
}

bool ShiftKernel::makeAgain(const ShiftProblem& problem, size_t comp)
{
    const auto begin = [&](size_t from) {
        if (from != LayerStore::NONE) {
            makeCosts(problem, from, m_costs);
        }
    };
    return m_store.makeAgain(comp, begin, [&](size_t q) { return makeLayer(problem, q); });
}

bool ShiftKernel::traceBack(const ShiftProblem& problem)
{
    State state = bestEnd(problem);
    if (state.solution < 0) {
        return true;
    }
    m_places.resize(m_windows.size());
    for (size_t q = m_windows.size() - 1;; --q) {
        const int32_t site = m_windows[q].first + state.site;
        m_places[q] = {site - problem.leftEnds[q], state.solution};
        if (q == 0) {
            return true;
        }
        const int32_t value = m_store.at(q)[state.solution * m_windows[q].count + state.site];
        const int32_t stitches = problem.stitches[q][static_cast<size_t>(state.solution)];
        if (!makeAgain(problem, q - 1)) {
            return false;
        }
        state = stateBefore(problem, q, state,
                            value - siteCost(problem.segment, problem.weight, q, site, stitches));
        assert(state.solution >= 0);
    }
}

ShiftKernel::State ShiftKernel::bestEnd(const ShiftProblem& problem)
{
    const size_t last = m_windows.size() - 1;
    const int32_t count = m_windows[last].count;
    const int32_t* const states = m_store.at(last);
    const int32_t* const best =
        std::min_element(states, states + problem.stitchesOf(last).size() * static_cast<size_t>(count));
    if (*best > INFINITE_COST - 2) {
        return {-1, -1};
    }
    const auto index = best - states;
    return {static_cast<int32_t>(index % count), static_cast<int32_t>(index / count)};
}

ShiftKernel::State ShiftKernel::stateBefore(const ShiftProblem& problem, size_t comp, State state,
                                            int32_t wanted)
{
    const size_t left = comp - 1;
    const PairGaps& gaps = *problem.gapsToLeft[comp];
    const int32_t count = m_windows[left].count;
    const int32_t* states = m_store.at(left);
    makeCosts(problem, left, m_leftCosts);
    for (size_t a = 0; a < problem.stitchesOf(left).size(); ++a, states += count) {
        const int32_t* const costs = m_leftCosts.profile(m_leftCosts.profileOf(a));
        const int32_t gap = gaps.between(static_cast<int32_t>(a), state.solution);
        const int32_t last = std::min(lastSiteBefore(problem, comp, gap) + state.site, count - 1);
        int32_t leastState = INFINITE_COST - 2;
        for (int32_t from = 0; from <= last; ++from) {
            if (states[from] <= leastState && states[from] + costs[from] == wanted) {
                return {from, static_cast<int32_t>(a)};
            }
            if (problem.prune && left > 0) {
                leastState = std::min(leastState, states[from]);
            }
        }
    }
    return {-1, -1};
}

} // namespace vireloce
