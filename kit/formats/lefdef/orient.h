// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "kit/geometry/rect.h"

namespace kit::lefdef {

/// How a cell lies: turned counterclockwise by 0 (N), 90 (W), 180 (S) or 270 (E) degrees; those with an F are
/// turned, and then mirrored at the y axis.
enum class Orient : uint8_t { N, W, S, E, FN, FW, FS, FE };

/// The name of an orientation, as in a DEF file.
std::string_view nameOf(Orient orient);

/// The orientation of a name; none if it is not one.
std::optional<Orient> orientOf(std::string_view name);

/// Whether left and right are exchanged against N, of an upright orientation: FN and S.
constexpr bool isMirrored(Orient orient)
{
    return orient == Orient::FN || orient == Orient::S;
}

/// Whether top and bottom are exchanged against N, of an upright orientation: FS and S.
constexpr bool isUpsideDown(Orient orient)
{
    return orient == Orient::FS || orient == Orient::S;
}

/// Whether width and height are exchanged: W, E, FW and FE.
constexpr bool isOnItsSide(Orient orient)
{
    return orient == Orient::W || orient == Orient::E || orient == Orient::FW || orient == Orient::FE;
}

/// The upright orientation with these two properties.
constexpr Orient upright(bool mirrored, bool upsideDown)
{
    if (mirrored) {
        return upsideDown ? Orient::S : Orient::FN;
    }
    return upsideDown ? Orient::FS : Orient::N;
}

/// Where a point of a master comes to lie when the master is oriented, and moved so that its lower left
/// corner stays at the origin.
///
/// @param width, height  the master's, as it is drawn, in the unit of the point
geometry::Point transformed(const geometry::Point& point, int64_t width, int64_t height, Orient orient);

} // namespace kit::lefdef
