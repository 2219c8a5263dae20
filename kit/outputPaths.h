// SPDX-License-Identifier: BSD-3-Clause
// What must hold before results are written.
#pragma once

#include <string>
#include <vector>

namespace kit {

/// Whether two paths mean one file, which need not exist.
bool isSameFile(const std::string& a, const std::string& b);

/// Checks that results may be written.
///
/// Errors: throws Fault for a result that is an input, would be in the making (".part"), that is named twice,
/// that is a folder or has no name, or that exists, unless `force`.
///
/// @param outputs  paths of the results
/// @param inputs   paths of the files that are read
void checkOutputs(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs,
                  bool force);

} // namespace kit
