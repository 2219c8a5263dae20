// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/task.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>
#include <unordered_set>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/hash.h"

namespace kit::sweep {

namespace fs = std::filesystem;

namespace {

/// Goes up when the same text may mean another run.
constexpr const char* VERSION = "1";

template <typename Value>
Json jsonOf(const std::optional<Value>& value)
{
    return value.has_value() ? Json(*value) : Json(nullptr);
}

/// Whole numbers as such, so that 2 and 2.0 are one weight.
Json jsonOfWeight(const std::optional<double>& weight)
{
    const bool whole = weight.has_value() && *weight == std::floor(*weight); // below 1e9
    return whole ? Json(static_cast<int64_t>(*weight)) : jsonOf(weight);
}

std::optional<int32_t> integerAt(const Json& json, const char* name)
{
    const Json& value = json.at(name);
    return value.isNull() ? std::nullopt : std::optional(static_cast<int32_t>(value.asInteger()));
}

std::optional<double> numberAt(const Json& json, const char* name)
{
    const Json& value = json.at(name);
    return value.isNull() ? std::nullopt : std::optional(value.asNumber());
}

RunOptions optionsFrom(const Json& json)
{
    return {.algo = integerAt(json, "algo"),
            .weight = numberAt(json, "weight"),
            .moveRange = integerAt(json, "move_range"),
            .mindp = integerAt(json, "mindp"),
            .siteWidth = integerAt(json, "site_width"),
            .rescue = json.at("rescue").asBool()};
}

bool isId(const std::string& text)
{
    return text.size() == 16 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

Task taskFrom(const Json& json, const fs::path& dir)
{
    Task task{.id = json.at("id").asString(),
              .design = json.at("design").asString(),
              .base = (dir / json.at("base").asString()).lexically_normal().string(),
              .cellPath = (dir / json.at("cell_path").asString()).lexically_normal().string(),
              .content = json.at("content").asString(),
              .options = optionsFrom(json.at("options")),
              .components = json.at("components").asInteger(),
              .seconds = json.at("seconds").asNumber()};
    if (!isId(task.id)) { // it becomes a file name
        throw Fault("the id is not 16 hexadecimal digits");
    }
    if (!std::isfinite(task.seconds) || task.seconds < 0) {
        throw Fault("\"seconds\" is no length of time");
    }
    return task;
}

} // namespace

std::string idOf(const std::string& content, const RunOptions& options)
{
    Hash hash;
    hash.add(std::string(VERSION) + " " + content + " " + toJson(options).dump());
    return hash.text();
}

double estimatedSeconds(int64_t components, const RunOptions& options)
{
    // Measured with libraries of 34 and 104 cells, designs of 426 to 32,000 components, weights 0.2 to 10,
    // and fitted roughly. What counts is how they compare.
    constexpr double START = 0.05;
    constexpr double PER_COMPONENT[] = {8e-6, 7e-6, 4e-6, 9e-6, 9e-6}; // [algo]
    const auto algo = static_cast<size_t>(std::clamp(options.algo.value_or(0), 0, 4));
    return START + PER_COMPONENT[algo] * static_cast<double>(components);
}

Json toJson(const RunOptions& options)
{
    return {{"algo", jsonOf(options.algo)},
            {"weight", jsonOfWeight(options.weight)},
            {"move_range", jsonOf(options.moveRange)},
            {"mindp", jsonOf(options.mindp)},
            {"site_width", jsonOf(options.siteWidth)},
            {"rescue", options.rescue}};
}

std::vector<std::string> argumentsOf(const RunOptions& options)
{
    constexpr std::pair<const char*, const char*> NAMES[] = {{"algo", "--algo"},
                                                             {"weight", "--weight"},
                                                             {"move_range", "--move-range"},
                                                             {"mindp", "--mindp"},
                                                             {"site_width", "--site-width"}};
    const Json json = toJson(options);
    std::vector<std::string> words;
    for (const auto& [member, option] : NAMES) {
        if (!json[member].isNull()) {
            words.emplace_back(option + ("=" + json[member].dump())); // one word: a value may be negative
        }
    }
    if (options.rescue) {
        words.emplace_back("--rescue");
    }
    return words;
}

std::string lineOf(const Task& task)
{
    const Json json{{"id", task.id},
                    {"design", task.design},
                    {"base", task.base},
                    {"cell_path", task.cellPath},
                    {"content", task.content},
                    {"options", toJson(task.options)},
                    {"components", task.components},
                    {"seconds", task.seconds}};
    return json.dump();
}

std::vector<Task> readTasks(const std::string& dir)
{
    const std::string path = tasksPath(dir);
    if (!fs::exists(path)) {
        throw Fault(path + " is not there: make it with vireloce-kit sweep plan");
    }
    const fs::path folder = fs::canonical(dir);
    std::istringstream lines(readFile(path));
    std::vector<Task> tasks;
    std::unordered_set<std::string> ids;
    int64_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        const auto fail = [&](const std::string& why) {
            std::string text = path;
            throw Fault(
                text.append(":").append(std::to_string(number)).append(": this is no task: ").append(why));
        };
        try {
            tasks.push_back(taskFrom(Json::parse(line), folder));
        } catch (const Fault& fault) {
            fail(fault.what());
        }
        if (!ids.insert(tasks.back().id).second) {
            fail("its id is that of an earlier line");
        }
    }
    return tasks;
}

std::string tasksPath(const std::string& dir)
{
    return (fs::path(dir) / "tasks.jsonl").string();
}

} // namespace kit::sweep
