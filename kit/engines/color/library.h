// SPDX-License-Identifier: BSD-3-Clause
// Which masters of a LEF library are cells for the placer's rows.
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/source.h"

namespace kit::color {

using lefdef::SiteSize;

/// LEF files that are one library.
struct Library {
    std::list<lefdef::Source> sources; ///< in the order of reading
    lefdef::Lef lef;
};

/// What of a library is coloured.
struct Selection {
    SiteSize site;
    std::vector<const lefdef::LefMacro*> cells; ///< in the order of the files
    size_t otherHeights = 0;                    ///< cells that are not one row high, and are left out
};

/// Reads LEF files.
///
/// @param findings  out: problems
/// Errors: throws Fault for a file that cannot be read.
Library readLibrary(const std::vector<std::string>& paths, const std::string& layer, Findings& findings);

/// Selects the cells.
///
/// The site is the one given; else the one of class CORE that most cells name, of equal ones the first; else
/// as wide as the greatest common divisor of the cells' widths, with a note. A cell of another height than
/// the site's, or than most cells where there is no site, is left out with a warning.
///
/// @param site      of --site, if given
/// @param findings  out: warnings and notes
/// Errors: throws Fault if there are no cells, none has metal, or there is no site width.
Selection selectCells(const Library& library, const std::optional<SiteSize>& site, const std::string& layer,
                      Findings& findings);

/// The place of a master in its file.
struct MacroPlace {
    std::string file;
    Place at;
};

MacroPlace placeOf(const Library& library, const lefdef::LefMacro& macro);

} // namespace kit::color
