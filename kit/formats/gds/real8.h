// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

namespace kit::gds {

/// A number as a GDSII file has it: a sign bit, 7 bits of the exponent of 16 in excess 64, and 56 bits of a
/// fraction from 1/16 to below 1. It is exact: the fraction has more bits than a double.
///
/// @param value  finite; of a magnitude from 16^-65 to below 16^63, or 0 (assert)
uint64_t real8Of(double value);

} // namespace kit::gds
