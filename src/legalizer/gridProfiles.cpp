// SPDX-License-Identifier: BSD-3-Clause
// The grid kernel's profiles: how those of a component are made from its left neighbour's, and what is kept.
#include <algorithm>
#include <cassert>
#include <limits>

#include "legalizer/gridKernel.h"

namespace vireloce {

namespace {

constexpr int32_t NO_SOLUTION = std::numeric_limits<int32_t>::max();

} // namespace

GridKernel::Made GridKernel::makeLayer(const GridProblem& problem, size_t comp)
{
    Layer& layer = m_layers[comp];
    const int32_t first = comp > 0 ? m_layers[comp - 1].begin : 0;
    const int32_t count = layer.lastMade - first + 1;
    if (count <= 0) {
        return Made::NOTHING_REACHED;
    }
    const auto mostEntries = static_cast<size_t>(m_limits.mostEntries);
    if (paddedSpace(count) > mostEntries) {
        return Made::NO_MEMORY; // for its costs, either
    }
    m_siteCosts.makeShared(problem.segment, problem.terms, comp, problem.stitches[comp], layer.most,
                           layer.least + first - problem.segment.width[comp], count);
    chooseProfiles(problem, comp);
    const size_t entries = static_cast<size_t>(layer.numProfiles) * paddedSpace(count);
    if (m_wide) {
        if (entries > mostEntries) {
            return Made::NO_MEMORY;
        }
        m_scratch.resize(std::max(m_scratch.size(), entries));
        makeProfiles(problem, comp, m_scratch.data(), count);
        return keepUseful(problem, comp, first, count);
    }
    int32_t* const out = m_store.add(comp, entries);
    if (out == nullptr) {
        return Made::NO_MEMORY;
    }
    layer.begin = first;
    layer.count = count;
    makeProfiles(problem, comp, out, count);
    takeEnds(comp, out, paddedSpace(count), count);
    return Made::YES;
}

void GridKernel::chooseProfiles(const GridProblem& problem, size_t comp)
{
    Layer& layer = m_layers[comp];
    const int32_t numClasses = comp > 0 ? problem.gapsToLeft[comp]->numClasses : 1;
    const int32_t* const classOf = comp > 0 ? problem.gapsToLeft[comp]->classOf : nullptr;
    layer.byGapClass = m_siteCosts.numProfiles() == 1;
    if (layer.byGapClass) {
        layer.numProfiles = numClasses;
        return;
    }
    m_wanted.clear();
    const size_t numSolutions = problem.stitches[comp].size();
    m_profileOf.resize(std::max(m_profileOf.size(), layer.firstProfile + numSolutions));
    for (int32_t gapClass = 0; gapClass < numClasses; ++gapClass) {
        const auto firstOfClass = static_cast<ptrdiff_t>(m_wanted.size());
        for (size_t j = 0; j < numSolutions; ++j) {
            if (classOf != nullptr && classOf[j] != gapClass) {
                continue;
            }
            const int32_t costs = m_siteCosts.profileOf(j);
            const auto at = std::find_if(m_wanted.begin() + firstOfClass, m_wanted.end(),
                                         [costs](const Wanted& wanted) { return wanted.costs == costs; });
            m_profileOf[layer.firstProfile + j] = static_cast<int32_t>(at - m_wanted.begin());
            if (at == m_wanted.end()) {
                m_wanted.push_back({gapClass, costs});
            }
        }
    }
    layer.numProfiles = static_cast<int32_t>(m_wanted.size());
}

void GridKernel::makeProfiles(const GridProblem& problem, size_t comp, int32_t* out, int32_t count)
{
    const size_t stride = paddedSpace(count);
    if (comp == 0) { // the first may begin anywhere
        m_zeros.resize(std::max(m_zeros.size(), stride), 0);
        m_terms.assign(1, {m_zeros.data(), 0});
    } else {
        fillCheapest(problem, comp);
    }
    const bool byGapClass = m_layers[comp].byGapClass;
    const auto numProfiles = static_cast<size_t>(m_layers[comp].numProfiles);
    const auto gapClassOf = [&](size_t p) {
        return byGapClass ? static_cast<int32_t>(p) : m_wanted[p].gapClass;
    };
    for (size_t p = 0; p < numProfiles; ++p, out += stride) {
        if (comp > 0 && (p == 0 || gapClassOf(p - 1) != gapClassOf(p))) {
            chooseTerms(problem, comp, gapClassOf(p));
            const bool isShared = p + 1 < numProfiles && gapClassOf(p + 1) == gapClassOf(p);
            if (isShared && m_terms.size() > 1) { // by profiles that differ in costs only
                m_leastOfTerms.resize(std::max(m_leastOfTerms.size(), stride));
                m_ops.least(m_leastOfTerms.data(), m_terms.data(), static_cast<int32_t>(m_terms.size()),
                            count);
                m_work.terms += static_cast<int64_t>(m_terms.size());
                m_terms.assign(1, {m_leastOfTerms.data(), 0});
            }
        }
        std::fill_n(out, PAD, UNREACHABLE);
        m_ops.relax(out + PAD, m_terms.data(), static_cast<int32_t>(m_terms.size()),
                    m_siteCosts.profile(byGapClass ? 0 : m_wanted[p].costs), count);
        m_work.terms += static_cast<int64_t>(m_terms.size());
    }
    m_work.profiles += static_cast<int64_t>(numProfiles);
    m_work.entries += static_cast<int64_t>(numProfiles) * count;
}

int32_t GridKernel::slackWithoutLeftPull(const SegmentData& segment, size_t comp, int32_t leastEnd)
{
    const int32_t centre = leastEnd - segment.width[comp] + segment.width[comp] / 2; // without slack
    int32_t slack = 0;
    for (const int32_t left : segment.leftOf(comp)) {
        slack = std::max(slack, left - centre);
    }
    return slack;
}

GridKernel::Made GridKernel::keepUseful(const GridProblem& problem, size_t comp, int32_t first, int32_t count)
{
    Layer& layer = m_layers[comp];
    const size_t stride = paddedSpace(count);
    const int64_t most = std::min(layer.floor + m_bound, int64_t{UNREACHABLE} - 1);
    int32_t from = count; // index of the least slack to keep
    int32_t tail = 0;     // index from which on no profile falls
    for (int32_t p = 0; p < layer.numProfiles; ++p) {
        const int32_t* const values = m_scratch.data() + static_cast<size_t>(p) * stride + PAD;
        const auto* const kept =
            std::partition_point(values, values + count, [most](int32_t value) { return value > most; });
        m_hasCut = m_hasCut || (kept != values && kept[-1] < UNREACHABLE);
        from = std::min(from, static_cast<int32_t>(kept - values));
        tail = std::max(tail, firstEqual(values, count - 1));
    }
    if (from == count) {
        return Made::NOTHING_REACHED;
    }
    tail = std::max(tail, from);
    int32_t lastKept = first + tail;
    if (comp + 1 < m_layers.size()) {
        Layer& next = m_layers[comp + 1];
        const PairGaps& gaps = *problem.gapsToLeft[comp + 1];
        next.lastMade =
            std::min(next.lastSlack, std::max(lastKept + (gaps.most - gaps.least),
                                              slackWithoutLeftPull(problem.segment, comp + 1, next.least)));
        lastKept = std::max(lastKept, next.lastMade);
    }
    assert(from < count && tail < count);
    layer.begin = first + from;
    layer.count = lastKept - layer.begin + 1;

    int32_t* const out = m_store.add(comp, static_cast<size_t>(layer.numProfiles) * strideOf(comp));
    if (out == nullptr) {
        return Made::NO_MEMORY;
    }
    const int32_t copied = std::min(layer.count, count - from);
    for (int32_t p = 0; p < layer.numProfiles; ++p) {
        const int32_t* const values = m_scratch.data() + static_cast<size_t>(p) * stride + PAD;
        int32_t* profile = out + static_cast<size_t>(p) * strideOf(comp);
        profile = std::fill_n(profile, PAD, UNREACHABLE);
        profile = std::copy_n(values + from, copied, profile);
        std::fill_n(profile, layer.count - copied, values[count - 1]);
    }
    m_work.kept += int64_t{layer.numProfiles} * layer.count;
    takeEnds(comp, m_scratch.data(), stride, count);
    return Made::YES;
}

void GridKernel::takeEnds(size_t comp, const int32_t* profiles, size_t stride, int32_t count)
{
    const Layer& layer = m_layers[comp];
    if (layer.firstEnd < m_ends.size()) {
        return; // made again
    }
    const int32_t* end = profiles + PAD + count - 1;
    for (int32_t p = 0; p < layer.numProfiles; ++p, end += stride) {
        m_ends.push_back(*end);
    }
}

size_t GridKernel::strideOf(size_t comp) const
{
    return paddedSpace(m_layers[comp].count);
}

const int32_t* GridKernel::profiles(size_t comp)
{
    const int32_t* const profiles = m_store.at(comp);
    assert(profiles != nullptr);
    return profiles + PAD;
}

void GridKernel::fillCheapest(const GridProblem& problem, size_t comp)
{
    const PairGaps& gaps = *problem.gapsToLeft[comp];
    const std::span<const int32_t> stitches = problem.stitches[comp - 1];
    const int32_t spread = gaps.most - gaps.least + 1;
    const size_t perClass = static_cast<size_t>(m_layers[comp - 1].numProfiles) * static_cast<size_t>(spread);
    m_cheapest.assign(static_cast<size_t>(gaps.numClasses) * perClass, NO_SOLUTION);
    const int32_t* const leftProfileOf = profileOf(problem, comp - 1);
    const int32_t* gap = gaps.gaps;
    for (size_t i = 0; i < stitches.size(); ++i) {
        assert(leftProfileOf[i] < m_layers[comp - 1].numProfiles);
        int32_t* cheapest = m_cheapest.data() + static_cast<ptrdiff_t>(leftProfileOf[i]) * spread;
        for (int32_t gapClass = 0; gapClass < gaps.numClasses; ++gapClass, cheapest += perClass, ++gap) {
            assert(gaps.least <= *gap && *gap <= gaps.most);
            int32_t& least = cheapest[*gap - gaps.least];
            least = std::min(least, stitches[i]);
        }
    }
}

void GridKernel::chooseTerms(const GridProblem& problem, size_t comp, int32_t gapClass)
{
    const PairGaps& gaps = *problem.gapsToLeft[comp];
    const int32_t spread = gaps.most - gaps.least + 1;
    const Layer& left = m_layers[comp - 1];
    const int32_t* cheapest =
        m_cheapest.data() + static_cast<ptrdiff_t>(gapClass) * left.numProfiles * spread;
    const int32_t* values = profiles(comp - 1);
    const size_t stride = strideOf(comp - 1);
    m_terms.clear();
    for (int32_t p = 0; p < left.numProfiles; ++p, values += stride) {
        int32_t least = NO_SOLUTION; // values never rise, so that farther away only fewer stitches help
        for (int32_t excess = 0; excess < spread; ++excess, ++cheapest) {
            if (*cheapest < least) {
                least = *cheapest;
                m_terms.push_back({values - excess, least});
            }
        }
    }
}

} // namespace vireloce
