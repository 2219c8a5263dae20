// SPDX-License-Identifier: BSD-3-Clause
// Another program, run to its end.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kit::process {

/// How a program ended.
struct Ending {
    int status = 0;        ///< exit status; -1 if a signal ended it
    int signal = 0;        ///< that signal, 0 if none
    double seconds = 0;    ///< time from its start to its end
    double cpuSeconds = 0; ///< time of its own on the processors
    int64_t peakKib = 0;   ///< largest memory in use
};

/// Runs a program with its output in two files and nothing to read.
///
/// @param words       the program's path, and its arguments
/// @param outputPath  where its standard output goes
/// @param errorPath   where its standard error goes; may be the same file
///
/// Errors: throws Fault if the program cannot be started.
Ending run(const std::vector<std::string>& words, const std::string& outputPath,
           const std::string& errorPath);

/// Path of the running program itself.
std::string ownPath();

/// Words as a command that a shell takes.
std::string shellText(const std::vector<std::string>& words);

} // namespace kit::process
