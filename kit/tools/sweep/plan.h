// SPDX-License-Identifier: BSD-3-Clause
// From a study to the tasks of a folder.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "kit/tools/sweep/task.h"

namespace kit::sweep {

/// What `sweep plan` is asked to do.
struct PlanOptions {
    std::string study;                  ///< path of the study
    std::string dir;                    ///< folder that gets the tasks
    std::optional<double> shardMinutes; ///< how long a shard should take
    bool force = false;                 ///< replace tasks that are there
};

/// The tasks of a study, each id once, at its first place.
///
/// @param dir  folder that paths count from: relative if they share a folder other than the root with it
///
/// Errors: throws Fault if a design cannot be read.
std::vector<Task> tasksOf(const Study& study, const std::string& dir);

/// Writes DIR/tasks.jsonl and says how much there is to do.
///
/// Errors: throws Fault for a study that is wrong, for tasks that are there, and if it cannot be written.
void plan(const PlanOptions& options, std::ostream& out);

} // namespace kit::sweep
