// SPDX-License-Identifier: BSD-3-Clause
// Small cells made by hand.
#pragma once

#include <string>
#include <vector>

#include "kit/engines/color/metal.h"

namespace test {

using kit::color::CellMetal;
using kit::color::Polygon;
using kit::lefdef::LefMacro;
using kit::lefdef::LefPin;
using kit::lefdef::LefShape;
using kit::lefdef::Length;
using kit::lefdef::PinUse;

constexpr Length NM = 1000; ///< a nanometre: library coordinates, where a site is 0.19 um

/// A rectangle of a LEF file, nanometres.
inline LefShape rectShape(Length xl, Length yl, Length xh, Length yh)
{
    return {.points = {{xl * NM, yl * NM}, {xh * NM, yh * NM}}};
}

/// A polygon of a LEF file, nanometres.
inline LefShape polygonShape(const std::vector<std::pair<Length, Length>>& corners)
{
    LefShape shape{.polygon = true, .points = {}};
    for (const auto& [x, y] : corners) {
        shape.points.push_back({x * NM, y * NM});
    }
    return shape;
}

inline LefPin pin(const std::string& name, const std::vector<LefShape>& shapes, PinUse use = PinUse::SIGNAL)
{
    return {.name = name, .use = use, .shapes = shapes};
}

/// A master of class CORE, nanometres.
inline LefMacro macro(Length width, const std::vector<LefPin>& pins,
                      const std::vector<LefShape>& obstructions = {}, Length height = 1400)
{
    LefMacro result;
    result.name = "CELL";
    result.macroClass = "CORE";
    result.width = width * NM;
    result.height = height * NM;
    result.pins = pins;
    result.obstructions = obstructions;
    return result;
}

inline CellMetal sorted(const LefMacro& master)
{
    return kit::color::metalOf(master, kit::color::Scale(190 * NM));
}

/// Rails along the bottom and the top of a cell.
inline std::vector<LefPin> rails(Length width)
{
    return {pin("VSS", {rectShape(0, -85, width, 85)}, PinUse::GROUND),
            pin("VDD", {rectShape(0, 1315, width, 1485)}, PinUse::POWER)};
}

/// Metal without rails: a polygon for each list of rectangles, named a, b, c, ...
inline CellMetal metal(int32_t width, const std::vector<std::vector<kit::placer::Rect>>& polygons)
{
    CellMetal result;
    result.name = "CELL";
    result.width = width;
    result.height = 1400;
    for (const std::vector<kit::placer::Rect>& rects : polygons) {
        result.nets.push_back(std::string(1, static_cast<char>('a' + result.polygons.size())));
        result.polygons.push_back({result.polygons.size(), rects});
    }
    return result;
}

/// Rectangles as text, "xl yl xh yh" each, parted by ", ".
inline std::string textOf(const std::vector<kit::placer::Rect>& rects)
{
    std::string text;
    for (const kit::placer::Rect& rect : rects) {
        text += (text.empty() ? "" : ", ") + std::to_string(rect.xl) + " " + std::to_string(rect.yl) + " " +
                std::to_string(rect.xh) + " " + std::to_string(rect.yh);
    }
    return text;
}

} // namespace test
