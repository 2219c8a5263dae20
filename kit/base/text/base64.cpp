// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/base64.h"

#include <algorithm>

namespace kit {

namespace {

constexpr char DIGITS[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr size_t GROUP = 3;           // bytes that four digits stand for
constexpr size_t PIECE = GROUP << 13; // bytes that are written at a time

/// Appends the digits of up to three bytes.
void appendGroup(std::string& text, std::span<const uint8_t> bytes)
{
    uint32_t bits = 0;
    for (size_t i = 0; i < GROUP; ++i) {
        bits = bits << 8U | (i < bytes.size() ? bytes[i] : 0U);
    }
    for (size_t i = 0; i <= GROUP; ++i) {
        text += i <= bytes.size() ? DIGITS[bits >> (18U - 6U * i) & 63U] : '=';
    }
}

} // namespace

std::string base64(std::span<const uint8_t> bytes)
{
    std::string text;
    text.reserve((bytes.size() + GROUP - 1) / GROUP * (GROUP + 1));
    for (size_t i = 0; i < bytes.size(); i += GROUP) {
        appendGroup(text, bytes.subspan(i, std::min(GROUP, bytes.size() - i)));
    }
    return text;
}

void writeBase64(OutputFile& file, std::span<const uint8_t> bytes)
{
    for (size_t i = 0; i < bytes.size(); i += PIECE) {
        file << base64(bytes.subspan(i, std::min(PIECE, bytes.size() - i)));
    }
}

} // namespace kit
