// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/gds/real8.h"

#include <cassert>
#include <cmath>

namespace kit::gds {

uint64_t real8Of(double value)
{
    if (value == 0) {
        return 0;
    }
    int exponentOfTwo = 0;
    const double fraction = std::frexp(std::abs(value), &exponentOfTwo); // from 1/2 to below 1
    const int exponent = exponentOfTwo > 0 ? (exponentOfTwo + 3) / 4 : -(-exponentOfTwo / 4);
    assert(exponent >= -64 && exponent <= 63);
    const auto mantissa = static_cast<uint64_t>(std::ldexp(fraction, 56 + exponentOfTwo - 4 * exponent));
    const auto excess = static_cast<uint64_t>(exponent) + 64;
    return (value < 0 ? uint64_t{1} << 63U : 0) | (excess << 56U) | mantissa;
}

} // namespace kit::gds
