// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/lint/report.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <tuple>
#include <unordered_map>

#include "kit/base/finding.h"
#include "kit/base/text/json.h"
#include "kit/base/text/text.h"

namespace kit::lint {

namespace {

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

} // namespace

void sortFindings(Findings& findings, const placer::Paths& paths)
{
    const Ranks ranks = ranksOf(findings, paths);
    std::stable_sort(findings.begin(), findings.end(), [&ranks](const Finding& a, const Finding& b) {
        const size_t aRank = a.file == b.file ? 0 : ranks.at(a.file);
        const size_t bRank = a.file == b.file ? 0 : ranks.at(b.file);
        return std::tie(aRank, a.line, a.column) < std::tie(bRank, b.line, b.column);
    });
}

} // namespace kit::lint
