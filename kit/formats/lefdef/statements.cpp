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

/// Versions in ten thousandths.
constexpr int64_t OLDEST = 53'000;
constexpr int64_t NEWEST = 58'000;

} // namespace

void readVersion(Parser& in)
{
    const size_t at = in.offset();
    const std::string_view version = in.keyword("version").text;
    const Decimal number = parseDecimal(version, /*digits=*/4, /*limit=*/1'000'000);
    if (!in.finish() ||
        (number.kind == Decimal::Kind::GOOD && number.value >= OLDEST && number.value <= NEWEST)) {
        return;
    }
    const bool newer = number.kind == Decimal::Kind::GOOD && number.value > NEWEST;
    in.reporter().add(newer ? Severity::NOTE : Severity::WARNING, "version", at,
                      "the version is " + inQuotes(version) + ", and 5.3 to 5.8 are known",
                      newer ? "statements that are not known are passed over without a word"
                            : "look for statements that are skipped");
    if (newer) {
        in.allowUnknown();
    }
}

void readNamesCase(Parser& in)
{
    const size_t at = in.offset();
    const Word sensitive = in.keyword("word ON or OFF");
    if (in.finish() && sensitive == "OFF") {
        in.reporter().warning("names-case", at, "names are compared with their case all the same",
                              "write each name in one way");
    }
}

PinUse readUse(Parser& in)
{
    const size_t at = in.offset();
    const Word word = in.keyword("use");
    const auto* const use = std::ranges::find_if(USES, [&](std::string_view each) { return word == each; });
    if (use == USES.end()) {
        if (!word.text.empty()) {
            in.reporter().warning("use", at,
                                  inQuotes(word.text) + " is no use of a pin or net, and SIGNAL is taken",
                                  "write SIGNAL, ANALOG, CLOCK, POWER, GROUND, SCAN, TIEOFF or RESET");
        }
        return PinUse::SIGNAL;
    }
    return static_cast<PinUse>(use - USES.begin());
}

} // namespace kit::lefdef
