// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/clearance.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "kit/design/spacing.h"
#include "kit/design/standing.h"
#include "kit/design/stretches.h"
#include "kit/formats/lefdef/orient.h"

namespace kit::place {

namespace {

using design::Stretch;
using design::Turn;
using placer::Rect;

enum Side : uint8_t { LEFT, RIGHT };

/// Something that stays where it is, at an end of a stretch.
struct Thing {
    size_t stretch = 0;  ///< index in Occupancy::stretches
    Side side = LEFT;    ///< of the thing: at its left a stretch ends, at its right one begins
    size_t obstacle = 0; ///< the thing, as a cell that ends where the stretch begins
};

/// A cell that may come to stand beside.
struct Neighbor {
    int32_t variant = 0; ///< index among the cells as they lie
    int64_t count = 0;   ///< components that lie so
};

/// A block's metal at the end of a stretch, as the shapes of a cell whose edge is that end. No rectangle of
/// it is a rail.
placer::Cell blockCell(const std::vector<Rect>& rects)
{
    constexpr int32_t FAR = 1'000'000; // of the edges, so that no shape reaches one
    placer::Cell cell;
    cell.height = 2 * FAR;
    cell.shapes.push_back({.rects = {{0, -FAR, 0, -FAR}}});
    cell.solutions.push_back({.masks = {0}});
    for (const Rect& rect : rects) {
        for (int32_t mask = 0; mask < design::MASKS; ++mask) {
            cell.shapes.push_back({.rects = {rect}});
            cell.solutions.front().masks.push_back(mask);
        }
    }
    return cell;
}

/// Finds how much wider macros need to be.
class Clearance {
public:
    Clearance(const placer::Design& design, int32_t minDist)
        : m_design(design), m_minDist(minDist), m_step(design::siteWidth(design)),
          m_height(design::rowHeight(design)), m_occupancy(design::occupancyOf(design)),
          m_margins(m_occupancy.stretches.size())
    {
    }

    std::vector<WiderMacro> run()
    {
        addNeighbors();
        findThings();
        m_spacing.emplace(m_cells, m_minDist);
        for (const Stretch& stretch : m_occupancy.stretches) {
            m_room.push_back(stretch.numSites);
        }
        for (size_t i = 0; i < m_room.size(); ++i) {
            for (const int32_t comp : m_occupancy.components[i]) {
                m_room[i] -= design::widthInSites(m_design, m_design.component(comp));
            }
            m_room[i] = std::min(m_room[i], m_occupancy.stretches[i].numSites - 1); // it stays a stretch
        }
        for (const Thing& thing : m_things) {
            widen(thing);
        }
        return macros();
    }

private:
    int32_t toLibrary(int64_t dbu) const { return static_cast<int32_t>(floorOf(dbu * placer::LIBRARY_SITE)); }
    int32_t toLibraryUp(int64_t dbu) const { return -toLibrary(-dbu); }

    int64_t floorOf(int64_t scaled) const { return scaled / m_step - (scaled % m_step < 0 ? 1 : 0); }

    const placer::Row& rowOf(const Stretch& stretch) const
    {
        return m_design.rows[static_cast<size_t>(stretch.row)];
    }

    static bool isFlipped(const placer::Row& row)
    {
        const auto orient = lefdef::orientOf(row.orient);
        return orient && lefdef::isUpsideDown(*orient);
    }

    /// Takes the cells that may come to stand beside: each as it is mirrored somewhere, for rows of both
    /// kinds.
    void addNeighbors()
    {
        std::map<std::pair<int32_t, bool>, int64_t> used;
        for (const placer::Component& comp : m_design.components) {
            if (comp.cell >= 0) {
                ++used[{comp.cell, design::turnOf(comp.orient).mirrorX}];
            }
        }
        for (const auto& [key, count] : used) {
            const auto& [cell, mirrored] = key;
            for (const bool flipped : {false, true}) {
                m_neighbors[flipped ? 1 : 0].push_back({static_cast<int32_t>(m_cells.size()), count});
                m_cells.push_back(design::turned(m_design.cells[static_cast<size_t>(cell)],
                                                 {.known = true, .mirrorX = mirrored, .mirrorY = flipped}));
            }
        }
    }

    /// Finds what is at the ends of the stretches.
    void findThings()
    {
        std::map<std::pair<int32_t, int64_t>, size_t> begins; // stretches by row's bottom and end
        std::map<std::pair<int32_t, int64_t>, size_t> ends;
        for (size_t i = 0; i < m_occupancy.stretches.size(); ++i) {
            const Stretch& stretch = m_occupancy.stretches[i];
            begins[{rowOf(stretch).y, stretch.x}] = i;
            ends[{rowOf(stretch).y, endOf(stretch)}] = i;
        }
        for (const placer::Component& comp : m_design.fixed) {
            if (comp.cell >= 0) {
                addCell(comp, begins, ends);
            }
        }
        for (const placer::Row& row : m_design.rows) {
            m_metal[row.y];
        }
        for (const placer::BlockMetal& metal : m_design.blockMetal) {
            for (auto row = m_metal.upper_bound(metal.box.yl - m_height);
                 row != m_metal.end() && row->first < metal.box.yh; ++row) {
                row->second.push_back(&metal);
            }
        }
        for (size_t i = 0; i < m_occupancy.stretches.size(); ++i) {
            addBlocks(i, LEFT);
            addBlocks(i, RIGHT);
        }
    }

    int64_t endOf(const Stretch& stretch) const { return stretch.x + int64_t{stretch.numSites} * m_step; }

    using EndIndex = std::map<std::pair<int32_t, int64_t>, size_t>;

    void addCell(const placer::Component& comp, const EndIndex& begins, const EndIndex& ends)
    {
        const int64_t reach = int64_t{m_minDist} * m_step / placer::LIBRARY_SITE + 1;
        const int64_t width =
            -geometry::floorDiv(-int64_t{m_design.cellOf(comp)->width} * m_step, placer::LIBRARY_SITE);
        const int64_t right = comp.x + width;
        if (const auto at = begins.lower_bound({comp.y, right});
            at != begins.end() && at->first.first == comp.y && at->first.second < right + reach) {
            m_things.push_back({at->second, RIGHT, cellObstacle(comp, at->first.second - right, RIGHT)});
        }
        if (auto at = ends.upper_bound({comp.y, comp.x}); at != ends.begin()) {
            --at;
            if (at->first.first == comp.y && at->first.second > comp.x - reach) {
                m_things.push_back({at->second, LEFT, cellObstacle(comp, comp.x - at->first.second, LEFT)});
            }
        }
    }

    /// A fixed cell as one that ends where the stretch does.
    ///
    /// @param gap  between the two, DBU
    size_t cellObstacle(const placer::Component& comp, int64_t gap, Side side)
    {
        const Turn turn = design::turnOf(comp.orient);
        const int32_t space = toLibrary(gap);
        const auto [at, isNew] =
            m_cellObstacles.try_emplace({comp.cell, turn.mirrorX, turn.mirrorY, space, side}, m_cells.size());
        if (isNew) {
            placer::Cell cell = design::turned(*m_design.cellOf(comp), turn);
            cell.width += space;
            for (placer::Shape& shape : cell.shapes) {
                for (Rect& rect : shape.rects) {
                    rect = side == LEFT ? rect.shifted(space, 0) : rect;
                }
            }
            m_cells.push_back(std::move(cell));
        }
        return at->second;
    }

    /// Adds the metal of blocks near an end of a stretch, if there is any.
    ///
    /// @param side  of the blocks: at their left a stretch ends
    void addBlocks(size_t index, Side side)
    {
        const Stretch& stretch = m_occupancy.stretches[index];
        const int64_t y = rowOf(stretch).y;
        const int64_t edge = side == LEFT ? endOf(stretch) : stretch.x;
        const int64_t reach = int64_t{m_minDist} * m_step / placer::LIBRARY_SITE + 1;
        std::vector<Rect> rects;
        for (const placer::BlockMetal* metal : m_metal[y]) {
            const geometry::Rect& box = metal->box;
            const bool near = side == LEFT ? box.xl < edge + reach && box.xh > edge
                                           : box.xh > edge - reach && box.xl < edge;
            if (near) {
                rects.push_back({std::max(toLibrary(box.xl - edge), -m_minDist),
                                 toLibrary(std::max(box.yl - y, int64_t{0})),
                                 std::min(toLibraryUp(box.xh - edge), m_minDist),
                                 toLibraryUp(std::min(box.yh - y, int64_t{m_height}))});
            }
        }
        if (rects.empty()) {
            return;
        }
        std::vector<std::array<int32_t, 4>> key;
        key.reserve(rects.size());
        for (const Rect& rect : rects) {
            key.push_back({rect.xl, rect.yl, rect.xh, rect.yh});
        }
        const auto [at, isNew] = m_blockObstacles.try_emplace({side, std::move(key)}, m_cells.size());
        if (isNew) {
            m_cells.push_back(blockCell(rects));
        }
        m_things.push_back({index, side, at->second});
    }

    /// Widens the macro under a thing by the sites that it needs, as far as there are any.
    void widen(const Thing& thing)
    {
        int32_t& margin = m_margins[thing.stretch][thing.side];
        int32_t& room = m_room[thing.stretch];
        const int32_t more = std::clamp(sitesBeside(thing) - margin, 0, std::max(room, 0));
        margin += more;
        room -= more;
    }

    /// Sites that must stay free beside a thing so that half of the cells may stand there.
    int32_t sitesBeside(const Thing& thing)
    {
        const bool flipped = isFlipped(rowOf(m_occupancy.stretches[thing.stretch]));
        const auto [at, isNew] = m_known.try_emplace({thing.obstacle, thing.side, flipped});
        if (isNew && !isFree(m_cells[thing.obstacle], thing.side)) {
            at->second = medianSpacing(thing, flipped);
        }
        return at->second;
    }

    /// Whether all metal near a side of a cell is rails.
    bool isFree(const placer::Cell& cell, Side side) const
    {
        for (size_t k = 0; k < cell.shapes.size(); ++k) {
            const bool near = std::ranges::any_of(cell.shapes[k].rects, [&](const Rect& rect) {
                return (side == LEFT ? rect.xl : cell.width - rect.xh) < m_minDist;
            });
            if (near && std::ranges::any_of(cell.solutions, [&](const placer::Solution& solution) {
                    return !design::isRail(cell, k, solution);
                })) {
                return false;
            }
        }
        return true;
    }

    /// The spacing that half of the components need at most, in whichever solutions it is least.
    int32_t medianSpacing(const Thing& thing, bool flipped)
    {
        std::map<int32_t, int64_t> counts; // of components by their spacings
        int64_t all = 0;
        const auto own = static_cast<int32_t>(thing.obstacle);
        for (const auto& [variant, count] : m_neighbors[flipped ? 1 : 0]) {
            const std::vector<int32_t>& spacings =
                thing.side == LEFT ? m_spacing->between(variant, own) : m_spacing->between(own, variant);
            counts[spacings.empty() ? 0 : *std::ranges::min_element(spacings)] += count;
            all += count;
        }
        int64_t sum = 0;
        for (const auto& [sites, count] : counts) {
            sum += count;
            if (2 * sum >= all) {
                return sites;
            }
        }
        return 0;
    }

    /// The macros with their margins.
    std::vector<WiderMacro> macros() const
    {
        std::map<std::pair<int32_t, int64_t>, std::pair<int32_t, int32_t>> wanted; // by row and edge: sites
        for (size_t i = 0; i < m_margins.size(); ++i) {
            const Stretch& stretch = m_occupancy.stretches[i];
            // What a stretch ends at lies on its right, and is widened to the left.
            wanted[{rowOf(stretch).y, endOf(stretch)}].first = m_margins[i][LEFT];
            wanted[{rowOf(stretch).y, stretch.x}].second = m_margins[i][RIGHT];
        }
        std::vector<WiderMacro> wider;
        for (size_t i = 0; i < m_design.macros.size(); ++i) {
            const placer::Macro& macro = m_design.macros[i];
            const auto left = wanted.find({macro.y, macro.x});
            const auto right = wanted.find({macro.y, int64_t{macro.x} + macro.width});
            const int32_t toLeft = left == wanted.end() ? 0 : left->second.first;
            const int32_t toRight = right == wanted.end() ? 0 : right->second.second;
            if (macro.height == m_height && toLeft + toRight > 0) {
                wider.push_back({.macro = static_cast<int32_t>(i),
                                 .x = macro.x - toLeft * m_step,
                                 .width = macro.width + (toLeft + toRight) * m_step});
            }
        }
        return wider;
    }

    const placer::Design& m_design;
    int32_t m_minDist; ///< library coordinates
    int32_t m_step;    ///< site width, DBU
    int32_t m_height;  ///< of a row, DBU
    design::Occupancy m_occupancy;
    std::vector<std::array<int32_t, 2>> m_margins;    ///< [stretch][Side] sites that the macro there takes
    std::vector<int32_t> m_room;                      ///< [stretch] sites that no cell needs
    std::vector<placer::Cell> m_cells;                ///< neighbours and obstacles, as they lie
    std::array<std::vector<Neighbor>, 2> m_neighbors; ///< [row is upside down] indices in m_cells
    std::map<int64_t, std::vector<const placer::BlockMetal*>> m_metal; ///< of blocks, by the row's bottom
    std::vector<Thing> m_things;
    std::optional<design::Spacing> m_spacing;
    std::map<std::tuple<int32_t, bool, bool, int32_t, Side>, size_t> m_cellObstacles;
    std::map<std::pair<Side, std::vector<std::array<int32_t, 4>>>, size_t> m_blockObstacles;
    std::map<std::tuple<size_t, Side, bool>, int32_t> m_known; ///< sites beside an obstacle
};

} // namespace

std::vector<WiderMacro> widerMacros(const placer::Design& design, int32_t minDist)
{
    if (design.fixed.empty() || design.rows.empty()) {
        return {};
    }
    return Clearance(design, minDist).run();
}

} // namespace kit::place
