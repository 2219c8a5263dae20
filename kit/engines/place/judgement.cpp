// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/judgement.h"

#include "kit/base/fault.h"
#include "kit/engines/verify/verify.h"

namespace kit::place {

Judgement judge(const Options& options, int32_t minDist, const OutputSet& files)
{
    Judgement judgement;
    try {
        const design::ColoredPlacement input =
            design::readColoredPlacement({.placement = files.partPath(options.out + ".place"),
                                          .colors = files.partPath(options.out + ".colors"),
                                          .mapOf = options.base + ".place",
                                          .cellDir = options.cellPath,
                                          .cells = options.base + ".cells"});
        for (const design::Issue& issue : verify::judge(input, {.minDist = minDist})) {
            const bool isError = severityOf(issue) == Severity::ERROR;
            judgement.errors += isError ? 1 : 0;
            judgement.notes += isError ? 0 : 1;
            judgement.conflicts += issue.kind == design::Kind::CONFLICT ? 1 : 0;
        }
        judgement.errors += static_cast<int64_t>(input.faults.size());
        if (const lefdef::Length site = design::siteLength(input.design); site > 0) {
            judgement.minDist = design::Distance(minDist).micronsOn(site);
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

} // namespace kit::place
