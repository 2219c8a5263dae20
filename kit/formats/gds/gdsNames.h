// SPDX-License-Identifier: BSD-3-Clause
// Names as a GDSII file may have them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace kit::gds {

/// Characters of a name in a GDSII file.
inline constexpr size_t LONGEST_GDS_NAME = 32;

/// A name as a GDSII file may have it: cut to 32 characters, and each but A-Z, a-z, 0-9, "_", "?" and "$"
/// replaced by "_". An empty one becomes "_".
std::string gdsName(std::string_view name);

/// Makes names of structures as gdsName() does, and none twice.
class GdsNames {
public:
    /// A name that was not given out yet: stem and suffix as they are if that can be. A stem
    /// that is too long is cut, and a name that is taken gets "$2", "$3" and so on between the two.
    ///
    /// @param suffix  at most 20 characters
    std::string take(std::string_view stem, std::string_view suffix);

private:
    std::unordered_set<std::string> m_taken;
    std::unordered_map<std::string, int64_t> m_next; ///< number to try next for a name that is taken
};

} // namespace kit::gds
