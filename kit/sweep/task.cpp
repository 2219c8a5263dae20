// SPDX-License-Identifier: BSD-3-Clause
#include "kit/sweep/task.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <unordered_set>

#include "kit/base/readFile.h"
#include "kit/fault.h"
#include "kit/hash.h"

namespace kit::sweep {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

namespace {

/// Goes up when the same text may mean another run.
constexpr const char* VERSION = "1";

template <typename Value>
ordered_json jsonOf(const std::optional<Value>& value)
{
    return value.has_value() ? ordered_json(*value) : ordered_json(nullptr);
}

/// Whole numbers as such, so that 2 and 2.0 are one weight.
ordered_json jsonOfWeight(const std::optional<double>& weight)
{
    const bool whole = weight.has_value() && *weight == std::floor(*weight); // below 1e9
    return whole ? ordered_json(static_cast<int64_t>(*weight)) : jsonOf(weight);
}

template <typename Value>
std::optional<Value> valueAt(const ordered_json& json, const char* name)
{
    const ordered_json& value = json.at(name);
    return value.is_null() ? std::nullopt : std::optional(value.get<Value>());
}

RunOptions optionsFrom(const ordered_json& json)
{
    return {.algo = valueAt<int32_t>(json, "algo"),
            .weight = valueAt<double>(json, "weight"),
            .moveRange = valueAt<int32_t>(json, "move_range"),
            .mindp = valueAt<int32_t>(json, "mindp"),
            .siteWidth = valueAt<int32_t>(json, "site_width"),
            .rescue = json.at("rescue").get<bool>()};
}

bool isId(const std::string& text)
{
    return text.size() == 16 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

Task taskFrom(const ordered_json& json, const fs::path& dir)
{
    Task task{.id = json.at("id").get<std::string>(),
              .design = json.at("design").get<std::string>(),
              .base = (dir / json.at("base").get<std::string>()).lexically_normal().string(),
              .cellPath = (dir / json.at("cell_path").get<std::string>()).lexically_normal().string(),
              .content = json.at("content").get<std::string>(),
              .options = optionsFrom(json.at("options")),
              .components = json.at("components").get<int64_t>(),
              .seconds = json.at("seconds").get<double>()};
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

ordered_json toJson(const RunOptions& options)
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
    const ordered_json json = toJson(options);
    std::vector<std::string> words;
    for (const auto& [member, option] : NAMES) {
        if (!json[member].is_null()) {
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
    const ordered_json json{{"id", task.id},
                            {"design", task.design},
                            {"base", task.base},
                            {"cell_path", task.cellPath},
                            {"content", task.content},
                            {"options", toJson(task.options)},
                            {"components", task.components},
                            {"seconds", task.seconds}};
    return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
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
            tasks.push_back(taskFrom(ordered_json::parse(line), folder));
        } catch (const nlohmann::json::exception& error) {
            fail(error.what());
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
