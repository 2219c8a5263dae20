// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/trouble.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "kit/base/text/text.h"
#include "kit/design/spacing.h"

namespace kit::color {

namespace {

std::string cornersOf(const Rect& rect)
{
    return "(" + std::to_string(rect.xl) + " " + std::to_string(rect.yl) + " " + std::to_string(rect.xh) +
           " " + std::to_string(rect.yh) + ")";
}

std::vector<bool> partsOf(const Graph& graph, const std::vector<bool>& polygons)
{
    std::vector<bool> wanted;
    for (const Part& part : graph.parts) {
        wanted.push_back(polygons[part.polygon]);
    }
    return wanted;
}

/// Polygons that cannot be coloured, none of which can be spared.
std::vector<bool> coreOf(const CellMetal& metal, const Graph& graph, const Rules& rules, const Limits& limits)
{
    std::vector<bool> core(metal.polygons.size(), true);
    for (size_t i = 0; i < core.size(); ++i) {
        core[i] = false;
        core[i] = isColourable(graph, partsOf(graph, core), rules, limits) != false;
    }
    return core;
}

int32_t goodDistanceOf(const CellMetal& metal, const std::vector<bool>& core, Rules rules, int32_t bottom,
                       const Limits& limits)
{
    for (--rules.distance; rules.distance > 0; --rules.distance) {
        const Graph graph = graphOf(metal, rules, bottom);
        // The core is small: mostly it says no at once.
        if (isColourable(graph, partsOf(graph, core), rules, limits) == true &&
            isColourable(graph, std::vector<bool>(graph.parts.size(), true), rules, limits) == true) {
            break;
        }
    }
    return std::max(rules.distance, 0);
}

std::string shapesText(const Trouble& trouble, const CellMetal& metal)
{
    std::string text;
    for (const size_t i : trouble.polygons) {
        const Polygon& polygon = metal.polygons[i];
        text += (text.empty() ? "" : ", ") + metal.nets[polygon.net] + " ";
        for (const Rect& rect : polygon.rects) {
            text += cornersOf(rect);
        }
    }
    return text;
}

} // namespace

std::string distanceText(int64_t squared)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", std::sqrt(static_cast<double>(squared)));
    return text.data();
}

Closeness closenessOf(const CellMetal& metal, size_t a, size_t b)
{
    Closeness result{a, b, {}, {}, std::numeric_limits<int64_t>::max()};
    for (const Rect& rect : metal.polygons[a].rects) {
        for (const Rect& other : metal.polygons[b].rects) {
            const int64_t squared = design::squaredDistance(rect, other);
            if (squared < result.squared) {
                result = {a, b, rect, other, squared};
            }
        }
    }
    return result;
}

Trouble explain(const CellMetal& metal, const Graph& graph, const Rules& rules, int32_t bottom,
                const Limits& limits)
{
    const std::vector<bool> core = coreOf(metal, graph, rules, limits);
    Trouble trouble;
    for (size_t i = 0; i < core.size(); ++i) {
        for (const size_t other : trouble.polygons) {
            const Closeness close = closenessOf(metal, other, i);
            if (core[i] && close.squared < int64_t{rules.distance} * rules.distance) {
                trouble.close.push_back(close);
            }
        }
        if (core[i]) {
            trouble.polygons.push_back(i);
        }
    }
    trouble.goodDistance = goodDistanceOf(metal, core, rules, bottom, limits);
    return trouble;
}

std::string textOf(const Trouble& trouble, const CellMetal& metal, const Rules& rules)
{
    const size_t count = trouble.polygons.size();
    const bool all = count > 3 && trouble.close.size() == count * (count - 1) / 2;
    const std::string distance = std::to_string(rules.distance);
    std::string text = counted(static_cast<int64_t>(count), "shape");
    text += all ? " that are all closer than " + distance + " to one another: "
                : " that three masks cannot part by " + distance + ": ";
    text += shapesText(trouble, metal) + "; distances";
    for (const Closeness& close : trouble.close) {
        text += (&close == trouble.close.data() ? " " : ", ") + metal.nets[metal.polygons[close.a].net] +
                " - " + metal.nets[metal.polygons[close.b].net] + " " + distanceText(close.squared);
    }
    return text;
}

} // namespace kit::color
