// SPDX-License-Identifier: BSD-3-Clause
// What the kernels of ordered and joint placement are asked, and what they answer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "legalizer/pairGaps.h"
#include "legalizer/segmentData.h"
#include "legalizer/termTable.h"

namespace vireloce {

/// Start value of the grid of ordered placement; that of the joint grid is INFINITE_COST. Required: a cost
/// above it loses to a path from a node that has not been reached.
///
/// UNREACHABLE, of the kernels' own profiles, is more than either: it says that no way leads to a site, and
/// no path begins there.
inline constexpr int32_t ORDERED_UNREACHED = 12345678;

/// What a placement grid is made of, beside the segment. Not owned.
struct GridProblem {
    const SegmentData& segment;
    std::span<const PairGaps* const> gapsToLeft; ///< [component] gaps to its left neighbour, the first unused
    std::span<const std::span<const int32_t>> stitches; ///< [component][solution]
    const TermTable& terms; ///< of the weight, up to the segment's number of sites if that is worth a table
    int32_t unreached;      ///< start value of a node that has not been reached
    bool placesWaiting;     ///< whether a waiting node of the path is a place, too, as in ordered placement

    /// Whether all arrays are as long as the components ask.
    bool isComplete() const
    {
        const size_t n = segment.comps.size();
        return n == 0 || (segment.isComplete() && gapsToLeft.size() == n && stitches.size() == n);
    }
};

/// Where the best path puts a component.
struct GridPlace {
    /// Its left end, sites; NOWHERE if the path does not lead to a site for it.
    int32_t site = NOWHERE;

    /// Its solution; NOWHERE if the path leaves the component out.
    int32_t solution = NOWHERE;

    static constexpr int32_t NOWHERE = -1;
};

/// Cost of the edge to the end node, modulo 2^32: 10 for each site of the segment, once and for each
/// component that the path leaves out. That is more than leaving it out could save.
///
/// @param notBefore  components that the path leaves out, and the last one on it
inline int32_t endCost(int32_t numSites, int32_t notBefore)
{
    return 10 * numSites * notBefore;
}

/// endCost() of a path whose last component has an index.
inline int32_t endCost(const SegmentData& segment, size_t last)
{
    return endCost(segment.numSites, segment.size() - static_cast<int32_t>(last));
}

} // namespace vireloce
