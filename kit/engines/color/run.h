// SPDX-License-Identifier: BSD-3-Clause
// A library from its LEF files to its colour files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/distance.h"
#include "kit/engines/color/cell.h"
#include "kit/engines/color/library.h"
#include "kit/engines/color/metal.h"

namespace kit::color {

/// Everything the user can choose.
struct Options {
    std::vector<std::string> lefs;
    std::string layer = "metal1";
    std::string outDir;
    std::optional<SiteSize> site;
    design::Distance minDist; ///< what shapes of one mask need
    Settings settings;        ///< run() takes the distance from minDist
    size_t jobs = 1;
    bool svg = false;
    bool force = false;
};

/// A library with its colourings.
struct Result {
    Selection selection;
    std::vector<CellMetal> metal;      ///< [cell] those that could be read
    std::vector<ColouredCell> colours; ///< [cell]
    Findings findings;
    double seconds = 0; ///< for colouring alone
};

/// Writes the colour files of a library and tells how it went.
///
/// Messages about the files go to standard error, the summary to standard output.
///
/// @return exit status: 0 if every cell has a colouring; 1 if one has none without conflicts; 2 after errors
///         in the files
/// Errors: throws Fault for files that cannot be read or written, or that exist already.
int run(Options options);

} // namespace kit::color
