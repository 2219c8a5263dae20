// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/lint/lint.h"

#include <iostream>
#include <utility>

#include "kit/base/fault.h"
#include "kit/base/finding.h"
#include "kit/engines/lint/checks.h"
#include "kit/engines/lint/report.h"

namespace kit::lint {

namespace {

using placer::Design;

/// Reads one file. @return false after a finding if it cannot be read
template <typename Read>
bool readFile(const std::string& path, Findings& findings, Read read)
{
    try {
        read();
    } catch (const Fault& fault) {
        Reporter(findings, path).error("no-file", {}, fault.what(), "write it, or correct BASE");
        return false;
    }
    return true;
}

/// The checks of what the files mean; they need the library and the placement.
void check(const Subject& subject)
{
    for (const auto one :
         {checkLibrary, checkMasks, checkNames, checkRows, checkMacros, checkComponents, checkCapacity}) {
        one(subject);
    }
}

int exitStatusOf(const Findings& findings)
{
    const Counts counts = countsOf(findings);
    return counts.errors > 0 ? 2 : counts.warnings > 0 ? 1 : 0;
}

} // namespace

Findings findingsOf(const Options& options)
{
    Design design;
    Findings findings;
    const placer::Paths& paths = options.paths;
    bool whole = readFile(paths.cells(), findings, [&] { readLibrary(paths, design, findings); });
    whole &= readFile(paths.place(), findings, [&] { readPlacement(paths.place(), design, findings); });
    bool named = readFile(paths.pins(), findings, [&] { readPins(paths.pins(), design, findings); });
    // Without them most members of nets would be unknown.
    named &= whole;
    if (named) {
        readFile(paths.netlist(), findings, [&] { readNets(paths.netlist(), design, findings); });
    }
    if (whole) {
        check({design, options, findings});
    }
    for (Finding& finding : findings) {
        const bool worse = options.strict && finding.severity == Severity::WARNING;
        finding.severity = worse ? Severity::ERROR : finding.severity;
    }
    sortFindings(findings, paths);
    return findings;
}

int run(const Options& options)
{
    const Findings findings = findingsOf(options);
    (options.json ? writeJson : writeText)(findings, std::cout);
    return exitStatusOf(findings);
}

} // namespace kit::lint
