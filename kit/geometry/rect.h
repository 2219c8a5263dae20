// SPDX-License-Identifier: BSD-3-Clause
// Points and rectangles. Lengths are in whatever unit the caller has.
#pragma once

#include <algorithm>
#include <cstdint>

namespace kit::geometry {

struct Point {
    int64_t x = 0;
    int64_t y = 0;
};

/// A rectangle by its lower left and its upper right corner.
template <typename Length>
struct RectOf {
    Length xl = 0;
    Length yl = 0;
    Length xh = 0;
    Length yh = 0;

    bool operator==(const RectOf&) const = default;

    /// It, moved.
    RectOf shifted(Length dx, Length dy) const { return {xl + dx, yl + dy, xh + dx, yh + dy}; }

    /// Whether it is more than a line or a point.
    bool hasArea() const { return xl < xh && yl < yh; }
};

using Rect = RectOf<int64_t>;

/// From `begin` to `end`.
template <typename Length>
struct RangeOf {
    Length begin = 0;
    Length end = 0;
};

/// The rectangle with two opposite corners.
template <typename Length>
RectOf<Length> rectBetween(Length x1, Length y1, Length x2, Length y2)
{
    return {std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)};
}

/// The least rectangle that has both in it.
template <typename Length>
RectOf<Length> around(const RectOf<Length>& a, const RectOf<Length>& b)
{
    return {std::min(a.xl, b.xl), std::min(a.yl, b.yl), std::max(a.xh, b.xh), std::max(a.yh, b.yh)};
}

/// What two rectangles share: with an area, a line or a point; if nothing, a left edge is right of its right
/// edge, or a bottom above its top.
template <typename Length>
RectOf<Length> common(const RectOf<Length>& a, const RectOf<Length>& b)
{
    return {std::max(a.xl, b.xl), std::max(a.yl, b.yl), std::min(a.xh, b.xh), std::min(a.yh, b.yh)};
}

/// A quotient rounded down. @param divisor  positive
constexpr int64_t floorDiv(int64_t dividend, int64_t divisor)
{
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

/// Distance of two ranges, 0 if they touch or overlap.
inline int64_t gapOf(int64_t aBegin, int64_t aEnd, int64_t bBegin, int64_t bEnd)
{
    return std::max({bBegin - aEnd, aBegin - bEnd, int64_t{0}});
}

} // namespace kit::geometry
