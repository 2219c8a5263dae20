// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/fullGridKernel.h"

#include <algorithm>
#include <cassert>

namespace vireloce {

namespace {

/// Gap class of a solution, 0 for those of the first component.
int32_t gapClassOf(const GridProblem& problem, size_t comp, size_t solution)
{
    return comp > 0 ? problem.gapsToLeft[comp]->classOf[solution] : 0;
}

} // namespace

bool FullGridKernel::solve(const GridProblem& problem)
{
    assert(problem.isComplete());
    const bool isSolved = findPath(problem);
    m_store.release();
    return isSolved;
}

bool FullGridKernel::findPath(const GridProblem& problem)
{
    assert(problem.segment.numSites >= 0 && problem.segment.size() >= 1 && problem.unreached <= UNREACHABLE);
    m_places.assign(problem.segment.comps.size(), {});
    layOut(problem);
    int32_t best = problem.unreached;
    size_t last = m_layers.size();
    int32_t solution = -1;
    for (size_t q = 0; q < m_layers.size(); ++q) {
        if (!makeLayer(problem, q)) {
            return false;
        }
        for (size_t j = 0; j < problem.stitches[q].size(); ++j) {
            const auto p = static_cast<size_t>(profileOf(q, static_cast<int32_t>(j)));
            const int32_t cost =
                m_ends[m_layers[q].firstEnd + p] + endCost(problem.segment, q); // modulo 2^32
            if (cost <= best) {                                                 // of equals the last
                best = cost;
                last = q;
                solution = static_cast<int32_t>(j);
            }
        }
    }
    return last == m_layers.size() || traceBack(problem, last, solution);
}

void FullGridKernel::layOut(const GridProblem& problem)
{
    m_stride = static_cast<size_t>(profileSpace(problem.segment.numSites)) + PROFILE_BLOCK;
    m_store.clear();
    m_layers.clear();
    m_profileOf.clear();
    size_t ends = 0;
    for (size_t q = 0; q < problem.stitches.size(); ++q) {
        const std::span<const int32_t> stitches = problem.stitches[q];
        Layer& layer = m_layers.emplace_back(Layer{.firstProfile = m_profileOf.size(), .firstEnd = ends});
        for (size_t j = 0; j < stitches.size(); ++j) {
            size_t same = 0;
            while (stitches[same] != stitches[j] ||
                   gapClassOf(problem, q, same) != gapClassOf(problem, q, j)) {
                ++same;
            }
            m_profileOf.push_back(same < j ? m_profileOf[layer.firstProfile + same] : layer.numProfiles++);
        }
        ends += static_cast<size_t>(layer.numProfiles);
    }
    m_ends.resize(ends);
}

int32_t* FullGridKernel::profile(size_t comp, int32_t index)
{
    int32_t* const profiles = m_store.at(comp);
    assert(profiles != nullptr && 0 <= index && index < m_layers[comp].numProfiles);
    return profiles + static_cast<size_t>(index) * m_stride;
}

bool FullGridKernel::makeLayer(const GridProblem& problem, size_t comp)
{
    const SegmentData& segment = problem.segment;
    const Layer& layer = m_layers[comp];
    int32_t* const profiles = m_store.add(comp, static_cast<size_t>(layer.numProfiles) * m_stride);
    if (profiles == nullptr) {
        return false;
    }
    std::fill_n(profiles, static_cast<size_t>(layer.numProfiles) * m_stride, problem.unreached);
    const int32_t width = segment.width[comp];
    const int32_t count = segment.numSites - width + 1; // sites for its left end
    if (count > 0) {
        m_siteCosts.makeWhole(segment, problem.terms.weight(), comp, problem.stitches[comp], 0, count);
        int32_t made = 0;
        for (size_t j = 0; j < problem.stitches[comp].size(); ++j) {
            if (profileOf(comp, static_cast<int32_t>(j)) == made) {
                relaxFrom(problem, comp, gapClassOf(problem, comp, j), profile(comp, made) + width,
                          m_siteCosts.profile(m_siteCosts.profileOf(j)));
                ++made;
            }
        }
    }
    for (int32_t p = 0; p < layer.numProfiles; ++p) {
        m_ops.runningLeast(profile(comp, p), segment.numSites + 1);
        m_ends[layer.firstEnd + static_cast<size_t>(p)] = profile(comp, p)[segment.numSites];
    }
    return true;
}

void FullGridKernel::relaxFrom(const GridProblem& problem, size_t comp, int32_t gapClass, int32_t* values,
                               const int32_t* costs)
{
    const int32_t count = problem.segment.numSites - problem.segment.width[comp] + 1;
    if (comp == 0) {
        m_zeros.resize(std::max(m_zeros.size(), static_cast<size_t>(count)), 0); // no more than a profile has
        m_ops.leastSums(values, m_zeros.data(), costs, count);
        return;
    }
    const PairGaps& gaps = *problem.gapsToLeft[comp];
    m_ways.clear();
    for (size_t i = 0; i < problem.stitches[comp - 1].size(); ++i) {
        const Way way{profileOf(comp - 1, static_cast<int32_t>(i)),
                      gaps.gaps[static_cast<int32_t>(i) * gaps.numClasses + gapClass]};
        assert(way.gap >= 0);
        if (way.gap < count && std::find(m_ways.begin(), m_ways.end(), way) == m_ways.end()) {
            m_ways.push_back(way);
            m_ops.leastSums(values + way.gap, profile(comp - 1, way.profile), costs + way.gap,
                            count - way.gap);
        }
    }
}

bool FullGridKernel::makeAgain(const GridProblem& problem, size_t comp)
{
    return m_store.makeAgain(
        comp, [](size_t) {}, [&](size_t q) { return makeLayer(problem, q); });
}

bool FullGridKernel::traceBack(const GridProblem& problem, size_t comp, int32_t solution)
{
    Node node{solution, problem.segment.numSites};
    for (size_t q = comp;; --q) {
        if (!makeAgain(problem, q)) {
            return false;
        }
        const int32_t last = node.site;
        const int32_t* const values = profile(q, profileOf(q, node.solution));
        const int32_t value = values[last];
        node.site = firstEqual(values, last);
        if (q > 0 && !makeAgain(problem, q - 1)) {
            return false;
        }
        const Node before = solutionBefore(problem, q, node, value);
        place(problem, q, last, node, before.site < 0);
        if (q == 0 || before.site < 0) {
            return true;
        }
        node = before;
    }
}

FullGridKernel::Node FullGridKernel::solutionBefore(const GridProblem& problem, size_t comp, Node node,
                                                    int32_t value)
{
    const int32_t site = node.site - problem.segment.width[comp]; // of the left end
    if (site < 0) {
        return {-1, -1};
    }
    const int32_t cost = siteCost(problem.segment, problem.terms.weight(), comp, site,
                                  problem.stitches[comp][static_cast<size_t>(node.solution)]);
    if (comp == 0) {
        return {-1, cost == value ? site : -1};
    }
    const PairGaps& gaps = *problem.gapsToLeft[comp];
    for (auto i = static_cast<int32_t>(problem.stitches[comp - 1].size()); i-- > 0;) {
        const int32_t end = site - gaps.between(i, node.solution);
        if (end >= 0 && profile(comp - 1, profileOf(comp - 1, i))[end] + cost == value) { // modulo 2^32
            return {i, end};
        }
    }
    return {-1, -1};
}

void FullGridKernel::place(const GridProblem& problem, size_t comp, int32_t last, Node first, bool isBegin)
{
    if (isBegin && (!problem.placesWaiting || first.site == last)) {
        return;
    }
    const int32_t width = problem.segment.width[comp];
    const int32_t end = std::max(isBegin ? first.site + 1 : first.site, width);
    m_places[comp] = {end <= last ? end - width : GridPlace::NOWHERE, first.solution};
}

} // namespace vireloce
