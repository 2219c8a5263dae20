// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/report.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <vector>

namespace vireloce {

namespace {

std::ostream* s_report = nullptr;  ///< not owned; nullptr: standard output
EndHandler s_endHandler = nullptr; ///< nullptr: std::exit(0)

} // namespace

std::ostream& report()
{
    return s_report != nullptr ? *s_report : std::cout;
}

void setReport(std::ostream* stream)
{
    s_report = stream;
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

EndHandler setEndHandler(EndHandler handler)
{
    const EndHandler before = s_endHandler;
    s_endHandler = handler;
    return before;
}

void endRun(const std::string& line)
{
    report() << line << '\n';
    report().flush();
    if (s_endHandler != nullptr) {
        s_endHandler();
    }
    std::exit(0);
}

void endRunAt(const std::string& path, int64_t line, const std::string& what)
{
    endRun("ERROR| " + path + ":" + std::to_string(line) + ": " + what);
}

} // namespace vireloce
