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

/// Reads a design, checks all of it, and writes every problem to standard output, sorted by file and line. A
/// file that cannot be read is a problem, too.
///
/// @return exit status: 0 without findings or with notes only, 1 with warnings, 2 with errors
int run(const Options& options);

} // namespace kit::lint
