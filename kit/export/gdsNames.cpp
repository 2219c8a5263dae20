// SPDX-License-Identifier: BSD-3-Clause
#include "kit/export/gdsNames.h"

#include <algorithm>

namespace kit::exporter {

namespace {

bool isAllowed(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '?' || c == '$';
}

std::string cleaned(std::string_view name)
{
    std::string clean(name);
    std::replace_if(
        clean.begin(), clean.end(), [](char c) { return !isAllowed(c); }, '_');
    return clean.empty() ? "_" : clean;
}

} // namespace

std::string GdsNames::take(std::string_view stem, std::string_view suffix)
{
    const std::string whole = cleaned(stem);
    const std::string last = suffix.empty() ? "" : cleaned(suffix);
    const auto fitting = [&whole](const std::string& ending) {
        return whole.substr(0, LONGEST - std::min(LONGEST, ending.size())) + ending;
    };
    std::string name = fitting(last);
    const auto [next, isNew] = m_next.try_emplace(name, 2);
    while (!m_taken.insert(name).second) {
        name = fitting("$" + std::to_string(next->second++) + last);
    }
    return name;
}

} // namespace kit::exporter
