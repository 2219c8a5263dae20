// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/gds/gdsName.h"

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
    std::replace_if(
        clean.begin(), clean.end(), [](char c) { return !isAllowed(c); }, '_');
    return clean.empty() ? "_" : clean;
}

} // namespace kit::gds
