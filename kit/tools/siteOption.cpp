// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/siteOption.h"

#include <string_view>

#include "kit/base/text/decimal.h"

namespace kit {

namespace {

constexpr int32_t DIGITS = 6; ///< of a micrometre in picometres
constexpr lefdef::Length LARGEST = 1'000 * lefdef::MICRON;

/// A positive length in micrometres, 0 if it is not one.
lefdef::Length positive(std::string_view text)
{
    const Decimal number = parseDecimal(text, DIGITS, LARGEST);
    return number.kind == Decimal::Kind::GOOD && number.value > 0 ? number.value : 0;
}

} // namespace

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

void addSiteOption(const Command& command, std::optional<lefdef::SiteSize>& site)
{
    command.read(
        "--site",
        [&site](const std::string& text) {
            site = parseSite(text);
            return site ? "" : "\"" + text + "\" is not W,H in micrometres";
        },
        "size of a site, W,H in micrometres (default: the LEF's, or the rows')");
}

} // namespace kit
