// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <memory>

#include "kit/engines/place/placeRun.h"
#include "kit/tools/lengthOptions.h"

namespace kit::place {

namespace {

void addPlacerOptions(const Command& command, Options& options)
{
    command.add(
        "--algo", options.algo,
        "method: 0 sites and colours together, 1 colours, then sites, 2 greedy, 3 local shifts, 4 the same "
        "with pruning (default: 0)");
    addDistanceOption(command, options.minDist);
    command.add("--site-width", options.siteWidth,
                "site width until the rows give theirs, DBU (default: 190)");
    command.add("--move-range", options.moveRange, "farthest local shift, sites (default: 8)");
    command.add("--weight", options.weight, "cost of a site of wirelength against a stitch (default: 1.4)");
}

void addFileOptions(const Command& command, Options& options)
{
    command.add("BASE", options.base, "path of the design files without extension").required();
    command.add("--cell-path", options.cellPath, "folder of the colour files").required();
    command.add("-o,--output", options.out, "path of the result files without extension").required();
    command.flag("--true-orientation", options.trueOrientation,
                 "take mirrored cells as they lie; the placer takes them as they are drawn");
    command.flag("--rows-meet", options.rowsMeet,
                 "exchange masks 1 and 2 in every second row; for colours of `color --rows-meet`");
    command.flag(
        "--rescue", options.rescue,
        "find places for the cells that the placer leaves without one, and mend pairs that are too close");
    command.flag("--force", options.force, "replace earlier results");
    command.flag("--quiet", options.quiet, "no progress line");
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("place", "Run the placer and keep what it made");
    command.footer(
        "Example:\n  vireloce-kit place gcd/gcd --cell-path nangate45_color -o out/gcd --rescue\n\n"
        "Exit status: 0 placed and clean; 1 with conflicts (the placer's or verify's), cells without a "
        "place, or no placement; "
        "2 bad usage or input.");
    const auto options = std::make_shared<Options>();
    addFileOptions(command, *options);
    addPlacerOptions(command, *options);
    command.does([options] { return place(*options); });
}

} // namespace kit::place
