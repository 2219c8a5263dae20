// SPDX-License-Identifier: BSD-3-Clause
// The seam between the placer and the program around it: where the report goes, and how a run ends early.
#pragma once

#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>

namespace vireloce {

/// The stream that the report is written to: standard output, or that of a ReportScope.
std::ostream& report();

/// Writes to the report as printf does to standard output, in order with what is streamed to report().
[[gnu::format(printf, 1, 2)]] void reportf(const char* format, ...);

/// Why a run ended early. what() is the last line of its report, without the line end, up to its first NUL
/// byte.
struct RunError : std::runtime_error {
    using std::runtime_error::runtime_error;

    std::string file; ///< with the fault, as it was opened; empty if the fault is at no line of a file
    int64_t line = 0; ///< from 1; 0 if the fault is at no line of a file
    std::string text; ///< what is wrong
};

/// While it lives, the report goes to a stream, and the early end of a run is thrown as RunError. Without one
/// the report goes to standard output, and the early end is that of the process, with status 0.
class ReportScope {
public:
    /// @param target  not owned, must outlive the scope; nullptr: as without a scope
    explicit ReportScope(std::ostream* target);

    /// Puts back what was in force.
    ~ReportScope();

    /// Not copied: one puts it back.
    ReportScope(const ReportScope&) = delete;
    ReportScope& operator=(const ReportScope&) = delete;

private:
    std::ostream* m_before; ///< not owned
};

/// Ends the run: prints the line with a line end and flushes. See ReportScope for what comes then.
///
/// @param line  a tag, "| ", and what is wrong
[[noreturn]] void endRun(const std::string& line);

/// Ends the run over a fault of an input file, with the line "ERROR| FILE:LINE: what".
///
/// @param path  the file as it was opened
/// @param line  line number, from 1
/// @param what  what is wrong there
[[noreturn]] void endRunAt(const std::string& path, int64_t line, const std::string& what);

} // namespace vireloce
