// SPDX-License-Identifier: BSD-3-Clause
#include "kit/flow/command.h"

#include <iostream>
#include <memory>

#include "kit/flow/flow.h"
#include "kit/lefdef/siteOption.h"

namespace kit::flow {

namespace {

constexpr const char* FOOTER =
    R"(Writes OUT.def, OUT.gds with OUT.lyp, OUT.html and OUT.json. It stops at the first step that fails.

Exit status: 0 done; 1 the placement is not clean; 2 a step could not do its work.

Example:
  vireloce-kit flow --lef examples/raw/Nangate45_stdcell.lef --def examples/raw/gcd_nangate45.def \
    --allow-conflicts -o out/gcd)";

void addFiles(CLI::App& command, Options& options)
{
    command.add_option("--lef", options.lefs, "LEF file; may be given again")->required()->take_all();
    command.add_option("--def", options.def, "DEF file")->required();
    command.add_option("-o,--output", options.out, "path of the result files without extension")->required();
    command.add_option("--layer", options.layer, "name of metal 1")->capture_default_str();
    command
        .add_option("--site", options.site,
                    "size of a site, W,H in micrometres (default: the LEF's, or the rows')")
        ->check([](const std::string& text) {
            return lefdef::parseSite(text) ? "" : "\"" + text + "\" is not W,H in micrometres";
        });
    command.add_option("--cell-path", options.cellPath,
                       "folder of colour files: the library is not coloured");
    command.add_option("--cache", options.cache,
                       "folder that keeps colourings from run to run (default: the user's cache)");
    command.add_flag("--legalize", options.legalize,
                     "put cells that are unplaced, off their row or over one another on free sites");
    command.add_flag("--allow-conflicts", options.allowConflicts,
                     "take the least bad colouring of a cell that has no good one");
    command.add_flag("--keep", options.keep, "keep all files in between, in OUT.flow");
    command.add_flag("--force", options.force, "replace earlier results");
}

void addNumbers(CLI::App& command, Options& options)
{
    const CLI::TypeValidator<int32_t> integer("INT");
    const CLI::Range positive(1, 1'000);
    command.add_option("--max-solutions", options.maxSolutions, "most colour solutions of a cell")
        ->check(integer);
    command.add_option("--jobs", options.jobs, "threads for colouring")->check(positive);
    command.add_option("--mindp", options.mindp, "colouring distance, DBU of the library")
        ->check(CLI::Range(1, 10'000));
    command.add_option("--algo", options.algo, "placement method, as of `place`")->check(integer);
    command.add_option("--weight", options.weight, "cost of a site of wirelength against a stitch")
        ->check(CLI::TypeValidator<float>("FLOAT"));
    command.add_option("--move-range", options.moveRange, "farthest local shift, sites")->check(integer);
}

} // namespace

void addCommand(CLI::App& program, int& exitStatus)
{
    CLI::App& command = *program.add_subcommand("flow", "From LEF and DEF to a coloured DEF and its masks");
    const auto options = std::make_shared<Options>();
    addFiles(command, *options);
    addNumbers(command, *options);
    command.footer(FOOTER);
    command.callback([options, &exitStatus] { exitStatus = flow(*options, std::cout); });
}

} // namespace kit::flow
