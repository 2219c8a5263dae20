// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/scene.h"

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>
#include <utility>

#include "kit/design/standing.h"
#include "kit/design/stretches.h"

namespace kit::view {

namespace {

void include(Box& bounds, const Box& box)
{
    bounds = {std::min(bounds.xl, box.xl), std::min(bounds.yl, box.yl), std::max(bounds.xh, box.xh),
              std::max(bounds.yh, box.yh)};
}

void includeCell(Box& bounds, const Scene& scene, const Cell& cell, const Place& place)
{
    include(bounds, {place.x, place.y, place.x + widthOf(scene, cell), place.y + scene.rowHeight});
}

Box common(const Box& a, const Box& b)
{
    return {std::max(a.xl, b.xl), std::max(a.yl, b.yl), std::min(a.xh, b.xh), std::min(a.yh, b.yh)};
}

/// Half the perimeter, 0 for a point, negative for boxes that do not touch.
int32_t extentOf(const Box& box)
{
    const int32_t width = box.xh - box.xl;
    const int32_t height = box.yh - box.yl;
    return width < 0 || height < 0 ? -1 : width + height;
}

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
    const std::vector<int32_t> drawn = drawnCells(design);
    scene.cells.reserve(drawn.size());
    for (size_t i = 0; i < drawn.size(); ++i) {
        if (drawn[i] < 0) {
            continue;
        }
        const placer::Component& comp = design.component(static_cast<int32_t>(i));
        Cell cell;
        cell.isFixed = design.isFixed(static_cast<int32_t>(i));
        cell.name = comp.name;
        cell.kind = comp.cell;
        cell.place = placeOf(comp);
        cell.before = cell.place;
        cell.colouring = solutionOf(extras, scene, i, comp.cell);
        scene.cells.push_back(std::move(cell));
    }
}

/// Sets where the cells stood.
void addBefore(Scene& scene, const placer::Design& before)
{
    const auto matches = matchByName(scene.cells, before.components);
    for (size_t i = 0; i < matches.size(); ++i) {
        if (matches[i] != nullptr) {
            scene.cells[i].before = placeOf(*matches[i]);
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

int32_t widthOf(const Scene& scene, const Cell& cell)
{
    return cell.kind < 0 ? scene.siteWidth : scene.kinds[static_cast<size_t>(cell.kind)].width;
}

Box boundsOf(const Scene& scene)
{
    constexpr int32_t LEAST = std::numeric_limits<int32_t>::min();
    constexpr int32_t GREATEST = std::numeric_limits<int32_t>::max();
    Box bounds{GREATEST, GREATEST, LEAST, LEAST};
    for (const Block& row : scene.rows) {
        include(bounds, row.box);
    }
    for (const Block& macro : scene.macros) {
        include(bounds, macro.box);
    }
    for (const Cell& cell : scene.cells) {
        includeCell(bounds, scene, cell, cell.place);
        includeCell(bounds, scene, cell, cell.before);
    }
    if (bounds.xl > bounds.xh) {
        bounds = {};
    }
    bounds.xh = std::max(bounds.xh, bounds.xl + std::max(scene.siteWidth, 1));
    bounds.yh = std::max(bounds.yh, bounds.yl + std::max(scene.rowHeight, 1));
    return bounds;
}

Box placed(const Scene& scene, const Cell& cell, const Box& box)
{
    const Place& place = cell.place;
    const int32_t width = widthOf(scene, cell);
    const int32_t xl = place.mirrored ? width - box.xh : box.xl;
    const int32_t yl = place.flipped ? scene.rowHeight - box.yh : box.yl;
    return {place.x + xl, place.y + yl, place.x + xl + box.xh - box.xl, place.y + yl + box.yh - box.yl};
}

int64_t countStitches(const Scene& scene)
{
    int64_t count = 0;
    for (const Cell& cell : scene.cells) {
        if (cell.kind >= 0 && cell.colouring >= 0) {
            const Kind& kind = scene.kinds[static_cast<size_t>(cell.kind)];
            count += kind.colourings[static_cast<size_t>(cell.colouring)].stitches;
        }
    }
    return count;
}

std::vector<Joint> findJoints(const std::vector<Metal>& metal)
{
    std::map<std::pair<int32_t, int32_t>, Box> largest;
    for (size_t i = 0; i < metal.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            const auto [first, second] = std::minmax(metal[i].shape, metal[j].shape);
            const Box box = common(metal[i].box, metal[j].box);
            if (first == second || extentOf(box) <= 0) {
                continue;
            }
            const auto [entry, isNew] = largest.try_emplace({first, second}, box);
            if (!isNew && extentOf(box) > extentOf(entry->second)) {
                entry->second = box;
            }
        }
    }
    std::vector<Joint> joints;
    joints.reserve(largest.size());
    for (const auto& [shapes, box] : largest) {
        joints.push_back({shapes.first, shapes.second, box});
    }
    return joints;
}

bool isStitch(const Joint& joint, const Colouring& colouring)
{
    const auto maskOf = [&](int32_t shape) {
        const auto index = static_cast<size_t>(shape);
        return index < colouring.masks.size() ? colouring.masks[index] : -1;
    };
    return maskOf(joint.first) != maskOf(joint.second);
}

std::vector<int32_t> drawnCells(const placer::Design& design)
{
    std::vector<int32_t> cells(design.components.size());
    std::iota(cells.begin(), cells.end(), 0);
    auto next = static_cast<int32_t>(cells.size());
    for (const placer::Component& fixed : design.fixed) {
        cells.push_back(fixed.cell >= 0 ? next++ : -1);
    }
    return cells;
}

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
