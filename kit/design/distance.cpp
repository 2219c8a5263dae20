// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/distance.h"

#include "kit/base/fault.h"
#include "kit/base/text/decimal.h"
#include "kit/formats/lefdef/units.h"

namespace kit::design {

namespace {

using lefdef::Length;

constexpr Length LONGEST = 1'000 * lefdef::MICRON;

/// A unit of length and the decimals of it that a picometre needs.
struct Unit {
    std::string_view name;
    int32_t decimals;
};

constexpr Unit UNITS[] = {{"um", 6}, {"nm", 3}, {"", 0}};

} // namespace

Length siteLength(const placer::Design& design)
{
    if (design.rows.empty() || design.rows.front().step <= 0 || design.dbuPerMicron <= 0) {
        return 0;
    }
    return lefdef::MICRON * design.rows.front().step / design.dbuPerMicron;
}

std::optional<Distance> Distance::parse(std::string_view text)
{
    const Unit* unit = UNITS;
    while (!text.ends_with(unit->name)) {
        ++unit;
    }
    text.remove_suffix(unit->name.size());
    const bool isLength = !unit->name.empty();
    if (!isLength && text.find_first_not_of("+0123456789") != std::string_view::npos) {
        return {};
    }
    const Decimal number = parseDecimal(text, unit->decimals, isLength ? LONGEST : MOST);
    if (number.kind != Decimal::Kind::GOOD || number.value < 0) {
        return {};
    }
    Distance distance(isLength ? 0 : static_cast<int32_t>(number.value));
    if (isLength) {
        distance.m_length = number.value;
    }
    return distance;
}

int32_t Distance::unitsOn(Length site) const
{
    if (!m_length) {
        return m_units;
    }
    if (site <= 0) {
        throw Fault("--mindp " + given() +
                    " needs the width of a site, and the placement has no row or no UNITS; " +
                    "give it in library units, 190 to the site");
    }
    const Length units = (*m_length * placer::LIBRARY_SITE + site - 1) / site;
    if (units > MOST) {
        throw Fault("--mindp " + given() + " is " + std::to_string(units) + " library units on sites of " +
                    lefdef::micronText(site) + " um, and " + std::to_string(MOST) + " is the most");
    }
    return static_cast<int32_t>(units);
}

double Distance::micronsOn(Length site) const
{
    const Length length = unitsOn(site) * site / placer::LIBRARY_SITE; // picometres
    return static_cast<double>(length) / static_cast<double>(lefdef::MICRON);
}

std::string Distance::text(int32_t units, Length site)
{
    const std::string number = std::to_string(units);
    return site <= 0 ? number
                     : number + " (" + lefdef::micronText(units * site / placer::LIBRARY_SITE) + " um)";
}

std::string Distance::given() const
{
    return m_length ? lefdef::micronText(*m_length) + "um" : std::to_string(m_units);
}

} // namespace kit::design
