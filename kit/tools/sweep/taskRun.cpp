// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/taskRun.h"

#include <csignal>
#include <cstring>
#include <filesystem>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/files/readFile.h"
#include "kit/base/process/childProcess.h"
#include "kit/base/text/text.h"

namespace kit::sweep {

namespace fs = std::filesystem;

namespace {

constexpr size_t LONGEST_MESSAGE = 500; // bytes

/// A folder that goes with its object.
class WorkFolder {
public:
    explicit WorkFolder(std::string path) : m_path(std::move(path)), m_removal(m_path)
    {
        std::error_code error; // of what is not there
        fs::remove_all(m_path, error);
        makeFolder(m_path);
    }

    std::string file(const char* name) const { return m_path + "/" + name; }

private:
    std::string m_path;
    FolderRemoval m_removal;
};

std::string textIn(const std::string& path)
{
    return fs::exists(path) ? readFile(path) : "";
}

std::string signalText(int signal)
{
    std::string text = "ended by signal " + std::to_string(signal);
    if (const char* const name = sigabbrev_np(signal)) {
        text += std::string(" (SIG") + name + ")";
    }
    return text + (signal == SIGKILL ? "; did the system run out of memory?" : "");
}

/// A run from its start to its result.
class Run {
public:
    Run(const Task& task, const Folder& folder, const RunSetting& setting, const WorkFolder& work)
        : m_task(task), m_folder(folder), m_setting(setting), m_work(work)
    {
    }

    process::Ending start(const std::stop_token& stop) const
    {
        std::vector<std::string> words{m_setting.program, "place", m_task.base, "--cell-path",
                                       m_task.cellPath,   "-o",    placed(),    "--quiet"};
        const std::vector<std::string> options = argumentsOf(m_task.options);
        words.insert(words.end(), options.begin(), options.end());
        return process::run(words, m_work.file("report"), m_work.file("messages"),
                            {.seconds = m_setting.timeout, .memoryKib = m_setting.memoryKib, .stop = stop});
    }

    Result judge(const process::Ending& ending, const std::string& host) const
    {
        Result result;
        result.id = m_task.id;
        result.ending = ending;
        result.host = host;
        Json metrics = metricsOf(Json::tryParse(textIn(placed() + ".json")).value_or(nullptr));
        result.status = statusOf(ending, metrics.isNull());
        if (isDone(result.status)) {
            result.metrics = std::move(metrics);
        } else {
            result.message = messageOf(result.status, ending);
        }
        return result;
    }

    /// The placement goes first: a result says that all of it is there.
    void write(const Result& result) const
    {
        if (m_setting.keepPlacements && isDone(result.status)) {
            keepPlacement();
        }
        writeFile(m_work.file("result"), toJson(m_task, result).dump(1) + "\n");
        move(m_work.file("result"), m_folder.result(m_task.id));
    }

private:
    std::string placed() const { return m_work.file("placed/placed"); }

    static Status statusOf(const process::Ending& ending, bool noPlacement)
    {
        if (ending.timedOut) {
            return Status::TIMEOUT;
        }
        if (ending.overMemory) {
            return Status::MEMORY;
        }
        if (ending.signal != 0) {
            return Status::CRASHED;
        }
        if (noPlacement || ending.status > 1) {
            return Status::FAILED;
        }
        return ending.status == 0 ? Status::CLEAN : Status::NOT_CLEAN;
    }

    std::string messageOf(Status status, const process::Ending& ending) const
    {
        switch (status) {
        case Status::TIMEOUT:
            return "ended at the time limit";
        case Status::MEMORY:
            return "ended at the memory limit";
        case Status::CRASHED:
            return signalText(ending.signal);
        default:
            break;
        }
        const std::string message = lastLine(textIn(m_work.file("messages")));
        return message.empty() ? "no placement, and no word why" : message.substr(0, LONGEST_MESSAGE);
    }

    void keepPlacement() const
    {
        fs::create_directories(m_folder.placements());
        fs::remove_all(m_folder.placement(m_task.id));
        move(m_work.file("placed"), m_folder.placement(m_task.id));
    }

    static void move(const std::string& from, const std::string& to)
    {
        std::error_code error;
        fs::rename(from, to, error);
        if (error) {
            throw Fault("cannot write " + to + ": " + error.message());
        }
    }

    const Task& m_task;
    const Folder& m_folder;
    const RunSetting& m_setting;
    const WorkFolder& m_work;
};

} // namespace

std::optional<Result> runTask(const Task& task, const Folder& folder, const RunSetting& setting,
                              Claims& claims, const Claim& claim, const std::stop_token& stop)
{
    const WorkFolder work(folder.work() + "/" + task.id + "." + claims.self().name());
    fs::create_directory(work.file("placed"));
    const Run run(task, folder, setting, work);
    const process::Ending ending = run.start(stop);
    if (ending.stopped || !claims.holds(claim)) {
        return std::nullopt;
    }
    Result result = run.judge(ending, claims.self().host);
    run.write(result);
    return result;
}

} // namespace kit::sweep
