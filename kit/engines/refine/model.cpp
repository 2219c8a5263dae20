// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/refine/model.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>

#include "kit/base/fault.h"
#include "kit/design/rowKinds.h"
#include "kit/design/standing.h"
#include "kit/design/stretches.h"
#include "kit/engines/refine/parts.h"
#include "kit/engines/refine/views.h"

namespace kit::refine {

namespace {

/// A state before the views are known.
struct RawState {
    int32_t left = 0;  ///< number of a side
    int32_t right = 0; ///< number of a side
    int32_t stitches = 0;
    int32_t solution = -1;
    bool mirrored = false;
};

/// Makes the model.
class Builder {
public:
    Builder(const Inputs& inputs, const Demands& demands)
        : m_inputs(inputs), m_demands(demands), m_design(inputs.placed.design), m_rowKinds(m_design.rows)
    {
    }

    Built build()
    {
        if (m_design.rows.empty() || m_design.rows.front().step <= 0) {
            throw Fault("the design has no rows with sites");
        }
        m_step = m_design.rows.front().step;
        m_scale = {m_step};
        m_least = m_scale.ofLibrary(m_demands.minDist);
        matchAll();
        addRows();
        prepareSides();
        for (size_t i = 0; i < m_design.components.size(); ++i) {
            addComponent(i);
        }
        addObstacles();
        settleViews();
        addNets(m_inputs, m_demands.weights, m_kindKeys, m_built);
        addStarts();
        if (!m_demands.changed.empty()) {
            model().changed = m_demands.changed;
            model().changed.resize(model().cells.size(), false);
        }
        return std::move(m_built);
    }

private:
    ::refine::Model& model() { return m_built.model; }

    /// Finds the colors of all.
    void matchAll()
    {
        design::Issues issues;
        m_matching = design::matchColors(m_design, m_inputs.placed.colors, issues);
        design::checkColors(m_design, m_matching, issues);
        for (const design::Issue& issue : issues) {
            const bool isBare = issue.kind == design::Kind::NO_COLOURS ||
                                (issue.kind == design::Kind::BAD_SOLUTION && isBareAt(issue.component)) ||
                                (issue.kind == design::Kind::MASK_COUNT && isBareAt(issue.component));
            if (severityOf(issue) == Severity::ERROR && !isBare) {
                throw Fault("the colors are not those of the placement: " + issue.what);
            }
        }
        for (const placer::Component& comp : m_design.components) {
            if (comp.cell < 0) {
                throw Fault("the cell of " + design::placeText(comp) + " is not known");
            }
        }
        if (m_inputs.map) {
            m_flipped = {m_inputs.map->flipped.begin(), m_inputs.map->flipped.end()};
        }
    }

    /// Whether a component has no colors.
    bool isBareAt(int32_t component) const
    {
        const placer::ColorRecord* const record = m_matching[static_cast<size_t>(component)];
        return record == nullptr || (record->solution < 0 && record->masks.empty());
    }

    /// Whether a component has no colors, and its cell has some.
    bool isBare(int32_t component) const
    {
        return isBareAt(component) &&
               !cellOf(m_design.components[static_cast<size_t>(component)]).solutions.empty();
    }

    void addRows()
    {
        std::vector<bool> stays;
        for (size_t i = 0; i < m_design.components.size(); ++i) {
            const bool isNamed = m_demands.fixed.contains(m_design.components[i].name);
            stays.push_back(isNamed || isBare(static_cast<int32_t>(i)));
        }
        m_rows.emplace(m_inputs, stays, model());
        for (const ::refine::Row& row : model().rows) {
            m_built.otherRow.push_back(m_demands.rowsMeet && m_rowKinds.isOther(row.y / UNITS));
        }
    }

    /// Works out how far in metal matters, and what stays where it is.
    void prepareSides()
    {
        int64_t overhang = 0;
        int64_t widest = 0;
        std::vector<bool> isUsed(m_design.cells.size(), false);
        for (const placer::Component& comp : m_design.components) {
            isUsed[static_cast<size_t>(comp.cell)] = true;
        }
        for (size_t i = 0; i < isUsed.size(); ++i) {
            if (isUsed[i]) {
                const design::Stencil& stencil = stencilOf(static_cast<int32_t>(i), false, false);
                const int64_t width = widthOf(static_cast<int32_t>(i));
                overhang =
                    std::max({overhang, -stencil.extent.xl, stencil.extent.xh - design::Scale::ofDbu(width)});
                widest = std::max(widest, width);
            }
        }
        findObstacles();
        for (const auto& [row, standing] : m_obstacles) {
            m_anyTurned |= model().rows[static_cast<size_t>(row)].turned;
            widest = std::max(widest, boundsOf(*standing).second);
        }
        m_reach = m_least + overhang;
        m_views.emplace(m_least, static_cast<int32_t>(-widest));
    }

    /// Finds what stays where it is in the rows and has masks.
    void findObstacles()
    {
        if (m_design.fixed.empty()) {
            return;
        }
        design::Matching all = m_matching;
        design::addFixedColors(m_inputs.placed.fixedColors, all);
        m_layout.emplace(m_design, all, m_scale);
        for (const design::Band& band : m_layout->bands()) {
            const int32_t row = m_rows->at(band.y / design::Scale::ofDbu(1));
            for (const design::Standing& standing : band.cells) {
                if (row >= 0 && m_design.isFixed(standing.component) && !standing.masks.empty()) {
                    m_obstacles.emplace_back(row, &standing);
                }
            }
        }
    }

    /// Left edge and width of what stays where it is, whole DBU around it.
    static std::pair<int64_t, int64_t> boundsOf(const design::Standing& standing)
    {
        const int64_t unit = design::Scale::ofDbu(1);
        const design::FineBox extent = standing.extent();
        const int64_t left = geometry::floorDiv(extent.xl, unit);
        return {left, -geometry::floorDiv(-extent.xh, unit) - left};
    }

    /// Width of a cell in sites, DBU.
    int64_t widthOf(int32_t cell) const
    {
        placer::Component comp;
        comp.cell = cell;
        return int64_t{design::widthInSites(m_design, comp)} * m_step;
    }

    void addComponent(size_t index)
    {
        const placer::Component& comp = m_design.components[index];
        const design::Turn turn = design::turnOf(comp.orient);
        const bool isBare = this->isBare(static_cast<int32_t>(index));
        const bool isStray = isBare || m_rows->isOnOtherSites(comp, widthOf(comp.cell));
        const bool stays = isStray || m_demands.fixed.contains(comp.name);
        const int32_t row = stays ? m_rows->at(comp.y) : m_rows->nearest(comp.y);
        // What is in no row yet will lie there as the map says.
        const bool upsideDown = stays || !m_inputs.map
                                    ? turn.mirrorY != model().rows[static_cast<size_t>(row)].turned
                                    : m_flipped.contains(comp.name);
        const bool turns = isMirrorable(cellOf(comp)) && !isBare;
        const KindKey key{.cell = comp.cell,
                          .upsideDown = upsideDown,
                          .turns = turns,
                          .mirrored = !turns && turn.mirrorX,
                          .bare = isBare};
        const int32_t kind = kindOf(key);
        const int32_t half = m_demands.rowsMeet && design::isPaired(cellOf(comp))
                                 ? static_cast<int32_t>(cellOf(comp).solutions.size() / 2)
                                 : 0;
        const int32_t solution = isBare || cellOf(comp).solutions.empty() ? -1 : m_matching[index]->solution;
        m_built.half.push_back(half);
        m_built.stitches.push_back(solution >= 0 ? m_matching[index]->stitches : 0);
        m_built.placed.push_back({.x = comp.x, .y = comp.y, .mirrored = turn.mirrorX, .solution = solution});
        ::refine::Cell cell{.kind = kind, .row = row, .fixed = stays};
        cell.x = stays ? unitsOfDbu(comp.x) : nearestUnits(comp.x);
        cell.state = rawStateOf(index, kind, firstSolution(index, row));
        if (isStray) {
            m_built.strays.push_back(static_cast<int32_t>(index));
        }
        model().cells.push_back(cell);
    }

    /// Notes where the cells stand truly, if some are in no row.
    void addStarts()
    {
        ::refine::Model& model = this->model();
        bool anyElsewhere = false;
        for (size_t i = 0; i < model.cells.size(); ++i) {
            const int32_t bottom = model.rows[static_cast<size_t>(model.cells[i].row)].y;
            const bool isComponent = i < m_design.components.size();
            model.startX.push_back(model.cells[i].x);
            model.startY.push_back(isComponent ? nearestUnits(m_design.components[i].y) : bottom);
            anyElsewhere |= model.startY.back() != bottom;
        }
        if (!anyElsewhere) {
            model.startX.clear();
            model.startY.clear();
        }
    }

    const placer::Cell& cellOf(const placer::Component& comp) const { return *m_design.cellOf(comp); }

    bool isMirrorable(const placer::Cell& cell)
    {
        if (!m_inputs.map) {
            return false;
        }
        if (m_mirrorable.empty()) {
            m_mirrorable = {m_inputs.map->mirrorable.begin(), m_inputs.map->mirrorable.end()};
        }
        return m_mirrorable.contains(cell.name);
    }

    /// The number of a component's solution among those of the first kind.
    int32_t firstSolution(size_t index, int32_t row) const
    {
        const int32_t solution = m_built.placed[index].solution;
        const int32_t half = m_built.half[index];
        if (half == 0 || solution < 0) {
            return solution;
        }
        const bool isOther = m_built.otherRow[static_cast<size_t>(row)];
        if ((solution >= half) != isOther && m_rows->at(m_design.components[index].y) == row) {
            throw Fault("the colors of " + design::placeText(m_design.components[index]) +
                        " are not those of its row where rows meet");
        }
        return solution % half;
    }

    /// The number of a kind, which is made if there is none yet.
    int32_t kindOf(const KindKey& key)
    {
        const auto [at, isNew] = m_kinds.try_emplace(key, static_cast<int32_t>(m_kindKeys.size()));
        if (isNew) {
            m_kindKeys.push_back(key);
            m_rawStates.push_back(statesOf(key));
            model().kinds.push_back({.width = unitsOfDbu(std::max<int64_t>(widthOf(key.cell), m_step))});
        }
        return at->second;
    }

    std::vector<RawState> statesOf(const KindKey& key)
    {
        const placer::Cell& cell = m_design.cells[static_cast<size_t>(key.cell)];
        const bool isPaired = m_demands.rowsMeet && design::isPaired(cell);
        const size_t count = cell.solutions.size() / (isPaired ? 2 : 1);
        std::vector<RawState> states;
        for (const bool mirrored : {false, true}) {
            if (!key.turns && mirrored != key.mirrored) {
                continue;
            }
            const design::Stencil& straight = stencilOf(key.cell, mirrored, key.upsideDown);
            if (key.bare || count == 0) {
                const int32_t none = m_views->add({});
                states.push_back({.left = none, .right = none, .mirrored = mirrored});
                continue;
            }
            for (size_t s = 0; s < count; ++s) {
                const placer::Solution& solution = cell.solutions[s];
                const auto side = [&](bool onRight) {
                    Side one;
                    addEdges(one, 0, straight, widthOf(key.cell), solution.masks, onRight);
                    if (m_anyTurned) {
                        addEdges(one, design::MASKS, stencilOf(key.cell, mirrored, !key.upsideDown),
                                 widthOf(key.cell), solution.masks, onRight);
                    }
                    return m_views->add(one);
                };
                states.push_back({.left = side(false),
                                  .right = side(true),
                                  .stitches = solution.stitches,
                                  .solution = static_cast<int32_t>(s),
                                  .mirrored = mirrored});
            }
        }
        return states;
    }

    const design::Stencil& stencilOf(int32_t cell, bool mirrored, bool upsideDown)
    {
        const auto [at, isNew] = m_stencils.try_emplace({cell, mirrored, upsideDown});
        if (isNew) {
            at->second = design::stencilOf(m_design.cells[static_cast<size_t>(cell)],
                                           {.mirrorX = mirrored, .mirrorY = upsideDown}, m_scale);
        }
        return at->second;
    }

    /// @param width  DBU
    void addEdges(Side& side, size_t first, const design::Stencil& stencil, int64_t width,
                  std::span<const int32_t> masks, bool onRight) const
    {
        auto edges = edgesOf(stencil, design::Scale::ofDbu(width), masks, m_reach, onRight);
        for (size_t mask = 0; mask < edges.size(); ++mask) {
            for (Edge& edge : edges[mask]) {
                edge.stays = side.stays;
            }
            side.groups[first + mask] = std::move(edges[mask]);
        }
    }

    /// Index of a component's state among the raw ones of its kind.
    int32_t rawStateOf(size_t index, int32_t kind, int32_t solution) const
    {
        const std::vector<RawState>& states = m_rawStates[static_cast<size_t>(kind)];
        const bool mirrored = m_built.placed[index].mirrored;
        const auto at = std::ranges::find_if(states, [&](const RawState& state) {
            return state.mirrored == mirrored && state.solution == solution;
        });
        return static_cast<int32_t>(at - states.begin());
    }

    /// What stays where it is and has masks.
    void addObstacles()
    {
        std::map<std::tuple<int64_t, int32_t, int32_t>, int32_t> known; // kinds by width and sides
        for (const auto& [row, standing] : m_obstacles) {
            const bool turned = model().rows[static_cast<size_t>(row)].turned;
            std::vector<int32_t> masks(standing->masks.begin(), standing->masks.end());
            if (m_built.otherRow[static_cast<size_t>(row)]) {
                design::exchangeMasks(masks);
            }
            const auto [x, width] = boundsOf(*standing);
            design::Stencil stencil = *standing->stencil;
            for (design::Piece& piece : stencil.pieces) {
                piece.box = piece.box.shifted(standing->x - design::Scale::ofDbu(x), 0);
            }
            const auto side = [&, w = width](bool onRight) {
                Side one{.stays = true};
                addEdges(one, turned ? design::MASKS : 0, stencil, w, masks, onRight);
                return m_views->add(one);
            };
            const int32_t left = side(false);
            const int32_t right = side(true);
            const auto [at, isNew] =
                known.try_emplace({width, left, right}, static_cast<int32_t>(model().kinds.size()));
            if (isNew) {
                m_rawStates.push_back({{.left = left, .right = right}});
                model().kinds.push_back({.width = unitsOfDbu(width)});
            }
            model().cells.push_back({.kind = at->second, .row = row, .x = unitsOfDbu(x), .fixed = true});
        }
    }

    /// Gives the states their views, and leaves out those that others stand for.
    void settleViews()
    {
        Views::Table table = m_views->table();
        model().views = table.views;
        model().gaps = std::move(table.gaps);
        for (int32_t& gap : model().gaps) {
            gap *= UNITS;
        }
        std::vector<std::vector<int32_t>> settled; // [kind][raw state] the state
        for (size_t kind = 0; kind < m_rawStates.size(); ++kind) {
            const std::vector<RawState>& raw = m_rawStates[kind];
            model().kinds[kind].stateBegin = static_cast<int32_t>(model().states.size());
            std::map<std::tuple<bool, int32_t, int32_t>, int32_t> known;
            std::vector<int32_t>& states = settled.emplace_back();
            for (const RawState& state : raw) {
                const int32_t left = table.viewOf[static_cast<size_t>(state.left)];
                const int32_t right = table.viewOf[static_cast<size_t>(state.right)];
                const auto [at, isNew] =
                    known.try_emplace({state.mirrored, left, right}, static_cast<int32_t>(known.size()));
                states.push_back(at->second);
                const ::refine::State candidate{left, right, state.stitches, state.solution, state.mirrored};
                if (isNew) {
                    model().states.push_back(candidate);
                    continue;
                }
                const auto first = static_cast<size_t>(model().kinds[kind].stateBegin);
                ::refine::State& kept = model().states[first + static_cast<size_t>(at->second)];
                if (candidate.stitches < kept.stitches) {
                    kept = candidate;
                }
            }
        }
        for (::refine::Cell& cell : model().cells) {
            cell.state = settled[static_cast<size_t>(cell.kind)][static_cast<size_t>(cell.state)];
        }
        for (size_t i = 0; i < m_design.components.size(); ++i) {
            m_built.start.push_back(model().cells[i]);
        }
        model().kinds.push_back({.stateBegin = static_cast<int32_t>(model().states.size())});
    }

    const Inputs& m_inputs;
    const Demands& m_demands;
    const placer::Design& m_design;
    design::RowKinds m_rowKinds;
    int64_t m_step = 0; ///< DBU
    design::Scale m_scale;
    int64_t m_least = 0; ///< distance that shapes of one mask need, fine units
    int64_t m_reach = 0; ///< from a side, how far in metal matters, fine units
    design::Matching m_matching;
    std::set<std::string> m_flipped;
    std::set<std::string> m_mirrorable;
    std::optional<Rows> m_rows;
    std::optional<design::Layout> m_layout;
    std::vector<std::pair<int32_t, const design::Standing*>> m_obstacles; ///< with their rows
    bool m_anyTurned = false; ///< something stays where it is in a turned row
    std::map<std::tuple<int32_t, bool, bool>, design::Stencil> m_stencils; ///< by cell, mirrored, upside down
    std::optional<Views> m_views;
    std::map<KindKey, int32_t> m_kinds;
    std::vector<KindKey> m_kindKeys;                ///< [kind] of components; the others come behind
    std::vector<std::vector<RawState>> m_rawStates; ///< [kind]
    Built m_built;
};

} // namespace

int32_t units(int64_t length)
{
    if (length < -::refine::FARTHEST || length > ::refine::FARTHEST) {
        throw Fault("the design is too large: lengths go up to " +
                    std::to_string(::refine::FARTHEST / UNITS) + " DBU");
    }
    return static_cast<int32_t>(length);
}

Built buildModel(const Inputs& inputs, const Demands& demands)
{
    return Builder(inputs, demands).build();
}

std::vector<Placed> placedOf(const Built& built, const ::refine::Model& model)
{
    std::vector<Placed> all = built.placed;
    for (size_t i = 0; i < all.size(); ++i) {
        const ::refine::Cell& cell = model.cells[i];
        if (cell.fixed) {
            continue;
        }
        const auto row = static_cast<size_t>(cell.row);
        const auto first = static_cast<size_t>(model.kinds[static_cast<size_t>(cell.kind)].stateBegin);
        const ::refine::State& state = model.states[first + static_cast<size_t>(cell.state)];
        const ::refine::Cell& start = built.start[i];
        if (cell.row != start.row || cell.x != start.x) { // else it may stand where the model has no place
            all[i].x = cell.x / UNITS;
            all[i].y = model.rows[row].y / UNITS;
        }
        all[i].mirrored = state.mirrored;
        // Of solutions that neighbours take for the same, one with as few stitches may stay.
        const int32_t half = built.half[i];
        const int32_t given = half > 0 ? all[i].solution % half : all[i].solution;
        const bool isKept = !model.changed.empty() && !model.changed[i];
        const bool stays = cell.state == start.state && (isKept || built.stitches[i] == state.stitches);
        const int32_t solution = stays || state.solution < 0 ? given : state.solution;
        all[i].solution = built.otherRow[row] && solution >= 0 ? solution + half : solution;
    }
    return all;
}

} // namespace kit::refine
