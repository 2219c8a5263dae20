// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/fullShiftKernel.h"

#include <algorithm>
#include <cassert>
#include <limits>

#include "qlib/exact.h"

namespace vireloce {

bool FullShiftKernel::solve(const ShiftProblem& problem)
{
    assert(problem.isComplete());
    const bool isSolved = findPath(problem);
    m_store.release();
    return isSolved;
}

bool FullShiftKernel::findPath(const ShiftProblem& problem)
{
    const size_t n = problem.segment.comps.size();
    assert(n > 0);
    m_places.clear();
    if (problem.numShifts < 1 || problem.numSolutions < 1) {
        return true;
    }
    if (n == 1) { // no neighbour to fit to: the first of all states, which cost nothing
        m_places.push_back({problem.firstShift, 0});
        return true;
    }
    if (problem.numShifts > std::numeric_limits<int32_t>::max()) {
        return false;
    }
    m_numShifts = static_cast<int32_t>(problem.numShifts);
    m_store.clear();
    for (size_t q = 0; q < n; ++q) {
        if (!makeLayer(problem, q)) {
            return false;
        }
    }
    return traceBack(problem);
}

void FullShiftKernel::makeCosts(const ShiftProblem& problem, size_t comp, SiteCosts& costs) const
{
    costs.makeWhole(problem.segment, problem.weight, comp, problem.stitchesOf(comp),
                    problem.leftEnds[comp] + problem.firstShift, m_numShifts);
}

bool FullShiftKernel::makeLayer(const ShiftProblem& problem, size_t comp)
{
    const auto numShifts = static_cast<size_t>(m_numShifts);
    const size_t numSolutions = problem.stitchesOf(comp).size();
    int32_t* const all = m_store.add(comp, numSolutions * numShifts);
    if (all == nullptr) {
        return false;
    }
    std::fill_n(all, numSolutions * numShifts, comp == 0 ? 0 : INFINITE_COST);
    std::swap(m_leftCosts, m_costs);
    makeCosts(problem, comp, m_costs);
    for (size_t b = 0; comp > 0 && b < numSolutions; ++b) {
        const size_t same = firstLike(problem, comp, b);
        if (same < b) {
            std::copy_n(all + same * numShifts, numShifts, all + b * numShifts);
            continue;
        }
        for (size_t a = 0; a < problem.stitchesOf(comp - 1).size(); ++a) {
            extend(problem, comp, a, b, all + b * numShifts);
        }
    }
    return true;
}

size_t FullShiftKernel::firstLike(const ShiftProblem& problem, size_t comp, size_t solution) const
{
    const int32_t* const classOf = problem.gapsToLeft[comp]->classOf;
    size_t first = 0;
    while (classOf[first] != classOf[solution] || m_costs.profileOf(first) != m_costs.profileOf(solution)) {
        ++first;
    }
    return first;
}

void FullShiftKernel::extend(const ShiftProblem& problem, size_t comp, size_t left, size_t right,
                             int32_t* out)
{
    const int32_t* const before = states(comp - 1, left);
    int32_t least = INFINITE_COST; // of the states so far
    for (int32_t from = 0; from < m_numShifts; ++from) {
        const int32_t state = before[from];
        const bool isPruned = problem.prune && comp > 1 && least < state;
        least = std::min(least, state);
        if (state >= INFINITE_COST - 1 || isPruned) {
            continue;
        }
        const Step step = stepFrom(problem, comp, left, right, from);
        for (int32_t to = 0; to < m_numShifts; ++to) {
            out[to] = std::min(out[to], step.cost(to) + state); // modulo 2^32
        }
    }
}

FullShiftKernel::Step FullShiftKernel::stepFrom(const ShiftProblem& problem, size_t comp, size_t left,
                                                size_t right, int32_t from) const
{
    const SegmentData& segment = problem.segment;
    const PairGaps& gaps = *problem.gapsToLeft[comp];
    return {.leftSite = problem.leftEnds[comp - 1] + problem.firstShift + from,
            .leftWidth = segment.width[comp - 1],
            .leftCost = m_leftCosts.profile(m_leftCosts.profileOf(left))[from],
            .gap = gaps.between(static_cast<int32_t>(left), static_cast<int32_t>(right)),
            .site = problem.leftEnds[comp] + problem.firstShift,
            .width = segment.width[comp],
            .numSites = segment.numSites,
            .costs = m_costs.profile(m_costs.profileOf(right))};
}

bool FullShiftKernel::makeAgain(const ShiftProblem& problem, size_t comp)
{
    const auto begin = [&](size_t from) {
        if (from != LayerStore::NONE) {
            makeCosts(problem, from, m_costs);
        }
    };
    return m_store.makeAgain(comp, begin, [&](size_t q) { return makeLayer(problem, q); });
}

bool FullShiftKernel::traceBack(const ShiftProblem& problem)
{
    const size_t last = problem.segment.comps.size() - 1;
    State state{-1, -1};
    int32_t value = INFINITE_COST - 1; // dearer ones are not possible
    for (size_t b = 0; b < problem.stitchesOf(last).size(); ++b) {
        const int32_t* const all = states(last, b);
        const int32_t* const best = std::min_element(all, all + m_numShifts);
        if (*best < value) { // of equals the first
            value = *best;
            state = {static_cast<int32_t>(best - all), static_cast<int32_t>(b)};
        }
    }
    if (state.solution < 0) {
        return true;
    }
    m_places.resize(last + 1);
    for (size_t q = last;; --q) {
        m_places[q] = {problem.firstShift + state.shift, state.solution};
        if (q == 0) {
            return true;
        }
        if (!makeAgain(problem, q - 1)) {
            return false;
        }
        state = stateBefore(problem, q, state, value);
        assert(state.solution >= 0);
        value = states(q - 1, static_cast<size_t>(state.solution))[state.shift];
    }
}

FullShiftKernel::State FullShiftKernel::stateBefore(const ShiftProblem& problem, size_t comp, State state,
                                                    int32_t value)
{
    makeCosts(problem, comp - 1, m_leftCosts);
    makeCosts(problem, comp, m_costs);
    for (size_t a = 0; a < problem.stitchesOf(comp - 1).size(); ++a) {
        const int32_t* const before = states(comp - 1, a);
        int32_t least = INFINITE_COST;
        for (int32_t from = 0; from < m_numShifts; ++from) {
            const bool isPruned = problem.prune && comp > 1 && least < before[from];
            least = std::min(least, before[from]);
            if (before[from] >= INFINITE_COST - 1 || isPruned) {
                continue;
            }
            const Step step = stepFrom(problem, comp, a, static_cast<size_t>(state.solution), from);
            if (step.cost(state.shift) + before[from] == value) { // modulo 2^32
                return {from, static_cast<int32_t>(a)};
            }
        }
    }
    return {-1, -1};
}

} // namespace vireloce
