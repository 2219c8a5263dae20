// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <optional>
#include <vector>

namespace kit::sweep {

/// A box in a picture, in pixels, y downwards.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool overlaps(const Rect& other) const
    {
        return x < other.x + other.width && other.x < x + width && y < other.y + other.height &&
               other.y < y + height;
    }

    bool contains(const Rect& other) const
    {
        return other.x >= x && other.y >= y && other.x + other.width <= x + width &&
               other.y + other.height <= y + height;
    }
};

/// Finds room for labels beside points, so that none covers another, a point, or an edge of the frame.
class Labels {
public:
    /// @param frame  where labels may be
    explicit Labels(Rect frame) : m_frame(frame) {}

    /// A place that must stay free.
    void block(const Rect& rect) { m_taken.push_back(rect); }

    /// Takes a place for a label: right above of a point first, then around it.
    ///
    /// @param gap  between the point and the label
    /// @return nothing if there is no room
    std::optional<Rect> place(double x, double y, double width, double height, double gap);

private:
    Rect m_frame;
    std::vector<Rect> m_taken;
};

} // namespace kit::sweep
