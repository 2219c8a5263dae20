// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/cell.h"

#include <algorithm>

#include "kit/design/spacing.h"
#include "kit/engines/color/grid.h"
#include "kit/engines/color/sets.h"
#include "kit/engines/color/spread.h"

namespace kit::color {

namespace {

bool any(const std::vector<Rect>& rects, auto test)
{
    return std::any_of(rects.begin(), rects.end(), test);
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
            const bool together =
                std::all_of(m_colourings.begin(), m_colourings.end(), [&](const Colouring& colouring) {
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
            m_names.push_back(m_metal.nets[m_metal.polygons[m_graph.parts[parts.front()].polygon].net]);
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
    Sets m_sets;                      ///< parts that are one shape
    std::vector<size_t> m_shapeOf;    ///< [part]
    std::vector<size_t> m_first;      ///< [shape but rails] its first part
    std::vector<std::string> m_names; ///< [shape]
    placer::Cell m_cell;
};

} // namespace

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
    Rules rules = settings.rules;
    Graph graph = graphOf(metal, rules, bottom);
    Colourings found = colouringsOf(graph, rules, settings.limits);
    std::optional<Trouble> trouble;
    if (found.outcome == Outcome::NONE) {
        trouble = explain(metal, graph, rules, bottom, settings.limits);
        if (settings.allowConflicts) {
            rules.bearable = trouble->goodDistance;
            graph = graphOf(metal, rules, bottom);
            found = colouringsOf(graph, rules, settings.limits);
        }
    }
    ColouredCell result;
    if (found.outcome == Outcome::FOUND) {
        result = Assembly(metal, graph, chosen(found.all, settings.mostSolutions), bottom).run();
    }
    result.tooLarge = found.outcome == Outcome::TOO_LARGE;
    result.trouble = std::move(trouble);
    return result;
}

} // namespace kit::color
