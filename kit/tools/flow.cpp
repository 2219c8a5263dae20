// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <iostream>
#include <memory>

#include "kit/tools/flow/flow.h"
#include "kit/tools/lengthOptions.h"
#include "refine/improve.h"

namespace kit::flow {

namespace {

constexpr int64_t MOST_JOBS = 256;

constexpr const char* FOOTER =
    R"(Writes OUT.def, OUT.gds with OUT.lyp, OUT.html and OUT.json, and beside it what export needs to make them again:
OUT.place, .colors, .cells, .pins, .netlist, .map, .offsets, .fixed and the colour files in OUT.library. OUT.lyrdb has a
marker for each error that is left. It stops at the first step that cannot do its work.

Exit status: 0 done; 1 the placement is not clean; 2 a step could not do its work.

Example:
  vireloce-kit flow --lef examples/raw/Nangate45_stdcell.lef --def examples/raw/gcd_nangate45.def \
    --allow-conflicts -o out/gcd)";

void addFiles(const Command& command, Options& options)
{
    command.add("--lef", options.lefs, "LEF file; may be given again").required();
    command.add("--def", options.def, "DEF file").required();
    command.add("-o,--output", options.out, "path of the result files without extension").required();
    addLayerOption(command, options.layer);
    command
        .add("--site", options.site, "size of a site, W,H in micrometres (default: the LEF's, or the rows')")
        .check(faultOfSite);
    command.add("--cell-path", options.cellPath, "folder of colour files: no cell is coloured");
    command.add("--cache", options.cache,
                "folder that keeps colourings from run to run (default: the user's cache)");
    command.flag("--legalize", options.legalize,
                 "put cells that are unplaced, off their row or over one another on free sites");
    command.flag("--no-true-orientation", options.asDrawn,
                 "take mirrored cells as they are drawn, as the placer alone does");
    command.flag("--allow-conflicts", options.allowConflicts,
                 "take the least bad colouring of a cell that has no good one");
    command.flag("--rails-conflict", options.railsConflict,
                 "keep metal near rails off mask 0, in every cell that can be coloured so");
    command.flag("--rows-meet", options.rowsMeet,
                 "color, place and verify so that cells in different rows do not conflict");
    command.flag("--no-fill", options.noFill, "put no fillers into the gaps of a DEF file that has some");
    command.flag("--keep", options.keep, "keep all files in between, in OUT.flow");
    command.flag("--force", options.force, "replace earlier results");
}

void addNumbers(const Command& command, Options& options)
{
    command.add("--max-solutions", options.maxSolutions, "most colour solutions of a cell");
    command.add("--jobs", options.jobs, "threads for colouring and for refine").between(1, MOST_JOBS);
    addDistanceOption(command, options.minDist);
    command.add("--algo", options.algo, "placement method, as of `place`");
    command.add("--weight", options.weight, "cost of a site of wirelength against a stitch");
    command.add("--move-range", options.moveRange, "farthest local shift, sites");
    command.add("--effort", options.effort, "effort to make wires shorter, as of `refine`; 0 leaves it out")
        .between(0, ::refine::Options::MOST_EFFORT)
        .withDefault();
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("flow", "From LEF and DEF to a coloured DEF and its masks");
    const auto options = std::make_shared<Options>();
    addFiles(command, *options);
    addNumbers(command, *options);
    command.footer(FOOTER);
    command.does([options] { return flow(*options, std::cout, std::cerr); });
}

} // namespace kit::flow
