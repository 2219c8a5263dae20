// SPDX-License-Identifier: BSD-3-Clause
// The union of some rectangles, on the grid of their edges.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <vector>

#include "kit/formats/placer/design.h"

namespace kit::color {

using placer::Rect;

/// A rectangle with x and y exchanged.
inline Rect transposed(const Rect& rect)
{
    return {rect.yl, rect.xl, rect.yh, rect.xh};
}

/// All of them with x and y exchanged.
std::vector<Rect> transposed(const std::vector<Rect>& rects);

/// The union of rectangles.
class Grid {
public:
    /// @param rects      each with an area; they may overlap
    /// @param moreXs     further lines of the grid
    /// @param moreYs     likewise
    explicit Grid(const std::vector<Rect>& rects, const std::vector<int32_t>& moreXs = {},
                  const std::vector<int32_t>& moreYs = {});

    /// Fields side by side.
    size_t columns() const { return m_xs.size() - 1; }
    /// Fields on top of each other.
    size_t lines() const { return m_ys.size() - 1; }

    /// Whether a field is metal.
    bool at(size_t column, size_t line) const
    {
        assert(column < columns() && line < lines());
        return m_filled[column * lines() + line] != 0;
    }

    /// A field as a rectangle.
    Rect field(size_t column, size_t line) const
    {
        return {m_xs[column], m_ys[line], m_xs[column + 1], m_ys[line + 1]};
    }

    /// Index of a line of the grid among the upright ones; x must be one.
    size_t columnAt(int32_t x) const { return indexOf(m_xs, x); }
    /// Index of a line of the grid among the flat ones; y must be one.
    size_t lineAt(int32_t y) const { return indexOf(m_ys, y); }

    /// The union cut by upright lines at its corners: every slab reaches from edge to edge in y, and no two
    /// that touch have the same range of y. They are sorted by their left edges, then upwards.
    std::vector<Rect> slabs() const;

    /// How far a slab's range of y is metal to its left and right.
    ///
    /// @return the slab, made as wide as the metal allows
    Rect widened(const Rect& slab) const;

private:
    static size_t indexOf(const std::vector<int32_t>& values, int32_t value)
    {
        return static_cast<size_t>(std::ranges::lower_bound(values, value) - values.begin());
    }
    bool isFull(size_t column, size_t lineBegin, size_t lineEnd) const;

    std::vector<int32_t> m_xs; ///< lines of the grid, ascending
    std::vector<int32_t> m_ys;
    std::vector<uint8_t> m_filled; ///< [column * lines + line]
};

/// Few rectangles without common area that have the same union.
std::vector<Rect> tidied(const std::vector<Rect>& rects);

} // namespace kit::color
