// SPDX-License-Identifier: BSD-3-Clause
#include "kit/color/command.h"

#include <memory>

#include "kit/color/run.h"
#include "kit/lefdef/siteOption.h"

namespace kit::color {

namespace {

constexpr int32_t LONGEST_DISTANCE = 10'000;
constexpr int32_t MOST_SOLUTIONS = 1000;
constexpr int32_t MOST_JOBS = 256;

constexpr const char* FOOTER =
    R"(Exit status: 0 if every cell has a colouring, 1 if one has none free of conflicts, 2 if an input is not right.

Example:
  vireloce-kit color --lef Nangate45_stdcell.lef -o colors)";

void addRules(CLI::App& command, Settings& settings)
{
    command.add_option("--mindp", settings.rules.distance, "colouring distance, DBU of the library")
        ->check(CLI::Range(0, LONGEST_DISTANCE))
        ->capture_default_str();
    command
        .add_option("--stitch-overlap", settings.rules.stitchOverlap,
                    "by how much two masks overlap at a stitch, DBU of the library")
        ->check(CLI::Range(0, LONGEST_DISTANCE))
        ->capture_default_str();
    command.add_option("--max-solutions", settings.mostSolutions, "most solutions of a cell")
        ->check(CLI::Range(1, MOST_SOLUTIONS))
        ->capture_default_str();
    command.add_flag("--allow-conflicts", settings.allowConflicts,
                     "write the least bad solutions of a cell that has none without conflicts");
}

} // namespace

void addCommand(CLI::App& program, int& exitStatus)
{
    CLI::App& command = *program.add_subcommand("color", "Colour the cells of a LEF library");
    const auto options = std::make_shared<Options>();
    command.add_option("--lef", options->lefs, "LEF file; several are one library")->required();
    command.add_option("--layer", options->layer, "name of the metal layer that is coloured")
        ->capture_default_str();
    command.add_option("-o,--out", options->outDir, "folder of the colour files, made if it is not there")
        ->required();
    addRules(command, options->settings);
    lefdef::addSiteOption(command, options->site);
    command.add_option("--jobs", options->jobs, "threads; the files are the same with any number")
        ->check(CLI::Range(1, MOST_JOBS))
        ->capture_default_str();
    command.add_flag("--svg", options->svg, "draw each cell with its solutions, too");
    command.add_flag("--force", options->force, "replace files that exist");
    command.footer(FOOTER);
    command.callback([options, &exitStatus] { exitStatus = run(*options); });
}

} // namespace kit::color
