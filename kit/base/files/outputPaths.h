// SPDX-License-Identifier: BSD-3-Clause
// What must hold before results are written.
#pragma once

#include <string>
#include <vector>

namespace kit {

/// Checks that results may be written. Files are known by what they are, not by their names: through links,
/// and by all names that a file has.
///
/// Errors: throws Fault for a result that is an input, that is named twice, that is a folder or has no name,
/// or that exists, unless `force`. Pipes and devices lose nothing, and so need no `force`.
///
/// @param outputs  paths of the results
/// @param inputs   paths of the files that are read; empty ones count for nothing
void checkOutputs(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs,
                  bool force);

} // namespace kit
