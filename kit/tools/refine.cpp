// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <memory>

#include "kit/engines/refine/refineRun.h"
#include "kit/tools/lengthOptions.h"
#include "refine/improve.h"

namespace kit::refine {

namespace {

constexpr int64_t MOST_JOBS = 256;
constexpr double LONGEST_TIME = 1e6;   // seconds
constexpr double LONGEST_LENGTH = 1e6; // micrometres

constexpr const char* FOOTER =
    R"(Writes NEW.place, NEW.colors and NEW.json, and copies of the other files of the design. An interrupt or the
end of --time ends the search, and what it has found is written.

Exit status: 0 the result is clean; 1 verify finds errors in it; 2 bad usage or input.

Example:
  vireloce-kit refine out/gcd.json -o out/shorter
  vireloce-kit refine changed.place --base out/shorter.json -o out/again)";

void addFiles(const Command& command, Options& options)
{
    command.add("RESULT", options.input, "OUT.json of place, or a placement file").required();
    command.add("--colors", options.colors,
                "chosen colors of its components (default: those beside the placement)");
    command.add("--cell-path", options.cellPath, "folder of the color files (default: that in OUT.json)");
    command.add("--base", options.base,
                "OUT.json or placement of an earlier result, whose cells keep their places and colors");
    command.flag("--anew", options.anew,
                 "start from the placement that place was given, with any colors for cells that have none");
    command.add("-o,--output", options.out, "path of the result files without extension").required();
    command.add("--fix", options.fixedNames, "file of the names of cells that stay, one to a line");
    command.add("--net-weights", options.netWeights,
                "file of lines NET WEIGHT: number of the net in BASE.netlist, from 0, and 1 to 1000");
    command.flag("--rows-meet", options.rowsMeet,
                 "masks 1 and 2 have changed places in every second row (default: as in OUT.json)");
    command.flag("--force", options.force, "replace earlier results");
    command.flag("--quiet", options.quiet, "no progress line");
}

void addNumbers(const Command& command, Options& options)
{
    command.add("--effort", options.effort, "0 changes nothing, 9 goes on until nothing helps any more")
        .between(0, ::refine::Options::MOST_EFFORT)
        .withDefault();
    command.add("--jobs", options.jobs, "threads; the result is the same with any number")
        .between(1, MOST_JOBS)
        .withDefault();
    command.add("--time", options.seconds, "most seconds of the search (default: no end)")
        .within(0, LONGEST_TIME);
    command
        .add("--stitch-price", options.stitchPrice,
             "wirelength that a stitch may cost, micrometres (default: two widths of a site)")
        .within(0, LONGEST_LENGTH);
    command
        .add("--max-displacement", options.maxDisplacement,
             "no cell moves farther, |dx| + |dy|, micrometres (default: no limit)")
        .within(0, LONGEST_LENGTH);
    addDistanceOption(command, options.minDist);
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("refine", "Make the wires of a colored placement shorter");
    const auto options = std::make_shared<Options>();
    addFiles(command, *options);
    addNumbers(command, *options);
    command.footer(FOOTER);
    command.does([options] { return refine(*options); });
}

} // namespace kit::refine
