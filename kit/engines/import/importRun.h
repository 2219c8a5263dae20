// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "kit/formats/lefdef/lef.h"

namespace kit::importing {

/// The arguments of `import`.
struct Options {
    std::vector<std::string> lefs;        ///< paths of the LEF files
    std::string def;                      ///< path of the DEF file
    std::string out;                      ///< path of the design files without extension
    std::string layer;                    ///< name of metal 1; if it is empty it is found
    std::optional<lefdef::SiteSize> site; ///< in place of the LEF's or the rows'
    bool legalize = false;                ///< put cells without a legal place on free sites
    bool force = false;                   ///< replace earlier files
    bool json = false;                    ///< JSON instead of a line
};

/// The extensions of the files that import() writes; the last only if something with metal stays where it is.
inline constexpr const char* WRITTEN[] = {".place",   ".pins", ".netlist", ".cells",
                                          ".offsets", ".map",  ".fixed"};

/// What became of a DEF.
struct Summary {
    std::string design;                     ///< its name
    int64_t rows = 0;                       ///< joined at one height
    int64_t components = 0;                 ///< that are placed
    int64_t masters = 0;                    ///< in use
    int64_t kept = 0;                       ///< components that stay where they are
    int64_t fillers = 0;                    ///< left out
    std::vector<std::string> fillerMasters; ///< names of theirs
    std::vector<std::string>
        fixedMasters; ///< names of those of cells that stay where they are, and have metal
    int64_t pins = 0;
    int64_t nets = 0;
    int64_t moved = 0;     ///< components that were given a place
    int64_t renamed = 0;   ///< names that the files cannot carry
    std::string layer;     ///< name of metal 1
    double siteWidth = 0;  ///< micrometres
    double siteHeight = 0; ///< micrometres
};

/// Writes a placed DEF as a design for the placer. Nothing is written after an error.
///
/// @param out      where problems are told, one to the line: FILE:LINE:COLUMN: error|warning|note: ...
/// @param summary  out: what was written
/// @return exit status: 0 done, 2 there are errors
///
/// Errors: throws Fault if a file cannot be opened or written, or a result exists and `force` is not given.
int importDesign(const Options& options, std::ostream& out, Summary& summary);

} // namespace kit::importing
