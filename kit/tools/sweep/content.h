// SPDX-License-Identifier: BSD-3-Clause
// What a design is by its bytes, wherever its files are.
#pragma once

#include <cstdint>
#include <string>

namespace kit::sweep {

/// The bytes of a design in short.
struct Content {
    std::string hash;       ///< of its four files, and of the colour files of the cells in its list, by name
    int64_t components = 0; ///< placed cells
};

/// Reads a design.
///
/// @param base      path of the design files without extension
/// @param cellPath  folder of the colour files
///
/// Errors: throws Fault if a file is missing or cannot be read.
Content contentOf(const std::string& base, const std::string& cellPath);

} // namespace kit::sweep
