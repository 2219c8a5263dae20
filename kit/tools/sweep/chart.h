// SPDX-License-Identifier: BSD-3-Clause
// Points in two dimensions as an SVG picture.
#pragma once

#include <string>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/tools/sweep/axis.h"
#include "kit/tools/sweep/pareto.h"

namespace kit::sweep {

/// Points that look alike: one of the colours with one of the shapes.
struct Series {
    std::string name;
    size_t look = 0; ///< which colour and shape, below MOST_LOOKS
};

/// Number of looks that can be told apart, by colour-blind people and without colour too.
inline constexpr size_t MOST_LOOKS = 5;

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
    bool stairs =
        false; ///< with steps, first to the right, in grey; else straight, in the colour of a series
    size_t series = 0;
};

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
