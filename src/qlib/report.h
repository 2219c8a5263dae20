// SPDX-License-Identifier: BSD-3-Clause
// The two seams between the placer and the program around it: where the report goes, and how a run ends.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

namespace vireloce {

/// The stream that the report is written to: standard output, or what setReport() chose.
std::ostream& report();

/// Redirects the report.
///
/// @param stream  new target, not owned, must outlive its use; nullptr means standard output again
void setReport(std::ostream* stream);

/// Writes to the report as printf does to standard output, in order with what is streamed to report().
[[gnu::format(printf, 1, 2)]] void reportf(const char* format, ...);

/// Called when a run ends before its regular end, after the last line was written and flushed.
///
/// It must not return: it throws, jumps or exits.
using EndHandler = void (*)();

/// Replaces what ends a run; the default, and nullptr, is std::exit(0).
///
/// @return the handler that was in force, nullptr for the default
EndHandler setEndHandler(EndHandler handler);

/// Ends the run: prints the line with a line end, flushes, and calls the end handler.
///
/// The exit status of the default handler is 0, as for every way in which a run ends.
[[noreturn]] void endRun(const std::string& line);

/// Ends the run over a fault of an input file, with the line "ERROR| FILE:LINE: what".
///
/// @param path  the file as it was opened
/// @param line  line number, from 1
/// @param what  what is wrong there
[[noreturn]] void endRunAt(const std::string& path, int64_t line, const std::string& what);

} // namespace vireloce
