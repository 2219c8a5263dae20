// SPDX-License-Identifier: BSD-3-Clause
// Cells without a function, which fill the gaps between the others and lose their place when those move.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kit/engines/export/matching.h"
#include "kit/formats/lefdef/lef.h"

namespace kit::exporter {

/// Macros of a library by their names; the library must outlive it.
using MacroIndex = std::unordered_map<std::string_view, const lefdef::LefMacro*>;

/// The index of a library.
MacroIndex indexMacros(const lefdef::Lef& lef);

/// Which components of the DEF file are fillers: those that are PLACED, untouched, and fillers by their
/// class; where no library says what they are, those whose own or macro's name begins with FILL.
///
/// @return [component of the DEF file]
std::vector<bool> findFillers(const lefdef::Def& def, const Matching& matching, const MacroIndex& macros);

/// Width of a cell in DBU, 0 if it is not known.
using WidthOf = std::function<int64_t(std::string_view macro)>;

/// How many fillers a placed cell lies on, at the same height. Those without a known width take no room.
int64_t countCovered(const lefdef::Def& def, const Matching& matching, const std::vector<bool>& fillers,
                     const WidthOf& widthOf);

} // namespace kit::exporter
