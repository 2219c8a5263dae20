// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/svgFrame.h"

#include <algorithm>
#include <cmath>

#include "kit/base/palette.h"
#include "kit/base/svg.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/text.h"
#include "kit/engines/view/ramp.h"

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

} // namespace

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
    switch (detail) {
    case Detail::METAL:
        return text;
    case Detail::BOXES:
        return text + ". Simplified: cells are boxes, as the design has too much metal for a small file";
    case Detail::MAP:
        return text + ". Simplified: no cells, as the design has too many for a small file";
    }
    return text;
}

SvgFrame::SvgFrame(OutputFile& file, const Scene& scene, Detail detail)
    : m_file(file), m_scene(scene), m_detail(detail), m_bounds(boundsOf(scene)), m_plan(planSize()),
      m_scale(std::min(m_plan.width / widthOf(m_bounds), m_plan.height / heightOf(m_bounds)))
{
}

bool SvgFrame::isFar() const
{
    return m_detail == Detail::MAP || m_scene.rowHeight * m_scale < FAR_ROW;
}

SvgFrame::Size SvgFrame::planSize() const
{
    const double aspect = heightOf(m_bounds) / widthOf(m_bounds);
    const double height = std::clamp<double>((WIDTH - 2 * MARGIN) * aspect, LEAST_PLAN, TALLEST_PLAN);
    return {WIDTH - 2 * MARGIN, static_cast<int32_t>(height)};
}

void SvgFrame::open()
{
    const int32_t height = HEADER + m_plan.height + LEGEND + MARGIN;
    const std::string title = titleOf(m_scene);
    const std::string subtitle = subtitleOf(m_scene, m_detail);
    beginSvg(m_file, {WIDTH, height}, {WIDTH, height}, title + ": " + subtitle);
    writeSvgText(m_file, MARGIN, 30, title, " class=\"title\"");
    writeSvgText(m_file, MARGIN, 54, subtitle);
    writeStyle();
    m_file << "<svg x=\"" << MARGIN << "\" y=\"" << HEADER << "\" width=\"" << m_plan.width << "\" height=\""
           << m_plan.height << "\" viewBox=\"0 0 " << m_bounds.xh - m_bounds.xl << " "
           << m_bounds.yh - m_bounds.yl << "\">\n";
}

void SvgFrame::close()
{
    m_file << "</svg>\n";
    writeLegend();
    m_file << "</svg>\n";
}

void SvgFrame::writeStyle()
{
    m_file
        << "<defs><pattern id=\"hatch\" width=\"" << m_scene.rowHeight / 3 << "\" height=\""
        << m_scene.rowHeight / 3
        << "\" patternUnits=\"userSpaceOnUse\" patternTransform=\"rotate(45)\"><rect width=\"100%\" "
           "height=\"100%\" "
           "fill=\"#d9dce0\"/><rect width=\""
        << m_scene.rowHeight / 9
        << "\" height=\"100%\" fill=\"#aab0b7\"/></pattern></defs>\n<style>\n"
           "text { font: 14px sans-serif; fill: #333; } text.title { font-size: 20px; font-weight: bold; }\n"
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
void SvgFrame::entry(std::string_view symbol, std::string_view label)
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

void SvgFrame::rampEntry()
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

void SvgFrame::writeLegend()
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
        entry("<g class=\"conflicts\"><circle cx=\"8\" cy=\"8\" r=\"8\"/></g>", "conflicts, their number");
    }
    entry("<path class=\"segment\" d=\"M0 3h16v10h-16z\"/>", "free stretch");
    entry("<rect width=\"16\" height=\"16\" fill=\"#c2c6cb\" stroke=\"#555\"/>", "macro");
    rampEntry();
}

} // namespace kit::view
