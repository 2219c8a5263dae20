// SPDX-License-Identifier: BSD-3-Clause
// What of a cell can meet a neighbour in the row: the rectangles near one of its edges, with their masks.
//
// Many solutions of a cell differ in its middle only: what they show at an edge is the same, and a spacing is
// worked out once for all of them.
#pragma once

#include <cstdint>
#include <vector>

#include "lut/cell.h"

namespace vireloce {

/// A rectangle near an edge, as seen from it.
struct FacingRect {
    int32_t dist; ///< to the edge, DBU, less than the minimum distance; negative if it sticks out
    int32_t yl;   ///< bottom, DBU
    int32_t yh;   ///< top, DBU

    /// Whether distance and both ends are equal.
    bool operator==(const FacingRect&) const = default;
};

/// A shape with rectangles near an edge.
struct FacingShape {
    int32_t mask;                  ///< 0, 1 or 2, and no rail
    std::vector<FacingRect> rects; ///< those near the edge, in the order of the shape

    /// Whether masks are equal and rectangles are, in the same order.
    bool operator==(const FacingShape&) const = default;
};

/// All that an edge shows in one solution, in the order of the shapes.
using Facing = std::vector<FacingShape>;

/// An edge of a cell, the left or the right one, which faces a neighbour.
struct Edge {
    /// Collects what the edge of a cell shows.
    ///
    /// @param cell     read here only
    /// @param isLeft   whether it is the left edge of the cell as it is drawn
    /// @param minDist  least distance of two rectangles of one mask, DBU
    Edge(const Cell& cell, bool isLeft, int32_t minDist);

    /// Whether no rectangles of the two edges overlap in x once the cells abut, and blockOf() tells all.
    bool isClear(const Edge& other) const;

    std::vector<Facing> facings; ///< what it shows, each once, in the order of the solutions
    std::vector<size_t> shown;   ///< [solution] index in facings
    int32_t nearest;             ///< least FacingRect::dist, DBU; the largest integer without rectangles
    bool needsRectangles;        ///< distances to the edge do not tell where the rectangles stand
};

/// Spacings between two cells that stand side by side, for edges that are clear.
///
/// Required: an entry follows from the first pair of rectangles that gives a positive value, in the order
/// left shape, right shape, left rectangle, right rectangle; not from the largest over all pairs.
///
/// @param left     edge of the left cell
/// @param right    edge of the right cell
/// @param minDist  least distance of two rectangles of one mask, DBU; that of both edges
/// @return [left solution][right solution] spacing, sites of the library
std::vector<std::vector<int32_t>> blockOf(const Edge& left, const Edge& right, int32_t minDist);

} // namespace vireloce
