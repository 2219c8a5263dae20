// SPDX-License-Identifier: BSD-3-Clause
#include "kit/input/findingText.h"

#include "kit/base/printable.h"

namespace kit::input {

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

} // namespace kit::input
