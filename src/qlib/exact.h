// SPDX-License-Identifier: BSD-3-Clause
// The arithmetic that the report depends on to the last bit: single precision, truncated where it is said to
// be. 32-bit signed sums wrap around (the build sets -fwrapv), and no product is fused with a sum
// (-ffp-contract=off).
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace vireloce {

/// "No path" and "infeasible", a cost. Two of them still fit into 32 bits.
inline constexpr int32_t INFINITE_COST = 0x3fffffff;

/// Bound of numbers of which seven, of any sign, add up within 32 bits. What is farther is left to code that
/// is exact with sums modulo 2^32.
inline constexpr int32_t FAR_AWAY = 1 << 28;

/// Truncation toward zero; a value outside the 32-bit range, or not a number, gives the smallest integer.
///
/// That is what the conversion instruction of x86 gives. The language leaves it undefined, so that a compiler
/// may do anything else; hence the test.
inline int32_t toInt(double value)
{
    constexpr double LIMIT = 2147483648.0;
    return value > -LIMIT - 1.0 && value < LIMIT ? static_cast<int32_t>(value)
                                                 : std::numeric_limits<int32_t>::min();
}

/// As toInt(double), of a single-precision value.
inline int32_t toInt(float value)
{
    constexpr float LIMIT = 2147483648.0F;
    return value >= -LIMIT && value < LIMIT ? static_cast<int32_t>(value)
                                            : std::numeric_limits<int32_t>::min();
}

/// length / siteWidth in single precision, taken up to the next whole number.
///
/// Why not in integers: from 16,777,217 on, a length is rounded before it is divided.
///
/// @param length     DBU, or a count of sites where a spacing entry is divided a second time
/// @param siteWidth  DBU, not 0
inline int32_t ceilSites(int32_t length, int32_t siteWidth)
{
    return toInt(std::ceil(static_cast<float>(length) / static_cast<float>(siteWidth)));
}

/// One weighted term on top of a cost: single precision, truncated at once.
///
/// Why at once: two terms of 2 sites at weight 1.4 give 2, then 4; one sum of 5.6 would give 5.
inline int32_t addTruncated(int32_t cost, int32_t sites, float weight)
{
    const float term = static_cast<float>(sites) * weight;
    return toInt(static_cast<float>(cost) + term);
}

} // namespace vireloce
