// SPDX-License-Identifier: BSD-3-Clause
// What the kernels of the local shift program are asked, and what they answer.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "legalizer/pairGaps.h"
#include "legalizer/segmentData.h"

namespace vireloce {

/// What a local shift is to choose from, beside the segment. Not owned.
struct ShiftProblem {
    const SegmentData& segment;
    std::span<const PairGaps* const> gapsToLeft; ///< [component] gaps to its left neighbour, the first unused
    std::span<const std::span<const int32_t>> stitches; ///< [component][solution]
    std::span<const int32_t> leftEnds;                  ///< [component] left end before the shift, sites
    float weight;                                       ///< cost of a site
    int32_t numSolutions; ///< most solutions of a component that the table has room for
    int32_t firstShift;   ///< leftmost shift of a component, sites
    int64_t numShifts;    ///< shifts from there, each a site further to the right
    bool prune;           ///< leave out states that are dearer than one of the same solution further left

    /// Whether all arrays are as long as the components ask.
    bool isComplete() const
    {
        const size_t n = segment.comps.size();
        return n == 0 || (segment.isComplete() && gapsToLeft.size() == n && stitches.size() == n &&
                          leftEnds.size() == n);
    }

    /// Stitches of those solutions of a component that the table has room for.
    std::span<const int32_t> stitchesOf(size_t comp) const
    {
        const auto most = static_cast<size_t>(std::max(numSolutions, 0));
        return stitches[comp].first(std::min(stitches[comp].size(), most));
    }
};

/// A component's shift and solution.
struct ShiftPlace {
    int32_t shift = 0;     ///< sites
    int32_t solution = -1; ///< none if negative
};

} // namespace vireloce
