// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace kit {

/// A hash to tell results apart: G. Fowler, L. C. Noll and K.-P. Vo's, variant 1a with 64 bits.
class Hash {
public:
    /// Goes on with a number, its lowest byte first.
    void add(int32_t number)
    {
        for (int i = 0; i < 4; ++i) {
            addByte((static_cast<uint32_t>(number) >> (8 * i)) & 0xff);
        }
    }

    /// Goes on with a text.
    void add(std::string_view text)
    {
        for (const char c : text) {
            addByte(static_cast<unsigned char>(c));
        }
    }

    /// The hash as 16 hexadecimal digits.
    std::string text() const
    {
        std::array<char, 17> digits;
        std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(m_value));
        return digits.data();
    }

private:
    void addByte(uint32_t byte) { m_value = (m_value ^ byte) * 0x100000001b3; }

    uint64_t m_value = 0xcbf29ce484222325;
};

/// The hash of a text.
inline std::string hashOf(std::string_view text)
{
    Hash hash;
    hash.add(text);
    return hash.text();
}

} // namespace kit
