// SPDX-License-Identifier: BSD-3-Clause
// From lengths to DBU of a DEF file, and to text. Lengths reach to 10^9 micrometres, so that nothing
// overflows.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

#include "kit/formats/lefdef/lef.h"

namespace kit::lefdef {

/// A length in DBU, rounded down.
///
/// @param databaseMicrons  DBU per micrometre, positive
constexpr int64_t dbuDown(Length length, int32_t databaseMicrons)
{
    const Length rest = (length % MICRON + MICRON) % MICRON;
    return (length - rest) / MICRON * databaseMicrons + rest * databaseMicrons / MICRON;
}

/// As dbuDown(), rounded up.
constexpr int64_t dbuUp(Length length, int32_t databaseMicrons)
{
    return -dbuDown(-length, databaseMicrons);
}

/// As dbuDown(), rounded to the nearest, halves to the even one.
constexpr int64_t dbuNearest(Length length, int32_t databaseMicrons)
{
    const Length rest = (length % MICRON + MICRON) % MICRON;
    const Length below = rest * databaseMicrons / MICRON;
    const Length twice = 2 * (rest * databaseMicrons - below * MICRON);
    const int64_t down = (length - rest) / MICRON * databaseMicrons + below;
    const bool isUp = twice > MICRON || (twice == MICRON && down % 2 != 0);
    return down + (isUp ? 1 : 0);
}

/// A length, not negative, in micrometres with six digits.
inline std::string micrometres(Length length)
{
    const std::string digits = std::to_string(MICRON + length % MICRON).substr(1);
    return std::to_string(length / MICRON) + "." + digits;
}

/// A length in micrometres, as short as it is exact.
inline std::string micronText(Length length)
{
    std::string text = micrometres(std::abs(length));
    text.resize(text.find_last_not_of('0') + 1);
    text.resize(text.find_last_not_of('.') + 1);
    return (length < 0 ? "-" : "") + text;
}

} // namespace kit::lefdef
