// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kit::importing {

/// Whether the placer's files can carry a name: it has no blanks or control characters, fits its line, and
/// does not mean the end of the components.
bool isCarried(std::string_view name);

/// Names for the placer's files, each given once.
class SafeNames {
public:
    /// @param taken  names that no replacement may have; must outlive this
    explicit SafeNames(const std::vector<std::string_view>& taken) : m_taken(taken.begin(), taken.end()) {}

    /// The name itself if it can be carried and was not given before, else a short new one.
    std::string nameFor(std::string_view name);

private:
    std::unordered_set<std::string_view> m_taken; ///< names of the DEF
    std::unordered_set<std::string> m_given;
    int64_t m_next = 0;
};

} // namespace kit::importing
