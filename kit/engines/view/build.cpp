// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/build.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "kit/design/standing.h"
#include "kit/design/stretches.h"
#include "kit/engines/view/joints.h"

namespace kit::view {

namespace {

constexpr int64_t FARTHEST = 500'000'000; // DBU: differences of drawn coordinates fit 32 bits
constexpr int64_t WIDEST = 50'000'000;    // DBU

int32_t clampTo(int64_t value, int64_t limit)
{
    return static_cast<int32_t>(std::clamp(value, -limit, limit));
}

int32_t coordinate(int64_t value)
{
    return clampTo(value, FARTHEST);
}

/// A box by its corner and its size.
Box boxOf(int32_t x, int32_t y, int64_t width, int64_t height)
{
    return {coordinate(x), coordinate(y), coordinate(x + width), coordinate(y + height)};
}

/// From the coordinates of a library cell to those of the design.
class Scale {
public:
    Scale(const Scene& scene, const placer::Cell& cell)
        : m_step(scene.siteWidth), m_row(scene.rowHeight), m_height(cell.height)
    {
    }

    int32_t x(int64_t value) const { return clampTo(value * m_step / placer::LIBRARY_SITE, WIDEST); }
    int32_t y(int64_t value) const
    {
        return clampTo(m_height > 0 ? value * m_row / m_height : value, WIDEST);
    }

    /// The box between two opposite corners.
    Box box(const placer::Rect& rect) const
    {
        const auto [xl, xh] = std::minmax({x(rect.xl), x(rect.xh)});
        const auto [yl, yh] = std::minmax({y(rect.yl), y(rect.yh)});
        return {xl, yl, xh, yh};
    }

private:
    int64_t m_step;   ///< DBU
    int64_t m_row;    ///< DBU
    int64_t m_height; ///< library units
};

Kind kindOf(const Scene& scene, const placer::Cell& cell)
{
    const Scale scale(scene, cell);
    Kind kind;
    kind.name = cell.name;
    kind.width = std::max(scale.x(cell.width), 0);
    for (size_t shape = 0; shape < cell.shapes.size(); ++shape) {
        for (const placer::Rect& rect : cell.shapes[shape].rects) {
            const Box box = scale.box(rect);
            if (box.xl < box.xh && box.yl < box.yh) { // a line is no metal
                kind.metal.push_back({box, static_cast<int32_t>(shape)});
            }
        }
    }
    kind.joints = findJoints(kind.metal);
    for (const placer::Solution& solution : cell.solutions) {
        kind.colourings.push_back({solution.stitches, solution.masks});
    }
    return kind;
}

Place placeOf(const placer::Component& comp)
{
    const design::Turn turn = design::turnOf(comp.orient);
    return {coordinate(comp.x), coordinate(comp.y), turn.mirrorX, turn.mirrorY};
}

void addFloorplan(Scene& scene, const placer::Design& design)
{
    for (const placer::Row& row : design.rows) {
        scene.rows.push_back(
            {row.name, boxOf(row.x, row.y, int64_t{row.numSites} * row.step, scene.rowHeight)});
    }
    for (const design::Stretch& stretch : design::freeStretches(design)) {
        const placer::Row& row = design.rows[static_cast<size_t>(stretch.row)];
        scene.stretches.push_back(
            boxOf(stretch.x, row.y, int64_t{stretch.numSites} * row.step, scene.rowHeight));
    }
    for (const placer::Macro& macro : design.macros) {
        scene.macros.push_back({macro.name, boxOf(macro.x, macro.y, macro.width, macro.height)});
    }
    for (const placer::Pin& pin : design.pins) {
        scene.pins.push_back({pin.name, coordinate(pin.x), coordinate(pin.y)});
    }
}

/// The solution of a component, -1 if it is unknown or its cell has none of that number.
int32_t solutionOf(const Extras& extras, const Scene& scene, size_t component, int32_t kind)
{
    const placer::ColorRecord* const record =
        component < extras.colours.size() ? extras.colours[component] : nullptr;
    const int32_t solution = record != nullptr ? record->solution : -1;
    const bool exists =
        kind >= 0 && solution >= 0 &&
        static_cast<size_t>(solution) < scene.kinds[static_cast<size_t>(kind)].colourings.size();
    return exists ? solution : -1;
}

void addCells(Scene& scene, const placer::Design& design, const Extras& extras)
{
    scene.cells.reserve(design.components.size());
    for (const placer::Component& comp : design.components) {
        Cell cell;
        cell.name = comp.name;
        cell.kind = comp.cell;
        cell.place = placeOf(comp);
        cell.before = cell.place;
        cell.colouring = solutionOf(extras, scene, scene.cells.size(), comp.cell);
        scene.cells.push_back(std::move(cell));
    }
}

/// Sets where the cells stood. In most pairs of placements the components have one order.
void addBefore(Scene& scene, const placer::Design& before)
{
    std::unordered_map<std::string_view, const placer::Component*> byName;
    for (size_t i = 0; i < scene.cells.size(); ++i) {
        Cell& cell = scene.cells[i];
        if (i < before.components.size() && before.components[i].name == cell.name) {
            cell.before = placeOf(before.components[i]);
            continue;
        }
        if (byName.empty()) {
            for (const placer::Component& comp : before.components) {
                byName[comp.name] = &comp;
            }
        }
        if (const auto found = byName.find(cell.name); found != byName.end()) {
            cell.before = placeOf(*found->second);
        }
    }
    scene.moved = true;
}

void addNets(Scene& scene, const placer::Design& design)
{
    scene.netBegin.push_back(0);
    for (const placer::Net& net : design.nets) {
        for (const placer::Member& member : net.members) {
            scene.members.push_back(member.component >= 0 ? member.component : -1 - member.pin);
        }
        scene.netBegin.push_back(static_cast<int32_t>(scene.members.size()));
    }
}

} // namespace

Scene buildScene(const placer::Design& design, const Extras& extras)
{
    Scene scene;
    scene.siteWidth = clampTo(design::siteWidth(design), WIDEST);
    scene.rowHeight = clampTo(design::rowHeight(design), WIDEST);
    scene.coloured = !extras.colours.empty();
    for (const placer::Cell& cell : design.cells) {
        scene.kinds.push_back(kindOf(scene, cell));
    }
    addFloorplan(scene, design);
    addCells(scene, design, extras);
    if (extras.before != nullptr) {
        addBefore(scene, *extras.before);
    }
    addNets(scene, design);
    return scene;
}

} // namespace kit::view
