// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/findingText.h"

#include <ostream>

#include "kit/base/text/json.h"
#include "kit/base/text/printable.h"
#include "kit/base/text/text.h"

namespace kit {

namespace {

constexpr int SCHEMA = 1;

Json jsonOf(const Finding& finding)
{
    return {{"severity", wordOf(finding.severity)},
            {"code", finding.code},
            {"file", finding.file},
            {"line", finding.line},
            {"column", finding.column},
            {"what", finding.what},
            {"advice", finding.advice}};
}

} // namespace

const char* wordOf(Severity severity)
{
    switch (severity) {
    case Severity::ERROR:
        return "error";
    case Severity::WARNING:
        return "warning";
    case Severity::NOTE:
        break;
    }
    return "note";
}

std::string lineOf(const Finding& finding, PlaceText place)
{
    std::string line = finding.file;
    if (finding.line > 0) {
        line += ':';
        line += std::to_string(finding.line);
        if (place == PlaceText::LINE_AND_COLUMN && finding.column > 0) {
            line += ':';
            line += std::to_string(finding.column);
        }
    }
    line += ": ";
    line += wordOf(finding.severity);
    line += ": ";
    line += finding.what;
    if (!finding.advice.empty()) {
        line += "; ";
        line += finding.advice;
    }
    line = printable(line);
    line += " [";
    line += finding.code;
    line += "]\n";
    return line;
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
    out << R"({"schema":)" << SCHEMA << R"(,"summary":)" << Json(textOf(counts)) << R"(,"counts":)"
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

} // namespace kit
