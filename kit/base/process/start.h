// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kit::process {

/// A program that is to be started.
struct Start {
    const std::vector<std::string>& words; ///< the program's path, and its arguments
    const std::string& outputPath;         ///< where its standard output goes
    const std::string& errorPath;          ///< where its standard error goes; may be the same file
    bool ownGroup = false;                 ///< whether it leads a process group of its own
};

/// Starts a program with nothing to read. The system kills it when the calling thread ends.
///
/// @return its process id
///
/// Errors: throws Fault if it cannot be started.
pid_t start(const Start& program);

} // namespace kit::process
