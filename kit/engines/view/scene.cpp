// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/scene.h"

#include <algorithm>
#include <limits>

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

} // namespace kit::view
