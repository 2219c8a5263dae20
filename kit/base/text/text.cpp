// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/text.h"

#include <charconv>
#include <limits>

namespace kit {

namespace {

constexpr size_t LONGEST_QUOTE = 60;

std::string_view withoutPlus(std::string_view token)
{
    const bool plus = token.size() > 1 && token[0] == '+' && token[1] != '-';
    return plus ? token.substr(1) : token;
}

} // namespace

Integer parseInteger(std::string_view token)
{
    const std::string_view digits = withoutPlus(token);
    int64_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error == std::errc::result_out_of_range) {
        value = digits[0] == '-' ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
    }
    const auto cut = static_cast<int32_t>(value);
    return {cut, error == std::errc() && stop == end && cut == value};
}

bool isReal(std::string_view token)
{
    const std::string_view digits = withoutPlus(token);
    double value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    return error == std::errc() && stop == end;
}

std::string counted(int64_t count, const char* thing)
{
    return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

std::string lastLine(std::string_view text)
{
    text = text.substr(0, text.find_last_not_of(" \t\r\n") + 1); // all of npos + 1 is nothing
    return std::string(text.substr(text.rfind('\n') + 1));
}

std::string inQuotes(std::string_view text)
{
    std::string quote = "\"";
    quote += text.substr(0, LONGEST_QUOTE);
    quote += text.size() > LONGEST_QUOTE ? "...\"" : "\"";
    return quote;
}

} // namespace kit
