// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "kit/base/files/outputFile.h"

namespace kit {

/// Base64 with padding (RFC 4648, section 4), in one line.
std::string base64(std::span<const uint8_t> bytes);

/// Writes bytes as base64.
void writeBase64(OutputFile& file, std::span<const uint8_t> bytes);

/// The bytes of numbers, lowest first.
template <typename Number>
std::span<const uint8_t> bytesOf(const std::vector<Number>& numbers)
{
    static_assert(std::is_integral_v<Number> && std::endian::native == std::endian::little);
    return {reinterpret_cast<const uint8_t*>(numbers.data()), numbers.size() * sizeof(Number)};
}

/// The bytes of a text.
inline std::span<const uint8_t> bytesOf(const std::string& text)
{
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

} // namespace kit
