// SPDX-License-Identifier: BSD-3-Clause
// The wirelength part of SegLegalizer::getEdgeCost(), where terms may be added in any order.
#pragma once

#include <algorithm>
#include <cstdint>

#include "legalizer/segmentData.h"
#include "legalizer/termTable.h"

namespace vireloce {

/// Cost of a component at a site, without stitches.
///
/// @param terms  up to the segment's number of sites at least
/// @param comp   index in the segment
/// @param site   of its left end; it lies in the segment
inline int32_t siteCost(const SegmentData& segment, const TermTable& terms, size_t comp, int32_t site)
{
    const int32_t* rising = terms.rising();
    const int32_t centre = site + segment.width[comp] / 2;
    int32_t cost = 0;
    for (const int32_t right : segment.rightOf(comp)) {
        cost += rising[std::max(centre - right, 0)];
    }
    for (const int32_t left : segment.leftOf(comp)) {
        cost += rising[std::max(left - centre, 0)];
    }
    return cost;
}

/// Whether all ends are within the reach of a table up to the segment's number of sites. They may be beyond
/// it by the rounding of a long segment's coordinates.
inline bool endsWithin(const SegmentData& segment)
{
    return std::all_of(segment.leftEnds.begin(), segment.leftEnds.end(),
                       [&segment](int32_t left) { return left <= segment.numSites; });
}

/// At least what a component costs anywhere in the segment: the most stitches and all nets at their farthest.
inline int64_t mostCost(const SegmentData& segment, const TermTable& terms, size_t comp, int32_t stitches)
{
    const size_t pulls = segment.leftOf(comp).size() + segment.rightOf(comp).size();
    return stitches + int64_t{terms.rising()[segment.numSites]} * static_cast<int64_t>(pulls);
}

} // namespace vireloce
