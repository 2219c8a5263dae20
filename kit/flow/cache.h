// SPDX-License-Identifier: BSD-3-Clause
// Colourings of libraries, kept by what they were made from.
#pragma once

#include <string>

#include "kit/flow/options.h"

namespace kit::flow {

/// The folder of the colour files for a library and the options that they depend on: a name by content in
/// Options::cache, else in $XDG_CACHE_HOME/vireloce, else in ~/.cache/vireloce.
///
/// Errors: throws Fault if a LEF file cannot be read, or no such place is known.
std::string cachedFolder(const Options& options);

} // namespace kit::flow
