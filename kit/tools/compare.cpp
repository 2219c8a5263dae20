// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <iostream>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "kit/design/placeResult.h"
#include "kit/tools/compare/table.h"

namespace kit::compare {

namespace {

struct Options {
    std::vector<std::string> paths;
    bool csv = false;
};

/// A path without its extension.
std::string nameOf(const std::string& path)
{
    return path.ends_with(".json") ? path.substr(0, path.size() - 5) : path;
}

void run(const Options& options)
{
    std::list<Json> results; // which are referred to
    std::vector<Run> runs;
    for (const std::string& path : options.paths) {
        runs.push_back({nameOf(path), results.emplace_back(design::readPlaceResult(path))});
    }
    const std::vector<Line> lines = linesOf(runs);
    std::cout << (options.csv ? toCsv(runs, lines) : toMarkdown(runs, lines));
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("compare", "Put results of place side by side");
    command.footer("Example:\n  vireloce-kit compare out/algo0.json out/algo1.json > table.md");
    const auto options = std::make_shared<Options>();
    command.add("RESULT", options->paths, "files OUT.json of vireloce-kit place").required();
    command.flag("--csv", options->csv, "comma-separated values instead of Markdown");
    command.does([options] {
        run(*options);
        return 0;
    });
}

} // namespace kit::compare
