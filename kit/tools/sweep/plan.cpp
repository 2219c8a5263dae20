// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/plan.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <unordered_set>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/text/text.h"
#include "kit/tools/sweep/shard.h"

namespace kit::sweep {

namespace fs = std::filesystem;

namespace {

/// A path for a file in a folder: it holds where a common parent is moved or seen elsewhere; what shares no
/// parent is more likely to be at one place everywhere.
std::string pathFrom(const fs::path& dir, const std::string& path)
{
    const fs::path target = fs::weakly_canonical(path);
    const bool related = std::next(dir.begin()) != dir.end() && std::next(target.begin()) != target.end() &&
                         *std::next(dir.begin()) == *std::next(target.begin());
    return (related ? target.lexically_relative(dir) : target).string();
}

/// Seconds to two digits, in the unit that fits.
std::string roughTime(double seconds)
{
    const double minutes = seconds / 60;
    const double hours = minutes / 60;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.2g %s",
                  hours >= 1.5     ? hours
                  : minutes >= 1.5 ? minutes
                                   : seconds,
                  hours >= 1.5     ? "h"
                  : minutes >= 1.5 ? "min"
                                   : "s");
    return text.data();
}

std::string numberText(double value)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%g", value);
    return text.data();
}

void tellShards(const std::vector<Task>& tasks, const PlanOptions& options, std::ostream& out)
{
    const std::vector<double> lengths = options.shardMinutes.has_value()
                                            ? std::vector<double>{*options.shardMinutes}
                                            : std::vector<double>{1, 10, 60};
    out << "About " << roughTime(secondsOf(tasks)) << " on one core.";
    for (const double minutes : lengths) {
        out << " Shards of " << numberText(minutes) << " min: " << shardsOf(tasks, minutes * 60) << ".";
    }
    out << "\n";
}

} // namespace

std::vector<Task> tasksOf(const Study& study, const std::string& dir)
{
    const fs::path folder = fs::weakly_canonical(dir);
    std::vector<Content> contents;
    for (const StudyDesign& design : study.designs) {
        try {
            contents.push_back(contentOf(design.base, design.cellPath));
        } catch (const Fault& fault) {
            throw Fault("design " + design.name + ": " + fault.what());
        }
    }
    std::vector<Task> tasks;
    std::unordered_set<std::string> ids;
    for (const StudyRun& run : study.runs) {
        const StudyDesign& design = study.designs[run.design];
        const Content& content = contents[run.design];
        Task task{.id = idOf(content.hash, run.options),
                  .design = design.name,
                  .base = pathFrom(folder, design.base),
                  .cellPath = pathFrom(folder, design.cellPath),
                  .content = content.hash,
                  .options = run.options,
                  .components = content.components,
                  .seconds = estimatedSeconds(content.components, run.options)};
        if (ids.insert(task.id).second) {
            tasks.push_back(std::move(task));
        }
    }
    return tasks;
}

void plan(const PlanOptions& options, std::ostream& out)
{
    const std::string path = Folder(options.dir).tasks();
    checkOutputs({path}, {options.study}, options.force);
    const Study study = readStudy(options.study);
    makeFolder(options.dir);
    const std::vector<Task> tasks = tasksOf(study, options.dir);
    OutputFile file(path);
    for (const Task& task : tasks) {
        file << lineOf(task) << "\n";
    }
    file.commit();
    out << path << ": " << counted(static_cast<int64_t>(tasks.size()), "run") << " of "
        << counted(static_cast<int64_t>(study.designs.size()), "design");
    if (tasks.size() < study.runs.size()) {
        out << ", " << study.runs.size() - tasks.size() << " of the study left out as others are the same";
    }
    out << ".\n";
    tellShards(tasks, options, out);
    out.flush();
}

} // namespace kit::sweep
