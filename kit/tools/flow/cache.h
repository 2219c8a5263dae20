// SPDX-License-Identifier: BSD-3-Clause
// Colourings of libraries, kept by what they were made from.
#pragma once

#include <string>
#include <vector>

#include "kit/base/version.h"
#include "kit/tools/flow/options.h"

namespace kit::flow {

/// A file in every folder that flow makes and may remove.
inline constexpr const char* MARK = "made-by-flow";

/// The folder of the colour files for a library and the options that they depend on: a name by content in
/// Options::cache, else in $XDG_CACHE_HOME/vireloce, else in ~/.cache/vireloce.
///
/// @param site     size of a site, W,H in micrometres
/// @param cells    names of the cells that are coloured
/// @param version  of the program: another may colour the same input otherwise
///
/// Errors: throws Fault if a LEF file cannot be read, or no such place is known.
std::string cachedFolder(const Options& options, const std::string& site,
                         const std::vector<std::string>& cells,
                         const std::string& version = programVersion());

/// Makes the folder in which this process makes a folder of the cache, beside it.
///
/// Errors: throws Fault if it cannot be made.
/// @return its path
std::string makePart(const std::string& folder);

/// Removes what runs that were killed have left of making this and other folders of the cache, and nothing
/// that they have not made. What is younger than a day may be the work of another run.
void removeOldParts(const std::string& folder);

} // namespace kit::flow
