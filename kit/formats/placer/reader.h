// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/formats/placer/design.h"

namespace kit::placer {

/// The files of a design.
struct Paths {
    std::string base;    ///< of BASE.place, .pins, .netlist and .cells; one trailing dot does not count
    std::string cellDir; ///< folder of the colour files

    /// Rows, components and blocks.
    std::string place() const { return with(".place"); }
    /// Terminals of the chip.
    std::string pins() const { return with(".pins"); }
    /// Nets with their members.
    std::string netlist() const { return with(".netlist"); }
    /// Names of the cells that have colour files.
    std::string cells() const { return with(".cells"); }

private:
    std::string with(const char* extension) const
    {
        return (base.ends_with('.') ? base.substr(0, base.size() - 1) : base) + extension;
    }
};

/// Reads a design to the end, whatever is wrong with it: what cannot be read is left out.
///
/// Every problem of form is appended to `findings`: missing and surplus tokens, wrong counts, over-long lines
/// and the like; so is every name that means nothing. A design without findings means the same as to the
/// placer.
///
/// Errors: throws Fault if one of the four BASE files cannot be opened; a colour file that cannot is a
/// finding.
Design readDesign(const Paths& paths, Findings& findings);

/// As readDesign(), the placement file alone. Cells are looked up in design.cells if there are any.
void readPlacement(const std::string& path, Design& design, Findings& findings);

/// As readDesign(), the cell list and the colour files alone.
void readLibrary(const Paths& paths, Design& design, Findings& findings);

/// As readLibrary() of Paths, with the cell list under any name.
void readLibrary(const std::string& list, const std::string& cellDir, Design& design, Findings& findings);

/// As readLibrary(), for cells by their names: there is no cell list, and their `line` is 0.
void readCells(const std::vector<std::string>& names, const std::string& cellDir, Design& design,
               Findings& findings);

/// Names of the cells that the components use, in order of first use.
std::vector<std::string> usedCells(const Design& design);

/// Looks up the cells of all components by their names.
void findCells(Design& design);

/// As readDesign(), the pin file alone.
void readPins(const std::string& path, Design& design, Findings& findings);

/// As readDesign(), the netlist alone. Members are looked up in the design's components and pins.
void readNets(const std::string& path, Design& design, Findings& findings);

} // namespace kit::placer
