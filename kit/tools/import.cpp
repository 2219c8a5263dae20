// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <iostream>
#include <memory>
#include <sstream>

#include "kit/base/text/json.h"
#include "kit/base/text/text.h"
#include "kit/engines/import/importRun.h"
#include "kit/tools/lengthOptions.h"

namespace kit::importing {

namespace {

constexpr const char* FOOTER =
    R"(Writes OUT.place, OUT.pins, OUT.netlist, OUT.cells, OUT.offsets, which tells where pins
are, OUT.map, which knows the way back, and OUT.fixed, which has what stays where it is.

Exit status: 0 if the design is written, 2 with errors; then nothing is.

Example:
  vireloce-kit import --lef examples/raw/Nangate45_stdcell.lef --def examples/raw/gcd_nangate45.def -o out/gcd)";

Json listOf(const std::vector<std::string>& names)
{
    Json list = Json::array();
    for (const std::string& name : names) {
        list.push_back(name);
    }
    return list;
}

void writeSummary(const Options& options, const Summary& summary)
{
    std::ostringstream text;
    text << counted(summary.components, "component") << " of " << counted(summary.masters, "cell") << " in "
         << counted(summary.rows, "row") << " of sites of " << summary.siteWidth << " by "
         << summary.siteHeight << " um, " << counted(summary.nets, "net") << ", "
         << counted(summary.pins, "pin") << "; " << summary.kept << " fixed, "
         << counted(summary.fillers, "filler") << " left out, " << summary.moved << " put on free sites, "
         << summary.renamed << " renamed";
    if (!options.json) {
        std::cout << options.out << ".place: " << text.str() << '\n';
        return;
    }
    std::cout << Json{{"schema", 1},
                      {"summary", text.str()},
                      {"design", summary.design},
                      {"components", summary.components},
                      {"cells", summary.masters},
                      {"layer", summary.layer},
                      {"rows", summary.rows},
                      {"site", Json::array({summary.siteWidth, summary.siteHeight})},
                      {"nets", summary.nets},
                      {"pins", summary.pins},
                      {"fixed", summary.kept},
                      {"fillers", summary.fillers},
                      {"filler_masters", listOf(summary.fillerMasters)},
                      {"fixed_masters", listOf(summary.fixedMasters)},
                      {"moved", summary.moved},
                      {"renamed", summary.renamed}}
              << '\n';
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("import", "Take a placed design from LEF and DEF files");
    const auto options = std::make_shared<Options>();
    command.add("--lef", options->lefs, "LEF file; may be given again").required();
    command.add("--def", options->def, "DEF file").required();
    command.add("-o,--output", options->out, "path of the design files without extension").required();
    addLayerOption(command, options->layer);
    addSiteOption(command, options->site);
    command.flag("--legalize", options->legalize,
                 "put cells that are unplaced, off their row or over one another on free sites");
    command.flag("--force", options->force, "replace earlier files");
    command.flag("--json", options->json, "tell what was written as JSON");
    command.footer(FOOTER);
    command.does([options] {
        Summary summary;
        const int exitStatus = importDesign(*options, std::cerr, summary);
        if (exitStatus == 0) {
            writeSummary(*options, summary);
        }
        return exitStatus;
    });
}

} // namespace kit::importing
