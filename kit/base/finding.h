// SPDX-License-Identifier: BSD-3-Clause
// What is wrong with a file, and where.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace kit {

/// How bad a problem is.
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

/// Keeps the first findings of each code, and says behind the last of them how many more there are.
void limitFindings(Findings& findings, size_t mostOfACode);

/// Says behind a finding how many more there are of its kind.
void addRest(Finding& finding, size_t more);

/// A place in a file.
struct Place {
    int64_t line = 0;   ///< from 1; 0 for the file as a whole
    int64_t column = 0; ///< from 1; 0 for the line as a whole
};

/// Appends findings about one file.
class Reporter {
public:
    /// @param findings  out: where the findings go; must outlive the reporter
    /// @param file      path as the user gave it
    Reporter(Findings& findings, std::string file) : m_findings(findings), m_file(std::move(file)) {}

    /// Appends an error. @param at  where in the file
    void error(const char* code, Place at, std::string what, std::string advice)
    {
        add(Severity::ERROR, code, at, std::move(what), std::move(advice));
    }

    /// Appends a warning.
    void warning(const char* code, Place at, std::string what, std::string advice)
    {
        add(Severity::WARNING, code, at, std::move(what), std::move(advice));
    }

    /// Appends a note.
    void note(const char* code, Place at, std::string what, std::string advice)
    {
        add(Severity::NOTE, code, at, std::move(what), std::move(advice));
    }

    /// Appends a finding of any severity.
    void add(Severity severity, const char* code, Place at, std::string what, std::string advice)
    {
        m_findings.push_back(
            {severity, code, m_file, at.line, at.column, std::move(what), std::move(advice)});
    }

private:
    Findings& m_findings;
    std::string m_file;
};

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
