// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/verify/verify.h"

#include <algorithm>
#include <iterator>

#include "kit/base/fault.h"
#include "kit/design/coloredPlacement.h"
#include "kit/design/nameMap.h"
#include "kit/engines/verify/checks.h"
#include "kit/formats/placer/design.h"
#include "kit/formats/placer/reader.h"

namespace kit::verify {

namespace {

/// The scale of a design; without rows that of the library.
design::Scale scaleOf(const placer::Design& design)
{
    const int64_t step = design.rows.empty() ? placer::LIBRARY_SITE : design.rows.front().step;
    if (step <= 0) {
        throw Fault("the first row's step is " + std::to_string(step) + ": it must be positive");
    }
    return {step};
}

} // namespace

design::Issues judge(const design::ColoredPlacement& input, int32_t minDist)
{
    const design::Scale scale = scaleOf(input.design);
    design::Issues issues;
    const design::Matching matching = design::matchColors(input.design, input.colors, issues);
    design::checkColors(input.design, matching, issues);
    checkPlaces(input.design, scale, issues);
    const design::Layout layout(input.design, matching, scale);
    checkMacros(input.design, layout, issues);
    checkPairs(input.design, layout, scale, {.minDist = minDist}, issues);
    return issues;
}

std::vector<int64_t> countKinds(const design::Issues& issues)
{
    std::vector<int64_t> counts(design::kinds().size());
    for (const design::Issue& issue : issues) {
        ++counts[static_cast<size_t>(issue.kind)];
    }
    return counts;
}

int exitStatusOf(const design::ColoredPlacement& input, const design::Issues& issues)
{
    if (!input.faults.empty()) {
        return 2;
    }
    return std::ranges::any_of(issues, [](const design::Issue& issue) {
        return design::infoOf(issue.kind).severity != Severity::NOTE;
    });
}

} // namespace kit::verify
