// SPDX-License-Identifier: BSD-3-Clause
#include "kit/sweep/result.h"

#include <cmath>
#include <filesystem>

#include "kit/base/folder.h"
#include "kit/base/readFile.h"
#include "kit/fault.h"

namespace kit::sweep {

using nlohmann::json;
using nlohmann::ordered_json;

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
json valueOf(const json& placed, std::string pointer)
{
    if (pointer[0] == '~') {
        const bool rescued = placed.contains(json::json_pointer("/rescue/placement"));
        pointer = (rescued ? "/rescue/placement" : "/placement") + pointer.substr(1);
    }
    const json::json_pointer at(pointer);
    if (!placed.contains(at)) {
        return nullptr;
    }
    const json& value = placed.at(at);
    if (value.is_array()) {
        return value.size();
    }
    return value.is_object() ? json(nullptr) : value;
}

Result resultFrom(const json& file)
{
    Result result;
    result.id = file.at("id").get<std::string>();
    result.status = statusOf(file.at("status").get<std::string>());
    result.message = file.at("message").get<std::string>();
    result.host = file.at("host").get<std::string>();
    result.metrics = file.at("metrics");
    result.ending = {.status = file.at("exit_status").get<int>(),
                     .signal = file.at("signal").get<int>(),
                     .seconds = file.at("seconds").get<double>(),
                     .cpuSeconds = file.at("cpu_seconds").get<double>(),
                     .peakKib = file.at("peak_kib").get<int64_t>()};
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

json metricsOf(const json& placed)
{
    if (!placed.is_object() || !placed.contains("placement") || !placed["placement"].is_object()) {
        return nullptr;
    }
    json metrics = json::object();
    for (const Metric& metric : METRICS) {
        metrics[metric.name] = valueOf(placed, metric.pointer);
    }
    return metrics;
}

std::vector<std::string> filesOf(const std::string& dir)
{
    std::vector<std::string> paths = filesIn(Folder(dir).results());
    paths.push_back(tasksPath(dir));
    return paths;
}

std::string toText(const Task& task, const Result& result)
{
    const ordered_json file{{"schema", "vireloce-sweep-run"},
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
    return file.dump(1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::optional<Result> readResult(const Folder& folder, const std::string& id)
{
    const std::string path = folder.result(id);
    if (!std::filesystem::exists(path)) {
        return std::nullopt;
    }
    try {
        Result result = resultFrom(json::parse(readFile(path)));
        return result.id == id ? std::optional(std::move(result)) : std::nullopt;
    } catch (const json::exception&) {
        return std::nullopt;
    } catch (const Fault&) {
        return std::nullopt;
    }
}

} // namespace kit::sweep
