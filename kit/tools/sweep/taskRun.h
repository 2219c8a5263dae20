// SPDX-License-Identifier: BSD-3-Clause
// One run, in a process of its own.
#pragma once

#include <optional>
#include <stop_token>
#include <string>

#include "kit/tools/sweep/claims.h"
#include "kit/tools/sweep/result.h"
#include "kit/tools/sweep/task.h"

namespace kit::sweep {

/// How runs are made.
struct RunSetting {
    std::string program;         ///< path of the program that has `place`
    double timeout = 0;          ///< seconds a run may take, 0 for no limit
    int64_t memoryKib = 0;       ///< memory a run may use, 0 for no limit
    bool keepPlacements = false; ///< keep what `place` writes, in DIR/placements/ID
};

/// Makes a run that has been claimed, and writes its result.
///
/// @param stop  ends it without a result
/// @return what became of it; nothing if it was stopped, or the claim was lost
///
/// Errors: throws Fault if the program cannot be started or the result not be written.
std::optional<Result> runTask(const Task& task, const Folder& folder, const RunSetting& setting,
                              Claims& claims, const Claim& claim, const std::stop_token& stop);

} // namespace kit::sweep
