// SPDX-License-Identifier: BSD-3-Clause
// Regular expressions by text. They are compiled here once: as templates they would cost each source seconds.
#pragma once

#include <string>
#include <vector>

namespace test {

/// A text with every match of a pattern replaced; "$1" in the format is the first group.
std::string replaced(const std::string& text, const std::string& pattern, const std::string& format);

/// A match of a pattern.
struct Match {
    size_t at;                       ///< its first byte
    std::vector<std::string> groups; ///< the whole match, then the groups in parentheses

    /// A group by its number; 0 is the whole match.
    const std::string& operator[](size_t group) const { return groups[group]; }
};

/// All matches in a text, in order.
std::vector<Match> matchesOf(const std::string& text, const std::string& pattern);

/// Whether a text as a whole is a match.
bool isMatch(const std::string& text, const std::string& pattern);

} // namespace test
