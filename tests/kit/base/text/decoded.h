// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace test {

/// The bytes of base64 text.
inline std::string decoded(const std::string& text)
{
    const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned bits = 0;
    int held = 0;
    for (const char digit : text) {
        const size_t value = digits.find(digit);
        if (value == std::string::npos) {
            EXPECT_EQ(digit, '=');
            break;
        }
        bits = bits << 6U | static_cast<unsigned>(value);
        held += 6;
        if (held >= 8) {
            held -= 8;
            bytes += static_cast<char>(bits >> static_cast<unsigned>(held) & 255U);
        }
    }
    return bytes;
}

} // namespace test
