// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <chrono>
#include <cstdint>

#include "kit/tools/sweep/result.h"

namespace kit::sweep {

/// How far a sweep has got, on standard error: on a terminal one line that is written over, elsewhere a line
/// every half minute.
class Progress {
public:
    /// @param tasks    number of runs
    /// @param seconds  that they may take, as estimated
    Progress(int64_t tasks, double seconds, bool quiet);

    /// Counts a run that had its result before.
    void known(Status status, double estimate);

    /// Counts a run that was made.
    void made(Status status, double estimate);

    /// Shows it, if it is time to.
    void show();

    /// Shows the result.
    void end();

private:
    using Clock = std::chrono::steady_clock;

    void count(Status status);

    bool m_quiet;
    bool m_terminal;
    int64_t m_tasks;
    double m_left;     ///< seconds, as estimated
    double m_made = 0; ///< seconds, as estimated, of those made here
    int64_t m_clean = 0;
    int64_t m_notClean = 0;
    int64_t m_failed = 0;
    Clock::time_point m_begin = Clock::now();
    Clock::time_point m_next; ///< time of the next line
};

} // namespace kit::sweep
