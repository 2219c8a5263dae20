// SPDX-License-Identifier: BSD-3-Clause
// Rectangles of metal, cut and joined. Lengths are picometres.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/formats/lefdef/lef.h"
#include "kit/geometry/polygon.h"

namespace kit::exporter {

using Box = geometry::Rect;

/// A mask, or none.
inline constexpr int32_t NO_MASK = -1;

/// A rectangle on a mask.
struct MaskBox {
    Box box;
    int32_t mask = NO_MASK;

    bool operator==(const MaskBox&) const = default;
};

/// The rectangles of a shape, cut between its corners' heights if it is a polygon with axis-parallel edges.
/// Empty for another polygon.
std::vector<Box> boxesOf(const lefdef::LefShape& shape);

/// The area of some boxes as boxes that do not overlap: those cut at all heights where something begins or
/// ends, and joined again where they lie on each other with one width. Where a part of the area is one box,
/// so is the result.
///
/// Cost: boxes squared.
std::vector<Box> unite(const std::vector<Box>& boxes);

/// What some boxes leave free in another one.
std::vector<Box> subtract(const Box& from, const std::vector<Box>& boxes);

/// Cuts some boxes by the masks of the metal that they are made of. What no metal covers has no mask; where
/// two masks overlap, both have the overlap.
///
/// @return by mask, from NO_MASK upwards
std::vector<MaskBox> cutByMask(const std::vector<Box>& boxes, const std::vector<MaskBox>& metal);

} // namespace kit::exporter
