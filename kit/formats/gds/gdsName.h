// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kit::gds {

/// Characters of a name in a GDSII file.
inline constexpr size_t LONGEST_GDS_NAME = 32;

/// A name as a GDSII file may have it: cut to 32 characters, and each but A-Z, a-z, 0-9, "_", "?" and "$"
/// replaced by "_". An empty one becomes "_".
std::string gdsName(std::string_view name);

} // namespace kit::gds
