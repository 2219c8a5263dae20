// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::design {

/// The files of a placement with its colors.
struct PlacementPaths {
    std::string placement; ///< path of the placement file
    std::string colors;    ///< path of the colors file
    std::string mapOf{};   ///< path of the placement file beside which the map lies; empty for this one
    std::string cellDir;   ///< folder of the colour files of the cells
    std::string cells;     ///< path of the cell list; empty for the cells that the placement names
};

/// A placement, its cells and the colors of its components.
struct ColoredPlacement {
    placer::Design design;
    std::vector<placer::ColorRecord> colors;
    Findings faults; ///< errors in the form of the files
};

/// Reads a placement with true orientations, its cells and its colors.
///
/// Errors: throws Fault if a file cannot be opened; a colour file that cannot is one of the faults.
ColoredPlacement readColoredPlacement(const PlacementPaths& paths);

} // namespace kit::design
