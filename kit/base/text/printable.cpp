// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/printable.h"

#include <cstdint>

namespace kit {

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

std::string printable(std::string_view text)
{
    constexpr std::string_view DIGITS = "0123456789abcdef";
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const size_t size = shownBytes(text);
        if (size == 0) {
            const auto byte = static_cast<unsigned char>(text.front());
            shown.append("\\x").append(1, DIGITS[byte >> 4U]).append(1, DIGITS[byte & 15U]);
        } else {
            shown += text.substr(0, size);
        }
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return shown;
}

} // namespace kit
