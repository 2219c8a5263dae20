// SPDX-License-Identifier: BSD-3-Clause
// Where stitches may lie, and the pieces that they part.
//
// Sources: stitches by projection: Kahng, Park, Xu and Yao, "Layout decomposition for double patterning
// lithography", ICCAD 2008; what changes with three masks: Fang, Chang and Chen, "A novel layout
// decomposition algorithm for triple patterning lithography", DAC 2012, and Yu, Yuan, Ding and Pan, "Layout
// decomposition for triple patterning lithography", TCAD 2015. Differences: shapes are polygons rather than
// wires, cut into slabs first; a place is as good as another if it parts the neighbours alike, so that one is
// taken of each kind, the middle one.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "kit/engines/color/metal.h"

namespace kit::color {

/// The rules that a colouring obeys.
struct Rules {
    int32_t distance = 185;     ///< what two shapes of one mask need, library coordinates
    int32_t stitchOverlap = 0;  ///< by how much two masks overlap at a stitch, library coordinates
    int32_t bearable = NONE;    ///< conflicts of this distance or more may be left; NONE: none may
    bool railsConflict = false; ///< rails are metal of mask 0 like any other
    bool rowsMeet = false;      ///< metal that the next row may have metal close to has mask 1
    int32_t leastDepth = 0;     ///< of metal but rails from the bottom and top edges, over the library

    static constexpr int32_t NONE = std::numeric_limits<int32_t>::max();

    /// The distance without which it does not go.
    int32_t hardDistance() const { return std::min(distance, bearable); }
};

/// A place for a stitch: a line across an arm of a polygon.
struct Cut {
    bool upright = true; ///< the line is upright, the arm flat
    int32_t at = 0;      ///< x of an upright line, y of a flat one
    Rect box;            ///< what both masks cover; without overlap the line itself

    bool operator==(const Cut&) const = default;
};

/// Places for stitches in a polygon.
///
/// An arm is a part of the polygon at least twice as long as it is wide. Along it, each other polygon shades
/// the places that are closer to it than the hard distance. A stitch may lie where fewer shade than on both
/// sides, with arms or bodies that go on at an end counting as a side where more do. At a free end at least a
/// square is left, and as much between two stitches.
///
/// What stands beside the cell is not known. So upright arms at its left or right side, and the arm nearest
/// to the middle of a polygon that reaches from side to side, get a place in their middle if they have none.
///
/// @param polygon  to be cut
/// @param others   all other polygons but rails
/// @param width    of the cell
std::vector<Cut> cutsOf(const Polygon& polygon, const std::vector<const Polygon*>& others, const Rules& rules,
                        int32_t width);

/// A polygon in pieces.
struct Pieces {
    std::vector<std::vector<Rect>> rects;          ///< [piece] rectangles without common area
    std::vector<std::pair<size_t, size_t>> joined; ///< [cut] the pieces on its two sides; a cut that parts
                                                   ///< nothing has the same on both
};

/// Cuts a polygon.
///
/// Pieces are in the order of their leftmost, then lowest places. A piece has all of the boxes of its cuts.
Pieces cutUp(const std::vector<Rect>& polygon, const std::vector<Cut>& cuts);

} // namespace kit::color
