// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/parts.h"

#include <algorithm>
#include <deque>
#include <map>

#include "kit/design/spacing.h"
#include "kit/engines/color/cuts.h"
#include "kit/engines/color/grid.h"

namespace kit::color {

namespace {

constexpr uint8_t NOT_MASK_0 = 6;
constexpr uint8_t ONLY_MASK_1 = 2;

/// Builds the graph of a cell.
class Builder {
public:
    Builder(const CellMetal& metal, const Rules& rules, int32_t bottom)
        : m_metal(metal), m_rules(rules), m_bottom(bottom), m_cuts(metal.polygons.size())
    {
        if (rules.rowsMeet) {
            const int32_t below = -rules.leastDepth;
            const int32_t above = metal.height + rules.leastDepth;
            m_nextRows = {{.rects = {{0, below - 1, metal.width, below}}},
                          {.rects = {{0, above, metal.width, above + 1}}}};
        }
    }

    Graph run()
    {
        for (size_t i = 0; i < m_metal.polygons.size(); ++i) {
            m_cuts[i] = cutsOf(m_metal.polygons[i], othersOf(i), m_rules, m_metal.width);
        }
        do {
            m_graph = {};
            m_close.clear();
            for (size_t i = 0; i < m_metal.polygons.size(); ++i) {
                addParts(i);
            }
            compare();
        } while (dropUseless());
        return std::move(m_graph);
    }

private:
    /// A part that is close to another.
    struct Close {
        size_t part;
        bool hard; ///< closer than the distance without which it does not go
    };

    std::vector<const Polygon*> othersOf(size_t polygon) const
    {
        std::vector<const Polygon*> others;
        for (size_t i = 0; i < m_metal.polygons.size(); ++i) {
            if (i != polygon) {
                others.push_back(&m_metal.polygons[i]);
            }
        }
        for (const Polygon& rail : m_metal.rails) {
            if (m_rules.railsConflict) {
                others.push_back(&rail);
            }
        }
        for (const Polygon& row : m_nextRows) {
            others.push_back(&row);
        }
        return others;
    }

    void addParts(size_t polygon)
    {
        std::vector<Cut>& cuts = m_cuts[polygon];
        const size_t first = m_graph.parts.size();
        const Pieces pieces = cutUp(m_metal.polygons[polygon].rects, cuts);
        for (const std::vector<Rect>& rects : pieces.rects) {
            Part part{polygon, rects};
            for (const Rect& rect : rects) {
                const bool atEdge = rect.yl <= 0 || rect.yh >= m_metal.height + m_bottom;
                part.masks = atEdge ? NOT_MASK_0 : part.masks;
                part.atSide =
                    part.atSide || rect.xl < m_rules.distance || m_metal.width - rect.xh < m_rules.distance;
            }
            part.atRail = isNear(m_metal.rails, rects);
            if (part.atRail && m_rules.railsConflict) {
                part.masks = NOT_MASK_0;
            }
            if (isNear(m_nextRows, rects)) {
                part.masks = ONLY_MASK_1;
            }
            m_graph.parts.push_back(std::move(part));
        }
        for (size_t i = 0; i < cuts.size(); ++i) {
            const auto [a, b] = pieces.joined[i];
            m_graph.joints.push_back({first + a, first + b, cuts[i]}); // one that parts nothing goes later
        }
    }

    bool isNear(const std::vector<Polygon>& polygons, const std::vector<Rect>& rects) const
    {
        return std::ranges::any_of(polygons, [&](const Polygon& polygon) {
            return design::closestOf(polygon.rects, rects).squared <
                   int64_t{m_rules.distance} * m_rules.distance;
        });
    }

    bool meet(size_t a, size_t b) const
    {
        return std::ranges::any_of(m_graph.joints, [a, b](const Joint& joint) {
            return (joint.a == a && joint.b == b) || (joint.a == b && joint.b == a);
        });
    }

    void compare()
    {
        m_close.resize(m_graph.parts.size());
        const int64_t limit = int64_t{m_rules.distance} * m_rules.distance;
        for (size_t b = 0; b < m_graph.parts.size(); ++b) {
            for (size_t a = 0; a < b; ++a) {
                const int64_t squared =
                    design::closestOf(m_graph.parts[a].rects, m_graph.parts[b].rects).squared;
                if (squared >= limit) {
                    continue;
                }
                const bool same = m_graph.parts[a].polygon == m_graph.parts[b].polygon;
                if (same && !meet(a, b)) {
                    m_graph.bonds.push_back({a, b, squared, membersOf(a, b)});
                } else if (!same) {
                    m_graph.pairs.push_back({a, b, squared});
                }
                const bool hard = squared < int64_t{m_rules.hardDistance()} * m_rules.hardDistance();
                m_close[a].push_back({b, hard});
                m_close[b].push_back({a, hard});
            }
        }
    }

    /// The parts on the way between two; all of the polygon if there is more than one way.
    std::vector<size_t> membersOf(size_t a, size_t b) const
    {
        const size_t polygon = m_graph.parts[a].polygon;
        std::vector<size_t> all;
        for (size_t i = 0; i < m_graph.parts.size(); ++i) {
            if (m_graph.parts[i].polygon == polygon) {
                all.push_back(i);
            }
        }
        const size_t joints = m_cuts[polygon].size();
        if (joints + 1 != all.size()) {
            return all;
        }
        std::map<size_t, size_t> cameFrom{{a, a}};
        std::deque<size_t> reached{a};
        while (!reached.empty() && cameFrom.count(b) == 0) {
            for (const Joint& joint : m_graph.joints) {
                if (joint.a == reached.front() && cameFrom.try_emplace(joint.b, joint.a).second) {
                    reached.push_back(joint.b);
                } else if (joint.b == reached.front() && cameFrom.try_emplace(joint.a, joint.b).second) {
                    reached.push_back(joint.a);
                }
            }
            reached.pop_front();
        }
        std::vector<size_t> way{b};
        while (way.back() != a) {
            way.push_back(cameFrom.at(way.back()));
        }
        std::ranges::sort(way);
        return way;
    }

    /// Takes out cuts that gain nothing, at most one a polygon. @return whether there were any
    bool dropUseless()
    {
        std::vector<size_t> uses(m_graph.parts.size()); // joints of each part
        for (const Joint& joint : m_graph.joints) {
            ++uses[joint.a];
            ++uses[joint.b];
        }
        std::vector<bool> touched(m_metal.polygons.size());
        for (const Joint& joint : m_graph.joints) {
            const size_t polygon = m_graph.parts[joint.a].polygon;
            const bool useless = joint.a == joint.b ||
                                 (uses[joint.a] == 1 && followsFrom(joint.a, joint.b)) ||
                                 (uses[joint.b] == 1 && followsFrom(joint.b, joint.a));
            if (useless && !touched[polygon]) {
                touched[polygon] = true;
                std::vector<Cut>& cuts = m_cuts[polygon];
                cuts.erase(std::ranges::find(cuts, joint.cut));
            }
        }
        return std::ranges::find(touched, true) != touched.end();
    }

    /// Whether a part at an end can always take the mask of the part that it hangs on.
    bool followsFrom(size_t end, size_t body) const
    {
        const Part& part = m_graph.parts[end];
        if (part.atSide || (m_graph.parts[body].masks & ~part.masks) != 0) {
            return false;
        }
        const std::vector<Close>& bodys = m_close[body];
        return std::ranges::all_of(m_close[end], [&](const Close& close) {
            return close.part == body || std::ranges::any_of(bodys, [&](const Close& other) {
                       return other.part == close.part && (other.hard || !close.hard);
                   });
        });
    }

    const CellMetal& m_metal;
    const Rules& m_rules;
    int32_t m_bottom;
    std::vector<Polygon> m_nextRows;      ///< where they meet: as close to the cell as their metal may be
    std::vector<std::vector<Cut>> m_cuts; ///< [polygon]
    Graph m_graph;
    std::vector<std::vector<Close>> m_close; ///< [part] those that are closer than the distance
};

} // namespace

Graph graphOf(const CellMetal& metal, const Rules& rules, int32_t bottom)
{
    return Builder(metal, rules, bottom).run();
}

} // namespace kit::color
