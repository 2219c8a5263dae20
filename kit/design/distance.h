// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/placer/design.h"

namespace kit::design {

/// Width of a design's sites, the first row's step; 0 if it has no row or does not say its UNITS.
lefdef::Length siteLength(const placer::Design& design);

/// The distance that shapes of one mask need, as it is given: in library units, 190 to the site, or as a
/// length.
class Distance {
public:
    static constexpr int32_t USUAL = 185;   ///< library units
    static constexpr int32_t MOST = 10'000; ///< library units; the squares of larger ones would overflow

    /// @param units  library units
    Distance(int32_t units = USUAL) : m_units(units) {} // NOLINT: a number is a distance

    /// Reads "185", "0.0925um" or "92.5nm". @return none if it is neither a length nor a whole number, or
    /// beyond the bounds
    static std::optional<Distance> parse(std::string_view text);

    /// Library units on sites of a width; a length that is no whole number of them is rounded up.
    ///
    /// @param site  0 if it is not known
    /// Errors: throws Fault for a length where the site is not known, and beyond MOST.
    int32_t unitsOn(lefdef::Length site) const;

    /// Micrometres that unitsOn() is. @param site  positive
    double micronsOn(lefdef::Length site) const;

    /// For people: library units and the length, "185 (0.185 um)"; without the length if the site is not
    /// known.
    std::string textOn(lefdef::Length site) const { return text(unitsOn(site), site); }

    /// As textOn(), of a number of library units.
    static std::string text(int32_t units, lefdef::Length site);

    /// As it can be read again, with all its digits.
    std::string given() const;

    /// Whether it is a length.
    bool hasUnit() const { return m_length.has_value(); }

private:
    int32_t m_units;
    std::optional<lefdef::Length> m_length{};
};

} // namespace kit::design
