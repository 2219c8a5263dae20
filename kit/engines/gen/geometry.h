// SPDX-License-Identifier: BSD-3-Clause
// The metal of a cell: rails along the bottom and the top, and vertical bars on four tracks between them.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "kit/engines/gen/random.h"
#include "kit/formats/placer/design.h"

namespace kit::gen {

inline constexpr int32_t LIBRARY_HEIGHT = 1400; ///< height of every cell, library units
inline constexpr int32_t MASK_SPACING = 185;    ///< metal of one mask keeps this distance, library units

/// The tracks lie so far apart that metal on two of them never conflicts; a bar may be cut for a stitch in
/// the middle between two tracks.
inline constexpr int32_t TRACKS = 4;
inline constexpr int32_t FIRST_TRACK = 150; ///< bottom of the first track, DBU
inline constexpr int32_t TRACK_WIDTH = 120; ///< DBU
inline constexpr int32_t TRACK_PITCH = 326; ///< DBU

/// A rectangle, library units.
struct Box {
    int32_t xl;
    int32_t yl;
    int32_t xh;
    int32_t yh;
};

/// A piece of metal that is on one mask as a whole.
struct Shape {
    Box box;
    bool rail = false;   ///< a power rail: mask 0, never conflicts with the neighbour
    bool joined = false; ///< touches the shape before it, of which a stitch may part it
};

/// Metal of a cell, at random, rails first.
///
/// The outermost bars are near enough to the edges to conflict with those of any neighbour, all others too
/// far.
///
/// @param sites   width of the cell, sites, at least 2
/// @param random  source of choices
std::vector<Shape> drawShapes(int32_t sites, Random& random);

/// Whether two rectangles are too close for one mask.
bool tooClose(const Box& a, const Box& b);

} // namespace kit::gen
