// SPDX-License-Identifier: BSD-3-Clause
// The folder of a study, and the runs that are to be made: the lines of DIR/tasks.jsonl.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "kit/base/text/json.h"
#include "kit/tools/sweep/study.h"

namespace kit::sweep {

/// Where things are in DIR. Everything comes into being under another name in `work` first.
class Folder {
public:
    /// @param dir  path of DIR
    explicit Folder(std::string dir) : m_dir(std::move(dir)) {}

    /// The file of tasks.
    std::string tasks() const { return (std::filesystem::path(m_dir) / "tasks.jsonl").string(); }

    /// Results, one file a run.
    std::string results() const { return m_dir + "/results"; }

    /// The result of a run.
    std::string result(const std::string& id) const { return results() + "/" + id + ".json"; }

    /// Claims: who is at work on what.
    std::string claims() const { return m_dir + "/claims"; }

    /// Folders of runs that are going on.
    std::string work() const { return m_dir + "/work"; }

    /// Placements that are kept, a folder a run.
    std::string placements() const { return m_dir + "/placements"; }

    /// The placement of a run.
    std::string placement(const std::string& id) const { return placements() + "/" + id; }

private:
    std::string m_dir;
};

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

/// How long runs may take together, seconds.
double secondsOf(const std::vector<Task>& tasks);

/// The bytes of a design in short, wherever its files are.
struct Content {
    std::string hash;       ///< of its four files, and of the colour files of the cells in its list, by name
    int64_t components = 0; ///< placed cells
};

/// Reads a design.
///
/// @param base      path of the design files without extension
/// @param cellPath  folder of the colour files
///
/// Errors: throws Fault if a file is missing or cannot be read.
Content contentOf(const std::string& base, const std::string& cellPath);

} // namespace kit::sweep
