// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include "kit/design/distance.h"

namespace kit::view {

/// What `view` is asked for. Paths are empty where none is given.
struct Options {
    std::string placement; ///< placement file, or path and base name of a design's files
    std::string out;       ///< picture: its name ends in .svg or .html
    std::string colors;    ///< colour solutions
    std::string cellDir;   ///< folder of the colour files
    std::string cells;     ///< cell list
    std::string before;    ///< input placement
    std::string netlist;
    std::string pins;
    design::Distance minDist; ///< of metal on one mask
    bool force = false;       ///< replace a picture that exists
};

} // namespace kit::view
