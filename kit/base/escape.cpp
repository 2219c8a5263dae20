// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/escape.h"

#include <algorithm>
#include <cstdint>

namespace kit {

namespace {

constexpr unsigned char SPACE = 0x20;
constexpr unsigned char DEL = 0x7F;

/// Length of the character at the start of a text by its first byte; 0 if none starts so.
size_t lengthByLead(unsigned char lead)
{
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2 || lead > 0xF4) { // a follower, or a form longer than needed, or beyond Unicode
        return 0;
    }
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

/// Whether the second byte may follow the first: what is left are over-long forms, surrogates, numbers beyond
/// Unicode.
bool secondFits(unsigned char lead, unsigned char second)
{
    switch (lead) {
    case 0xE0:
        return second >= 0xA0;
    case 0xED:
        return second < 0xA0;
    case 0xF0:
        return second >= 0x90;
    case 0xF4:
        return second < 0x90;
    default:
        return true;
    }
}

/// Length of the UTF-8 character at the start of a text, 0 if there is none.
size_t characterLength(std::string_view text)
{
    const auto byteAt = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const size_t length = lengthByLead(byteAt(0));
    if (length > text.size() || (length > 1 && !secondFits(byteAt(0), byteAt(1)))) {
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    return length;
}

bool isControl(std::string_view character)
{
    const auto lead = static_cast<unsigned char>(character[0]);
    const bool noncharacter = character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF";
    return lead < SPACE || lead == DEL || noncharacter;
}

/// What stands for a character of XML that has a meaning, empty for all others.
std::string_view entityOf(char character)
{
    switch (character) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return {};
    }
}

} // namespace

std::string withoutControls(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const size_t length = characterLength(text);
        const std::string_view character = text.substr(0, std::max<size_t>(length, 1));
        result += length == 0 || isControl(character) ? "?" : character;
        text.remove_prefix(character.size());
    }
    return result;
}

std::string escapeXml(std::string_view text)
{
    std::string result;
    for (const char character : withoutControls(text)) {
        const std::string_view entity = entityOf(character);
        if (entity.empty()) {
            result += character;
        } else {
            result += entity;
        }
    }
    return result;
}

std::string escapeScript(std::string_view json)
{
    std::string result;
    result.reserve(json.size());
    for (const char character : json) {
        if (character == '<') {
            result += "\\u003c";
        } else {
            result += character;
        }
    }
    return result;
}

} // namespace kit
