// SPDX-License-Identifier: BSD-3-Clause
#include "kit/verify/verify.h"

#include <algorithm>
#include <iterator>

#include "kit/fault.h"
#include "kit/input/names.h"
#include "kit/input/reader.h"
#include "kit/lefdef/trueOrient.h"
#include "kit/verify/legality.h"
#include "kit/verify/matching.h"
#include "kit/verify/pairs.h"

namespace kit::verify {

namespace {

/// Names of the cells that the placement uses, in order of first use.
std::vector<std::string> usedCells(const input::Design& design)
{
    std::vector<std::string> names;
    input::NameIndex seen;
    for (const input::Component& comp : design.components) {
        if (seen.try_emplace(comp.cellName, 0).second) {
            names.push_back(comp.cellName);
        }
    }
    return names;
}

void findCells(input::Design& design)
{
    const input::NameIndex index = input::indexNames(design.cells);
    for (input::Component& comp : design.components) {
        comp.cell = input::findName(index, comp.cellName);
    }
}

/// Keeps the errors: the rest is the linter's.
input::Findings errorsOf(const input::Findings& findings)
{
    input::Findings errors;
    std::copy_if(findings.begin(), findings.end(), std::back_inserter(errors),
                 [](const input::Finding& finding) { return finding.severity == input::Severity::ERROR; });
    return errors;
}

/// The scale of a design; without rows that of the library.
Scale scaleOf(const input::Design& design)
{
    const int64_t step = design.rows.empty() ? Scale::PER_DBU : design.rows.front().step;
    if (step <= 0) {
        throw Fault("the first row's step is " + std::to_string(step) + ": it must be positive");
    }
    return {step};
}

} // namespace

Input readInput(const Options& options)
{
    Input input;
    input::Findings findings;
    input::readPlacement(options.placement, input.design, findings);
    lefdef::restoreOrientations(options.mapOf.empty() ? options.placement : options.mapOf, input.design,
                                findings);
    if (options.cells.empty()) {
        input::readCells(usedCells(input.design), options.cellDir, input.design, findings);
    } else {
        input::readLibrary(options.cells, options.cellDir, input.design, findings);
    }
    findCells(input.design);
    input.colors = input::readColors(options.colors, findings);
    input.faults = errorsOf(findings);
    return input;
}

Issues judge(const Input& input, int32_t minDist)
{
    const Scale scale = scaleOf(input.design);
    Issues issues;
    const Matching matching = matchColors(input.design, input.colors, issues);
    checkColors(input.design, matching, issues);
    checkPlaces(input.design, scale, issues);
    const Layout layout(input.design, matching, scale);
    checkMacros(input.design, layout, issues);
    checkPairs(input.design, layout, scale, {.minDist = minDist}, issues);
    return issues;
}

std::vector<int64_t> countKinds(const Issues& issues)
{
    std::vector<int64_t> counts(kinds().size());
    for (const Issue& issue : issues) {
        ++counts[static_cast<size_t>(issue.kind)];
    }
    return counts;
}

int exitStatusOf(const Input& input, const Issues& issues)
{
    if (!input.faults.empty()) {
        return 2;
    }
    return std::any_of(issues.begin(), issues.end(), [](const Issue& issue) {
        return infoOf(issue.kind).severity != input::Severity::NOTE;
    });
}

} // namespace kit::verify
