// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <memory>

#include "kit/engines/export/exportRun.h"
#include "kit/tools/lengthOptions.h"

namespace kit::exporter {

namespace {

constexpr const char* FOOTER =
    R"(Example:
  vireloce-kit export out/gcd.json --def gcd.def -o new.def --gds new.gds

Exit status: 0 good; 1 with warnings; 2 bad usage or input, nothing is written.)";

void addOptions(const Command& command, Options& options)
{
    command.add("RESULT", options.result, "OUT.json of place, with OUT.place and the rest beside it")
        .required();
    command.add("--def", options.def, "the DEF file that the design was imported from").required();
    command.add("-o,--output", options.out, "DEF file with the new places").required();
    command.add("--gds", options.gds, "layout in GDSII, with layer properties (.lyp) beside it");
    const Option lef =
        command.add("--lef", options.lefs, "LEF file of the library; may come again").oneEach();
    addLayerOption(command, options.layer);
    const Option lefMasks =
        command.add("--lef-masks", options.lefMasks, "LEF file with a master per cell and solution")
            .needs(lef);
    command.add("--def-masks", options.defMasks, "DEF file with those masters").needs(lefMasks);
    command.add("--cell-path", options.cellDir,
                "folder of the colour files (default: the one that the run had)");
    command.flag("--drop-fillers", options.dropFillers, "leave fillers out");
    command.flag("--fill", options.fill, "leave fillers out, and fill the gaps with the same masters")
        .needs(lef);
    command.flag("--keep-routing", options.keepRouting, "keep the routing of nets whose cells have moved");
    command.flag("--force", options.force, "replace earlier results");
    command.flag("--json", options.json, "tell what was written as JSON");
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("export", "Write a result as DEF, GDSII and LEF");
    command.footer(FOOTER);
    const auto options = std::make_shared<Options>();
    addOptions(command, *options);
    command.does([options] { return exportResult(*options); });
}

} // namespace kit::exporter
