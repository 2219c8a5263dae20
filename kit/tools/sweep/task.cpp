// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/task.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numeric>
#include <set>
#include <sstream>
#include <unordered_set>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/hash.h"
#include "kit/formats/placer/reader.h"

namespace kit::sweep {

namespace fs = std::filesystem;

namespace {

/// Goes up when the same text may mean another run.
constexpr const char* VERSION = "1";

RunOptions optionsFrom(const Json& json)
{
    RunOptions options;
    for (const NumberOption& option : NUMBER_OPTIONS) {
        const Json& value = json.at(option.name);
        if (!value.isNull()) {
            options.*option.member = option.whole ? static_cast<double>(value.asInteger()) : value.asNumber();
        }
    }
    for (const FlagOption& option : FLAG_OPTIONS) {
        options.*option.member = json.at(option.name).asBool();
    }
    return options;
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

/// Goes on with a part whose end must be told: "a" and "bc" are not "ab" and "c".
void addPart(Hash& hash, const std::string& text)
{
    hash.add(std::to_string(text.size()) + ":");
    hash.add(text);
}

/// The cells of a cell list, each once, by name.
std::set<std::string> cellsIn(const std::string& list)
{
    std::istringstream words(list);
    std::string word;
    words >> word; // their number
    std::set<std::string> names;
    while (words >> word) {
        names.insert(word);
    }
    return names;
}

} // namespace

std::string idOf(const std::string& content, const RunOptions& options)
{
    return hashOf(std::string(VERSION) + " " + content + " " + toJson(options).dump());
}

double estimatedSeconds(int64_t components, const RunOptions& options)
{
    // Measured with libraries of 34 and 104 cells, designs of 426 to 32,000 components, weights 0.2 to 10,
    // and fitted roughly. What counts is how they compare.
    constexpr double START = 0.05;
    constexpr double PER_COMPONENT[] = {8e-6, 7e-6, 4e-6, 9e-6, 9e-6}; // [algo]
    const auto algo = static_cast<size_t>(std::clamp(options.algo.value_or(0), 0.0, 4.0));
    return START + PER_COMPONENT[algo] * static_cast<double>(components);
}

Json toJson(const RunOptions& options)
{
    Json json;
    for (const NumberOption& option : NUMBER_OPTIONS) {
        const std::optional<double> number = options.*option.member;
        const bool whole = number.has_value() && *number == std::floor(*number); // below 1e9
        // Whole numbers as such, so that 2 and 2.0 are one weight.
        json[option.name] = whole ? Json(static_cast<int64_t>(*number)) : number ? Json(*number) : Json();
    }
    for (const FlagOption& option : FLAG_OPTIONS) {
        json[option.name] = options.*option.member;
    }
    return json;
}

std::vector<std::string> argumentsOf(const RunOptions& options)
{
    const Json json = toJson(options);
    std::vector<std::string> words;
    for (const NumberOption& option : NUMBER_OPTIONS) {
        if (!json[option.name].isNull()) { // one word: a value may be negative
            words.push_back(std::string(option.word) + "=" + json[option.name].dump());
        }
    }
    for (const FlagOption& option : FLAG_OPTIONS) {
        if (options.*option.member) {
            words.emplace_back(option.word);
        }
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
    const std::string path = Folder(dir).tasks();
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
            throw Fault(
                std::string(path).append(":").append(std::to_string(number)).append(": this is no task: ") +
                why);
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

double secondsOf(const std::vector<Task>& tasks)
{
    return std::accumulate(tasks.begin(), tasks.end(), 0.0,
                           [](double sum, const Task& task) { return sum + task.seconds; });
}

Content contentOf(const std::string& base, const std::string& cellPath)
{
    Hash hash;
    const std::string cells = readFile(base + ".cells");
    addPart(hash, cells);
    for (const char* extension : {".place", ".pins", ".netlist"}) {
        addPart(hash, readFile(base + extension));
    }
    for (const std::string& name : cellsIn(cells)) {
        addPart(hash, name);
        std::string path = cellPath;
        path.append("/").append(name).append(".color");
        addPart(hash, readFile(path));
    }
    placer::Design design;
    Findings findings; // of form; the run will tell them
    placer::readPlacement(base + ".place", design, findings);
    return {hash.text(), static_cast<int64_t>(design.components.size())};
}

} // namespace kit::sweep
