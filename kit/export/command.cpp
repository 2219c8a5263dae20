// SPDX-License-Identifier: BSD-3-Clause
#include "kit/export/command.h"

#include <memory>

#include "kit/export/exportRun.h"

namespace kit::exporter {

namespace {

constexpr const char* FOOTER =
    R"(Example:
  vireloce-kit export out/gcd.json --def gcd.def -o new.def --gds new.gds

Exit status: 0 good; 1 with warnings; 2 bad usage or input, nothing is written.)";

void addOptions(CLI::App& command, Options& options)
{
    command.add_option("RESULT", options.result, "OUT.json of place, with OUT.place and the rest beside it")
        ->required();
    command.add_option("--def", options.def, "the DEF file that the design was imported from")->required();
    command.add_option("-o,--output", options.out, "DEF file with the new places")->required();
    command.add_option("--gds", options.gds, "layout in GDSII, with layer properties (.lyp) beside it");
    CLI::Option* const lef =
        command.add_option("--lef", options.lefs, "LEF file of the library; may come again")
            ->expected(1)
            ->take_all();
    command.add_option("--layer", options.layer, "name of metal 1 in the LEF files")->capture_default_str();
    CLI::Option* const lefMasks =
        command.add_option("--lef-masks", options.lefMasks, "LEF file with a master per cell and solution")
            ->needs(lef);
    command.add_option("--def-masks", options.defMasks, "DEF file with those masters")->needs(lefMasks);
    command.add_option("--cell-path", options.cellDir,
                       "folder of the colour files (default: the one that the run had)");
    command.add_flag("--drop-fillers", options.dropFillers, "leave fillers out");
    command.add_flag("--force", options.force, "replace earlier results");
}

} // namespace

void addCommand(CLI::App& program, int& exitStatus)
{
    CLI::App& command = *program.add_subcommand("export", "Write a result as DEF, GDSII and LEF");
    command.footer(FOOTER);
    const auto options = std::make_shared<Options>();
    addOptions(command, *options);
    command.callback([options, &exitStatus] { exitStatus = exportResult(*options); });
}

} // namespace kit::exporter
