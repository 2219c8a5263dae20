// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/report.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <map>
#include <ostream>
#include <sstream>

#include "kit/base/finding.h"
#include "kit/base/svg.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/json.h"
#include "kit/base/text/text.h"
#include "kit/design/distance.h"
#include "kit/design/spacing.h"
#include "kit/formats/lefdef/units.h"

namespace kit::color {

namespace {

constexpr int COLUMN = 9; // width of a column of numbers

/// Writes a table of how many cells have a number of something.
void writeHistogram(const std::map<size_t, size_t>& cells, const char* what, std::ostream& out)
{
    out << '\n' << std::setw(COLUMN) << what << std::setw(COLUMN) << "cells" << '\n';
    for (const auto& [value, count] : cells) {
        out << std::setw(COLUMN) << value << std::setw(COLUMN) << count << '\n';
    }
}

/// The conflicts that are left in the first solution.
std::string conflictText(const ColouredCell& cell)
{
    const std::vector<LeftConflict>& conflicts = cell.conflicts.front();
    int64_t least = std::numeric_limits<int64_t>::max();
    for (const LeftConflict& conflict : conflicts) {
        least = std::min(least, conflict.squared);
    }
    return counted(static_cast<int64_t>(conflicts.size()), "conflict") + " left, the closest at " +
           distanceText(least);
}

void writeTroubles(const Result& result, std::ostream& out)
{
    for (size_t i = 0; i < result.colours.size(); ++i) {
        const ColouredCell& cell = result.colours[i];
        if (cell.tooLarge) {
            out << "  " << printable(result.metal[i].name) << ": the search was given up\n";
        } else if (cell.trouble) {
            out << "  " << printable(result.metal[i].name) << ": "
                << counted(static_cast<int64_t>(cell.trouble->polygons.size()), "shape")
                << " too close together; --mindp "
                << design::Distance::text(cell.trouble->goodDistance, result.selection.site.width)
                << " would do" << (cell.file ? "; " + conflictText(cell) : "") << '\n';
        }
    }
}

constexpr int32_t GAP = 250;     // between pictures, library coordinates
constexpr int32_t CAPTION = 170; // above each of them
constexpr int32_t LEGEND = 400;  // below them all
constexpr int32_t LETTER = 110;  // height of letters
constexpr int32_t LEAST_WIDTH = 1100;
constexpr int32_t LEAST_SHEET = 2600; // room for the title
constexpr int32_t PER_LINE = 4;       // pictures side by side
constexpr int32_t UNITS_PER_PIXEL = 5;
constexpr std::string_view DARK = "#3a3f44";

/// Draws one cell.
class Sheet {
public:
    Sheet(OutputFile& file, const CellMetal& metal, const ColouredCell& cell, const Rules& rules)
        : m_file(file), m_metal(metal), m_cell(cell), m_rules(rules),
          m_count(cell.file ? static_cast<int32_t>(cell.file->solutions.size()) : 1),
          m_step(std::max(metal.width, LEAST_WIDTH) + GAP), m_lineStep(metal.height + GAP + CAPTION + 200)
    {
    }

    void draw()
    {
        const int32_t columns = std::min(m_count, PER_LINE);
        const int32_t lines = (m_count + PER_LINE - 1) / PER_LINE;
        const int32_t width = std::max(columns * m_step + GAP, LEAST_SHEET);
        const int32_t height = 2 * GAP + lines * m_lineStep + LEGEND;
        beginSvg(m_file, {width / UNITS_PER_PIXEL, height / UNITS_PER_PIXEL}, {width, height}, m_metal.name,
                 " font-family=\"sans-serif\" font-size=\"" + std::to_string(LETTER) + "\"");
        text(GAP, GAP, m_metal.name + (m_cell.trouble ? ": not free of conflicts" : ""),
             " font-weight=\"bold\"");
        for (int32_t i = 0; i < m_count; ++i) {
            m_left = GAP + i % PER_LINE * m_step;
            m_top = 2 * GAP + i / PER_LINE * m_lineStep;
            if (m_cell.file) {
                drawSolution(static_cast<size_t>(i));
            } else {
                drawUncoloured();
            }
        }
        drawLegend(2 * GAP + lines * m_lineStep);
        m_file << "</svg>\n";
    }

private:
    void text(int32_t x, int32_t y, const std::string& words, std::string_view style = "")
    {
        writeSvgText(m_file, x, y, words, style);
    }

    int32_t xOf(int32_t x) const { return m_left + x; }
    int32_t yOf(int32_t y) const { return m_top + CAPTION + 100 + m_metal.height - y; } // 100: the upper rail

    void addRect(const Rect& rect)
    {
        m_file << "M" << xOf(rect.xl) << " " << yOf(rect.yh) << "h" << rect.xh - rect.xl << "v"
               << rect.yh - rect.yl << "h" << rect.xl - rect.xh << "z";
    }

    void drawShape(const std::vector<Rect>& rects, std::string_view colour, const std::string& name)
    {
        m_file << "<path fill=\"" << colour << "\" d=\"";
        for (const Rect& rect : rects) {
            addRect(rect);
        }
        m_file << "\"><title>" << escapeXml(name) << "</title></path>\n";
    }

    void drawOutline()
    {
        m_file << "<path fill=\"none\" stroke=\"#9aa0a6\" stroke-width=\"8\" d=\"";
        addRect({0, 0, m_metal.width, m_metal.height});
        m_file << "\"/>\n";
    }

    void drawSolution(size_t index)
    {
        const placer::Cell& file = *m_cell.file;
        const placer::Solution& solution = file.solutions[index];
        text(m_left, m_top + CAPTION - 60,
             std::to_string(index) + ": " + std::to_string(solution.stitches) +
                 (solution.stitches == 1 ? " stitch" : " stitches"));
        for (size_t i = 0; i < file.shapes.size(); ++i) {
            drawShape(file.shapes[i].rects, MASK_COLOURS[static_cast<size_t>(solution.masks[i])],
                      m_cell.shapeNames[i] + ", mask " + std::to_string(solution.masks[i]));
        }
        for (size_t i = 1; i < file.headerBoxes.size(); ++i) {
            if (isStitch(file, solution, file.headerBoxes[i])) {
                drawStitch(file.headerBoxes[i]);
            }
        }
        for (const LeftConflict& conflict : m_cell.conflicts[index]) {
            drawConflict(
                design::closestOf(file.shapes[conflict.shapeA].rects, file.shapes[conflict.shapeB].rects));
        }
        drawOutline();
    }

    /// Whether shapes of different masks meet at a box of the header.
    static bool isStitch(const placer::Cell& file, const placer::Solution& solution, const Rect& box)
    {
        std::array<bool, 3> masks{};
        for (size_t i = 0; i < file.shapes.size(); ++i) {
            for (const Rect& rect : file.shapes[i].rects) {
                const int32_t width = std::min(rect.xh, box.xh) - std::max(rect.xl, box.xl);
                const int32_t height = std::min(rect.yh, box.yh) - std::max(rect.yl, box.yl);
                if (width >= 0 && height >= 0 && width + height > 0) {
                    masks[static_cast<size_t>(solution.masks[i])] = true;
                }
            }
        }
        return std::ranges::count(masks, true) > 1;
    }

    void drawStitch(const Rect& box)
    {
        constexpr int32_t RADIUS = 60;
        m_file << "<path class=\"stitch\" fill=\"" << STITCH_COLOUR
               << "\" stroke=\"#000000\" stroke-width=\"8\" d=\"M" << xOf((box.xl + box.xh) / 2) << " "
               << yOf((box.yl + box.yh) / 2) - RADIUS << "l" << RADIUS << " " << RADIUS << "l" << -RADIUS
               << " " << RADIUS << "l" << -RADIUS << " " << -RADIUS << "z\"/>\n";
    }

    /// A line across the gap of two rectangles.
    void drawConflict(const design::Closest& rects)
    {
        const auto ends = [](int32_t aLow, int32_t aHigh, int32_t bLow, int32_t bHigh) {
            const int32_t low = std::max(aLow, bLow);
            const int32_t high = std::min(aHigh, bHigh);
            const int32_t middle = low + (high - low) / 2;
            return low <= high ? std::pair(middle, middle)
                               : (aLow < bLow ? std::pair(high, low) : std::pair(low, high));
        };
        const auto& [a, b, squared] = rects;
        const auto [x1, x2] = ends(a.xl, a.xh, b.xl, b.xh);
        const auto [y1, y2] = ends(a.yl, a.yh, b.yl, b.yh);
        m_file << "<path class=\"conflict\" stroke=\"" << CONFLICT_COLOUR
               << "\" stroke-width=\"30\" stroke-linecap=\"round\" d=\"M" << xOf(x1) << " " << yOf(y1) << "L"
               << xOf(x2) << " " << yOf(y2) << "\"/>\n";
    }

    void drawUncoloured()
    {
        text(m_left, m_top + CAPTION - 60, "no colouring");
        for (const Polygon& rail : m_metal.rails) {
            drawShape(rail.rects, NO_MASK_COLOUR, m_metal.nets[rail.net]);
        }
        for (size_t i = 0; i < m_metal.polygons.size(); ++i) {
            const Polygon& polygon = m_metal.polygons[i];
            const bool core = m_cell.trouble && std::ranges::count(m_cell.trouble->polygons, i) > 0;
            drawShape(polygon.rects, core ? DARK : NO_MASK_COLOUR, m_metal.nets[polygon.net]);
        }
        if (m_cell.trouble) {
            for (const Closeness& close : m_cell.trouble->close) {
                drawClose(close);
            }
        }
        drawOutline();
    }

    void drawClose(const Closeness& close)
    {
        m_file << "<g opacity=\"0.8\"><title>"
               << escapeXml(m_metal.netOf(close.a) + " - " + m_metal.netOf(close.b) + ": " +
                            distanceText(close.rects.squared))
               << "</title>\n";
        drawConflict(close.rects);
        m_file << "</g>\n";
    }

    void drawLegend(int32_t y)
    {
        int32_t x = GAP;
        for (size_t mask = 0; mask < MASK_COLOURS.size(); ++mask) {
            m_file << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"100\" height=\"100\" fill=\""
                   << MASK_COLOURS[mask] << "\"/>\n";
            text(x + 120, y + 90, std::to_string(mask));
            x += 280;
        }
        text(GAP, y + 250, "masks; distance " + std::to_string(m_rules.distance));
    }

    OutputFile& m_file;
    const CellMetal& m_metal;
    const ColouredCell& m_cell;
    const Rules& m_rules;
    int32_t m_count;
    int32_t m_step;
    int32_t m_lineStep;
    int32_t m_left = 0; ///< of the picture that is being drawn
    int32_t m_top = 0;
};

} // namespace

void writeMessages(const Findings& findings, std::ostream& out)
{
    for (const Finding& finding : findings) {
        std::string line = lineOf(finding, PlaceText::LINE_AND_COLUMN);
        line.resize(line.rfind(" [")); // codes are not shown
        out << line << '\n';
    }
}

std::string troubleText(const CellMetal& metal, const ColouredCell& cell, const Rules& rules,
                        lefdef::Length site)
{
    if (cell.tooLarge) {
        return metal.name +
               " gets no colour file: too many of its shapes depend on each other, and the search "
               "was given up";
    }
    return metal.name + " has no colouring: " + textOf(*cell.trouble, metal, rules) +
           "; it can be coloured with --mindp " + design::Distance::text(cell.trouble->goodDistance, site) +
           (cell.file ? "; its file has " + conflictText(cell) : "");
}

void writeSummary(const Result& result, const Options& options, std::ostream& out)
{
    std::map<size_t, size_t> solutions;
    std::map<size_t, size_t> stitches;
    size_t files = 0;
    size_t bad = 0;
    size_t clear = 0;
    size_t meeting = 0;
    for (const ColouredCell& cell : result.colours) {
        clear += cell.isClearOfRails ? 1 : 0;
        meeting += cell.meetsRows ? 1 : 0;
        bad += cell.trouble || cell.tooLarge ? 1 : 0;
        files += cell.file ? 1 : 0;
        if (cell.file) {
            ++solutions[cell.file->solutions.size()];
            ++stitches[static_cast<size_t>(cell.file->solutions.front().stitches)];
        }
    }
    const std::string cells =
        counted(static_cast<int64_t>(result.colours.size()), "cell") + ", layer " + options.layer +
        ", site " + lefdef::micronText(result.selection.site.width) + " x " +
        lefdef::micronText(result.selection.site.height) + " um, distance " +
        design::Distance::text(options.settings.rules.distance, result.selection.site.width);
    const std::string without =
        counted(static_cast<int64_t>(bad), "cell") + " without a colouring free of conflicts";
    const Rules& rules = options.settings.rules;
    if (options.json) {
        Json summary{{"schema", 1},
                     {"summary", cells + "; " + without},
                     {"cells", result.colours.size()},
                     {"files", files},
                     {"without_coloring", bad}};
        if (rules.railsConflict) {
            summary["clear_of_rails"] = clear;
        }
        if (rules.rowsMeet) {
            summary["rows_meet"] = meeting;
        }
        out << summary << std::endl;
        return;
    }
    out << cells << '\n';
    writeHistogram(solutions, "solutions", out);
    writeHistogram(stitches, "stitches", out);
    out << '\n' << without << '\n';
    if (rules.railsConflict) {
        out << counted(static_cast<int64_t>(clear), "cell") << " with all metal near rails off mask 0\n";
    }
    if (rules.rowsMeet) {
        out << counted(static_cast<int64_t>(meeting), "cell")
            << " with all metal near the next rows on mask 1\n";
    }
    writeTroubles(result, out);
    std::ostringstream seconds; // the stream's own format stays as it is
    seconds << std::fixed << std::setprecision(2) << result.seconds;
    out << counted(static_cast<int64_t>(files), "colour file") << " in " << options.outDir << ", "
        << seconds.str() << " s\n";
    out.flush();
}

void writePicture(OutputFile& file, const CellMetal& metal, const ColouredCell& cell, const Rules& rules)
{
    Sheet(file, metal, cell, rules).draw();
}

} // namespace kit::color
