// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/cell.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "kit/base/text/text.h"
#include "kit/design/rowKinds.h"
#include "kit/engines/color/grid.h"
#include "kit/geometry/sets.h"

namespace kit::color {

namespace {

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
        text += (text.empty() ? "" : ", ") + metal.netOf(i) + " ";
        for (const Rect& rect : metal.polygons[i].rects) {
            text += "(" + textOf(rect) + ")";
        }
    }
    return text;
}

bool any(const std::vector<Rect>& rects, auto test)
{
    return std::ranges::any_of(rects, test);
}

/// Writes what has been found as a colour file.
class Assembly {
public:
    Assembly(const CellMetal& metal, const Graph& graph, std::vector<Colouring> colourings, int32_t bottom)
        : m_metal(metal), m_graph(graph), m_colourings(std::move(colourings)), m_sets(graph.parts.size())
    {
        m_cell.name = metal.name;
        m_cell.width = metal.width;
        m_cell.height = metal.height;
        m_cell.complete = true;
        m_cell.shapes = railsOf(metal, bottom);
        for (size_t i = 0; i < m_cell.shapes.size(); ++i) {
            m_names.push_back(i < metal.rails.size() ? metal.nets[metal.rails[i].net] : "");
        }
    }

    ColouredCell run()
    {
        joinParts();
        addShapes();
        addHeader();
        ColouredCell result;
        for (const Colouring& colouring : m_colourings) {
            addSolution(colouring);
            result.conflicts.push_back(conflictsOf(colouring));
        }
        result.shapeNames = std::move(m_names);
        result.file = std::move(m_cell);
        return result;
    }

private:
    /// Joins what no colouring parts.
    void joinParts()
    {
        for (const Joint& joint : m_graph.joints) {
            const bool together = std::ranges::all_of(m_colourings, [&](const Colouring& colouring) {
                return colouring.masks[joint.a] == colouring.masks[joint.b];
            });
            if (together) {
                m_sets.join(joint.a, joint.b);
            }
        }
    }

    void addShapes()
    {
        m_shapeOf.resize(m_graph.parts.size());
        for (const std::vector<size_t>& parts : m_sets.all()) {
            placer::Shape& shape = m_cell.shapes.emplace_back();
            for (const size_t part : parts) {
                m_shapeOf[part] = m_cell.shapes.size() - 1;
                const std::vector<Rect>& rects = m_graph.parts[part].rects;
                shape.rects.insert(shape.rects.end(), rects.begin(), rects.end());
            }
            shape.rects = tidied(shape.rects);
            m_first.push_back(parts.front());
            m_names.push_back(m_metal.netOf(m_graph.parts[parts.front()].polygon));
        }
    }

    void addHeader()
    {
        m_cell.headerBoxes.push_back({0, 0, m_cell.width, m_cell.height});
        for (const Joint& joint : m_graph.joints) {
            if (m_shapeOf[joint.a] != m_shapeOf[joint.b]) {
                m_cell.headerBoxes.push_back(joint.cut.box);
            }
        }
    }

    void addSolution(const Colouring& colouring)
    {
        placer::Solution& solution = m_cell.solutions.emplace_back();
        for (const Joint& joint : m_graph.joints) {
            solution.stitches += colouring.masks[joint.a] != colouring.masks[joint.b] ? 1 : 0;
        }
        solution.masks.assign(m_cell.shapes.size() - m_first.size(), 0);
        for (const size_t part : m_first) {
            solution.masks.push_back(colouring.masks[part]);
        }
    }

    std::vector<LeftConflict> conflictsOf(const Colouring& colouring) const
    {
        std::vector<LeftConflict> conflicts;
        for (const Pair& pair : m_graph.pairs) {
            if (colouring.masks[pair.a] == colouring.masks[pair.b]) {
                conflicts.push_back({m_shapeOf[pair.a], m_shapeOf[pair.b], pair.squared});
            }
        }
        for (const Bond& bond : m_graph.bonds) {
            const uint8_t mask = colouring.masks[bond.a];
            const bool isJoined = joined(m_graph.joints, bond.a, bond.b,
                                         [&](size_t part) { return colouring.masks[part] == mask; });
            if (mask == colouring.masks[bond.b] && !isJoined) {
                conflicts.push_back({m_shapeOf[bond.a], m_shapeOf[bond.b], bond.squared});
            }
        }
        return conflicts;
    }

    const CellMetal& m_metal;
    const Graph& m_graph;
    std::vector<Colouring> m_colourings;
    geometry::Sets m_sets;            ///< parts that are one shape
    std::vector<size_t> m_shapeOf;    ///< [part]
    std::vector<size_t> m_first;      ///< [shape but rails] its first part
    std::vector<std::string> m_names; ///< [shape]
    placer::Cell m_cell;
};

/// A search by some rules.
struct Attempt {
    Rules rules;
    Graph graph;
    Colourings found{Outcome::NONE, {}};
};

/// The first search that finds something, or the last. What a cell cannot have is given up: the rails first,
/// then the next rows.
Attempt firstFound(const CellMetal& metal, const Rules& wanted, int32_t bottom, const Limits& limits)
{
    Attempt attempt;
    for (const bool rowsMeet : {true, false}) {
        for (const bool railsConflict : {true, false}) {
            const bool isAsked = (wanted.rowsMeet || !rowsMeet) && (wanted.railsConflict || !railsConflict);
            if (!isAsked || attempt.found.outcome == Outcome::FOUND) {
                continue;
            }
            attempt.rules = wanted;
            attempt.rules.rowsMeet = rowsMeet;
            attempt.rules.railsConflict = railsConflict;
            attempt.graph = graphOf(metal, attempt.rules, bottom);
            attempt.found = colouringsOf(attempt.graph, attempt.rules, limits);
        }
    }
    return attempt;
}

/// Adds the solutions for every second row.
void addOtherRows(ColouredCell& cell)
{
    std::vector<placer::Solution>& solutions = cell.file->solutions;
    const size_t count = solutions.size();
    for (size_t i = 0; i < count; ++i) {
        solutions.push_back(placer::Solution(solutions[i]));
        design::exchangeMasks(solutions.back().masks);
        cell.conflicts.push_back(std::vector(cell.conflicts[i]));
    }
}

} // namespace

std::string distanceText(int64_t squared)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", std::sqrt(static_cast<double>(squared)));
    return text.data();
}

Trouble explain(const CellMetal& metal, const Graph& graph, const Rules& rules, int32_t bottom,
                const Limits& limits)
{
    const std::vector<bool> core = coreOf(metal, graph, rules, limits);
    Trouble trouble;
    for (size_t i = 0; i < core.size(); ++i) {
        for (const size_t other : trouble.polygons) {
            const design::Closest rects =
                design::closestOf(metal.polygons[other].rects, metal.polygons[i].rects);
            if (core[i] && rects.squared < int64_t{rules.distance} * rules.distance) {
                trouble.close.push_back({other, i, rects});
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
        text += (&close == trouble.close.data() ? " " : ", ") + metal.netOf(close.a) + " - " +
                metal.netOf(close.b) + " " + distanceText(close.rects.squared);
    }
    return text;
}

int32_t bottomOf(const std::vector<CellMetal>& cells)
{
    int32_t bottom = 0;
    for (const CellMetal& cell : cells) {
        for (const std::vector<Polygon>* polygons : {&cell.rails, &cell.polygons}) {
            for (const Polygon& polygon : *polygons) {
                for (const Rect& rect : polygon.rects) {
                    bottom = std::min(bottom, rect.yl);
                }
            }
        }
    }
    return bottom;
}

int32_t leastDepthOf(const std::vector<CellMetal>& cells)
{
    int32_t least = Rules::NONE;
    for (const CellMetal& cell : cells) {
        for (const Polygon& polygon : cell.polygons) {
            for (const Rect& rect : polygon.rects) {
                least = std::min({least, rect.yl, cell.height - rect.yh});
            }
        }
    }
    return least == Rules::NONE ? 0 : least;
}

std::vector<placer::Shape> railsOf(const CellMetal& metal, int32_t bottom)
{
    const Rect anchor{0, bottom, 0, std::max(-bottom, 1)};
    std::vector<placer::Shape> shapes;
    bool atCorner = false;
    for (const Polygon& rail : metal.rails) {
        std::vector<Rect> rects = tidied(rail.rects);
        const bool atBottom = any(rects, [&](const Rect& rect) { return rect.yl <= bottom; });
        const bool atTop = any(rects, [&](const Rect& rect) { return rect.yh >= metal.height; });
        if (!atBottom && !atTop) {
            rects.push_back(anchor);
        }
        atCorner = atCorner || (any(rects, [&](const Rect& rect) { return rect.yl <= bottom; }) &&
                                any(rects, [](const Rect& rect) { return rect.xl == 0; }));
        shapes.push_back({std::move(rects)});
    }
    if (shapes.empty()) {
        shapes.push_back({{anchor}});
    } else if (!atCorner) {
        shapes.front().rects.push_back(anchor);
    }
    return shapes;
}

ColouredCell colour(const CellMetal& metal, const Settings& settings, int32_t bottom)
{
    Attempt attempt = firstFound(metal, settings.rules, bottom, settings.limits);
    const bool isClearOfRails = attempt.rules.railsConflict;
    std::optional<Trouble> trouble;
    if (attempt.found.outcome == Outcome::NONE) {
        trouble = explain(metal, attempt.graph, attempt.rules, bottom, settings.limits);
        if (settings.allowConflicts) {
            Rules rules = settings.rules;
            rules.railsConflict = false;
            rules.bearable = trouble->goodDistance;
            attempt = firstFound(metal, rules, bottom, settings.limits);
        }
    }
    ColouredCell result;
    if (attempt.found.outcome == Outcome::FOUND) {
        result =
            Assembly(metal, attempt.graph, chosen(attempt.found.all, settings.mostSolutions), bottom).run();
        result.meetsRows = attempt.rules.rowsMeet;
        if (settings.rules.rowsMeet) {
            addOtherRows(result);
        }
    }
    result.tooLarge = attempt.found.outcome == Outcome::TOO_LARGE;
    result.isClearOfRails = isClearOfRails;
    result.trouble = std::move(trouble);
    return result;
}

} // namespace kit::color
