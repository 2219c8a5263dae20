// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "db/segment.h"
#include "qlib/exact.h"

namespace vireloce {

/// Least and largest coordinate of something, DBU; reversed if there is nothing.
struct Extent {
    int32_t lo = std::numeric_limits<int32_t>::max();
    int32_t hi = std::numeric_limits<int32_t>::min();

    void include(int32_t x)
    {
        lo = std::min(lo, x);
        hi = std::max(hi, x);
    }
};

/// What a segment covers of the plane, and its sites.
class Stretch {
public:
    /// @param siteWidth  DBU
    Stretch(const Segment& segment, int32_t siteWidth)
        : m_y(segment.y), m_xl(segment.x), m_rightEnd(segment.rightEnd(siteWidth)),
          m_numSites(segment.numSites), m_siteWidth(siteWidth)
    {
    }

    /// Whether a component with its lower left corner at (x, y), DBU, counts as inside.
    bool contains(int32_t x, int32_t y) const { return y == m_y && m_xl <= x && x < m_rightEnd; }

    /// Both ends as sites, the fixed range of a net; (-1, -1) if there is nothing.
    std::pair<int32_t, int32_t> sitesOf(const Extent& extent) const
    {
        constexpr int32_t UNSET = std::numeric_limits<int32_t>::max();
        return extent.lo == UNSET ? std::pair(-1, -1) : std::pair(siteOf(extent.lo), siteOf(extent.hi));
    }

private:
    /// A coordinate as a site, rounded up, clamped to the segment.
    int32_t siteOf(int32_t x) const
    {
        if (x < m_xl) {
            return 0;
        }
        return x <= m_rightEnd ? ceilSites(x - m_xl, m_siteWidth) : m_numSites;
    }

    int32_t m_y;        ///< DBU
    int32_t m_xl;       ///< DBU
    int32_t m_rightEnd; ///< DBU
    int32_t m_numSites;
    int32_t m_siteWidth; ///< DBU
};

} // namespace vireloce
