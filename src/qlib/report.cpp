// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/report.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <utility>
#include <vector>

namespace vireloce {

namespace {

std::ostream* s_report = nullptr; ///< of the ReportScope, not owned; nullptr: there is none

/// Prints the line, which may hold NUL bytes of an input's name where what() would stop, and ends the run.
[[noreturn]] void end(const std::string& line, const RunError& error)
{
    report() << line << '\n';
    report().flush();
    if (s_report != nullptr) {
        throw error;
    }
    std::exit(0);
}

} // namespace

std::ostream& report()
{
    return s_report != nullptr ? *s_report : std::cout;
}

void reportf(const char* format, ...)
{
    // Formatted text goes through the same stream as the rest, so program order needs no care.
    va_list args;
    va_list again;
    va_start(args, format);
    va_copy(again, args);
    const int length = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    if (length > 0) {
        std::vector<char> text(static_cast<size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        report().write(text.data(), length);
    }
    va_end(again);
}

ReportScope::ReportScope(std::ostream* target) : m_before(std::exchange(s_report, target)) {}

ReportScope::~ReportScope()
{
    s_report = m_before;
}

void endRun(const std::string& line)
{
    RunError error(line);
    error.text = line.substr(line.find("| ") + 2);
    end(line, error);
}

void endRunAt(const std::string& path, int64_t line, const std::string& what)
{
    const std::string whole = "ERROR| " + path + ":" + std::to_string(line) + ": " + what;
    RunError error(whole);
    error.file = path;
    error.line = line;
    error.text = what;
    end(whole, error);
}

} // namespace vireloce
