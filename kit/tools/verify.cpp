// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <iostream>
#include <memory>

#include "kit/base/files/folder.h"
#include "kit/base/files/outputPaths.h"
#include "kit/design/nameMap.h"
#include "kit/design/pinOffsets.h"
#include "kit/engines/verify/verify.h"
#include "kit/tools/lengthOptions.h"

namespace kit::verify {

namespace {

constexpr int32_t MOST_ROWS = 1'000'000;

constexpr const char* FOOTER =
    R"(Exit status: 0 if the placement is clean, 1 if it is not, 2 if an input cannot be read as a whole.

Example:
  vireloce-kit verify out.place --colors out.colors --cell-path examples/nangate45_color)";

int run(const Options& options)
{
    design::ColoredPlacement input = design::readColoredPlacement(options);
    input.pinLength = design::pinLengthBeside(options.placement, input.design, input.faults);
    const design::Issues issues =
        judge(input, {.minDist = options.minDist.unitsOn(design::siteLength(input.design)),
                      .acrossRows = options.acrossRows,
                      .rails = options.rails});
    if (!options.lyrdb.empty()) {
        std::vector<std::string> inputs = filesIn(options.cellDir);
        inputs.insert(inputs.end(), {options.placement, design::mapOf(options.placement),
                                     design::offsetsOf(options.placement), options.colors, options.cells});
        checkOutputs({options.lyrdb}, inputs, /*force=*/true);
        writeMarkers(options, input, issues);
    }
    (options.json ? writeJson : writeText)(options, input, issues, std::cout);
    return exitStatusOf(input, issues);
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("verify", "Judge a placement and its colours by geometry");
    const auto options = std::make_shared<Options>();
    command.add("PLACE", options->placement, "placement file").required();
    command.add("--colors", options->colors, "chosen colours of its components").required();
    command.add("--cell-path", options->cellDir, "folder of the colour files of the cells").required();
    command.add("--cells", options->cells, "cell list (default: the cells that the placement names)");
    addDistanceOption(command, options->minDist);
    command.flag("--across-rows", options->acrossRows, "conflicts of cells in different rows are errors");
    command.flag("--rails", options->rails,
                 "metal of mask 0 too close to a rail is an error: to the placer, rails never conflict");
    command.flag("--json", options->json, "write JSON");
    command.add("--lyrdb", options->lyrdb, "write markers for a layout viewer to this file");
    command.add("--worst", options->worst, "most rows of the tables").between(0, MOST_ROWS).withDefault();
    command.footer(FOOTER);
    command.does([options] { return run(*options); });
}

} // namespace kit::verify
