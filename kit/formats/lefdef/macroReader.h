// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/parser.h"

namespace kit::lefdef {

/// Reads a cell master behind its word MACRO, to the end of it. What is wrong in it is left out.
///
/// @param begin  byte of that word
using ReadMacro = std::function<LefMacro(size_t begin)>;

/// A reader of the cell masters of a file.
///
/// @param in     at the file
/// @param layer  whose shapes are kept; must outlive the reader, as must the others
/// @param vias   known so far, by name: whether they have metal of that layer
ReadMacro macroReader(Parser& in, const std::string& layer, const Vias& vias);

} // namespace kit::lefdef
