// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/placer/design.h"

namespace kit::exporter {

/// Database units of a layout, against the DBU of the DEF file and the units of the colour files: a site is
/// 190 library units, or `step` DBU.
class Grid {
public:
    /// Takes the coarsest units in which both are whole. Where coordinates would go beyond 32 bits, it takes
    /// the DBU, and library units are rounded.
    ///
    /// @param micron   DBU per micrometre, positive
    /// @param step     site width, DBU, positive
    /// @param reach    largest coordinate of the layout in size, DBU
    Grid(int64_t micron, int64_t step, int64_t reach);

    /// Database units per micrometre.
    int64_t unitsPerMicron() const { return m_micron * m_perDbu; }

    /// Whether library units are rounded.
    bool isRounded() const { return m_rounded; }

    /// A length of the DEF on the grid, exact.
    int64_t ofDbu(int64_t dbu) const { return dbu * m_perDbu; }
    /// A length in library units on the grid, rounded where isRounded().
    int64_t ofLibrary(int64_t length) const;
    /// A length of the LEF on the grid, rounded.
    int64_t ofLength(lefdef::Length length) const;

private:
    int64_t m_micron;
    int64_t m_step;
    int64_t m_perDbu;
    bool m_rounded;
};

/// A length in DBU, rounded.
///
/// @param micron  DBU per micrometre
int64_t dbuOf(lefdef::Length length, int64_t micron);

/// Width of a cell in DBU: its colour file's, a site being `step` DBU; rounded.
int64_t widthOf(const placer::Cell& cell, int64_t step);

} // namespace kit::exporter
