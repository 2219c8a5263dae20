// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <iosfwd>
#include <string>

#include "kit/base/finding.h"

namespace kit {

/// "error", "warning" or "note".
const char* wordOf(Severity severity);

/// How a finding tells its place.
enum class PlaceText { LINE, LINE_AND_COLUMN };

/// A finding as a line: "FILE:LINE: error|warning|note: what; advice [code]" with its line end. What
/// would not show is written as printable() does.
std::string lineOf(const Finding& finding, PlaceText place = PlaceText::LINE);

/// How many there are: "2 errors, 1 warning, 0 notes".
std::string textOf(const Counts& counts);

/// Writes a line for each finding, and a last one with their counts. Characters of the files that would not
/// show are written as "?".
void writeText(const Findings& findings, std::ostream& out);

/// Writes one object: "schema" (1), "summary" (textOf() the counts), "counts" (errors, warnings, notes) and
/// "findings" (severity, code, file, line, column, what, advice), one finding to the line.
void writeJson(const Findings& findings, std::ostream& out);

} // namespace kit
