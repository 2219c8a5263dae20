// SPDX-License-Identifier: BSD-3-Clause
// Rectangles of metal, cut and joined.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/geometry/rect.h"

namespace kit::geometry {

/// A label that is none.
inline constexpr int32_t NO_LABEL = -1;

/// A rectangle of something: of a mask, or a shape.
struct Labelled {
    Rect box;
    int32_t label = NO_LABEL;

    bool operator==(const Labelled&) const = default;
};

/// The area of some boxes as boxes that do not overlap: those cut at all heights where something begins or
/// ends, and joined again where they lie on each other with one width. Where a part of the area is one box,
/// so is the result.
///
/// Cost: boxes squared.
std::vector<Rect> unite(const std::vector<Rect>& boxes);

/// What some boxes leave free in another one.
std::vector<Rect> subtract(const Rect& from, const std::vector<Rect>& boxes);

/// Cuts some boxes by others that cover them. What none covers has no label; where two labels overlap, both
/// have the overlap.
///
/// @return by label, from NO_LABEL upwards
std::vector<Labelled> cutByLabel(const std::vector<Rect>& boxes, const std::vector<Labelled>& covers);

} // namespace kit::geometry
