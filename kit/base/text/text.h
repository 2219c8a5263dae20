// SPDX-License-Identifier: BSD-3-Clause
// Texts, and the numbers in them.
#pragma once

#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

namespace kit {

/// A token as an integer.
struct Integer {
    int32_t value = 0;  ///< what the placer's line reader takes: the longest decimal prefix, cut to 32 bits
    bool sound = false; ///< the whole token is a decimal integer of 32 bits
};

/// Reads a token as a decimal integer with an optional sign.
Integer parseInteger(std::string_view token);

/// Whether a whole token is a decimal number, with or without a fraction or an exponent.
bool isReal(std::string_view token);

/// A number of things: "1 cell", "2 cells".
std::string counted(int64_t count, const char* thing);

/// The last line of a text that is not blank, empty if there is none.
std::string lastLine(std::string_view text);

/// A text in quotation marks, cut with "..." if it is long.
std::string inQuotes(std::string_view text);

/// The shortest decimal text that reads back as the same number: "1.4", not "1.3999999999999999".
template <typename Number>
std::string shortText(Number number)
{
    constexpr size_t LONGEST = 24; // of a double with sign, 17 digits, point and exponent
    char text[LONGEST];
    return {text, std::to_chars(text, text + LONGEST, number).ptr};
}

} // namespace kit
