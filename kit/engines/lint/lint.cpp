// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/lint/lint.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <tuple>
#include <unordered_map>

#include "kit/base/fault.h"
#include "kit/base/finding.h"
#include "kit/engines/lint/checks.h"

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

/// Ranks of files by their paths.
using Ranks = std::unordered_map<std::string, size_t>;

/// The cell list comes first, then the colour files as they were met, then the rest.
Ranks ranksOf(const Findings& findings, const placer::Paths& paths)
{
    Ranks ranks{{paths.cells(), 0}};
    const Ranks last{{paths.place(), 0}, {paths.pins(), 1}, {paths.netlist(), 2}};
    for (const Finding& finding : findings) {
        if (last.count(finding.file) == 0) {
            ranks.try_emplace(finding.file, ranks.size());
        }
    }
    const size_t firstOfLast = ranks.size();
    for (const auto& [file, rank] : last) {
        ranks.try_emplace(file, firstOfLast + rank);
    }
    return ranks;
}

/// Sorts findings by file, in the order in which the placer reads them, then by line and column. Findings of
/// one place keep their order.
void sortFindings(Findings& findings, const placer::Paths& paths)
{
    const Ranks ranks = ranksOf(findings, paths);
    std::ranges::stable_sort(findings, [&ranks](const Finding& a, const Finding& b) {
        const size_t aRank = a.file == b.file ? 0 : ranks.at(a.file);
        const size_t bRank = a.file == b.file ? 0 : ranks.at(b.file);
        return std::tie(aRank, a.line, a.column) < std::tie(bRank, b.line, b.column);
    });
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

/// Reads a design and checks all of it. A file that cannot be read is a finding, too.
///
/// @return every problem, sorted by file and line; warnings are errors if the options say so
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
        check({design, design::occupancyOf(design), options, findings});
    }
    for (Finding& finding : findings) {
        const bool worse = options.strict && finding.severity == Severity::WARNING;
        finding.severity = worse ? Severity::ERROR : finding.severity;
    }
    sortFindings(findings, paths);
    return findings;
}

} // namespace

int run(const Options& options)
{
    const Findings findings = findingsOf(options);
    (options.json ? writeJson : writeText)(findings, std::cout);
    return exitStatusOf(findings);
}

} // namespace kit::lint
