// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/result.h"

#include <cmath>
#include <filesystem>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/readFile.h"

namespace kit::sweep {

namespace {

constexpr std::pair<Status, std::string_view> NAMES[] = {
    {Status::CLEAN, "clean"},     {Status::NOT_CLEAN, "not_clean"}, {Status::FAILED, "failed"},
    {Status::TIMEOUT, "timeout"}, {Status::MEMORY, "memory"},       {Status::CRASHED, "crashed"},
};

Status statusOf(const std::string& name)
{
    for (const auto& [status, text] : NAMES) {
        if (text == name) {
            return status;
        }
    }
    throw Fault("no status: " + name);
}

/// The value of a metric, null if it is not there.
Json valueOf(const Json& placed, std::string pointer)
{
    if (pointer[0] == '~') {
        const bool rescued = placed.atPointer("/rescue/placement").isObject();
        pointer = (rescued ? "/rescue/placement" : "/placement") + pointer.substr(1);
    }
    const Json& value = placed.atPointer(pointer);
    return value.isArray() ? Json(value.size()) : value.isObject() ? Json() : value;
}

Result resultFrom(const Json& file)
{
    Result result;
    result.id = file.at("id").asString();
    result.status = statusOf(file.at("status").asString());
    result.message = file.at("message").asString();
    result.host = file.at("host").asString();
    result.metrics = file.at("metrics");
    result.ending = {.status = static_cast<int>(file.at("exit_status").asInteger()),
                     .signal = static_cast<int>(file.at("signal").asInteger()),
                     .seconds = file.at("seconds").asNumber(),
                     .cpuSeconds = file.at("cpu_seconds").asNumber(),
                     .peakKib = file.at("peak_kib").asInteger()};
    return result;
}

/// Microseconds are as fine as clocks tell.
double rounded(double seconds)
{
    return std::round(seconds * 1e6) / 1e6;
}

} // namespace

std::string_view nameOf(Status status)
{
    for (const auto& [other, text] : NAMES) {
        if (other == status) {
            return text;
        }
    }
    return "";
}

bool isDone(Status status)
{
    return status == Status::CLEAN || status == Status::NOT_CLEAN;
}

Json metricsOf(const Json& placed)
{
    if (!placed["placement"].isObject()) {
        return nullptr;
    }
    Json metrics;
    for (const Metric& metric : METRICS) {
        metrics[metric.name] = valueOf(placed, metric.pointer);
    }
    metrics.sortMembers();
    return metrics;
}

std::vector<std::string> filesOf(const std::string& dir)
{
    const Folder folder(dir);
    std::vector<std::string> paths = filesIn(folder.results());
    paths.push_back(folder.tasks());
    return paths;
}

Json toJson(const Task& task, const Result& result)
{
    return {{"schema", "vireloce-sweep-run"},
            {"version", 1},
            {"id", task.id},
            {"design", task.design},
            {"options", toJson(task.options)},
            {"status", nameOf(result.status)},
            {"exit_status", result.ending.status},
            {"signal", result.ending.signal},
            {"message", result.message},
            {"seconds", rounded(result.ending.seconds)},
            {"cpu_seconds", rounded(result.ending.cpuSeconds)},
            {"peak_kib", result.ending.peakKib},
            {"host", result.host},
            {"metrics", result.metrics}};
}

std::optional<Result> readResult(const Folder& folder, const std::string& id)
{
    const std::string path = folder.result(id);
    if (!std::filesystem::exists(path)) {
        return std::nullopt;
    }
    try {
        Result result = resultFrom(Json::parse(readFile(path)));
        return result.id == id ? std::optional(std::move(result)) : std::nullopt;
    } catch (const Fault&) {
        return std::nullopt;
    }
}

} // namespace kit::sweep
