// SPDX-License-Identifier: BSD-3-Clause
// Making the runs of a folder.
#pragma once

#include <cstdint>

#include "kit/tools/sweep/shard.h"
#include "kit/tools/sweep/taskRun.h"

namespace kit::sweep {

/// What `sweep run` is asked to do.
struct SweepOptions {
    std::string dir;
    Shard shard;
    int32_t jobs = 1;    ///< runs at a time
    bool resume = false; ///< go on: runs with a result are left out
    bool retry = false;  ///< with `resume`: make runs that failed again
    bool wait = false;   ///< wait for runs that others have, until they are made or can be taken over
    bool quiet = false;  ///< no progress
    RunSetting setting;
};

/// Makes the runs of a shard, each in a process of its own, and writes their results.
///
/// On SIGINT and SIGTERM it ends its runs without results, so that they can be resumed.
///
/// @return exit status: 0 if all have a placement; 1 if some failed, or are in the hands of another process;
///         128 and the signal's number if it was stopped
///
/// Errors: throws Fault if there are results already and `resume` is not given, if a design is not what it
/// was when the runs were planned, and if files cannot be written.
int run(const SweepOptions& options);

} // namespace kit::sweep
