// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/rescue.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>

#include "app/parameters.h"
#include "db/design.h"
#include "kit/engines/place/gaps.h"

namespace kit::place {

namespace {

/// Segments with room that are tried for a component, the nearest first.
constexpr size_t MOST_SEGMENTS = 6;

/// Places in a segment that are tried in full, the nearest first.
constexpr size_t MOST_PLACES = 4;

/// Where a component might go.
struct Place {
    Segment* segment = nullptr;
    size_t index = 0;     ///< in front of which component of the segment
    int32_t site = 0;     ///< its left end
    int32_t solution = 0; ///< its colours
    int64_t distance = 0; ///< from where it began, sites
};

/// A component that is tried somewhere else.
struct Move {
    Component* comp;
    int32_t siteX;
    int32_t x;
    int32_t y;
    int32_t solution;
};

class Rescuer {
public:
    Rescuer(Design& design, const std::vector<int32_t>& stray) : m_design(design), m_gaps(design)
    {
        std::vector<bool> isStray(design.components.size(), false);
        for (const int32_t id : stray) {
            isStray[static_cast<size_t>(id)] = true;
        }
        for (Segment* segment : design.segments) {
            segment->components.remove_if(
                [&](const Component* comp) { return isStray[static_cast<size_t>(comp->id)]; });
            m_cells.emplace_back(segment->components.begin(), segment->components.end());
        }
    }

    /// Puts a component where wirelength grows least.
    ///
    /// @return whether there is a place
    bool help(Component& comp, Point start)
    {
        std::vector<Place> places = placesNear(comp, start);
        if (places.empty()) {
            return false;
        }
        int64_t least = std::numeric_limits<int64_t>::max();
        const Place* best = nullptr;
        for (const Place& place : places) {
            m_moves.clear();
            const int64_t growth = tryPlace(comp, place);
            undo();
            if (growth < least) {
                least = growth;
                best = &place;
            }
        }
        m_moves.clear();
        tryPlace(comp, *best);
        for (const Move& move : m_moves) {
            if (move.comp != &comp) {
                m_moved.insert(move.comp->id);
            }
        }
        enter(comp, *best);
        return true;
    }

    int32_t movedNeighbours() const { return static_cast<int32_t>(m_moved.size()); }

private:
    std::vector<Component*>& cellsOf(const Segment& segment)
    {
        return m_cells[static_cast<size_t>(segment.id)];
    }

    int32_t widthOf(const Component& comp) const { return m_design.cellOf(comp).siteWidth; }

    /// Segments from the nearest to a point on.
    std::vector<Segment*> segmentsFrom(Point start) const
    {
        const auto distance = [start](const Segment* segment) {
            const int64_t right = segment->x + int64_t{segment->numSites} * SITE_WIDTH;
            const int64_t dx = std::max({segment->x - int64_t{start.x}, start.x - right, int64_t{0}});
            return dx + std::abs(int64_t{segment->y} - start.y);
        };
        std::vector<Segment*> segments = m_design.segments;
        std::stable_sort(segments.begin(), segments.end(),
                         [&](const Segment* a, const Segment* b) { return distance(a) < distance(b); });
        return segments;
    }

    std::vector<Place> placesNear(Component& comp, Point start)
    {
        std::vector<Place> all;
        size_t found = 0;
        for (Segment* segment : segmentsFrom(start)) {
            const std::vector<Place> places = placesIn(comp, *segment, start);
            all.insert(all.end(), places.begin(), places.end());
            found += places.empty() ? 0 : 1;
            if (found == MOST_SEGMENTS) {
                break;
            }
        }
        return all;
    }

    /// The nearest places in a segment that its cells can make room for.
    std::vector<Place> placesIn(Component& comp, Segment& segment, Point start)
    {
        const std::vector<Component*>& cells = cellsOf(segment);
        packCells(segment);
        std::vector<Place> places;
        for (size_t i = 0; i <= cells.size(); ++i) {
            addPlace(comp, segment, i, start, places);
        }
        const auto nearer = [](const Place& a, const Place& b) { return a.distance < b.distance; };
        std::stable_sort(places.begin(), places.end(), nearer);
        places.resize(std::min(places.size(), MOST_PLACES));
        return places;
    }

    /// Sites that two neighbours must keep: no more than they have.
    int32_t keptGap(const Component& left, const Component& right)
    {
        return std::min(m_gaps.between(left, right), std::max(right.siteX - left.siteX - widthOf(left), 0));
    }

    /// Fills m_packedLeft and m_packedRight for a segment.
    void packCells(const Segment& segment)
    {
        const std::vector<Component*>& cells = cellsOf(segment);
        m_packedLeft.assign(cells.size() + 1, 0);
        m_packedRight.assign(cells.size() + 1, segment.numSites);
        for (size_t i = 0; i < cells.size(); ++i) {
            const int32_t gap = i > 0 ? keptGap(*cells[i - 1], *cells[i]) : 0;
            m_packedLeft[i + 1] = m_packedLeft[i] + gap + widthOf(*cells[i]);
        }
        for (size_t i = cells.size(); i-- > 0;) {
            const int32_t gap = i + 1 < cells.size() ? keptGap(*cells[i], *cells[i + 1]) : 0;
            m_packedRight[i] = m_packedRight[i + 1] - gap - widthOf(*cells[i]);
        }
    }

    /// Adds the best solution in front of a cell of a segment, if there can be room.
    void addPlace(Component& comp, Segment& segment, size_t index, Point start, std::vector<Place>& places)
    {
        const int32_t width = widthOf(comp);
        if (m_packedRight[index] - m_packedLeft[index] < width) {
            return;
        }
        const std::vector<Component*>& cells = cellsOf(segment);
        const int32_t wanted = (start.x - segment.x) / SITE_WIDTH;
        const int32_t before = comp.solution;
        Place best{.distance = std::numeric_limits<int64_t>::max()};
        int32_t fewest = std::numeric_limits<int32_t>::max(); // stitches of the best
        const auto solutions = static_cast<int32_t>(m_design.cellOf(comp).colors.size());
        for (comp.solution = 0; comp.solution < solutions; ++comp.solution) {
            const int32_t lo =
                m_packedLeft[index] + (index > 0 ? m_gaps.between(*cells[index - 1], comp) : 0);
            const int32_t hi = m_packedRight[index] - width -
                               (index < cells.size() ? m_gaps.between(comp, *cells[index]) : 0);
            if (lo > hi) {
                continue;
            }
            const int32_t site = std::clamp(wanted, lo, hi);
            const int64_t distance =
                std::abs(int64_t{site} - wanted) + std::abs(int64_t{segment.y} - start.y) / SITE_WIDTH;
            const int32_t stitches = m_design.cellOf(comp).stitchesOf(comp.solution);
            if (std::pair(distance, stitches) < std::pair(best.distance, fewest)) {
                best = {&segment, index, site, comp.solution, distance};
                fewest = stitches;
            }
        }
        comp.solution = before;
        if (best.segment != nullptr) {
            places.push_back(best);
        }
    }

    /// Moves a component there, and its neighbours out of the way.
    ///
    /// @return growth of the wirelength, DBU
    int64_t tryPlace(Component& comp, const Place& place)
    {
        const std::vector<Component*>& cells = cellsOf(*place.segment);
        note(comp);
        const size_t first = m_moves.size();
        const int32_t solution = comp.solution;
        comp.solution = place.solution;
        int32_t right = place.site + widthOf(comp);
        const Component* last = &comp;
        for (size_t i = place.index; i < cells.size(); ++i) {
            const int32_t gap = last == &comp ? m_gaps.between(comp, *cells[i]) : keptGap(*last, *cells[i]);
            if (cells[i]->siteX >= right + gap) {
                break;
            }
            note(*cells[i]);
            m_targets.push_back(right + gap);
            right += gap + widthOf(*cells[i]);
            last = cells[i];
        }
        int32_t left = place.site;
        last = &comp;
        for (size_t i = place.index; i-- > 0;) {
            const int32_t gap = last == &comp ? m_gaps.between(*cells[i], comp) : keptGap(*cells[i], *last);
            if (cells[i]->siteX + widthOf(*cells[i]) + gap <= left) {
                break;
            }
            left -= gap + widthOf(*cells[i]);
            note(*cells[i]);
            m_targets.push_back(left);
            last = cells[i];
        }
        comp.solution = solution;
        const int64_t before = lengthOfTouched();
        moveTo(comp, *place.segment, place.site);
        comp.solution = place.solution;
        for (size_t k = first; k < m_moves.size(); ++k) {
            moveTo(*m_moves[k].comp, *place.segment, m_targets[k - first]);
        }
        m_targets.clear();
        return lengthOfTouched() - before;
    }

    void note(Component& comp) { m_moves.push_back({&comp, comp.siteX, comp.x, comp.y, comp.solution}); }

    static void moveTo(Component& comp, const Segment& segment, int32_t site)
    {
        comp.siteX = site;
        comp.x = segment.x + site * SITE_WIDTH;
        comp.y = segment.y;
    }

    void undo()
    {
        for (const Move& move : m_moves) {
            move.comp->siteX = move.siteX;
            move.comp->x = move.x;
            move.comp->y = move.y;
            move.comp->solution = move.solution;
        }
    }

    /// Wirelength of the nets of all components in m_moves, DBU.
    int64_t lengthOfTouched()
    {
        std::set<int32_t> nets;
        for (const Move& move : m_moves) {
            for (const Net* net : move.comp->nets) {
                nets.insert(net->id);
            }
        }
        int64_t sum = 0;
        for (const int32_t id : nets) {
            Net* net = m_design.nets[static_cast<size_t>(id)];
            m_design.evaluateBound(net);
            sum += int64_t{net->boxXh} - net->boxXl + net->boxYh - net->boxYl;
        }
        return sum;
    }

    /// Makes a component one of a segment.
    void enter(Component& comp, const Place& place)
    {
        std::vector<Component*>& cells = cellsOf(*place.segment);
        cells.insert(cells.begin() + static_cast<std::ptrdiff_t>(place.index), &comp);
        place.segment->components.assign(cells.begin(), cells.end());
    }

    Design& m_design;
    Gaps m_gaps;
    std::vector<std::vector<Component*>> m_cells; ///< [segment id] its components, from the left
    std::vector<int32_t> m_packedLeft;            ///< [index] least end of the cells before it
    std::vector<int32_t> m_packedRight;           ///< [index] largest begin of the cells from it on
    std::vector<Move> m_moves;                    ///< of the place that is tried, with what was before
    std::vector<int32_t> m_targets;               ///< sites of the neighbours among them
    std::set<int32_t> m_moved;                    ///< neighbours that made room
};

} // namespace

Rescue rescue(Design& design, const std::vector<int32_t>& stray, const std::vector<Point>& start)
{
    Rescuer rescuer(design, stray);
    Rescue result;
    for (const int32_t id : stray) {
        Component& comp = *design.components[static_cast<size_t>(id)];
        const Rescued before{.component = id, .fromX = comp.x, .fromY = comp.y};
        result.cells.push_back(before);
        result.cells.back().helped = rescuer.help(comp, start[static_cast<size_t>(id)]);
    }
    result.movedNeighbours = rescuer.movedNeighbours();
    return result;
}

} // namespace kit::place
