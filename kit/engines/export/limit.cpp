// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/limit.h"

#include <string>
#include <unordered_map>

namespace kit::exporter {

void limitFindings(Findings& findings, size_t mostOfACode)
{
    std::unordered_map<std::string, size_t> counts;
    std::unordered_map<std::string, size_t> lastKept; // index in kept, by code
    Findings kept;
    for (Finding& finding : findings) {
        if (++counts[finding.code] <= mostOfACode) {
            lastKept[finding.code] = kept.size();
            kept.push_back(std::move(finding));
        }
    }
    for (const auto& [code, index] : lastKept) {
        if (counts[code] > mostOfACode) {
            kept[index].advice += (kept[index].advice.empty() ? "" : "; ") + std::string("there are ") +
                                  std::to_string(counts[code] - mostOfACode) + " more like this";
        }
    }
    findings = std::move(kept);
}

} // namespace kit::exporter
