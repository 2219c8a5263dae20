// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/gds/gdsNames.h"

#include <algorithm>

namespace kit::gds {

namespace {

bool isAllowed(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '?' || c == '$';
}

} // namespace

std::string gdsName(std::string_view name)
{
    std::string clean(name.substr(0, LONGEST_GDS_NAME));
    std::ranges::replace_if(
        clean, [](char c) { return !isAllowed(c); }, '_');
    return clean.empty() ? "_" : clean;
}

std::string GdsNames::take(std::string_view stem, std::string_view suffix)
{
    const std::string whole = gdsName(stem);
    const std::string last = suffix.empty() ? "" : gdsName(suffix);
    const auto fitting = [&whole](const std::string& ending) {
        return whole.substr(0, LONGEST_GDS_NAME - std::min(LONGEST_GDS_NAME, ending.size())) + ending;
    };
    std::string name = fitting(last);
    const auto [next, isNew] = m_next.try_emplace(name, 2);
    while (!m_taken.insert(name).second) {
        name = fitting("$" + std::to_string(next->second++) + last);
    }
    return name;
}

} // namespace kit::gds
