// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/svg.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "kit/base/svg.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/text.h"
#include "kit/engines/view/conflicts.h"
#include "kit/engines/view/density.h"
#include "kit/engines/view/scene.h"

namespace kit::view {

namespace {

constexpr int32_t WIDTH = 1200;
constexpr int32_t MARGIN = 20;
constexpr int32_t HEADER = 70;
constexpr int32_t LEGEND_LINE = 24;
constexpr int32_t LEGEND = 3 * LEGEND_LINE;
constexpr int32_t TALLEST_PLAN = 1400;
constexpr int32_t LEAST_PLAN = 60;
constexpr int32_t SYMBOL = 16;   // width of a symbol in the legend
constexpr int32_t CHARACTER = 7; // average width of a letter in the legend
constexpr int32_t ENTRY_GAP = 22;
constexpr double FAR_ROW = 10;    // height of a row
constexpr int32_t MARK_TEXT = 10; // height of the number on a mark

double widthOf(const Box& box)
{
    return static_cast<double>(box.xh) - box.xl;
}

double heightOf(const Box& box)
{
    return static_cast<double>(box.yh) - box.yl;
}

/// The two lines of a picture's title: the placement, and what the picture shows of it.
std::string titleOf(const Scene& scene)
{
    return "Placement " + withoutControls(scene.title);
}

std::string subtitleOf(const Scene& scene, Detail detail)
{
    const auto number = [](const auto& list, const char* thing) {
        return counted(static_cast<int64_t>(list.size()), thing);
    };
    std::string text =
        number(scene.cells, "cell") + ", " + number(scene.rows, "row") + ", " + number(scene.macros, "macro");
    if (scene.coloured) {
        const int64_t stitches = countStitches(scene);
        text += ", " + std::to_string(stitches) + (stitches == 1 ? " stitch, " : " stitches, ") +
                number(scene.conflicts, "conflict");
    }
    if (!scene.pinLength.empty()) {
        text += ", wires of " + scene.pinLength + " from pin to pin";
    }
    if (detail == Detail::BOXES) {
        text += ". Simplified: cells are boxes, as the design has too much metal for a small file";
    } else if (detail == Detail::MAP) {
        text += ". Simplified: no cells, as the design has too many for a small file";
    }
    return text;
}

/// What stands around the plan in a static picture: title, legend, styles. Lengths are in pixels.
class SvgFrame {
public:
    /// @param detail  how much the plan shows
    SvgFrame(OutputFile& file, const Scene& scene, Detail detail)
        : m_file(file), m_scene(scene), m_detail(detail), m_bounds(boundsOf(scene)), m_plan(planSize()),
          m_scale(std::min(m_plan.width / widthOf(m_bounds), m_plan.height / heightOf(m_bounds)))
    {
    }

    /// Pixels of a DBU in the plan.
    double scale() const { return m_scale; }

    /// Whether rows are so low that conflicts are marked by squares of the picture.
    bool isFar() const { return m_detail == Detail::MAP || m_scene.rowHeight * m_scale < FAR_ROW; }

    /// Writes everything up to the plan, whose coordinates are DBU from its upper-left corner.
    void open()
    {
        const int32_t height = HEADER + m_plan.height + LEGEND + MARGIN;
        const std::string title = titleOf(m_scene);
        const std::string subtitle = subtitleOf(m_scene, m_detail);
        beginSvg(m_file, {WIDTH, height}, {WIDTH, height}, title + ": " + subtitle);
        writeSvgText(m_file, MARGIN, 30, title, " class=\"title\"");
        writeSvgText(m_file, MARGIN, 54, subtitle);
        writeStyle();
        m_file << "<svg x=\"" << MARGIN << "\" y=\"" << HEADER << "\" width=\"" << m_plan.width
               << "\" height=\"" << m_plan.height << "\" viewBox=\"0 0 " << m_bounds.xh - m_bounds.xl << " "
               << m_bounds.yh - m_bounds.yl << "\">\n";
    }

    /// Writes everything after the plan.
    void close()
    {
        m_file << "</svg>\n";
        writeLegend();
        m_file << "</svg>\n";
    }

private:
    SvgSize planSize() const
    {
        const double aspect = heightOf(m_bounds) / widthOf(m_bounds);
        const double height = std::clamp<double>((WIDTH - 2 * MARGIN) * aspect, LEAST_PLAN, TALLEST_PLAN);
        return {WIDTH - 2 * MARGIN, static_cast<int32_t>(height)};
    }

    void writeStyle()
    {
        m_file << "<defs><pattern id=\"hatch\" width=\"" << m_scene.rowHeight / 3 << "\" height=\""
               << m_scene.rowHeight / 3
               << "\" patternUnits=\"userSpaceOnUse\" patternTransform=\"rotate(45)\"><rect width=\"100%\" "
                  "height=\"100%\" "
                  "fill=\"#d9dce0\"/><rect width=\""
               << m_scene.rowHeight / 9
               << "\" height=\"100%\" fill=\"#aab0b7\"/></pattern></defs>\n<style>\n"
                  "text { font: 14px sans-serif; fill: #333; } text.title { font-size: 20px; font-weight: "
                  "bold; }\n"
                  "rect, path, circle { vector-effect: non-scaling-stroke; }\n"
                  ".density { opacity: "
               << (m_detail == Detail::MAP ? "1" : "0.35")
               << "; shape-rendering: crispEdges; }\n"
                  ".row { fill: none; stroke: #c8ccd1; stroke-width: 0.7; }\n"
                  ".segment { fill: none; stroke: #8a929b; stroke-width: 0.7; stroke-dasharray: 4 3; }\n"
                  ".macro { fill: url(#hatch); stroke: #555; }\n"
                  ".cell { fill: "
               << (m_detail == Detail::BOXES ? "#b9bfc6" : "#fff")
               << "; fill-opacity: 0.8; stroke: #555; stroke-width: 0.6; }\n"
               << ".stitch { fill: " << STITCH_COLOUR << "; stroke: #000; stroke-width: 0.6; }\n"
               << ".move { fill: none; stroke: " << MOVE_COLOUR << "; stroke-width: 1.2; }\n"
               << ".conflict circle { fill: none; stroke: " << CONFLICT_COLOUR << "; stroke-width: 2.2; }\n"
               << ".conflicts circle { fill: " << CONFLICT_COLOUR << "; stroke: #fff; }\n"
               << ".conflicts text { font-size: " << std::lround(MARK_TEXT / m_scale)
               << "px; fill: #fff; text-anchor: middle; dominant-baseline: central; }\n</style>\n";
    }

    /// A symbol is what stands in an SVG 16 by 16.
    void entry(std::string_view symbol, std::string_view label)
    {
        const int32_t width = SYMBOL + 6 + static_cast<int32_t>(label.size()) * CHARACTER + ENTRY_GAP;
        if (m_x + width > WIDTH) {
            m_x = MARGIN;
            m_y += LEGEND_LINE;
        }
        m_file << "<g transform=\"translate(" << m_x << " " << m_y << ")\">" << symbol << "<text x=\""
               << SYMBOL + 6 << "\" y=\"13\">" << label << "</text></g>\n";
        m_x += width;
    }

    void rampEntry()
    {
        constexpr int32_t STEPS = 5;
        std::string symbol;
        for (int32_t i = 0; i <= STEPS; ++i) {
            symbol += "<rect x=\"" + std::to_string(i * SYMBOL) +
                      "\" width=\"16\" height=\"16\" stroke=\"#999\" fill=\"" +
                      rampColour(static_cast<uint8_t>(i * 100 / STEPS)) + "\"/>";
        }
        entry("<rect width=\"0\" height=\"0\"/>", "density 0 %");
        m_x -= ENTRY_GAP - 6;
        entry(symbol, "");
        m_x += (STEPS - 1) * SYMBOL - ENTRY_GAP;
        entry("", "100 %");
    }

    void writeLegend()
    {
        m_x = MARGIN;
        m_y = HEADER + m_plan.height + LEGEND_LINE / 2;
        if (m_detail == Detail::METAL && m_scene.coloured) {
            for (size_t mask = 0; mask < MASK_COLOURS.size(); ++mask) {
                entry("<rect width=\"16\" height=\"16\" fill=\"" + std::string(MASK_COLOURS[mask]) + "\"/>",
                      "mask " + std::to_string(mask));
            }
            entry("<path class=\"stitch\" d=\"M8 2l6 6l-6 6l-6 -6z\"/>", "stitch");
        } else if (m_detail == Detail::METAL) {
            entry("<rect width=\"16\" height=\"16\" fill=\"" + std::string(NO_MASK_COLOUR) + "\"/>",
                  "metal 1, no colours");
        }
        if (m_detail != Detail::MAP) {
            entry("<rect class=\"cell\" width=\"16\" height=\"16\"/>", "cell");
            if (m_scene.coloured) {
                entry("<g class=\"conflict\"><circle cx=\"8\" cy=\"8\" r=\"6\"/></g>", "conflict");
            }
            if (m_scene.moved) {
                entry("<path class=\"move\" d=\"M1 8h14m-5 -4l5 4l-5 4\"/>", "displacement");
            }
        }
        if (m_scene.coloured && isFar()) {
            entry("<g class=\"conflicts\"><circle cx=\"8\" cy=\"8\" r=\"8\"/></g>",
                  "conflicts, their number");
        }
        entry("<path class=\"segment\" d=\"M0 3h16v10h-16z\"/>", "free stretch");
        entry("<rect width=\"16\" height=\"16\" fill=\"#c2c6cb\" stroke=\"#555\"/>", "macro");
        rampEntry();
    }

    OutputFile& m_file;
    const Scene& m_scene;
    Detail m_detail;
    Box m_bounds;
    SvgSize m_plan;
    double m_scale;
    int32_t m_x = 0; ///< of the next entry of the legend
    int32_t m_y = 0; ///< of the legend's line
};

constexpr size_t MOST_HINTS = 5'000; // cells that carry their name
constexpr double MARK_SQUARE = 44;   // pixels: conflicts in a square of that side have one mark

/// Draws a placement in DBU, y upwards turned to y downwards.
class Plan {
public:
    Plan(OutputFile& file, const Scene& scene, Detail detail, const SvgFrame& frame)
        : m_file(file), m_scene(scene), m_detail(detail), m_frame(frame), m_bounds(boundsOf(scene))
    {
    }

    void draw()
    {
        drawDensity();
        drawBlocks(m_scene.rows, "row");
        drawStretches();
        drawBlocks(m_scene.macros, "macro");
        if (m_detail != Detail::MAP) {
            drawCells();
            if (m_detail == Detail::METAL) {
                drawMetal();
                drawStitches();
            }
            drawMoves();
            drawConflicts();
        }
        if (m_frame.isFar()) {
            drawMarks();
        }
    }

private:
    int32_t flip(int32_t y) const { return m_bounds.yh - y; }

    /// Appends a box to the path that is being written.
    void addToPath(const Box& box)
    {
        const int32_t width = box.xh - box.xl;
        m_file << "M" << box.xl - m_bounds.xl << " " << flip(box.yh) << "h" << width << "v" << box.yh - box.yl
               << "h" << -width << "z";
    }

    /// A box as an element of its own, open for content; the style has a space before it.
    void openBox(const Box& box, std::string_view style)
    {
        m_file << "<rect" << style << " x=\"" << box.xl - m_bounds.xl << "\" y=\"" << flip(box.yh)
               << "\" width=\"" << box.xh - box.xl << "\" height=\"" << box.yh - box.yl << "\"";
    }

    void drawDensity()
    {
        const Density grid = densityOf(m_scene, /*before=*/false);
        m_file << "<g class=\"density\">\n";
        for (int32_t i = 0; i < grid.columns * grid.lines; ++i) {
            const uint8_t share = grid.shares[static_cast<size_t>(i)];
            if (share != Density::NO_ROWS && share > 0) {
                const int32_t x = grid.x + i % grid.columns * grid.side;
                const int32_t y = grid.y + i / grid.columns * grid.side;
                openBox({x, y, std::min(x + grid.side, m_bounds.xh), std::min(y + grid.side, m_bounds.yh)},
                        " fill=\"" + rampColour(share) + "\"");
                m_file << "/>\n";
            }
        }
        m_file << "</g>\n";
    }

    void drawBlocks(const std::vector<Block>& blocks, std::string_view name)
    {
        m_file << "<g class=\"" << name << "\">\n";
        for (const Block& block : blocks) {
            openBox(block.box, "");
            m_file << "><title>" << name << " " << escapeXml(block.name) << "</title></rect>\n";
        }
        m_file << "</g>\n";
    }

    void drawStretches()
    {
        m_file << "<path class=\"segment\" d=\"";
        for (const Box& stretch : m_scene.stretches) {
            addToPath(stretch);
        }
        m_file << "\"/>\n";
    }

    Box boxOf(const Cell& cell, const Place& place) const
    {
        return {place.x, place.y, place.x + widthOf(m_scene, cell), place.y + m_scene.rowHeight};
    }

    void drawCells()
    {
        if (m_scene.cells.size() <= MOST_HINTS) {
            drawCellsWithHints();
            return;
        }
        m_file << "<path class=\"cell\" d=\"";
        for (const Cell& cell : m_scene.cells) {
            addToPath(boxOf(cell, cell.place));
        }
        m_file << "\"/>\n";
    }

    void drawCellsWithHints()
    {
        m_file << "<g class=\"cell\">\n";
        for (const Cell& cell : m_scene.cells) {
            openBox(boxOf(cell, cell.place), "");
            m_file << "><title>" << escapeXml(cell.name);
            if (cell.kind >= 0) {
                m_file << " (" << escapeXml(kindOf(cell).name) << ")";
            }
            if (cell.colouring >= 0) {
                m_file << ", solution " << cell.colouring;
            }
            m_file << "</title></rect>\n";
        }
        m_file << "</g>\n";
    }

    const Kind& kindOf(const Cell& cell) const { return m_scene.kinds[static_cast<size_t>(cell.kind)]; }

    const Colouring* colouringOf(const Cell& cell) const
    {
        return cell.colouring < 0 ? nullptr : &kindOf(cell).colourings[static_cast<size_t>(cell.colouring)];
    }

    /// The mask of a piece of metal, -1 if it is on none or unknown.
    int32_t maskOf(const Cell& cell, const Metal& metal) const
    {
        const Colouring* const colouring = colouringOf(cell);
        const auto shape = static_cast<size_t>(metal.shape);
        const bool known = colouring != nullptr && shape < colouring->masks.size();
        const int32_t mask = known ? colouring->masks[shape] : -1;
        return mask <= 2 ? mask : -1;
    }

    void drawMetal()
    {
        for (int32_t mask = -1; mask <= 2; ++mask) {
            m_file << "<path class=\"" << (mask < 0 ? "metal" : "mask") << "\" fill=\""
                   << (mask < 0 ? NO_MASK_COLOUR : MASK_COLOURS[static_cast<size_t>(mask)]) << "\" d=\"";
            for (const Cell& cell : m_scene.cells) {
                drawMetalOf(cell, mask);
            }
            m_file << "\"/>\n";
        }
    }

    void drawMetalOf(const Cell& cell, int32_t mask)
    {
        if (cell.kind < 0) {
            return;
        }
        for (const Metal& metal : kindOf(cell).metal) {
            if (maskOf(cell, metal) == mask) {
                addToPath(placed(m_scene, cell, metal.box));
            }
        }
    }

    void drawStitches()
    {
        m_file << "<path class=\"stitch\" d=\"";
        for (const Cell& cell : m_scene.cells) {
            const Colouring* const colouring = colouringOf(cell);
            if (colouring == nullptr) {
                continue;
            }
            for (const Joint& joint : kindOf(cell).joints) {
                if (isStitch(joint, *colouring)) {
                    addDiamond(placed(m_scene, cell, joint.box));
                }
            }
        }
        m_file << "\"/>\n";
    }

    /// Appends a mark on the middle of a box to the path that is being written.
    void addDiamond(const Box& box)
    {
        const int32_t radius = m_scene.rowHeight / 22;
        m_file << "M" << (box.xl + box.xh) / 2 - m_bounds.xl << " " << flip((box.yl + box.yh) / 2) - radius
               << "l" << radius << " " << radius << "l" << -radius << " " << radius << "l" << -radius << " "
               << -radius << "z";
    }

    void drawMoves()
    {
        if (!m_scene.moved) {
            return;
        }
        m_file << "<path class=\"move\" d=\"";
        for (const Cell& cell : m_scene.cells) {
            if (cell.place.x != cell.before.x || cell.place.y != cell.before.y) {
                addArrow(boxOf(cell, cell.before), boxOf(cell, cell.place));
            }
        }
        m_file << "\"/>\n";
    }

    /// Appends an arrow between the middles of two boxes to the path that is being written.
    void addArrow(const Box& from, const Box& to)
    {
        const double dx = (to.xl + to.xh - from.xl - from.xh) / 2.0;
        const double dy = (from.yl + from.yh - to.yl - to.yh) / 2.0;
        const double length = std::hypot(dx, dy);
        const double head = std::min(length / 2, m_scene.rowHeight / 5.0) / std::max(length, 1.0);
        const auto point = [](double value) { return static_cast<int32_t>(std::lround(value)); };
        m_file << "M" << (from.xl + from.xh) / 2 - m_bounds.xl << " " << flip((from.yl + from.yh) / 2) << "l"
               << point(dx) << " " << point(dy) << "m" << point((-dx - dy * 0.6) * head) << " "
               << point((-dy + dx * 0.6) * head) << "L" << (to.xl + to.xh) / 2 - m_bounds.xl << " "
               << flip((to.yl + to.yh) / 2) << "l" << point((-dx + dy * 0.6) * head) << " "
               << point((-dy - dx * 0.6) * head);
    }

    void drawConflicts()
    {
        m_file << "<g class=\"conflict\">\n";
        for (const Conflict& conflict : m_scene.conflicts) {
            const Box& box = conflict.box;
            m_file << "<circle cx=\"" << (box.xl + box.xh) / 2 - m_bounds.xl << "\" cy=\""
                   << flip((box.yl + box.yh) / 2) << "\" r=\"" << m_scene.rowHeight / 7 << "\"><title>"
                   << escapeXml(m_scene.cells[static_cast<size_t>(conflict.left)].name) << " and "
                   << escapeXml(m_scene.cells[static_cast<size_t>(conflict.right)].name)
                   << "</title></circle>\n";
        }
        m_file << "</g>\n";
    }

    /// Marks of a fixed size: circles as small as the rows would not be seen.
    void drawMarks()
    {
        const auto dbu = [this](double pixels) {
            return std::max<int64_t>(std::lround(pixels / m_frame.scale()), 1);
        };
        m_file << "<g class=\"conflicts\">\n";
        for (const ConflictMark& mark : gathered(m_scene.conflicts, static_cast<int32_t>(dbu(MARK_SQUARE)))) {
            const std::string count = std::to_string(mark.count);
            const double radius = mark.count == 1 ? 4 : 5 + 3 * static_cast<double>(count.size());
            const int32_t x = mark.x - m_bounds.xl;
            m_file << "<circle cx=\"" << x << "\" cy=\"" << flip(mark.y) << "\" r=\"" << dbu(radius)
                   << "\"><title>" << count << (mark.count == 1 ? " conflict" : " conflicts")
                   << "</title></circle>\n";
            if (mark.count > 1) {
                m_file << "<text x=\"" << x << "\" y=\"" << flip(mark.y) << "\">" << count << "</text>\n";
            }
        }
        m_file << "</g>\n";
    }

    OutputFile& m_file;
    const Scene& m_scene;
    Detail m_detail;
    const SvgFrame& m_frame;
    Box m_bounds;
};

} // namespace

Detail detailOf(const Scene& scene)
{
    if (static_cast<int64_t>(scene.cells.size()) > MOST_SVG_CELLS) {
        return Detail::MAP;
    }
    int64_t metal = 0;
    for (const Cell& cell : scene.cells) {
        metal += cell.kind < 0
                     ? 0
                     : static_cast<int64_t>(scene.kinds[static_cast<size_t>(cell.kind)].metal.size());
    }
    return metal > MOST_SVG_METAL ? Detail::BOXES : Detail::METAL;
}

void writeSvg(OutputFile& file, const Scene& scene)
{
    const Detail detail = detailOf(scene);
    SvgFrame frame(file, scene, detail);
    frame.open();
    Plan(file, scene, detail, frame).draw();
    frame.close();
}

} // namespace kit::view
