// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/design/distance.h"
#include "kit/formats/placer/reader.h"

namespace kit::lint {

/// What to look at, and how to say it.
struct Options {
    placer::Paths paths;
    design::Distance minDist; ///< what shapes of one mask need
    bool strict = false;      ///< warnings are errors
    bool json = false;        ///< JSON instead of lines
};

} // namespace kit::lint
