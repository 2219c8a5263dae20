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
    std::string ending = suffix.empty() ? "" : cleaned(suffix);
    const std::string last = ending;
    for (int number = 2;; ++number) {
        std::string name = whole.substr(0, LONGEST - std::min(LONGEST, ending.size())) + ending;
        if (m_taken.insert(name).second) {
            return name;
        }
        ending = "$" + std::to_string(number) + last;
    }
}

} // namespace kit::exporter
