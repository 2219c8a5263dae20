// SPDX-License-Identifier: BSD-3-Clause
// A placement with its colours: which belong to which component, whether they are those of its cell, and how
// the design is known outside of the placer's files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/fixedCells.h"
#include "kit/design/issue.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::design {

/// A component for messages, with its cell and its place: "U1 (INV) at (380, 0)".
std::string placeText(const placer::Component& comp);

/// [component] its colours, nullptr if there are none.
using Matching = std::vector<const placer::ColorRecord*>;

/// Matches components and colours by name; of a name that comes again, in file order.
///
/// @param records  must outlive the result
/// @param issues   out: components and colours that have no partner, names that come again
Matching matchColors(const placer::Design& design, const std::vector<placer::ColorRecord>& records,
                     Issues& issues);

/// Compares all colours with the solutions of the components' cells.
///
/// @param issues  out: cells, solutions, masks and stitches that are not as they should be
void checkColors(const placer::Design& design, const Matching& matching, Issues& issues);

/// The files of a placement with its colors.
struct PlacementPaths {
    std::string placement; ///< path of the placement file
    std::string colors;    ///< path of the colors file; empty if there is none
    std::string mapOf{};   ///< path of the placement file beside which the map lies; empty for this one
    std::string fixed{};   ///< path of what stays where it is; empty for that beside the placement
    std::string cellDir;   ///< folder of the colour files of the cells
    std::string cells;     ///< path of the cell list; empty for the cells that the placement names
};

/// A placement, its cells and the colors of its components.
struct ColoredPlacement {
    placer::Design design;
    std::vector<placer::ColorRecord> colors;
    Findings faults;                    ///< errors in the form of the files
    std::optional<int64_t> pinLength{}; ///< wirelength by pins, half DBU, for those who have asked for it
    std::vector<placer::ColorRecord> fixedColors{}; ///< of the cells of Design::fixed, which come first
};

/// Adds the colours of the cells that stay where they are to those of the components.
///
/// @param colors  must outlive the matching
void addFixedColors(const std::vector<placer::ColorRecord>& colors, Matching& matching);

/// Reads a placement with true orientations, its cells and its colors.
///
/// Errors: throws Fault if a file cannot be opened; a colour file that cannot is one of the faults.
ColoredPlacement readColoredPlacement(const PlacementPaths& paths);

/// DBU of a micrometre in a placement that does not say its UNITS: that is what the core box has.
inline constexpr int32_t USUAL_DBU_PER_MICRON = 2000;

/// The name and the scale of a design.
struct Frame {
    std::string topCell;      ///< as a GDSII file may have it
    int32_t dbuPerMicron = 0; ///< positive
};

/// The frame of a design by DESIGN and UNITS of its placement; without them the file's name, and 2000.
///
/// @param placement  path of the placement file
Frame frameOf(const placer::Design& design, const std::string& placement);

} // namespace kit::design
