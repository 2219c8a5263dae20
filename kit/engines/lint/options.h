// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

#include "kit/formats/placer/reader.h"

namespace kit::lint {

/// What to look at, and how to say it.
struct Options {
    placer::Paths paths;
    int32_t distance = 185; ///< colouring distance, library coordinates
    bool strict = false;    ///< warnings are errors
    bool json = false;      ///< JSON instead of lines
};

} // namespace kit::lint
