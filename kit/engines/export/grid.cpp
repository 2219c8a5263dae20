// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/grid.h"

#include <limits>
#include <numeric>

namespace kit::exporter {

namespace {

/// A quotient rounded to the nearest whole number, halves up.
int64_t rounded(int64_t value, int64_t divisor)
{
    const int64_t doubled = 2 * value + divisor;
    const int64_t quotient = doubled / (2 * divisor);
    return quotient - (doubled % (2 * divisor) < 0 ? 1 : 0);
}

} // namespace

Grid::Grid(int64_t micron, int64_t step, int64_t reach)
    : m_micron(micron), m_step(step), m_perDbu(placer::LIBRARY_SITE / std::gcd(step, placer::LIBRARY_SITE)),
      m_rounded(reach > std::numeric_limits<int32_t>::max() / m_perDbu)
{
    if (m_rounded) {
        m_perDbu = 1;
    }
}

int64_t Grid::ofLibrary(int64_t length) const
{
    return rounded(length * m_step * m_perDbu, placer::LIBRARY_SITE);
}

int64_t Grid::ofLength(lefdef::Length length) const
{
    return dbuOf(length, unitsPerMicron());
}

int64_t dbuOf(lefdef::Length length, int64_t micron)
{
    // Whole micrometres apart, so that the product stays within 64 bits.
    const int64_t whole = length / lefdef::MICRON;
    return whole * micron + rounded((length - whole * lefdef::MICRON) * micron, lefdef::MICRON);
}

int64_t widthOf(const placer::Cell& cell, int64_t step)
{
    return rounded(cell.width * step, placer::LIBRARY_SITE);
}

} // namespace kit::exporter
