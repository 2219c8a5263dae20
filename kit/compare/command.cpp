// SPDX-License-Identifier: BSD-3-Clause
#include "kit/compare/command.h"

#include <iostream>
#include <list>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "kit/base/readFile.h"
#include "kit/compare/table.h"
#include "kit/fault.h"

namespace kit::compare {

namespace {

struct Options {
    std::vector<std::string> paths;
    bool csv = false;
};

nlohmann::json read(const std::string& path)
{
    nlohmann::json result = nlohmann::json::parse(readFile(path), nullptr, /*allow_exceptions=*/false);
    if (!result.is_object() || result.value("schema", nlohmann::json()) != "vireloce-place" ||
        result.value("version", nlohmann::json()) != 1) {
        throw Fault(path + " is no result of vireloce-kit place, version 1");
    }
    return result;
}

/// A path without its extension.
std::string nameOf(const std::string& path)
{
    return path.ends_with(".json") ? path.substr(0, path.size() - 5) : path;
}

void run(const Options& options)
{
    std::list<nlohmann::json> results; // which are referred to
    std::vector<Run> runs;
    for (const std::string& path : options.paths) {
        runs.push_back({nameOf(path), results.emplace_back(read(path))});
    }
    const std::vector<Line> lines = linesOf(runs);
    std::cout << (options.csv ? toCsv(runs, lines) : toMarkdown(runs, lines));
}

} // namespace

void addCommand(CLI::App& program, int& /*exitStatus*/)
{
    CLI::App& command = *program.add_subcommand("compare", "Put results of place side by side");
    command.footer("Example:\n  vireloce-kit compare out/algo0.json out/algo1.json > table.md");
    const auto options = std::make_shared<Options>();
    command.add_option("RESULT", options->paths, "files OUT.json of vireloce-kit place")->required();
    command.add_flag("--csv", options->csv, "comma-separated values instead of Markdown");
    command.callback([options] { run(*options); });
}

} // namespace kit::compare
