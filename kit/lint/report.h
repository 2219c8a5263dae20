// SPDX-License-Identifier: BSD-3-Clause
// Findings as text and as JSON.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "kit/input/finding.h"
#include "kit/input/reader.h"

namespace kit::lint {

/// Findings of each severity.
struct Counts {
    int64_t errors = 0;
    int64_t warnings = 0;
    int64_t notes = 0;
};

Counts countsOf(const input::Findings& findings);

/// Sorts findings by file, in the order in which the placer reads them, then by line and column. Findings of
/// one place keep their order.
void sortFindings(input::Findings& findings, const input::Paths& paths);

/// Writes a line for each finding, and a last one with their counts. Characters of the files that would not
/// show are written as "?".
void writeText(const input::Findings& findings, std::ostream& out);

/// Writes one object: "schema" (1), "counts" (errors, warnings, notes) and "findings" (severity, code, file,
/// line, column, what, advice), one finding to the line.
void writeJson(const input::Findings& findings, std::ostream& out);

} // namespace kit::lint
