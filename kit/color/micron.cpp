// SPDX-License-Identifier: BSD-3-Clause
#include "kit/color/micron.h"

namespace kit::color {

std::string micronText(lefdef::Length length)
{
    const lefdef::Length size = length < 0 ? -length : length;
    std::string decimals = std::to_string(lefdef::MICRON + size % lefdef::MICRON).substr(1);
    decimals.resize(decimals.find_last_not_of('0') + 1);
    return (length < 0 ? "-" : "") + std::to_string(size / lefdef::MICRON) + (decimals.empty() ? "" : ".") +
           decimals;
}

} // namespace kit::color
