// SPDX-License-Identifier: BSD-3-Clause
// Running something in a process of its own.
#pragma once

#include <filesystem>
#include <functional>

namespace mutation {

/// How a child process ended.
struct ChildEnd {
    int status = 0;       ///< as waitpid() gives it
    int64_t peakKiB = 0;  ///< most memory that it had, KiB
    double seconds = 0.0; ///< CPU time that it took
};

/// Where a child works, and where what it prints goes.
struct ChildPlace {
    std::filesystem::path folder; ///< its working folder
    std::filesystem::path report; ///< file for its standard output
    std::filesystem::path errors; ///< file for its standard error
};

/// Runs something in a forked child and waits for it. The child leaves by exit(0) after it.
///
/// @param seconds  the child gets SIGPROF after so much CPU time, and SIGALRM after ten times as long by the
///                 clock, for one that waits for ever; a busy machine stops no child early
ChildEnd runChild(const ChildPlace& place, unsigned seconds, const std::function<void()>& body);

/// Whether this build watches its memory by the address sanitizer.
bool hasAddressSanitizer();

/// Whether a child of this build reports memory that it has lost.
bool findsLeaks();

/// Bytes of memory that a child may have; it gets no more where the build allows a limit, and a judge can
/// look at ChildEnd::peakKiB where it does not.
inline constexpr int64_t MOST_MEMORY = int64_t{1} << 30U;

} // namespace mutation
