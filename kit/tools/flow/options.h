// SPDX-License-Identifier: BSD-3-Clause
// What the subcommand `flow` is asked to do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kit/design/distance.h"

namespace kit::flow {

/// The arguments of `flow`. Where nothing is given, the defaults of the steps hold.
struct Options {
    std::vector<std::string> lefs;           ///< paths of the LEF files
    std::string def;                         ///< path of the DEF file
    std::string out;                         ///< path of the result files without extension
    std::string layer;                       ///< name of metal 1; if it is empty `import` finds it
    std::string site;                        ///< W,H in micrometres
    std::string cellPath;                    ///< folder of colour files that are there already
    std::string cache;                       ///< folder that keeps colourings from run to run
    std::optional<int32_t> maxSolutions;     ///< colour solutions of a cell
    std::optional<int32_t> jobs;             ///< threads for colouring and for `refine`
    std::optional<design::Distance> minDist; ///< what shapes of one mask need
    std::optional<int32_t> algo;             ///< placement method
    std::optional<double> weight;            ///< cost of a site of wirelength against a stitch
    std::optional<int32_t> moveRange;        ///< of local shifts, sites
    int32_t effort = 3;                      ///< of `refine`; 0 leaves it out
    bool asDrawn = false;                    ///< take turned cells as they are drawn, as the placer does
    bool legalize = false;                   ///< put cells without a legal place on free sites
    bool allowConflicts = false;             ///< take the least bad colouring of a cell that has no good one
    bool railsConflict = false; ///< keep metal near rails off mask 0, in cells that can be coloured so
    bool rowsMeet = false;      ///< keep metal of one mask in different rows apart
    bool noFill = false;        ///< leave gaps without fillers
    bool keep = false;          ///< keep all files in between
    bool force = false;         ///< replace earlier results
};

/// The results, and what `export` needs to make them again: OUT with these extensions, of which not every
/// design has .fixed, and the folder of the colour files.
inline constexpr const char* RESULTS[] = {".place", ".colors",  ".cells", ".pins", ".netlist",
                                          ".map",   ".offsets", ".fixed", ".def",  ".gds",
                                          ".lyp",   ".lyrdb",   ".html",  ".json"};
inline constexpr const char* LIBRARY = ".library";

} // namespace kit::flow
