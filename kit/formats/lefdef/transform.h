// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/orient.h"

namespace kit::lefdef {

/// Where a point of a master comes to lie when the master is oriented, and moved so that its lower left
/// corner stays at the origin.
///
/// @param width, height  the master's, as it is drawn
inline LefPoint transformed(LefPoint point, Length width, Length height, Orient orient)
{
    switch (orient) {
    case Orient::N:
        return point;
    case Orient::W:
        return {.x = height - point.y, .y = point.x};
    case Orient::S:
        return {.x = width - point.x, .y = height - point.y};
    case Orient::E:
        return {.x = point.y, .y = width - point.x};
    case Orient::FN:
        return {.x = width - point.x, .y = point.y};
    case Orient::FW:
        return {.x = point.y, .y = point.x};
    case Orient::FS:
        return {.x = point.x, .y = height - point.y};
    case Orient::FE:
        return {.x = height - point.y, .y = width - point.x};
    }
    return point;
}

} // namespace kit::lefdef
