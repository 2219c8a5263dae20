// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <iostream>
#include <memory>

#include "kit/base/fault.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/text/escape.h"
#include "kit/engines/view/html.h"
#include "kit/engines/view/inputs.h"
#include "kit/engines/view/svg.h"
#include "kit/tools/lengthOptions.h"

namespace kit::view {

namespace {

void addOptions(const Command& command, Options& options)
{
    command.add("PLACEMENT", options.placement, "placement file, or path and base name of a design")
        .required();
    command.add("-o,--output", options.out, "the picture: FILE.svg or FILE.html")
        .required()
        .formerly("--out");
    command.add("--colors", options.colors, "colour solutions that the placer chose");
    command.add("--cell-path", options.cellDir, "folder of the colour files");
    command.add("--cells", options.cells, "cell list (default: beside the placement, then beside BASE)");
    command.add("--before", options.before, "input placement BASE.place, for displacements");
    command.add("--netlist", options.netlist, "netlist (default: as --cells)");
    command.add("--pins", options.pins, "pins (default: as --cells)");
    addDistanceOption(command, options.minDist);
    command.flag("--force", options.force, "replace a picture that exists");
}

/// Says on standard error what the picture misses because of its input.
void reportInputs(const InputPaths& paths, const Findings& findings)
{
    if (paths.cellDir.empty()) {
        std::cerr << "vireloce-kit: without --cell-path, each cell is drawn one site wide\n";
    }
    if (const Findings errors = errorsOf(findings); !errors.empty()) {
        const Finding& first = errors.front();
        std::cerr << "vireloce-kit: the picture may miss something, as the files have errors ("
                  << errors.size() << "), the first: " << printable(first.file) << ':' << first.line << ": "
                  << printable(first.what) << '\n';
    }
}

void view(const Options& options)
{
    const bool html = options.out.ends_with(".html");
    if (!html && !options.out.ends_with(".svg")) {
        throw Fault("the picture's name must end in .svg or .html: " + options.out);
    }
    const InputPaths paths = findInputs(options);
    checkOutputs({options.out}, allOf(paths), options.force);
    Findings findings;
    const Scene scene = readScene(paths, options.minDist, findings);
    OutputFile file(options.out);
    html ? writeHtml(file, scene) : writeSvg(file, scene);
    file.commit();
    reportInputs(paths, findings);
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("view", "Draw a placement, as a picture or a page to explore");
    const auto options = std::make_shared<Options>();
    addOptions(command, *options);
    command.does([options] {
        view(*options);
        return 0;
    });
}

} // namespace kit::view
