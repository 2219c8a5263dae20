// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/escape.h"

#include <algorithm>
#include <cstdint>

namespace kit {

namespace {

/// Bytes of the UTF-8 character that a text, not empty, begins with; 0 if that is a control character, or
/// none at all.
size_t shownBytes(std::string_view text)
{
    const auto byte = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80) {
        return first >= ' ' && first != 0x7f ? 1 : 0;
    }
    const size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < size) {
        return 0;
    }
    uint32_t character = first & (0x7fU >> size);
    for (size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xc0U) != 0x80) {
            return 0;
        }
        character = character << 6U | (byte(i) & 0x3fU);
    }
    constexpr uint32_t LEAST[] = {0xa0, 0x800, 0x10000}; // [bytes - 2]; below 0xa0 are control characters
    const bool surrogate = character >= 0xd800 && character < 0xe000;
    const bool noncharacter = character == 0xfffe || character == 0xffff;
    return character >= LEAST[size - 2] && character < 0x110000 && !surrogate && !noncharacter ? size : 0;
}

/// A text with something else for each byte that would not show.
///
/// @param standIn  gives what stands for a byte
template <typename StandIn>
std::string shown(std::string_view text, const StandIn& standIn)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const size_t size = shownBytes(text);
        if (size == 0) {
            result += standIn(static_cast<unsigned char>(text.front()));
        } else {
            result += text.substr(0, size);
        }
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return result;
}

} // namespace

std::string replaced(std::string_view text, std::initializer_list<std::pair<char, std::string_view>> others)
{
    std::string result;
    result.reserve(text.size());
    for (const char character : text) {
        const auto other = std::find_if(others.begin(), others.end(),
                                        [character](const auto& pair) { return pair.first == character; });
        result += other != others.end() ? other->second : std::string_view(&character, 1);
    }
    return result;
}

std::string printable(std::string_view text)
{
    return shown(text, [](unsigned char byte) {
        constexpr std::string_view HEX_DIGITS = "0123456789abcdef";
        return std::string("\\x").append(1, HEX_DIGITS[byte >> 4U]).append(1, HEX_DIGITS[byte & 15U]);
    });
}

std::string withoutControls(std::string_view text)
{
    return shown(text, [](unsigned char /*byte*/) { return '?'; });
}

std::string escapeXml(std::string_view text)
{
    return replaced(withoutControls(text),
                    {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}});
}

std::string escapeScript(std::string_view json)
{
    return replaced(json, {{'<', "\\u003c"}});
}

std::string escapedForCsv(const std::string& text)
{
    const bool plain = text.find_first_of(",\"\n\r") == std::string::npos;
    return plain ? text : '"' + replaced(text, {{'"', "\"\""}}) + '"';
}

} // namespace kit
