// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/gridKernel.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

namespace vireloce {

namespace {

/// Bound of the excess to begin with, where nothing is known.
constexpr int64_t LEAST_BOUND = 256;

/// End costs below it cannot wrap around on top of any value.
constexpr int64_t MOST_END_COST = UNREACHABLE;

} // namespace

GridKernel::GridKernel(const ProfileOps& ops, const Limits& limits)
    : m_ops(ops), m_limits(limits), m_store(limits.mostEntries), m_siteCosts(ops)
{
}

bool GridKernel::solve(const GridProblem& problem)
{
    assert(problem.isComplete() && m_limits.mostEntries > 0 && m_limits.narrow >= 0);
    const bool isSolved = findPath(problem);
    m_store.release();
    return isSolved;
}

bool GridKernel::findPath(const GridProblem& problem)
{
    m_work = {};
    if (!fits(problem)) {
        return false;
    }
    m_places.assign(problem.segment.comps.size(), {});
    layOut(problem);
    End end{problem.unreached, NONE, -1};
    size_t back = 1; // components that `last` is taken back by if it cannot be placed
    for (size_t last = cheapestLast(problem); !m_layers.empty();) {
        setWindow(problem, last);
        if (!makeLayers(problem)) {
            return false;
        }
        end = bestEnd(problem, last);
        if (widenedBound(problem, last, end)) {
            continue;
        }
        if (end.comp == NONE && last > 0) {
            last -= std::min(last, back);
            back *= 2;
            continue;
        }
        const size_t needed = firstCheaperEnd(problem, last, end);
        if (needed == last) {
            break;
        }
        last = needed;
    }
    return hidesUnreached(problem, end) && (end.comp == NONE || traceBack(problem, end));
}

bool GridKernel::fits(const GridProblem& problem)
{
    const SegmentData& segment = problem.segment;
    const float weight = problem.terms.weight();
    if (segment.numSites < 1 || segment.comps.empty() || !(weight >= 0.0F) || !std::isfinite(weight) ||
        problem.unreached > UNREACHABLE) {
        return false;
    }
    m_layers.clear();
    for (size_t q = 0; q < segment.comps.size(); ++q) {
        const auto [least, most] =
            std::minmax_element(problem.stitches[q].begin(), problem.stitches[q].end());
        if (least == problem.stitches[q].end() || *least < 0 || segment.width[q] < 0 ||
            !hasSmallCosts(segment, weight, q, *most) || (q > 0 && !fits(*problem.gapsToLeft[q]))) {
            return false;
        }
        m_layers.push_back({.most = *most, .fewest = *least});
    }
    return true;
}

bool GridKernel::fits(const PairGaps& gaps)
{
    constexpr int32_t MOST_CLASSES = 1000; // of two neighbours a million ways, for every gap
    return gaps.least >= 0 && gaps.most - gaps.least <= PAD && gaps.numClasses <= MOST_CLASSES;
}

void GridKernel::layOut(const GridProblem& problem)
{
    const SegmentData& segment = problem.segment;
    m_made = 0;
    size_t fitting = 0;
    int64_t end = 0;
    int64_t floor = 0;
    for (Layer& layer : m_layers) {
        end += int64_t{segment.width[fitting]} + (fitting > 0 ? problem.gapsToLeft[fitting]->least : 0);
        if (end > segment.numSites) {
            break;
        }
        layer.least = static_cast<int32_t>(end);
        layer.floor = floor;
        floor += layer.fewest;
        ++fitting;
    }
    m_layers.resize(fitting);
    m_zeros.resize(std::max(m_zeros.size(), problem.stitches[0].size()), 0);
    m_endCostsWrap = int64_t{10} * segment.numSites * segment.size() >= MOST_END_COST;
    const auto guess = static_cast<int64_t>(m_boundPerComp * static_cast<double>(fitting));
    m_bound = std::clamp(guess, LEAST_BOUND, NO_BOUND);
}

size_t GridKernel::cheapestLast(const GridProblem& problem) const
{
    size_t best = m_layers.empty() ? 0 : m_layers.size() - 1;
    for (size_t q = best; q-- > 0 && m_endCostsWrap;) {
        if (leastCost(problem, q) < leastCost(problem, best)) {
            best = q;
        }
    }
    return best;
}

void GridKernel::setWindow(const GridProblem& problem, size_t last)
{
    assert(last < m_layers.size());
    const int32_t numSites = problem.segment.numSites;
    const int32_t slack = numSites - m_layers[last].least;
    m_wide = slack >= m_limits.narrow;
    size_t entries = 0;
    for (size_t q = 0; q < m_layers.size(); ++q) {
        Layer& layer = m_layers[q];
        layer.lastSlack = std::min(slack, numSites - layer.least);
        layer.lastMade = layer.lastSlack;
        const int32_t classes = q > 0 ? problem.gapsToLeft[q]->numClasses : 1;
        entries += static_cast<size_t>(classes) * paddedSpace(layer.lastSlack + 1);
    }
    if (m_wide) {
        setFloors(problem);
        Layer& first = m_layers.front();
        first.lastMade = std::min(first.lastSlack, slackWithoutLeftPull(problem.segment, 0, first.least));
    } else {
        m_store.reserve(entries);
    }
}

void GridKernel::setFloors(const GridProblem& problem)
{
    int64_t before = 0;
    for (size_t q = 0; q < m_layers.size(); ++q) {
        m_layers[q].floor = before + m_siteCosts.floorOf(problem.segment, problem.terms.weight(), q);
        before = m_layers[q].floor + m_layers[q].fewest;
    }
}

bool GridKernel::makeLayers(const GridProblem& problem)
{
    ++m_work.tries;
    m_store.clear();
    m_ends.clear();
    m_profileOf.clear();
    m_hasCut = false;
    for (m_made = 0; m_made < m_layers.size(); ++m_made) {
        m_layers[m_made].firstEnd = m_ends.size();
        m_layers[m_made].firstProfile = m_profileOf.size();
        const Made made = makeLayer(problem, m_made);
        if (made != Made::YES) {
            return made == Made::NOTHING_REACHED;
        }
    }
    return true;
}

int64_t GridKernel::leastCost(const GridProblem& problem, size_t comp) const
{
    return m_layers[comp].floor + m_layers[comp].fewest + endCost(problem.segment, comp);
}

int64_t GridKernel::reached(const GridProblem& problem, size_t comp) const
{
    int32_t least = problem.unreached;
    if (comp < m_made) {
        const auto& stitches = problem.stitches[comp];
        const int32_t* const index = profileOf(problem, comp);
        for (size_t j = 0; j < stitches.size(); ++j) {
            least = std::min(least,
                             m_ends[m_layers[comp].firstEnd + static_cast<size_t>(index[j])] + stitches[j]);
        }
    }
    return least;
}

bool GridKernel::mayWrap(const GridProblem& problem, size_t comp) const
{
    return m_endCostsWrap && endCost(problem.segment, comp) + reached(problem, comp) > NO_BOUND;
}

GridKernel::End GridKernel::bestEnd(const GridProblem& problem, size_t last) const
{
    End best{problem.unreached, NONE, -1};
    for (size_t q = last; q < m_made; ++q) {
        const auto& stitches = problem.stitches[q];
        const int32_t* const index = profileOf(problem, q);
        for (size_t j = 0; j < stitches.size(); ++j) {
            const int32_t value = m_ends[m_layers[q].firstEnd + static_cast<size_t>(index[j])] + stitches[j];
            const int32_t cost = value + endCost(problem.segment, q); // modulo 2^32
            if (value < problem.unreached && cost <= best.cost) {     // of equals the last
                best = {cost, q, static_cast<int32_t>(j)};
            }
        }
    }
    return best;
}

bool GridKernel::widenedBound(const GridProblem& problem, size_t last, const End& end)
{
    if (!m_hasCut) {
        return false;
    }
    int64_t needed = 0;
    for (size_t q = last; q < m_layers.size(); ++q) {
        if (leastCost(problem, q) > end.cost && !mayWrap(problem, q)) {
            continue;
        }
        const int64_t value = reached(problem, q);
        needed = value < problem.unreached ? std::max(needed, value - m_layers[q].floor - m_layers[q].fewest)
                                           : std::max(needed, 8 * m_bound);
    }
    needed = std::min(needed, NO_BOUND);
    if (needed <= m_bound) {
        m_boundPerComp = 1.1 * static_cast<double>(needed) / static_cast<double>(m_layers.size());
        return false;
    }
    m_bound = needed;
    return true;
}

size_t GridKernel::firstCheaperEnd(const GridProblem& problem, size_t last, const End& end) const
{
    for (size_t q = 0; q < last; ++q) {
        if (leastCost(problem, q) < end.cost || mayWrap(problem, q)) {
            return q;
        }
    }
    return last;
}

bool GridKernel::hidesUnreached(const GridProblem& problem, const End& end) const
{
    if (!m_endCostsWrap) {
        return true; // the start value and an end cost are more than the start value
    }
    for (size_t q = 0; q < problem.segment.comps.size(); ++q) {
        if (reached(problem, q) >= problem.unreached &&
            problem.unreached + endCost(problem.segment, q) <= end.cost) {
            return false;
        }
    }
    return true;
}

bool GridKernel::makeAgain(const GridProblem& problem, size_t comp)
{
    return m_store.makeAgain(
        comp, [](size_t) {}, [&](size_t q) { return makeLayer(problem, q) == Made::YES; });
}

bool GridKernel::traceBack(const GridProblem& problem, const End& end)
{
    int32_t slack = m_layers[end.comp].begin + m_layers[end.comp].count - 1;
    int32_t solution = end.solution;
    for (size_t q = end.comp;; --q) {
        if (!makeAgain(problem, q)) {
            return false;
        }
        const Layer& layer = m_layers[q];
        const int32_t* const values =
            profiles(q) + static_cast<size_t>(profileOf(problem, q)[solution]) * strideOf(q);
        const int32_t k = firstEqual(values, std::min(slack - layer.begin, layer.count - 1));
        const int32_t site = layer.least + layer.begin + k - problem.segment.width[q];
        assert(values[k] < problem.unreached && 0 <= site && layer.begin + k <= layer.lastSlack);
        m_places[q] = {site, solution};
        if (q == 0) {
            return true;
        }
        if (problem.stitches[q - 1].size() == 1) { // the only way
            const PairGaps& gaps = *problem.gapsToLeft[q];
            slack = layer.begin + k - (gaps.between(0, solution) - gaps.least);
            solution = 0;
            continue;
        }
        const int32_t stitches = problem.stitches[q][static_cast<size_t>(solution)];
        const int32_t wanted =
            values[k] - (siteCost(problem.segment, problem.terms.weight(), q, site, stitches) - stitches);
        slack = layer.begin + k;
        if (!makeAgain(problem, q - 1)) {
            return false;
        }
        solution = solutionBefore(problem, q, solution, wanted, slack);
        assert(solution >= 0);
    }
}

int32_t GridKernel::solutionBefore(const GridProblem& problem, size_t comp, int32_t solution, int32_t wanted,
                                   int32_t& slack)
{
    const PairGaps& gaps = *problem.gapsToLeft[comp];
    const Layer& left = m_layers[comp - 1];
    const std::span<const int32_t> stitches = problem.stitches[comp - 1];
    const int32_t* const index = profileOf(problem, comp - 1);
    const int32_t* const values = profiles(comp - 1);
    const size_t stride = strideOf(comp - 1);
    const int32_t gapClass = gaps.classOf[solution];
    for (size_t i = stitches.size(); i-- > 0;) {
        const int32_t gap = gaps.gaps[static_cast<int32_t>(i) * gaps.numClasses + gapClass];
        const int32_t slackBefore = slack - (gap - gaps.least);
        const int32_t k = std::min(slackBefore - left.begin, left.count - 1);
        const int32_t* const profile = values + static_cast<size_t>(index[i]) * stride;
        if (k >= 0 && profile[k] + stitches[i] == wanted) {
            slack = slackBefore;
            return static_cast<int32_t>(i);
        }
    }
    return -1;
}

} // namespace vireloce
