// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/chart.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "kit/base/svg.h"
#include "kit/base/text/escape.h"

namespace kit::sweep {

namespace {

constexpr double MOST_TICKS = 7;
constexpr double CLOSE = 5;         // times, up to which there are more values
constexpr double FULL_LABELS = 2.5; // decades up to which 2 and 5 are named as well

std::string textOf(double value)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.9g", value);
    return text.data();
}

/// The least of 1, 2 and 5 by powers of ten that is no smaller.
double roundStep(double step)
{
    const double decade = std::pow(10, std::floor(std::log10(step)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * decade >= step * (1 - 1e-9)) {
            return factor * decade;
        }
    }
    return 10 * decade;
}

struct Scale {
    double factor;
    const char* name;
};

Scale scaleFor(double largest)
{
    constexpr Scale SCALES[] = {{1e9, "billion "}, {1e6, "million "}, {1e4, "thousand "}};
    for (const Scale& scale : SCALES) {
        if (largest >= scale.factor) {
            return {scale.factor == 1e4 ? 1e3 : scale.factor, scale.name};
        }
    }
    return {1, ""};
}

bool isDecade(double value)
{
    const double decade = std::log10(value);
    return std::fabs(decade - std::round(decade)) < 1e-9;
}

/// Round values from the decade of one value to that of another, closer ones if they are close.
std::vector<double> roundValues(double low, double high)
{
    const std::vector<double> factors = high < CLOSE * low
                                            ? std::vector<double>{1, 1.2, 1.5, 2, 2.5, 3, 4, 5, 6, 8}
                                            : std::vector<double>{1, 2, 5};
    std::vector<double> values;
    const int last = static_cast<int>(std::ceil(std::log10(high * 1.05)));
    for (int decade = static_cast<int>(std::floor(std::log10(low * 0.95))); decade <= last; ++decade) {
        for (const double factor : factors) {
            values.push_back(factor * std::pow(10, decade));
        }
    }
    return values;
}

// All in pixels.
constexpr SvgSize SIZE{960, 600};
constexpr Rect FRAME{90, 70, 660, 450};
constexpr double LEGEND_X = 775;
constexpr double LEGEND_LINE = 24;
constexpr double RADIUS = 5.5;
constexpr double SPOT = 11;    // width and height that a mark needs
constexpr double LETTER = 6.4; // average width in a label
constexpr double LABEL_HEIGHT = 13;

constexpr std::array<std::string_view, MOST_LOOKS> COLOURS{MASK_COLOURS[0], MASK_COLOURS[1], MASK_COLOURS[2],
                                                           MOVE_COLOUR, CONFLICT_COLOUR};

/// Outlines around (0, 0) of about equal area.
constexpr std::array<std::string_view, MOST_LOOKS> SHAPES{"M-5.5 0a5.5 5.5 0 1 0 11 0a5.5 5.5 0 1 0 -11 0z",
                                                          "M-5 -5h10v10h-10z", "M0 -6.5l6.2 11h-12.4z",
                                                          "M0 -7l7 7l-7 7l-7 -7z", "M0 6.5l6.2 -11h-12.4z"};

/// Text classes, and what is the same all over.
constexpr const char* STYLE =
    "<style>\ntext { font: 13px sans-serif; fill: #333; } text.title { font-size: 19px; font-weight: bold; "
    "}\n"
    "text.label { font-size: 11px; paint-order: stroke; stroke: #fff; stroke-width: 3px; }\n"
    ".grid { stroke: #e3e6e9; } .frame { fill: none; stroke: #8a929b; }\n"
    ".stairs { fill: none; stroke: #7f858c; stroke-width: 2; stroke-dasharray: 6 3; }\n"
    ".line { fill: none; stroke-width: 1.2; stroke-opacity: 0.6; }\n"
    ".mark { stroke-width: 1; fill-opacity: 0.85; stroke: #fff; }\n"
    ".hollow { stroke-width: 1.6; fill: #fff; fill-opacity: 0.6; }\n</style>\n";

std::string number(double value)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", value);
    return text.data();
}

std::string attribute(const char* name, double value)
{
    return std::string(" ") + name + "=\"" + number(value) + "\"";
}

double xIn(const Chart& chart, double value)
{
    return FRAME.x + FRAME.width * chart.x.at(value);
}

double yIn(const Chart& chart, double value)
{
    return FRAME.y + FRAME.height * (1 - chart.y.at(value));
}

/// Where a mark is drawn.
struct Spot {
    double x = 0;
    double y = 0;
    size_t series = 0;

    bool hides(const Spot& other) const
    {
        return series != other.series && std::fabs(x - other.x) < SPOT && std::fabs(y - other.y) < SPOT;
    }
};

/// Puts a mark beside those that it would hide; where there are too many, it hides them.
Spot besideOthers(const Spot& spot, const std::vector<Spot>& others)
{
    constexpr int MOST_STEPS = 8;
    for (int i = 0; i <= MOST_STEPS; ++i) {
        Spot beside = spot;
        const int steps = (i + 1) / 2;
        beside.x += i % 2 == 1 ? SPOT * steps : -SPOT * steps;
        if (std::none_of(others.begin(), others.end(),
                         [&](const Spot& other) { return beside.hides(other); })) {
            return beside;
        }
    }
    return spot;
}

/// [mark] where marks are drawn: those with a label at their true place, others beside them if need be.
std::vector<Spot> spotsOf(const Chart& chart)
{
    constexpr size_t MOST_MARKS = 3000; // with more, nobody can tell them apart anyway
    std::vector<Spot> spots;
    for (const Mark& mark : chart.marks) {
        spots.push_back({xIn(chart, mark.at.x), yIn(chart, mark.at.y), mark.series});
    }
    std::vector<Spot> placed;
    for (const bool labelled : {true, false}) {
        for (size_t i = 0; i < spots.size() && spots.size() <= MOST_MARKS; ++i) {
            if (chart.marks[i].label.empty() != labelled) {
                spots[i] = labelled ? spots[i] : besideOthers(spots[i], placed);
                placed.push_back(spots[i]);
            }
        }
    }
    return spots;
}

class Drawing {
public:
    Drawing(OutputFile& file, const Chart& chart) : m_file(file), m_chart(chart), m_spots(spotsOf(chart)) {}

    void draw()
    {
        beginSvg(m_file, SIZE, SIZE, m_chart.title);
        m_file << STYLE;
        text(FRAME.x, 32, m_chart.title, " class=\"title\"");
        text(FRAME.x, 54, m_chart.subtitle, "");
        drawAxes();
        drawLines();
        drawMarks();
        drawLabels();
        drawLegend();
        m_file << "</svg>\n";
    }

private:
    double xOf(double value) const { return xIn(m_chart, value); }
    double yOf(double value) const { return yIn(m_chart, value); }

    void text(double x, double y, const std::string& words, const std::string& attributes)
    {
        writeSvgText(m_file, x, y, words, attributes);
    }

    void gridLine(double x1, double y1, double x2, double y2)
    {
        m_file << "<line class=\"grid\"" << attribute("x1", x1) << attribute("y1", y1) << attribute("x2", x2)
               << attribute("y2", y2) << "/>\n";
    }

    void drawAxes()
    {
        const double bottom = FRAME.y + FRAME.height;
        for (const Tick& tick : m_chart.x.ticks) {
            gridLine(xOf(tick.value), FRAME.y, xOf(tick.value), bottom);
            text(xOf(tick.value), bottom + 19, tick.label, " text-anchor=\"middle\"");
        }
        for (const Tick& tick : m_chart.y.ticks) {
            gridLine(FRAME.x, yOf(tick.value), FRAME.x + FRAME.width, yOf(tick.value));
            text(FRAME.x - 8, yOf(tick.value) + 4.5, tick.label, " text-anchor=\"end\"");
        }
        m_file << "<rect class=\"frame\"" << attribute("x", FRAME.x) << attribute("y", FRAME.y)
               << attribute("width", FRAME.width) << attribute("height", FRAME.height) << "/>\n";
        text(FRAME.x + FRAME.width / 2, bottom + 46, m_chart.x.title, " text-anchor=\"middle\"");
        const std::string turned = "rotate(-90 24 " + number(FRAME.y + FRAME.height / 2) + ")";
        text(24, FRAME.y + FRAME.height / 2, m_chart.y.title,
             " text-anchor=\"middle\" transform=\"" + turned + "\"");
    }

    void drawLines()
    {
        for (const Line& line : m_chart.lines) {
            if (line.stairs) {
                m_file << "<path class=\"stairs\" d=\"";
            } else {
                m_file << "<path class=\"line\" stroke=\"" << colourOf(line.series) << "\" d=\"";
            }
            for (size_t i = 0; i < line.points.size(); ++i) {
                const std::string x = number(xOf(line.points[i].x));
                m_file << (i == 0        ? "M" + x + " "
                           : line.stairs ? "H" + x + "V"
                                         : "L" + x + " ")
                       << number(yOf(line.points[i].y));
            }
            m_file << "\"/>\n";
        }
    }

    std::string_view colourOf(size_t series) const
    {
        assert(series < m_chart.series.size());
        return COLOURS[m_chart.series[series].look % MOST_LOOKS];
    }

    /// A mark at a place; `title` may be empty.
    void drawMark(double x, double y, size_t look, bool hollow, const std::string& title)
    {
        m_file << "<path class=\"mark" << (hollow ? " hollow" : "") << "\""
               << (hollow ? " style=\"stroke:" : " fill=\"") << COLOURS[look % MOST_LOOKS]
               << "\" transform=\"translate(" << number(x) << " " << number(y) << ")\" d=\""
               << SHAPES[look % MOST_LOOKS] << "\"";
        if (title.empty()) {
            m_file << "/>\n";
        } else {
            m_file << "><title>" << escapeXml(title) << "</title></path>\n";
        }
    }

    void drawMarks()
    {
        for (size_t i = 0; i < m_spots.size(); ++i) {
            const Mark& mark = m_chart.marks[i];
            drawMark(m_spots[i].x, m_spots[i].y, m_chart.series[mark.series].look, mark.hollow, mark.title);
        }
    }

    void drawLabels()
    {
        Labels labels(FRAME);
        for (const Spot& spot : m_spots) {
            labels.block({spot.x - RADIUS, spot.y - RADIUS, 2 * RADIUS, 2 * RADIUS});
        }
        for (size_t i = 0; i < m_spots.size(); ++i) {
            const std::string& label = m_chart.marks[i].label;
            const double width = LETTER * static_cast<double>(label.size());
            const auto place =
                label.empty() ? std::nullopt
                              : labels.place(m_spots[i].x, m_spots[i].y, width, LABEL_HEIGHT, RADIUS + 1);
            if (place.has_value()) {
                text(place->x, place->y + LABEL_HEIGHT - 3, label, " class=\"label\"");
            }
        }
    }

    void drawLegend()
    {
        double y = FRAME.y + 10;
        for (const Series& series : m_chart.series) {
            drawMark(LEGEND_X + 10, y, series.look, false, "");
            text(LEGEND_X + 28, y + 4.5, series.name, "");
            y += LEGEND_LINE;
        }
        if (!m_chart.hollowName.empty()) {
            drawMark(LEGEND_X + 10, y, 0, true, "");
            text(LEGEND_X + 28, y + 4.5, m_chart.hollowName, "");
            y += LEGEND_LINE;
        }
        if (!m_chart.stairsName.empty()) {
            m_file << "<path class=\"stairs\" d=\"M" << number(LEGEND_X) << " " << number(y) << "h20\"/>\n";
            text(LEGEND_X + 28, y + 4.5, m_chart.stairsName, "");
        }
    }

    OutputFile& m_file;
    const Chart& m_chart;
    std::vector<Spot> m_spots; ///< [mark]
};

} // namespace

double Axis::at(double value) const
{
    return logarithmic ? std::log(value / low) / std::log(high / low) : (value - low) / (high - low);
}

Axis linearAxis(const std::string& title, const std::string& unit, double low, double high)
{
    const double least = std::max(std::fabs(high) * 1e-3, 1.0); // equal values get some width
    const double room = std::max((high - low) * 0.06, high - low < least ? least : 0.0);
    const Scale scale = scaleFor(std::max(std::fabs(low), std::fabs(high)));
    Axis axis;
    axis.title = title;
    axis.low = low >= 0 ? std::max(low - room, -0.04 * (high + room)) : low - room;
    axis.high = high + room;
    if (!unit.empty()) {
        axis.title += ", " + std::string(scale.name) + unit;
    } else if (scale.factor > 1) {
        axis.title += ", " + std::string(scale.name).substr(0, std::string(scale.name).size() - 1);
    }
    // Counts have no fractions.
    double step = roundStep((axis.high - axis.low) / MOST_TICKS);
    step = unit.empty() ? std::max(step, 1.0) : step;
    for (double k = std::ceil(std::max(axis.low, low >= 0 ? 0.0 : axis.low) / step); k * step <= axis.high;
         ++k) {
        axis.ticks.push_back({k * step, textOf(k * step / scale.factor)});
    }
    return axis;
}

Axis logarithmicAxis(const std::string& title, double low, double high)
{
    assert(low > 0 && low <= high);
    const std::vector<double> values = roundValues(low, high);
    Axis axis;
    axis.title = title;
    axis.logarithmic = true;
    axis.low = *std::prev(std::upper_bound(values.begin(), values.end(), low * 0.95));
    axis.high = *std::lower_bound(values.begin(), values.end(), high * 1.05);
    const bool all = std::log10(axis.high / axis.low) <= FULL_LABELS;
    for (size_t i = 0; i < values.size(); ++i) {
        if (values[i] >= axis.low && values[i] <= axis.high) {
            axis.ticks.push_back({values[i], all || isDecade(values[i]) ? textOf(values[i]) : ""});
        }
    }
    return axis;
}

std::optional<Rect> Labels::place(double x, double y, double width, double height, double gap)
{
    const double left = x - gap - width;
    const double right = x + gap;
    const double above = y - gap - height;
    const double below = y + gap;
    const double middleX = x - width / 2;
    const double middleY = y - height / 2;
    const Rect places[] = {{right, above, width, height},   {right, middleY, width, height},
                           {right, below, width, height},   {middleX, above, width, height},
                           {middleX, below, width, height}, {left, below, width, height},
                           {left, middleY, width, height},  {left, above, width, height}};
    for (const Rect& place : places) {
        const bool free = std::none_of(m_taken.begin(), m_taken.end(),
                                       [&](const Rect& taken) { return taken.overlaps(place); });
        if (free && m_frame.contains(place)) {
            m_taken.push_back(place);
            return place;
        }
    }
    return std::nullopt;
}

void writeChart(OutputFile& file, const Chart& chart)
{
    Drawing(file, chart).draw();
}

} // namespace kit::sweep
