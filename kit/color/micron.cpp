// SPDX-License-Identifier: BSD-3-Clause
#include "kit/color/micron.h"

#include <algorithm>
#include <cctype>

namespace kit::color {

namespace {

constexpr size_t DECIMALS = 6; // a micrometre has so many digits in picometres
constexpr size_t MOST_DIGITS = 3;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

std::string micronText(lefdef::Length length)
{
    const lefdef::Length size = length < 0 ? -length : length;
    std::string decimals = std::to_string(lefdef::MICRON + size % lefdef::MICRON).substr(1);
    decimals.resize(decimals.find_last_not_of('0') + 1);
    return (length < 0 ? "-" : "") + std::to_string(size / lefdef::MICRON) + (decimals.empty() ? "" : ".") +
           decimals;
}

std::optional<lefdef::Length> parseMicron(std::string_view text)
{
    const size_t point = std::min(text.find('.'), text.size());
    const std::string_view whole = text.substr(0, point);
    const std::string_view decimals = point < text.size() ? text.substr(point + 1) : std::string_view();
    const bool sound = whole.size() + decimals.size() > 0 && whole.size() <= MOST_DIGITS &&
                       decimals.size() <= DECIMALS && std::all_of(whole.begin(), whole.end(), isDigit) &&
                       std::all_of(decimals.begin(), decimals.end(), isDigit);
    if (!sound) {
        return {};
    }
    std::string digits = std::string(whole) + std::string(decimals);
    digits.append(DECIMALS - decimals.size(), '0');
    const lefdef::Length length = std::stoll(digits);
    return length > 0 ? std::optional(length) : std::nullopt;
}

} // namespace kit::color
