// SPDX-License-Identifier: BSD-3-Clause
#include "kit/place/command.h"

#include <memory>

#include "kit/place/placeRun.h"

namespace kit::place {

namespace {

/// Adds an option whose text is passed on to the placer, once it is known to be a number.
void addNumber(CLI::App& command, const std::string& name, std::string& text, const CLI::Validator& check,
               const std::string& help)
{
    command.add_option("--" + name, text, help)->check(check);
}

void addPlacerOptions(CLI::App& command, Options& options)
{
    const CLI::TypeValidator<int32_t> integer("INT");
    addNumber(
        command, "algo", options.algo, integer,
        "method: 0 sites and colours together, 1 colours, then sites, 2 greedy, 3 local shifts, 4 the same "
        "with pruning (default: 0)");
    addNumber(command, "mindp", options.mindp, integer, "colouring distance, DBU (default: 185)");
    addNumber(command, "site-width", options.siteWidth, integer,
              "site width until the rows give theirs, DBU (default: 190)");
    addNumber(command, "move-range", options.moveRange, integer, "farthest local shift, sites (default: 8)");
    addNumber(command, "weight", options.weight, CLI::TypeValidator<float>("FLOAT"),
              "cost of a site of wirelength against a stitch (default: 1.4)");
}

void addFileOptions(CLI::App& command, Options& options)
{
    command.add_option("BASE", options.base, "path of the design files without extension")->required();
    command.add_option("--cell-path", options.cellPath, "folder of the colour files")->required();
    command.add_option("-o,--output", options.out, "path of the result files without extension")->required();
    command.add_flag("--rescue", options.rescue,
                     "find places for the cells that the placer leaves without one");
    command.add_flag("--force", options.force, "replace earlier results");
    command.add_flag("--quiet", options.quiet, "no progress line");
}

} // namespace

void addCommand(CLI::App& program, int& exitStatus)
{
    CLI::App& command = *program.add_subcommand("place", "Run the placer and keep what it made");
    command.footer(
        "Example:\n  vireloce-kit place gcd/gcd --cell-path nangate45_color -o out/gcd --rescue\n\n"
        "Exit status: 0 placed and clean; 1 with conflicts (the placer's or verify's), cells without a "
        "place, or no placement; "
        "2 bad usage or input.");
    const auto options = std::make_shared<Options>();
    addFileOptions(command, *options);
    addPlacerOptions(command, *options);
    command.callback([options, &exitStatus] { exitStatus = place(*options); });
}

} // namespace kit::place
