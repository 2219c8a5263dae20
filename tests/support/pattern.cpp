// SPDX-License-Identifier: BSD-3-Clause
#include "support/pattern.h"

#include <regex>

namespace test {

std::string replaced(const std::string& text, const std::string& pattern, const std::string& format)
{
    return std::regex_replace(text, std::regex(pattern), format);
}

std::vector<Match> matchesOf(const std::string& text, const std::string& pattern)
{
    const std::regex regex(pattern);
    std::vector<Match> matches;
    for (std::sregex_iterator it(text.begin(), text.end(), regex), end; it != end; ++it) {
        Match& match = matches.emplace_back(Match{static_cast<size_t>(it->position()), {}});
        for (const std::ssub_match& group : *it) {
            match.groups.push_back(group.str());
        }
    }
    return matches;
}

bool isMatch(const std::string& text, const std::string& pattern)
{
    return std::regex_match(text, std::regex(pattern));
}

} // namespace test
