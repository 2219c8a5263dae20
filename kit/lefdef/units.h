// SPDX-License-Identifier: BSD-3-Clause
// From lengths to DBU of a DEF file. Lengths reach to 10^9 micrometres, so that nothing overflows.
#pragma once

#include <cstdint>

#include "kit/lefdef/lef.h"

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

} // namespace kit::lefdef
