// SPDX-License-Identifier: BSD-3-Clause
// Which files a picture is drawn from.
//
// A design's files lie side by side under one base name; a result has only its placement, and colours
// perhaps. So what is not named is looked for beside the placement, then beside the input placement.
// Without a cell list the library is made of the cells that the placement names.
#pragma once

#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/distance.h"
#include "kit/engines/view/scene.h"

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

/// The files that were found. Paths are empty where there is none.
struct InputPaths {
    std::string placement;
    std::string before;
    std::string cells;
    std::string pins;
    std::string netlist;
    std::string colors;
    std::string cellDir;
};

/// Finds the files.
///
/// Errors: throws Fault if a named file or folder does not exist.
InputPaths findInputs(const Options& options);

/// The paths of all that is read.
std::vector<std::string> allOf(const InputPaths& paths);

/// Reads the files and builds what is drawn. Problems of the files are appended to `findings`.
///
/// Errors: throws Fault if a file cannot be opened, or the colours are those of another placement.
Scene readScene(const InputPaths& paths, const design::Distance& minDist, Findings& findings);

} // namespace kit::view
