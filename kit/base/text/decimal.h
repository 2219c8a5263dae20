// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string_view>

namespace kit {

/// A decimal number in units of a power of ten.
struct Decimal {
    enum class Kind : uint8_t { GOOD, NO_NUMBER, TOO_LARGE };

    Kind kind = Kind::NO_NUMBER;
    int64_t value = 0;
};

/// Reads a text as a decimal number with an optional sign, fraction and exponent, in integers alone.
///
/// @param digits  decimal places of the unit: with 6 the value of "1.5" is 1500000. What lies beyond is
///                rounded, halves away from zero.
/// @param limit   largest size of the value, at most 10^16
Decimal parseDecimal(std::string_view text, int32_t digits, int64_t limit);

} // namespace kit
