// SPDX-License-Identifier: BSD-3-Clause
// Points in two dimensions as an SVG picture.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/base/files/outputFile.h"

namespace kit::sweep {

/// A value that an axis names.
struct Tick {
    double value;
    std::string label; ///< empty for a mark alone
};

/// One axis of a chart.
struct Axis {
    std::string title;
    bool logarithmic = false;
    double low = 0;
    double high = 1; ///< above `low`
    std::vector<Tick> ticks;

    /// Where a value is, 0 at the low end and 1 at the high end.
    double at(double value) const;
};

/// An axis whose values are named in round numbers, with some room at both ends.
///
/// @param title  what it is, without unit; the unit gets a power of a thousand in front
Axis linearAxis(const std::string& title, const std::string& unit, double low, double high);

/// An axis from a round value to another. @param low  above 0
Axis logarithmicAxis(const std::string& title, double low, double high);

/// A box in a picture, in pixels, y downwards.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    /// Whether they share more than an edge.
    bool overlaps(const Rect& other) const
    {
        return x < other.x + other.width && other.x < x + width && y < other.y + other.height &&
               other.y < y + height;
    }

    /// Whether nothing of the other is outside.
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

/// Points that look alike: one of the colours with one of the shapes.
struct Series {
    std::string name;
    size_t look = 0; ///< which colour and shape, below MOST_LOOKS
};

/// Number of looks that can be told apart, by colour-blind people and without colour too.
inline constexpr size_t MOST_LOOKS = 5;

/// Two costs.
struct Costs {
    double x = 0;
    double y = 0;
};

/// A point of a chart.
struct Mark {
    Costs at;
    size_t series = 0;   ///< index in Chart::series
    bool hollow = false; ///< outline only
    std::string title;   ///< shown where the mark is pointed at
    std::string label;   ///< beside the mark, where there is room
};

/// A line through some points.
struct Line {
    std::vector<Costs> points;
    bool stairs = false; ///< in grey, first to the right; else straight, in the colour of a series
    size_t series = 0;
};

/// A picture of points and lines.
struct Chart {
    std::string title;
    std::string subtitle;
    Axis x;
    Axis y;
    std::vector<Series> series;
    std::vector<Mark> marks;
    std::vector<Line> lines;
    std::string stairsName; ///< in the legend; empty if there are none
    std::string hollowName; ///< likewise
};

/// Draws a chart: axes, lines, marks, labels where nothing is in their way, and a legend. Of marks that would
/// hide one another some are drawn beside their place.
void writeChart(OutputFile& file, const Chart& chart);

} // namespace kit::sweep
