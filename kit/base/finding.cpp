// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/finding.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <unordered_map>

#include "kit/base/text/escape.h"
#include "kit/base/text/json.h"
#include "kit/base/text/text.h"

namespace kit {

namespace {

bool isError(const Finding& finding)
{
    return finding.severity == Severity::ERROR;
}

} // namespace

Counts countsOf(const Findings& findings)
{
    const auto count = [&findings](Severity severity) {
        return std::count_if(findings.begin(), findings.end(),
                             [severity](const Finding& finding) { return finding.severity == severity; });
    };
    return {count(Severity::ERROR), count(Severity::WARNING), count(Severity::NOTE)};
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
            addRest(kept[index], counts[code] - mostOfACode);
        }
    }
    findings = std::move(kept);
}

void addRest(Finding& finding, size_t more)
{
    finding.advice += (finding.advice.empty() ? "" : "; ") + std::to_string(more) + " more like this";
}

const char* wordOf(Severity severity)
{
    return severity == Severity::ERROR ? "error" : severity == Severity::WARNING ? "warning" : "note";
}

std::string lineOf(const Finding& finding, PlaceText place)
{
    std::string line = finding.file;
    if (finding.line > 0) {
        line.append(":").append(std::to_string(finding.line));
        if (place == PlaceText::LINE_AND_COLUMN && finding.column > 0) {
            line.append(":").append(std::to_string(finding.column));
        }
    }
    line.append(": ").append(wordOf(finding.severity)).append(": ").append(finding.what);
    if (!finding.advice.empty()) {
        line.append("; ").append(finding.advice);
    }
    return printable(line) + " [" + finding.code + "]\n";
}

std::string textOf(const Counts& counts)
{
    return counted(counts.errors, "error") + ", " + counted(counts.warnings, "warning") + ", " +
           counted(counts.notes, "note");
}

void writeText(const Findings& findings, std::ostream& out)
{
    for (const Finding& finding : findings) {
        out << lineOf(finding);
    }
    out << textOf(countsOf(findings)) << '\n';
    out.flush();
}

void writeJson(const Findings& findings, std::ostream& out)
{
    const Counts counts = countsOf(findings);
    out << R"({"schema":1,"summary":)" << Json(textOf(counts)) << R"(,"counts":)"
        << Json{{"errors", counts.errors}, {"warnings", counts.warnings}, {"notes", counts.notes}}
        << R"(,"findings":[)";
    // Finding by finding: a million of them need no second copy.
    const char* separator = "\n";
    for (const Finding& finding : findings) {
        out << separator
            << Json{{"severity", wordOf(finding.severity)},
                    {"code", finding.code},
                    {"file", finding.file},
                    {"line", finding.line},
                    {"column", finding.column},
                    {"what", finding.what},
                    {"advice", finding.advice}};
        separator = ",\n";
    }
    out << "\n]}\n";
    out.flush();
}

} // namespace kit
