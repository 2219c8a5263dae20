// SPDX-License-Identifier: BSD-3-Clause
#include "lut/facing.h"

#include <algorithm>
#include <limits>

#include "lut/gapSpacing.h"
#include "qlib/exact.h"

namespace vireloce {

namespace {

bool isFar(int32_t dist)
{
    return dist > FAR_AWAY || dist < -FAR_AWAY;
}

/// What an edge of a cell shows in a solution.
Facing facingOf(const Cell& cell, bool isLeft, size_t solution, int32_t minDist)
{
    Facing facing;
    for (size_t k = 0; k < cell.shapes.size(); ++k) {
        if (!cell.isCritical(k, solution)) {
            continue;
        }
        FacingShape shape{cell.colors[solution][k], {}};
        for (const qBox* box : cell.shapes[k]) {
            const int32_t dist = isLeft ? box->xl : cell.outlineXh - box->xh;
            if (dist < minDist) {
                shape.rects.push_back({dist, box->yl, box->yh});
            }
        }
        if (!shape.rects.empty()) {
            facing.push_back(std::move(shape));
        }
    }
    return facing;
}

/// Spacing that two shapes of one mask need, DBU, 0 or more.
int32_t shapeDist(const FacingShape& left, const FacingShape& right, int32_t minDist)
{
    for (const FacingRect& a : left.rects) {
        for (const FacingRect& b : right.rects) {
            const int32_t dist = gapSpacing(a.dist + b.dist, verticalGap(a.yl, a.yh, b.yl, b.yh), minDist);
            if (dist > 0) {
                return dist;
            }
        }
    }
    return 0;
}

/// Spacing between two cells that show this to each other, DBU, 0 or more.
int32_t facingDist(const Facing& left, const Facing& right, int32_t minDist)
{
    for (const FacingShape& a : left) {
        for (const FacingShape& b : right) {
            const int32_t dist = a.mask == b.mask ? shapeDist(a, b, minDist) : 0;
            if (dist > 0) {
                return dist;
            }
        }
    }
    return 0;
}

/// [right solution] spacing to a cell that shows this on its right, sites of the library.
std::vector<int32_t> rowOf(const Facing& left, const Edge& right, int32_t minDist)
{
    std::vector<int32_t> sites;
    sites.reserve(right.facings.size());
    for (const Facing& facing : right.facings) {
        // Required: not the site width of the design.
        sites.push_back(ceilSites(facingDist(left, facing, minDist), LIBRARY_SITE_WIDTH));
    }
    std::vector<int32_t> row(right.shown.size());
    for (size_t t = 0; t < row.size(); ++t) {
        row[t] = sites[right.shown[t]];
    }
    return row;
}

} // namespace

// The neighbour stands at the width, and a mirrored cell turns about its outline: for distances to add up,
// the two must be one.
Edge::Edge(const Cell& cell, bool isLeft, int32_t minDist)
    : nearest(std::numeric_limits<int32_t>::max()),
      needsRectangles(cell.width != cell.outlineXh || isFar(cell.width))
{
    for (size_t s = 0; s < cell.colors.size(); ++s) {
        Facing facing = facingOf(cell, isLeft, s, minDist);
        for (const FacingShape& shape : facing) {
            for (const FacingRect& rect : shape.rects) {
                nearest = std::min(nearest, rect.dist);
                needsRectangles = needsRectangles || isFar(rect.dist);
            }
        }
        const auto same = std::find(facings.begin(), facings.end(), facing);
        shown.push_back(static_cast<size_t>(same - facings.begin()));
        if (same == facings.end()) {
            facings.push_back(std::move(facing));
        }
    }
}

bool Edge::isClear(const Edge& other) const
{
    return !needsRectangles && !other.needsRectangles && int64_t{nearest} + other.nearest >= 0;
}

std::vector<std::vector<int32_t>> blockOf(const Edge& left, const Edge& right, int32_t minDist)
{
    std::vector<std::vector<int32_t>> block;
    block.reserve(left.shown.size());
    std::vector<size_t> firstRow; // [facing of the left edge] first solution that shows it
    for (const size_t facing : left.shown) {
        if (facing == firstRow.size()) {
            firstRow.push_back(block.size());
            block.push_back(rowOf(left.facings[facing], right, minDist));
        } else {
            block.push_back(block[firstRow[facing]]);
        }
    }
    return block;
}

} // namespace vireloce
