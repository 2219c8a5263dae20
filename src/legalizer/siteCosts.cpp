// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/siteCosts.h"

#include <algorithm>
#include <cassert>

#include "qlib/exact.h"

namespace vireloce {

int32_t siteCost(const SegmentData& segment, float weight, size_t comp, int32_t site, int32_t stitches)
{
    const int32_t half = segment.width[comp] / 2;
    int32_t cost = stitches;
    for (const int32_t right : segment.rightOf(comp)) {
        cost = addTruncated(cost, std::max(site + half - right, 0), weight);
    }
    for (const int32_t left : segment.leftOf(comp)) {
        cost = addTruncated(cost, std::max(left - half - site, 0), weight);
    }
    return cost;
}

bool hasSmallCosts(const SegmentData& segment, float weight, size_t comp, int32_t stitches)
{
    // A term is at most as large as for the farthest site. Truncated sums grow with their terms, so the sum
    // of all terms at their largest bounds the cost on every site.
    const int32_t half = segment.width[comp] / 2;
    const int32_t lastSite = std::max(segment.numSites - segment.width[comp], 0);
    int32_t most = stitches;
    const auto add = [&most, weight](int32_t sites) {
        most = addTruncated(most, std::max(sites, 0), weight);
        return 0 <= most && most < FAR_AWAY;
    };
    const auto rights = segment.rightOf(comp);
    const auto lefts = segment.leftOf(comp);
    const double farthest = static_cast<double>(segment.numSites) + segment.width[comp];
    const double roughly =
        stitches + farthest * static_cast<double>(weight) * static_cast<double>(rights.size() + lefts.size());
    if (2.0 * roughly < FAR_AWAY && stitches >= 0) {
        return true; // twice the sum is more than all rounding could add
    }
    return 0 <= most && most < FAR_AWAY &&
           std::all_of(rights.begin(), rights.end(),
                       [&](int32_t right) { return add(lastSite + half - right); }) &&
           std::all_of(lefts.begin(), lefts.end(), [&](int32_t left) { return add(left - half); });
}

void SiteCosts::makeShared(const SegmentData& segment, const TermTable& terms, size_t comp,
                           std::span<const int32_t> stitches, int32_t most, int32_t firstSite, int32_t count)
{
    assert(std::all_of(stitches.begin(), stitches.end(), [most](int32_t number) { return number <= most; }));
    assert(firstSite >= 0 && firstSite + count + segment.width[comp] - 1 <= segment.numSites);
    if (addTerms(segment, terms, comp, most, firstSite, count)) {
        return;
    }
    makeWhole(segment, terms.weight(), comp, stitches, firstSite, count);
    for (int32_t p = 0; p < m_numProfiles; ++p) {
        int32_t* const costs = m_costs.data() + static_cast<size_t>(p) * m_stride;
        std::for_each(costs, costs + count,
                      [number = m_numbers[static_cast<size_t>(p)]](int32_t& cost) { cost -= number; });
    }
    shareEqual(count);
}

bool SiteCosts::addsInAnyOrder(const SegmentData& segment, const TermTable& terms, size_t comp, int32_t most,
                               int32_t farthest)
{
    if (farthest > terms.most()) {
        return false;
    }
    const auto pulls = static_cast<int64_t>(segment.leftOf(comp).size() + segment.rightOf(comp).size());
    const int32_t limit = terms.additiveLimit(farthest);
    return limit > 0 && most + pulls * terms.rising()[farthest] < limit;
}

int32_t SiteCosts::farthestFrom(const SegmentData& segment, size_t comp, int32_t centre, int32_t count)
{
    int32_t farthest = 0;
    for (const int32_t right : segment.rightOf(comp)) {
        farthest = std::max(farthest, centre + count - 1 - right);
    }
    for (const int32_t left : segment.leftOf(comp)) {
        farthest = std::max(farthest, left - centre);
    }
    return farthest;
}

bool SiteCosts::addTerms(const SegmentData& segment, const TermTable& terms, size_t comp, int32_t most,
                         int32_t firstSite, int32_t count)
{
    const int32_t centre = firstSite + segment.width[comp] / 2; // at the first entry
    if (!(segment.farthest > 0 && addsInAnyOrder(segment, terms, comp, most, segment.farthest)) &&
        !addsInAnyOrder(segment, terms, comp, most, farthestFrom(segment, comp, centre, count))) {
        return false;
    }
    setCount(1, count);
    std::fill_n(m_costs.begin(), m_stride, 0);
    for (const int32_t right : segment.rightOf(comp)) {
        const int32_t over = centre - right; // sites beyond it at the first entry
        const int32_t from = std::max(0, 1 - over);
        if (from < count) {
            m_ops->add(m_costs.data() + from, terms.rising() + over + from, count - from);
        }
    }
    for (const int32_t left : segment.leftOf(comp)) {
        const int32_t under = left - centre; // sites before it at the first entry
        if (under > 0) {
            m_ops->add(m_costs.data(), terms.falling(under), std::min(count, under));
        }
    }
    return true;
}

void SiteCosts::makeWhole(const SegmentData& segment, float weight, size_t comp,
                          std::span<const int32_t> stitches, int32_t firstSite, int32_t count)
{
    findNumbers(stitches);
    setCount(m_numbers.size(), count);
    const int32_t centre = firstSite + segment.width[comp] / 2; // at the first entry
    for (size_t p = 0; p < m_numbers.size(); ++p) {
        int32_t* const costs = m_costs.data() + p * m_stride;
        std::fill_n(costs, m_stride, m_numbers[p]);
        for (const int32_t right : segment.rightOf(comp)) {
            m_ops->addDistances(costs, centre - right, 1, weight, count);
        }
        for (const int32_t left : segment.leftOf(comp)) {
            m_ops->addDistances(costs, left - centre, -1, weight, count);
        }
    }
}

int32_t SiteCosts::floorOf(const SegmentData& segment, float weight, size_t comp)
{
    const auto rights = segment.rightOf(comp);
    const auto lefts = segment.leftOf(comp);
    if (rights.empty() || lefts.empty() ||
        *std::max_element(lefts.begin(), lefts.end()) <= *std::min_element(rights.begin(), rights.end())) {
        return 0; // some site satisfies all nets
    }
    // The sum of distances grows by one more per site behind every end, from minus the number of left ends
    // on. So it is least at the end where that becomes 0.
    m_points.assign(rights.begin(), rights.end());
    m_points.insert(m_points.end(), lefts.begin(), lefts.end());
    const auto middle = m_points.begin() + static_cast<ptrdiff_t>(lefts.size()) - 1;
    std::nth_element(m_points.begin(), middle, m_points.end());
    int64_t sites = 0;
    for (const int32_t right : rights) {
        sites += std::max(*middle - right, 0);
    }
    for (const int32_t left : lefts) {
        sites += std::max(left - *middle, 0);
    }
    // Truncation takes less than 1 off for every term, rounding less than its share of 2^-22.
    const auto terms = static_cast<double>(m_points.size());
    const double rounded =
        static_cast<double>(weight) * static_cast<double>(sites) * (1.0 - terms / (1 << 22));
    return std::max(toInt(rounded - terms), 0);
}

void SiteCosts::findNumbers(std::span<const int32_t> stitches)
{
    m_numbers.clear();
    m_profileOf.clear();
    for (const int32_t number : stitches) {
        const auto at = std::find(m_numbers.begin(), m_numbers.end(), number);
        m_profileOf.push_back(static_cast<int32_t>(at - m_numbers.begin()));
        if (at == m_numbers.end()) {
            m_numbers.push_back(number);
        }
    }
}

void SiteCosts::setCount(size_t numProfiles, int32_t count)
{
    assert(count >= 0);
    m_numProfiles = static_cast<int32_t>(numProfiles);
    m_count = count;
    m_stride = static_cast<size_t>(profileSpace(count));
    if (m_costs.size() < numProfiles * m_stride) {
        m_costs.resize(numProfiles * m_stride);
    }
}

void SiteCosts::shareEqual(int32_t count)
{
    for (int32_t p = 1; p < m_numProfiles; ++p) {
        for (int32_t same = 0; same < p; ++same) {
            if (std::equal(profile(p), profile(p) + count, profile(same))) {
                std::replace(m_profileOf.begin(), m_profileOf.end(), p, same);
                break;
            }
        }
    }
}

} // namespace vireloce
