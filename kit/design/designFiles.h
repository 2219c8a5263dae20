// SPDX-License-Identifier: BSD-3-Clause
// The files of a placed design, so that it is a design of its own: what a run writes, and copies of the rest.
#pragma once

#include <string>
#include <vector>

#include "kit/base/files/outputFile.h"

namespace kit::design {

/// Extensions of inputs that are copied.
inline constexpr const char* COPIED[] = {".cells", ".pins", ".netlist"};

/// Extensions of what an imported design has besides, which is copied where it is there: its map, where its
/// pins are.
inline constexpr const char* COPIED_IF_THERE[] = {".map", ".offsets"};

/// Extension of what stays where it is in an imported design. Its copy has the solutions that were chosen.
inline constexpr const char* FIXED = ".fixed";

/// Paths of the files that a run reads.
///
/// @param base  path of the design without extension
std::vector<std::string> inputsOf(const std::string& base);

/// Paths of the files that a run writes.
///
/// @param out  path of the result without extension
std::vector<std::string> outputsOf(const std::string& out);

/// Adds copies of a design's other files, but for what stays where it is; what an earlier result had and this
/// one has not is taken away.
///
/// Errors: throws Fault if a file cannot be read or written.
void addCopies(const std::string& base, const std::string& out, OutputSet& files);

} // namespace kit::design
