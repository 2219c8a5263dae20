// SPDX-License-Identifier: BSD-3-Clause
// One segment as the kernels read it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "legalizer/slice.h"

struct Component;

namespace vireloce {

/// A segment's components in their order, and where their nets pull them. Positions are sites of the segment.
struct SegmentData {
    int32_t numSites = 0;               ///< capacity, sites
    int32_t farthest = 0;               ///< bound of the distance of a site from an end, sites; 0 if unknown
    std::vector<Component*> comps;      ///< not owned
    std::vector<int32_t> width;         ///< [component] sites
    std::vector<int32_t> leftEndBegin;  ///< [component + 1] first of its entries in leftEnds
    std::vector<int32_t> leftEnds;      ///< left ends of the fixed ranges of the nets that it is leftmost of
    std::vector<int32_t> rightEndBegin; ///< [component + 1] first of its entries in rightEnds
    std::vector<int32_t> rightEnds;     ///< right ends of those that it is rightmost of

    /// Number of components.
    int32_t size() const { return static_cast<int32_t>(comps.size()); }

    /// Whether all arrays are as long as the components ask.
    bool isComplete() const
    {
        const size_t n = comps.size();
        return width.size() == n && leftEndBegin.size() == n + 1 && rightEndBegin.size() == n + 1 &&
               static_cast<size_t>(leftEndBegin.back()) == leftEnds.size() &&
               static_cast<size_t>(rightEndBegin.back()) == rightEnds.size();
    }

    /// What the centre of a component must not be left of, in the order of its nets.
    std::span<const int32_t> leftOf(size_t comp) const { return sliceOf(leftEnds, leftEndBegin, comp); }

    /// What the centre of a component must not be right of, in the order of its nets.
    std::span<const int32_t> rightOf(size_t comp) const { return sliceOf(rightEnds, rightEndBegin, comp); }
};

} // namespace vireloce
