// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace kit::gds {

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
