// SPDX-License-Identifier: BSD-3-Clause
// What the sites of a segment cost a component: the costs of SegLegalizer::getEdgeCost(), profile by profile.
#pragma once

#include <cassert>
#include <cstdint>
#include <span>
#include <vector>

#include "legalizer/profileOps.h"
#include "legalizer/segmentData.h"
#include "legalizer/termTable.h"

namespace vireloce {

/// Cost of a component at a site: stitches, then what sticks out of the ranges of its nets, term by term.
///
/// @param comp      index in the segment
/// @param site      of its left end
/// @param stitches  of its solution
int32_t siteCost(const SegmentData& segment, float weight, size_t comp, int32_t site, int32_t stitches);

/// Whether a component costs from 0 to below FAR_AWAY on all sites, on the way to the sum too.
///
/// @param weight    0 or more
/// @param stitches  most of its solutions, 0 or more
bool hasSmallCosts(const SegmentData& segment, float weight, size_t comp, int32_t stitches);

/// Costs of one component at a stretch of sites, for all of its solutions.
///
/// A cost is truncated after every term, so that in general stitches add more or less by what is added to
/// them. Solutions of different stitches share a profile only where their profiles were seen to differ by
/// exactly their stitches, or where TermTable says that they must.
class SiteCosts {
public:
    /// @param ops  not owned
    explicit SiteCosts(const ProfileOps& ops) : m_ops(&ops) {}

    /// Makes the profiles without stitches, shared where that is exact.
    ///
    /// @param terms      up to the segment's number of sites at least
    /// @param comp       index in the segment; hasSmallCosts()
    /// @param stitches   [solution] 0 or more
    /// @param most       most of them
    /// @param firstSite  of the component's left end at the first entry
    /// @param count      sites; all of them lie in the segment
    void makeShared(const SegmentData& segment, const TermTable& terms, size_t comp,
                    std::span<const int32_t> stitches, int32_t most, int32_t firstSite, int32_t count);

    /// Makes the profiles with stitches, one for every number of stitches. Any numbers will do.
    void makeWhole(const SegmentData& segment, float weight, size_t comp, std::span<const int32_t> stitches,
                   int32_t firstSite, int32_t count);

    /// Lower bound of what a component costs on any site, without stitches.
    ///
    /// @param weight  0 or more
    int32_t floorOf(const SegmentData& segment, float weight, size_t comp);

    /// Number of distinct profiles.
    int32_t numProfiles() const { return m_numProfiles; }

    /// Index of a solution's profile.
    int32_t profileOf(size_t solution) const
    {
        assert(m_numProfiles == 1 || solution < m_profileOf.size());
        return m_numProfiles == 1 ? 0 : m_profileOf[solution];
    }

    /// Sites of each profile.
    int32_t count() const { return m_count; }

    /// [count] one of the profiles, with room for whole blocks.
    const int32_t* profile(int32_t index) const
    {
        assert(0 <= index && index < m_numProfiles);
        return m_costs.data() + static_cast<size_t>(index) * m_stride;
    }

private:
    /// Whether a component's costs stay so small that terms up to a distance may be added in any order.
    static bool addsInAnyOrder(const SegmentData& segment, const TermTable& terms, size_t comp, int32_t most,
                               int32_t farthest);

    /// The largest distance of some sites from an end of a component's nets. `centre` is that of the first
    /// site.
    static int32_t farthestFrom(const SegmentData& segment, size_t comp, int32_t centre, int32_t count);

    /// Makes one profile by adding up whole terms, the fastest way. False if that might not give the same as
    /// adding them up one by one.
    bool addTerms(const SegmentData& segment, const TermTable& terms, size_t comp, int32_t most,
                  int32_t firstSite, int32_t count);

    /// Finds the distinct numbers of stitches, and the one of every solution.
    void findNumbers(std::span<const int32_t> stitches);

    /// Makes room for profiles of some sites.
    void setCount(size_t numProfiles, int32_t count);

    /// Lets solutions whose profiles are equal share the first of them.
    void shareEqual(int32_t count);

    const ProfileOps* m_ops; ///< not owned
    int32_t m_numProfiles = 0;
    int32_t m_count = 0;              ///< sites of each profile
    size_t m_stride = 0;              ///< from one profile to the next
    std::vector<int32_t> m_costs;     ///< [profile][site]
    std::vector<int32_t> m_numbers;   ///< [profile] its number of stitches
    std::vector<int32_t> m_profileOf; ///< [solution], meaningless if there is one profile only
    std::vector<int32_t> m_points;    ///< ends of a component's nets
};

} // namespace vireloce
