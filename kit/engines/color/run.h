// SPDX-License-Identifier: BSD-3-Clause
// A library from its LEF files to its colour files.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/distance.h"
#include "kit/engines/color/cell.h"
#include "kit/engines/color/metal.h"
#include "kit/formats/lefdef/library.h"

namespace kit::color {

using lefdef::Library;
using lefdef::SiteSize;

/// What of a library is coloured.
struct Selection {
    SiteSize site;
    std::vector<const lefdef::LefMacro*> cells; ///< in the order of the files
    size_t otherHeights = 0;                    ///< cells that are not one row high, and are left out
};

/// Names of cells that were listed.
using CellNames = std::set<std::string, std::less<>>;

/// Reads a list of cells as the placer has it: their number, and their names.
///
/// Errors: throws Fault if the file cannot be read, or is not such a list.
CellNames readCellNames(const std::string& path);

/// Selects the cells: those that stand in rows, or those listed.
///
/// The site is the one given; else the one of class CORE that most cells name, of equal ones the first; else
/// as wide as the greatest common divisor of the cells' widths, with a note. A cell of another height than
/// the site's, or than most cells where there is no site, is left out with a warning.
///
/// @param listed    of --cells, if given
/// @param site      of --site, if given
/// @param findings  out: warnings and notes
/// Errors: throws Fault if there are no cells, none has metal, a listed one is in no file, or there is no
/// site width.
Selection selectCells(const Library& library, const std::optional<CellNames>& listed,
                      const std::optional<SiteSize>& site, Findings& findings);

/// Everything the user can choose.
struct Options {
    std::vector<std::string> lefs;
    std::string layer; ///< metal 1; if it is empty it is found
    std::string cells; ///< path of the list of those that are coloured; empty: all that stand in rows
    std::string outDir;
    std::optional<SiteSize> site;
    design::Distance minDist; ///< what shapes of one mask need
    Settings settings;        ///< run() takes the distance from minDist
    size_t jobs = 1;
    bool svg = false;
    bool force = false;
    bool json = false; ///< the summary is JSON
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
