// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/escape.h"

#include "kit/base/text/printable.h"

namespace kit {

namespace {

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
        const size_t size = shownBytes(text);
        result += size == 0 ? "?" : text.substr(0, size);
        text.remove_prefix(size == 0 ? 1 : size);
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
