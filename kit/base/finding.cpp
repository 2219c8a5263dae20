// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/finding.h"

#include <algorithm>
#include <iterator>

namespace kit {

namespace {

bool isError(const Finding& finding)
{
    return finding.severity == Severity::ERROR;
}

} // namespace

Counts countsOf(const Findings& findings)
{
    Counts counts;
    for (const Finding& finding : findings) {
        counts.errors += isError(finding) ? 1 : 0;
        counts.warnings += finding.severity == Severity::WARNING ? 1 : 0;
        counts.notes += finding.severity == Severity::NOTE ? 1 : 0;
    }
    return counts;
}

bool hasErrors(const Findings& findings)
{
    return std::any_of(findings.begin(), findings.end(), isError);
}

Findings errorsOf(const Findings& findings)
{
    Findings errors;
    std::copy_if(findings.begin(), findings.end(), std::back_inserter(errors), isError);
    return errors;
}

} // namespace kit
