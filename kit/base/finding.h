// SPDX-License-Identifier: BSD-3-Clause
// What is wrong with a file, and where.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kit {

enum class Severity { NOTE, WARNING, ERROR };

/// A problem. It is shown as "FILE:LINE: error|warning|note: what, and what to do".
struct Finding {
    Severity severity = Severity::ERROR;
    std::string code;   ///< kind, a short word or two joined by "-", for scripts: "unknown-cell"
    std::string file;   ///< path as the user gave it
    int64_t line = 0;   ///< from 1; 0 for the file as a whole
    int64_t column = 0; ///< from 1; 0 for the line as a whole
    std::string what;   ///< what is wrong, with names and numbers
    std::string advice; ///< what to do; empty if that is plain
};

/// Problems in the order in which they were met.
using Findings = std::vector<Finding>;

/// Findings of each severity.
struct Counts {
    int64_t errors = 0;
    int64_t warnings = 0;
    int64_t notes = 0;
};

/// How many findings there are of each severity.
Counts countsOf(const Findings& findings);

/// Whether one of the findings is an error.
bool hasErrors(const Findings& findings);

/// The errors alone, in their order.
Findings errorsOf(const Findings& findings);

} // namespace kit
