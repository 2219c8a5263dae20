// SPDX-License-Identifier: BSD-3-Clause
// Names of cells and terminals in the placer's files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kit/engines/import/designFiles.h"

namespace kit::importing {

/// Names that had to be changed: those in the files, and those of the DEF.
using Renamed = std::vector<std::pair<std::string, std::string>>;

/// Fills in the names of the cells, the terminals and the members of the nets.
///
/// Terminals are the design's signal pins that have a place, then the pins of components that stay where they
/// are, each in the middle of its metal, or else of its component. Members without a place are left out of
/// their nets, with a warning.
///
/// @param renamed  out: names of cells that had to be changed
void nameAll(const Nets& nets, const Names& names, lefdef::SourceReporter& reporter, DesignFiles& files,
             Renamed& renamed);

} // namespace kit::importing
