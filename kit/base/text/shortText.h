// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <charconv>
#include <string>

namespace kit {

/// The shortest decimal text that reads back as the same number: "1.4", not "1.3999999999999999".
template <typename Number>
std::string shortText(Number number)
{
    constexpr size_t LONGEST = 24; // of a double with sign, 17 digits, point and exponent
    char text[LONGEST];
    return {text, std::to_chars(text, text + LONGEST, number).ptr};
}

} // namespace kit
