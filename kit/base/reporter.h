// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <utility>

#include "kit/base/finding.h"

namespace kit {

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

    void error(const char* code, Place at, std::string what, std::string advice)
    {
        add(Severity::ERROR, code, at, std::move(what), std::move(advice));
    }

    void warning(const char* code, Place at, std::string what, std::string advice)
    {
        add(Severity::WARNING, code, at, std::move(what), std::move(advice));
    }

    void note(const char* code, Place at, std::string what, std::string advice)
    {
        add(Severity::NOTE, code, at, std::move(what), std::move(advice));
    }

    void add(Severity severity, const char* code, Place at, std::string what, std::string advice)
    {
        m_findings.push_back({.severity = severity,
                              .code = code,
                              .file = m_file,
                              .line = at.line,
                              .column = at.column,
                              .what = std::move(what),
                              .advice = std::move(advice)});
    }

private:
    Findings& m_findings;
    std::string m_file;
};

} // namespace kit
