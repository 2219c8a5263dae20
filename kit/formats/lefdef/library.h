// SPDX-License-Identifier: BSD-3-Clause
// LEF files that are one library, and the layer of them that is metal 1.
#pragma once

#include <functional>
#include <list>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/source.h"

namespace kit::lefdef {

/// LEF files that are one library.
struct Library {
    std::list<Source> sources; ///< [LefMacro::source] in the order of reading
    Lef lef;
};

/// Whether a macro counts.
using MacroTest = std::function<bool(const LefMacro& macro)>;

/// Whether a macro stands in rows: it is of class CORE with all that follows it, also where the class is
/// missing, or ENDCAP PRE or POST.
bool standsInRows(const LefMacro& macro);

/// Reads LEF files.
///
/// @param layer     metal 1. Empty: it is found, with a note. It is the lowest routing layer on which at
/// least half
///                  of the macros in use have pins, of those that have any. Where no file has routing layers,
///                  they are taken in the order in which pins name them. Where no macro in use has pins, all
///                  count
/// @param isUsed    tells which macros are in use
/// @param findings  out: problems
/// Errors: throws Fault for a file that cannot be read, and if pins are on no such layer.
Library readLibrary(const std::vector<std::string>& paths, const std::string& layer, Findings& findings,
                    const MacroTest& isUsed = standsInRows);

/// The file that a macro is in.
const Source& sourceOf(const Library& library, const LefMacro& macro);

/// Checks that the wanted layer is one on which cells have metal.
///
/// @param macros  those in use
///
/// Errors: throws Fault if none has metal on it, and some have shapes on others, which it names.
void requireMetal(const Lef& lef, const std::vector<const LefMacro*>& macros);

} // namespace kit::lefdef
