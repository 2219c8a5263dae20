// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/verify/judgement.h"

#include <filesystem>

#include "kit/base/fault.h"
#include "kit/design/designFiles.h"
#include "kit/design/nameMap.h"
#include "kit/design/pinOffsets.h"
#include "kit/engines/verify/verify.h"
#include "kit/formats/placer/reader.h"

namespace kit::verify {

namespace {

/// Wirelength by pins of the base, and of what became of it; null if nothing tells where its pins are.
///
/// @param findings  out: problems of the offsets
Json hpwlPinsOf(const std::string& base, const placer::Design& after, Findings& findings)
{
    if (!std::filesystem::exists(design::offsetsOf(base))) {
        return nullptr;
    }
    placer::Design before;
    Findings known; // the placer has read the same, and the map is judged with the result
    placer::readPlacement(base, before, known);
    design::restoreOrientations(base, before, known);
    const std::optional<int64_t> length = design::pinLengthBeside(base, before, findings);
    const std::optional<int64_t> lengthAfter =
        length ? design::pinLengthBeside(base, after, findings) : length;
    return !lengthAfter ? Json()
                        : Json{{"before", design::pinLengthJson(length, before.dbuPerMicron)},
                               {"after", design::pinLengthJson(lengthAfter, after.dbuPerMicron)}};
}

} // namespace

Judgement judge(const Result& result, const OutputSet& files)
{
    Judgement judgement;
    try {
        const bool anyFixed = std::filesystem::exists(result.base + design::FIXED);
        const std::string fixed =
            anyFixed ? files.partPath(result.out + design::FIXED) : result.base + design::FIXED;
        design::ColoredPlacement input =
            design::readColoredPlacement({.placement = files.partPath(result.out + ".place"),
                                          .colors = files.partPath(result.out + ".colors"),
                                          .mapOf = result.base + ".place",
                                          .fixed = fixed,
                                          .cellDir = result.cellPath,
                                          .cells = result.base + ".cells"});
        for (const design::Issue& issue :
             judge(input, {.minDist = result.minDist, .acrossRows = result.rowsMeet})) {
            const bool isError = severityOf(issue) == Severity::ERROR;
            judgement.errors += isError ? 1 : 0;
            judgement.notes += isError ? 0 : 1;
            judgement.conflicts += issue.kind == design::Kind::CONFLICT ? 1 : 0;
        }
        judgement.hpwlPins = hpwlPinsOf(result.base + ".place", input.design, input.faults);
        judgement.errors += static_cast<int64_t>(input.faults.size());
        if (const lefdef::Length site = design::siteLength(input.design); site > 0) {
            judgement.minDist = design::Distance(result.minDist).micronsOn(site);
        }
        judgement.possible = true;
    } catch (const Fault&) { // without rows there is nothing to judge
    }
    return judgement;
}

Json toJson(const Judgement& judgement)
{
    if (!judgement.possible) {
        return nullptr;
    }
    return {{"errors", judgement.errors},
            {"conflicts", judgement.conflicts},
            {"notes", judgement.notes},
            {"mindp_um", judgement.minDist ? Json(*judgement.minDist) : Json(nullptr)}};
}

} // namespace kit::verify
