// SPDX-License-Identifier: BSD-3-Clause
// A cell as a graph: parts of polygons, where they join, and which may not share a mask.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/engines/color/cuts.h"
#include "kit/engines/color/metal.h"

namespace kit::color {

/// A part of a polygon, which has one mask.
struct Part {
    size_t polygon = 0;      ///< index in CellMetal::polygons
    std::vector<Rect> rects; ///< without common area; at a stitch with overlap also what both masks cover
    uint8_t masks = 7;       ///< bit k: it may have mask k
    bool atSide = false; ///< within the distance of the cell's left or right edge: neighbours see its mask
    bool atRail = false; ///< within the distance of a rail: better not on mask 0
};

/// Where two parts of a polygon meet: a possible stitch.
struct Joint {
    size_t a = 0; ///< index of a part
    size_t b = 0;
    Cut cut;
};

/// Two parts of different polygons that are closer than the distance.
struct Pair {
    size_t a = 0; ///< index of a part, less than b
    size_t b = 0;
    int64_t squared = 0; ///< square of their distance
};

/// Two parts of one polygon that do not meet and are closer than the distance: they may share a mask if metal
/// of that mask joins them.
struct Bond {
    size_t a = 0; ///< index of a part, less than b
    size_t b = 0;
    int64_t squared = 0;         ///< square of their distance
    std::vector<size_t> members; ///< ascending; a, b, and all parts by which they may be joined
};

struct Graph {
    std::vector<Part> parts; ///< by polygons
    std::vector<Joint> joints;
    std::vector<Pair> pairs;
    std::vector<Bond> bonds;
};

/// The graph of a cell with its possible stitches.
///
/// A part that reaches the cell's bottom or top may not have mask 0, or the placer would take it for a rail.
/// Where rails conflict, nor may a part within the distance of a rail. Where rows meet, a part that the next
/// row may have metal too close to has mask 1.
/// A part at the end of a polygon that has nothing close but what the part it hangs on has, and that no
/// neighbour of the cell sees, is left joined: parting it gains nothing.
///
/// @param bottom  lowest metal in all cells of the library, at most 0
Graph graphOf(const CellMetal& metal, const Rules& rules, int32_t bottom);

/// Whether metal of one mask joins two parts of a polygon.
///
/// @param isOnMask  tells whether a part has the mask
template <class IsOnMask>
bool joined(const std::vector<Joint>& joints, size_t from, size_t to, IsOnMask isOnMask)
{
    std::vector<size_t> reached{from};
    for (size_t i = 0; i < reached.size(); ++i) {
        for (const Joint& joint : joints) {
            const size_t here = reached[i];
            const size_t next = joint.a == here ? joint.b : joint.a;
            const bool meets = joint.a == here || joint.b == here;
            if (meets && isOnMask(next) && std::ranges::find(reached, next) == reached.end()) {
                reached.push_back(next);
            }
        }
    }
    return std::ranges::find(reached, to) != reached.end();
}

} // namespace kit::color
