// SPDX-License-Identifier: BSD-3-Clause
// Another program, run to its end.
#pragma once

#include <cstdint>
#include <stop_token>
#include <string>
#include <vector>

namespace kit::process {

/// How a program ended.
struct Ending {
    int status = 0;          ///< exit status; -1 if a signal ended it
    int signal = 0;          ///< that signal, 0 if none
    double seconds = 0;      ///< time from its start to its end
    double cpuSeconds = 0;   ///< time of its own on the processors
    int64_t peakKib = 0;     ///< largest memory in use
    bool timedOut = false;   ///< it was killed at its time limit
    bool overMemory = false; ///< it was killed at its memory limit, or had more in between
    bool stopped = false;    ///< it was killed because a stop was asked for
};

/// What a program may use up. It is in a process group of its own then, which is killed as a whole.
struct Limits {
    double seconds = 0;    ///< time from its start, 0 for no limit
    int64_t memoryKib = 0; ///< memory in use, looked at every few milliseconds; 0 for no limit
    std::stop_token stop;  ///< kills it when a stop is asked for
};

/// Runs a program with its output in two files and nothing to read.
///
/// @param words       the program's path, and its arguments
/// @param outputPath  where its standard output goes
/// @param errorPath   where its standard error goes; may be the same file
///
/// The program does not outlive this one: the system kills it when the calling thread ends.
///
/// Errors: throws Fault if the program cannot be started.
Ending run(const std::vector<std::string>& words, const std::string& outputPath,
           const std::string& errorPath);

/// As run(), within limits.
Ending run(const std::vector<std::string>& words, const std::string& outputPath, const std::string& errorPath,
           const Limits& limits);

/// Path of the running program itself.
std::string ownPath();

/// Words as a command that a shell takes.
std::string shellText(const std::vector<std::string>& words);

} // namespace kit::process
