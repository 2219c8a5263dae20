// SPDX-License-Identifier: BSD-3-Clause
#include "kit/lint/report.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <tuple>
#include <unordered_map>

#include "kit/base/json.h"
#include "kit/input/findingText.h"
#include "kit/input/text.h"

namespace kit::lint {

namespace {

using input::Finding;
using input::Findings;
using input::Severity;

constexpr int SCHEMA = 1;

Json jsonOf(const Finding& finding)
{
    return {{"severity", input::wordOf(finding.severity)},
            {"code", finding.code},
            {"file", finding.file},
            {"line", finding.line},
            {"column", finding.column},
            {"what", finding.what},
            {"advice", finding.advice}};
}

/// Ranks of files by their paths.
using Ranks = std::unordered_map<std::string, size_t>;

/// The cell list comes first, then the colour files as they were met, then the rest.
Ranks ranksOf(const Findings& findings, const input::Paths& paths)
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

} // namespace

Counts countsOf(const Findings& findings)
{
    Counts counts;
    for (const Finding& finding : findings) {
        counts.errors += finding.severity == Severity::ERROR ? 1 : 0;
        counts.warnings += finding.severity == Severity::WARNING ? 1 : 0;
        counts.notes += finding.severity == Severity::NOTE ? 1 : 0;
    }
    return counts;
}

void sortFindings(Findings& findings, const input::Paths& paths)
{
    const Ranks ranks = ranksOf(findings, paths);
    std::stable_sort(findings.begin(), findings.end(), [&ranks](const Finding& a, const Finding& b) {
        const size_t aRank = a.file == b.file ? 0 : ranks.at(a.file);
        const size_t bRank = a.file == b.file ? 0 : ranks.at(b.file);
        return std::tie(aRank, a.line, a.column) < std::tie(bRank, b.line, b.column);
    });
}

void writeText(const Findings& findings, std::ostream& out)
{
    for (const Finding& finding : findings) {
        out << input::lineOf(finding);
    }
    const Counts counts = countsOf(findings);
    out << input::counted(counts.errors, "error") << ", " << input::counted(counts.warnings, "warning")
        << ", " << input::counted(counts.notes, "note") << '\n';
    out.flush();
}

void writeJson(const Findings& findings, std::ostream& out)
{
    const Counts counts = countsOf(findings);
    out << R"({"schema":)" << SCHEMA << R"(,"counts":)"
        << Json{{"errors", counts.errors}, {"warnings", counts.warnings}, {"notes", counts.notes}}
        << R"(,"findings":[)";
    // Finding by finding: a million of them need no second copy.
    const char* separator = "\n";
    for (const Finding& finding : findings) {
        out << separator << jsonOf(finding);
        separator = ",\n";
    }
    out << "\n]}\n";
    out.flush();
}

} // namespace kit::lint
