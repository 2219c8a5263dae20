// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <memory>

#include "kit/engines/color/run.h"
#include "kit/tools/lengthOptions.h"

namespace kit::color {

namespace {

constexpr int32_t LONGEST_OVERLAP = 10'000;
constexpr int32_t MOST_SOLUTIONS = 1000;
constexpr int32_t MOST_JOBS = 256;

constexpr const char* FOOTER =
    R"(Exit status: 0 if every cell has a colouring, 1 if one has none free of conflicts, 2 if an input is not right.

Example:
  vireloce-kit color --lef Nangate45_stdcell.lef -o colors)";

void addRules(const Command& command, Settings& settings)
{
    command
        .add("--stitch-overlap", settings.rules.stitchOverlap,
             "by how much two masks overlap at a stitch, library units")
        .between(0, LONGEST_OVERLAP)
        .withDefault();
    command.add("--max-solutions", settings.mostSolutions, "most solutions of a cell")
        .between(1, MOST_SOLUTIONS)
        .withDefault();
    command.flag("--allow-conflicts", settings.allowConflicts,
                 "write the least bad solutions of a cell that has none without conflicts");
    command.flag("--rails-conflict", settings.rules.railsConflict,
                 "keep metal near rails off mask 0, in every cell that can be coloured so");
    command.flag("--rows-meet", settings.rules.rowsMeet,
                 "keep metal near the bottom and the top on masks that no row shares with the next");
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("color", "Colour the cells of a LEF library");
    const auto options = std::make_shared<Options>();
    command.add("--lef", options->lefs, "LEF file; several are one library").required();
    addLayerOption(command, options->layer);
    command.add("--cells", options->cells,
                "list of the cells that are coloured, as import writes it (default: all)");
    command.add("-o,--output", options->outDir, "folder of the colour files, made if it is not there")
        .required()
        .formerly("--out");
    addDistanceOption(command, options->minDist);
    addRules(command, options->settings);
    addSiteOption(command, options->site);
    command.add("--jobs", options->jobs, "threads; the files are the same with any number")
        .between(1, MOST_JOBS)
        .withDefault();
    command.flag("--svg", options->svg, "draw each cell with its solutions, too");
    command.flag("--force", options->force, "replace files that exist");
    command.flag("--json", options->json, "write the summary as JSON");
    command.footer(FOOTER);
    command.does([options] { return run(*options); });
}

} // namespace kit::color
