// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/statements.h"

#include <algorithm>
#include <array>
#include <string>

#include "kit/base/text/decimal.h"
#include "kit/base/text/text.h"

namespace kit::lefdef {

namespace {

/// In the order of PinUse.
constexpr std::array<std::string_view, 8> USES = {"SIGNAL", "ANALOG", "CLOCK",  "POWER",
                                                  "GROUND", "SCAN",   "TIEOFF", "RESET"};

bool isKnownVersion(std::string_view version)
{
    const Decimal number = parseDecimal(version, /*digits=*/4, /*limit=*/1'000'000);
    return number.kind == Decimal::Kind::GOOD && number.value >= 53'000 && number.value <= 58'000;
}

} // namespace

void readVersion(Parser& in)
{
    const size_t at = in.offset();
    const std::string_view version = in.keyword("version");
    if (in.finish() && !isKnownVersion(version)) {
        in.reporter().warning("version", at,
                              "the version is " + inQuotes(version) + ", and 5.3 to 5.8 are known",
                              "look for statements that are skipped");
    }
}

void readNamesCase(Parser& in)
{
    const size_t at = in.offset();
    const std::string_view sensitive = in.keyword("word ON or OFF");
    if (in.finish() && sensitive == "OFF") {
        in.reporter().warning("names-case", at, "names are compared with their case all the same",
                              "write each name in one way");
    }
}

PinUse readUse(Parser& in)
{
    const size_t at = in.offset();
    const std::string_view word = in.keyword("use");
    const auto* const use = std::ranges::find(USES, word);
    if (use == USES.end()) {
        in.failAt(at, "use", inQuotes(word) + " is no use of a pin or net",
                  "write SIGNAL, ANALOG, CLOCK, POWER, GROUND, SCAN, TIEOFF or RESET");
        return PinUse::SIGNAL;
    }
    return static_cast<PinUse>(use - USES.begin());
}

} // namespace kit::lefdef
