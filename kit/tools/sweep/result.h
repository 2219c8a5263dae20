// SPDX-License-Identifier: BSD-3-Clause
// What became of a run: DIR/results/ID.json.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/base/process/childProcess.h"
#include "kit/base/text/json.h"
#include "kit/tools/sweep/task.h"

namespace kit::sweep {

/// How a run ended.
enum class Status {
    CLEAN,     ///< placed, and nothing is wrong with it
    NOT_CLEAN, ///< placed, with conflicts or cells without a place
    FAILED,    ///< no placement
    TIMEOUT,   ///< killed at its time limit
    MEMORY,    ///< killed at its memory limit
    CRASHED,   ///< ended by a signal of others
};

/// As it stands in files.
std::string_view nameOf(Status status);

/// Whether there is a placement.
bool isDone(Status status);

/// A run that was made.
struct Result {
    std::string id;
    Status status = Status::FAILED;
    process::Ending ending;
    std::string message; ///< why there is no placement, a line
    std::string host;
    Json metrics; ///< of the placement, by the names of METRICS; null if there is none
};

/// A metric of a placement.
struct Metric {
    const char* name;
    const char* pointer; ///< in OUT.json, or, for "~" in front, in what a rescue left, if there was one
    const char* type = "INTEGER"; ///< as SQLite names it
};

/// The metrics, of lists the length.
inline constexpr Metric METRICS[] = {
    {"hpwl_before", "/report/init HPWL"},
    {"hpwl", "~/hpwl"},
    {"stitches", "~/stitches"},
    {"conflicts", "~/conflicts"},
    {"judged_conflicts", "/judge/conflicts"},
    {"judged_errors", "/judge/errors"},
    {"dropped_cells", "~/dropped_cells"},
    {"cells_beyond_segment", "~/cells_beyond_segment"},
    {"overlapping_cells", "~/overlapping_cells"},
    {"mean_displacement", "~/displacement/mean", "REAL"},
    {"largest_displacement", "~/displacement/largest"},
    {"passes", "/passes"},
    {"hash", "~/hash", "TEXT"},
};

/// The metrics of a result of `place`; null if it has no placement.
Json metricsOf(const Json& placed);

/// Paths of the files that tables and pictures of a study are made from.
std::vector<std::string> filesOf(const std::string& dir);

/// The whole file.
Json toJson(const Task& task, const Result& result);

/// A result file as read; nothing if there is none. One that is damaged counts as none.
std::optional<Result> readResult(const Folder& folder, const std::string& id);

} // namespace kit::sweep
