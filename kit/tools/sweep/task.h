// SPDX-License-Identifier: BSD-3-Clause
// A run that is to be made: a line of DIR/tasks.jsonl.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/base/text/json.h"
#include "kit/tools/sweep/study.h"

namespace kit::sweep {

/// One run.
struct Task {
    std::string id;       ///< 16 hexadecimal digits, by content and options
    std::string design;   ///< its name
    std::string base;     ///< path of the design files without extension; relative ones count from DIR
    std::string cellPath; ///< folder of the colour files, likewise
    std::string content;  ///< hash of the design's bytes
    RunOptions options;
    int64_t components = 0; ///< of the design
    double seconds = 0;     ///< that it may take, an estimate
};

/// The id of a run.
///
/// @param content  hash of the design's bytes
std::string idOf(const std::string& content, const RunOptions& options);

/// About how long a run takes: enough to cut work into equal parts, not to tell the time by.
double estimatedSeconds(int64_t components, const RunOptions& options);

/// The options as JSON, null where the placer's default holds.
Json toJson(const RunOptions& options);

/// The arguments of `place` for the options.
std::vector<std::string> argumentsOf(const RunOptions& options);

/// A task as a line of the file, without its end.
std::string lineOf(const Task& task);

/// The tasks of a folder, in their order, with their paths absolute.
///
/// Errors: throws Fault if there are none, or with the line that is wrong.
std::vector<Task> readTasks(const std::string& dir);

/// Path of the file of tasks in a folder.
std::string tasksPath(const std::string& dir);

} // namespace kit::sweep
