// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/html.h"

#include <algorithm>
#include <cassert>
#include <numeric>
#include <string_view>

#include "kit/base/text/base64.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/json.h"
#include "kit/engines/view/density.h"
#include "kit/engines/view/viewerText.h"

namespace kit::view {

namespace {

const Place& placeOf(const Cell& cell, bool before)
{
    return before ? cell.before : cell.place;
}

/// Stripes that the cells are dealt to: a damaged placement may lie billions apart, and then they are less
/// exact.
constexpr int64_t MOST_STRIPES = 1'000'000;

uint16_t shortIndex(int32_t index)
{
    return index < 0 ? NO_INDEX : static_cast<uint16_t>(std::min<int32_t>(index, NO_INDEX));
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

Json describeDensity(const Density& grid)
{
    return {{"x", grid.x},         {"y", grid.y},
            {"side", grid.side},   {"columns", grid.columns},
            {"lines", grid.lines}, {"shares", base64(grid.shares)}};
}

/// What the page needs besides its arrays: sizes, rows, macros, library, density. JSON, safe in a script
/// element.
std::string describe(const Scene& scene)
{
    Json kinds = Json::array();
    for (const Kind& kind : scene.kinds) {
        kinds.push_back(describeKind(kind));
    }
    Json stretches = Json::array(); // four numbers each
    for (const Box& stretch : scene.stretches) {
        append(stretches, stretch);
    }
    Json pins = Json::array();
    for (const Terminal& pin : scene.pins) {
        pins.push_back({{"name", withoutControls(pin.name)}, {"x", pin.x}, {"y", pin.y}});
    }
    Json data{{"title", withoutControls(scene.title)},
              {"dbuPerMicron", scene.dbuPerMicron},
              {"siteWidth", scene.siteWidth},
              {"rowHeight", scene.rowHeight},
              {"minDist", scene.minDistText},
              {"pinLength", scene.pinLength},
              {"pinLengthBefore", scene.pinLengthBefore},
              {"coloured", scene.coloured},
              {"moved", scene.moved},
              {"bounds", corners(boundsOf(scene))},
              {"rows", describeBlocks(scene.rows)},
              {"macros", describeBlocks(scene.macros)},
              {"stretches", stretches},
              {"pins", pins},
              {"kinds", kinds},
              {"density", describeDensity(densityOf(scene, /*before=*/false))}};
    if (scene.moved) {
        data["densityBefore"] = describeDensity(densityOf(scene, /*before=*/true));
    }
    data.sortMembers();
    return escapeScript(data.dump());
}

/// Writes an array as a script element of that id, which the browser does not run.
template <typename Array>
void writeArray(OutputFile& file, std::string_view id, const Array& array)
{
    file << "<script type=\"text/plain\" id=\"" << id << "\">";
    writeBase64(file, bytesOf(array));
    file << "</script>\n";
}

/// Writes an array of what a function gives for some cells.
template <typename ValueOf>
void writeCells(OutputFile& file, std::string_view id, const Scene& scene, const std::vector<int32_t>& order,
                const ValueOf& valueOf)
{
    std::vector<decltype(valueOf(scene.cells.front()))> values;
    values.reserve(order.size());
    for (const int32_t i : order) {
        values.push_back(valueOf(scene.cells[static_cast<size_t>(i)]));
    }
    writeArray(file, id, values);
}

/// Writes the cells, in the order of their rows: index i in the page is not that of Scene::cells.
void writePlaces(OutputFile& file, const Scene& scene, const RowIndex& rows)
{
    writeCells(file, "x", scene, rows.order, [](const Cell& cell) { return cell.place.x; });
    writeCells(file, "y", scene, rows.order, [](const Cell& cell) { return cell.place.y; });
    writeCells(file, "kind", scene, rows.order, [](const Cell& cell) { return shortIndex(cell.kind); });
    writeCells(file, "colouring", scene, rows.order,
               [](const Cell& cell) { return shortIndex(cell.colouring); });
    writeCells(file, "turns", scene, rows.order, [](const Cell& cell) { // two bits now, two bits before
        return static_cast<uint8_t>(bitsOf(cell.place) | bitsOf(cell.before) << 2U);
    });
    std::string names; // one per line
    for (const int32_t i : rows.order) {
        names += withoutControls(scene.cells[static_cast<size_t>(i)].name) + '\n';
    }
    writeArray(file, "names", names);
    writeArray(file, "stripes", rows.begin);
}

/// Writes where the cells stood in the input placement; empty arrays if that is not known.
///
/// @param order    the cells as the page has them
/// @param indexOf  [cell of the scene] its place in `order`
void writeBefore(OutputFile& file, const Scene& scene, const std::vector<int32_t>& order,
                 const std::vector<int32_t>& indexOf)
{
    const RowIndex rows = scene.moved ? indexRows(scene, /*before=*/true) : RowIndex();
    const std::vector<int32_t> cells = scene.moved ? order : std::vector<int32_t>();
    writeCells(file, "beforeX", scene, cells, [](const Cell& cell) { return cell.before.x; });
    writeCells(file, "beforeY", scene, cells, [](const Cell& cell) { return cell.before.y; });
    writeCells(file, "beforeOrder", scene, rows.order,
               [&](const Cell& cell) { return indexOf[static_cast<size_t>(&cell - scene.cells.data())]; });
    writeArray(file, "beforeStripes", rows.begin);
}

void writeData(OutputFile& file, const Scene& scene)
{
    file << "<script type=\"application/json\" id=\"design\">" << describe(scene) << "</script>\n";
    const RowIndex rows = indexRows(scene, /*before=*/false);
    const std::vector<int32_t> indexOf = invert(rows.order);
    writePlaces(file, scene, rows);
    writeBefore(file, scene, rows.order, indexOf);
    writeArray(file, "netBegin", scene.netBegin);
    std::vector<int32_t> members; // index of a cell in the page, or -1 - that of a pin
    for (const int32_t member : scene.members) {
        members.push_back(member < 0 ? member : indexOf[static_cast<size_t>(member)]);
    }
    writeArray(file, "members", members);
    std::vector<int32_t> conflicts; // [6 * conflicts] two cells, then the box
    for (const auto& [left, right, box] : scene.conflicts) {
        conflicts.insert(conflicts.end(),
                         {indexOf[static_cast<size_t>(left)], indexOf[static_cast<size_t>(right)], box.xl,
                          box.yl, box.xh, box.yh});
    }
    writeArray(file, "conflictList", conflicts);
}

/// Writes the text up to a mark and takes both away from it.
void writeUpTo(OutputFile& file, std::string_view& text, std::string_view mark)
{
    const size_t place = text.find(mark);
    assert(place != std::string_view::npos);
    file << text.substr(0, place);
    text.remove_prefix(place + mark.size());
}

} // namespace

RowIndex indexRows(const Scene& scene, bool before)
{
    const Box bounds = boundsOf(scene);
    const int64_t height = std::max(scene.rowHeight, 1);
    const int64_t stripes = std::min((int64_t{bounds.yh} - bounds.yl) / height + 1, MOST_STRIPES);
    const auto stripeOf = [&](int32_t cell) {
        const int64_t y = placeOf(scene.cells[static_cast<size_t>(cell)], before).y;
        return static_cast<size_t>(std::min((y - bounds.yl) / height, stripes - 1));
    };
    RowIndex index;
    index.y = bounds.yl;
    index.begin.assign(static_cast<size_t>(stripes) + 1, 0);
    index.order.resize(scene.cells.size());
    std::iota(index.order.begin(), index.order.end(), 0);
    for (const int32_t cell : index.order) {
        ++index.begin[stripeOf(cell) + 1];
    }
    std::partial_sum(index.begin.begin(), index.begin.end(), index.begin.begin());
    std::stable_sort(index.order.begin(), index.order.end(), [&](int32_t a, int32_t b) {
        const auto keyOf = [&](int32_t cell) {
            return std::pair(stripeOf(cell), placeOf(scene.cells[static_cast<size_t>(cell)], before).x);
        };
        return keyOf(a) < keyOf(b);
    });
    return index;
}

void writeHtml(OutputFile& file, const Scene& scene)
{
    std::string_view page = VIEWER_HTML;
    writeUpTo(file, page, "@title@");
    file << escapeXml(scene.title);
    writeUpTo(file, page, "@style@");
    file << VIEWER_CSS;
    writeUpTo(file, page, "@data@");
    writeData(file, scene);
    writeUpTo(file, page, "@script@");
    file << VIEWER_JS << page;
}

} // namespace kit::view
