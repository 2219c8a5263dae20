// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/lengthOptions.h"

#include <string_view>

#include "kit/base/text/decimal.h"

namespace kit {

namespace {

template <typename Target>
void add(const Command& command, Target& target)
{
    command.read(
        "--mindp",
        [&target](const std::string& text) {
            const std::optional<design::Distance> distance = design::Distance::parse(text);
            if (distance) {
                target = *distance;
            }
            return distance
                       ? ""
                       : "\"" + text +
                             "\" is no distance from 0 to 10000, and no length such as 0.0925um or 92.5nm";
        },
        "distance of metal on one mask: library units, 190 to the site, or a length such as 0.0925um or "
        "92.5nm (default: 185)");
}

constexpr int32_t DIGITS = 6; ///< of a micrometre in picometres
constexpr lefdef::Length LARGEST = 1'000 * lefdef::MICRON;

/// A positive length in micrometres, 0 if it is not one.
lefdef::Length positive(std::string_view text)
{
    const Decimal number = parseDecimal(text, DIGITS, LARGEST);
    return number.kind == Decimal::Kind::GOOD && number.value > 0 ? number.value : 0;
}

/// Reads "W,H" in micrometres. @return none if it is not two positive numbers
std::optional<lefdef::SiteSize> parseSite(const std::string& text)
{
    const size_t comma = text.find(',');
    if (comma == std::string::npos) {
        return std::nullopt;
    }
    const lefdef::SiteSize size{.width = positive(std::string_view(text).substr(0, comma)),
                                .height = positive(std::string_view(text).substr(comma + 1))};
    return size.width > 0 && size.height > 0 ? std::optional(size) : std::nullopt;
}

} // namespace

void addDistanceOption(const Command& command, design::Distance& distance)
{
    add(command, distance);
}

void addDistanceOption(const Command& command, std::optional<design::Distance>& distance)
{
    add(command, distance);
}

std::string faultOfSite(const std::string& text)
{
    return parseSite(text) ? "" : "\"" + text + "\" is not W,H in micrometres";
}

void addSiteOption(const Command& command, std::optional<lefdef::SiteSize>& site)
{
    command.read(
        "--site",
        [&site](const std::string& text) {
            site = parseSite(text);
            return faultOfSite(text);
        },
        "size of a site, W,H in micrometres (default: the LEF's, or the rows')");
}

void addLayerOption(const Command& command, std::string& layer)
{
    command.add("--layer", layer,
                "name of metal 1 (default: the lowest routing layer with pins of half of the cells)");
}

} // namespace kit
