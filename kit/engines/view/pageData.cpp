// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/pageData.h"

#include <algorithm>

#include "kit/base/text/base64.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/json.h"

namespace kit::view {

namespace {

uint16_t shortIndex(int32_t index)
{
    return index < 0 ? PageArrays::NONE : static_cast<uint16_t>(std::min<int32_t>(index, PageArrays::NONE));
}

/// [cell of the scene] its place in the order of the rows.
std::vector<int32_t> invert(const std::vector<int32_t>& order)
{
    std::vector<int32_t> placeOf(order.size());
    for (size_t i = 0; i < order.size(); ++i) {
        placeOf[static_cast<size_t>(order[i])] = static_cast<int32_t>(i);
    }
    return placeOf;
}

unsigned bitsOf(const Place& place)
{
    return (place.mirrored ? 1U : 0U) | (place.flipped ? 2U : 0U);
}

void addCell(PageArrays& arrays, const Cell& cell)
{
    arrays.x.push_back(cell.place.x);
    arrays.y.push_back(cell.place.y);
    arrays.kind.push_back(shortIndex(cell.kind));
    arrays.colouring.push_back(shortIndex(cell.colouring));
    arrays.turns.push_back(static_cast<uint8_t>(bitsOf(cell.place) | bitsOf(cell.before) << 2U));
    arrays.names += withoutControls(cell.name);
    arrays.names += '\n';
}

void addBefore(PageArrays& arrays, const Scene& scene, const std::vector<int32_t>& order,
               const std::vector<int32_t>& indexOf)
{
    for (const int32_t i : order) {
        const Place& before = scene.cells[static_cast<size_t>(i)].before;
        arrays.beforeX.push_back(before.x);
        arrays.beforeY.push_back(before.y);
    }
    const RowIndex rows = indexRows(scene, /*before=*/true);
    arrays.beforeStripes = rows.begin;
    for (const int32_t i : rows.order) {
        arrays.beforeOrder.push_back(indexOf[static_cast<size_t>(i)]);
    }
}

void addNets(PageArrays& arrays, const Scene& scene, const std::vector<int32_t>& indexOf)
{
    arrays.netBegin = scene.netBegin;
    for (const int32_t member : scene.members) {
        arrays.members.push_back(member < 0 ? member : indexOf[static_cast<size_t>(member)]);
    }
}

void addConflicts(PageArrays& arrays, const Scene& scene, const std::vector<int32_t>& indexOf)
{
    for (const Conflict& conflict : scene.conflicts) {
        const Box& box = conflict.box;
        arrays.conflicts.insert(arrays.conflicts.end(), {indexOf[static_cast<size_t>(conflict.left)],
                                                         indexOf[static_cast<size_t>(conflict.right)], box.xl,
                                                         box.yl, box.xh, box.yh});
    }
}

Json corners(const Box& box)
{
    return Json::array({box.xl, box.yl, box.xh, box.yh});
}

void append(Json& list, const Box& box)
{
    for (const int32_t value : {box.xl, box.yl, box.xh, box.yh}) {
        list.push_back(value);
    }
}

/// Masks as one digit each, "-" for what is none.
std::string digitsOf(const std::vector<int32_t>& masks)
{
    std::string digits;
    for (const int32_t mask : masks) {
        digits += mask >= 0 && mask <= 2 ? static_cast<char>('0' + mask) : '-';
    }
    return digits;
}

Json describeKind(const Kind& kind)
{
    Json metal = Json::array(); // five numbers per rectangle: corners, shape
    for (const Metal& piece : kind.metal) {
        append(metal, piece.box);
        metal.push_back(piece.shape);
    }
    Json joints = Json::array(); // six numbers per joint: shapes, corners
    for (const Joint& joint : kind.joints) {
        joints.push_back(joint.first);
        joints.push_back(joint.second);
        append(joints, joint.box);
    }
    Json stitches = Json::array();
    Json masks = Json::array();
    for (const Colouring& colouring : kind.colourings) {
        stitches.push_back(colouring.stitches);
        masks.push_back(digitsOf(colouring.masks));
    }
    return {{"name", withoutControls(kind.name)},
            {"width", kind.width},
            {"metal", metal},
            {"joints", joints},
            {"stitches", stitches},
            {"masks", masks}};
}

Json describeBlocks(const std::vector<Block>& blocks)
{
    Json list = Json::array();
    for (const Block& block : blocks) {
        list.push_back({{"name", withoutControls(block.name)}, {"box", corners(block.box)}});
    }
    return list;
}

Json describeStretches(const Scene& scene)
{
    Json list = Json::array();
    for (const Box& stretch : scene.stretches) {
        append(list, stretch);
    }
    return list;
}

Json describePins(const Scene& scene)
{
    Json list = Json::array();
    for (const Terminal& pin : scene.pins) {
        list.push_back({{"name", withoutControls(pin.name)}, {"x", pin.x}, {"y", pin.y}});
    }
    return list;
}

Json describeDensity(const Density& grid)
{
    return {{"x", grid.x},         {"y", grid.y},
            {"side", grid.side},   {"columns", grid.columns},
            {"lines", grid.lines}, {"shares", base64(grid.shares)}};
}

} // namespace

PageArrays arrange(const Scene& scene)
{
    const RowIndex rows = indexRows(scene, /*before=*/false);
    const std::vector<int32_t> indexOf = invert(rows.order);
    PageArrays arrays;
    arrays.stripes = rows.begin;
    for (const int32_t i : rows.order) {
        addCell(arrays, scene.cells[static_cast<size_t>(i)]);
    }
    if (scene.moved) {
        addBefore(arrays, scene, rows.order, indexOf);
    }
    addNets(arrays, scene, indexOf);
    addConflicts(arrays, scene, indexOf);
    return arrays;
}

std::string describe(const Scene& scene)
{
    Json kinds = Json::array();
    for (const Kind& kind : scene.kinds) {
        kinds.push_back(describeKind(kind));
    }
    Json data{{"title", withoutControls(scene.title)},
              {"dbuPerMicron", scene.dbuPerMicron},
              {"siteWidth", scene.siteWidth},
              {"rowHeight", scene.rowHeight},
              {"minDist", scene.minDistText},
              {"coloured", scene.coloured},
              {"moved", scene.moved},
              {"bounds", corners(boundsOf(scene))},
              {"rows", describeBlocks(scene.rows)},
              {"macros", describeBlocks(scene.macros)},
              {"stretches", describeStretches(scene)},
              {"pins", describePins(scene)},
              {"kinds", kinds},
              {"density", describeDensity(densityOf(scene, /*before=*/false))}};
    if (scene.moved) {
        data["densityBefore"] = describeDensity(densityOf(scene, /*before=*/true));
    }
    data.sortMembers();
    return escapeScript(data.dump());
}

} // namespace kit::view
