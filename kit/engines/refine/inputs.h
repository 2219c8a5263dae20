// SPDX-License-Identifier: BSD-3-Clause
// What the search for shorter wires reads.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "kit/design/coloredPlacement.h"
#include "kit/design/fixedCells.h"
#include "kit/design/nameMap.h"
#include "kit/design/pinOffsets.h"

namespace kit::refine {

/// The files of a result of `place`.
struct Paths {
    std::string base; ///< of BASE.place, .pins, .netlist, .cells and what an import adds, without extension
    std::string colors{};   ///< empty for BASE.colors
    bool mayBeBare = false; ///< BASE.colors need not be there
    std::string cellDir;    ///< folder of the color files
};

/// A result of `place` with all that shorter wires depend on.
struct Inputs {
    design::ColoredPlacement placed;             ///< with nets, and terminals
    std::optional<design::NameMap> map{};        ///< of an imported design
    std::optional<design::PinOffsets> offsets{}; ///< of an imported design
    design::FixedParts fixed{};                  ///< of an imported design
    Findings faults{};                           ///< errors in the form of all these files
};

/// Reads them.
///
/// Errors: throws Fault if a file cannot be opened.
Inputs readInputs(const Paths& paths);

/// Number of nets of a design, those of fewer than two pins included.
size_t netCountOf(const Inputs& inputs);

/// Reads names of components, one to a line, as in the placement or in the DEF file that it was imported
/// from. Blank lines, and names of what stays in any case, count for nothing.
///
/// @return the names in the placement
///
/// Errors: throws Fault if the file cannot be read, or names no component.
std::set<std::string> readFixedNames(const std::string& path, const Inputs& inputs);

/// Reads weights of nets: lines "NET WEIGHT", the net by its number in BASE.netlist, from 0. The weight of a
/// net that has none is 1.
///
/// @return [net]
///
/// Errors: throws Fault if the file cannot be read, or a line is not as it should be.
std::vector<int32_t> readNetWeights(const std::string& path, size_t nets);

} // namespace kit::refine
