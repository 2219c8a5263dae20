// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <memory>

#include "kit/engines/lint/lint.h"
#include "kit/tools/lengthOptions.h"

namespace kit::lint {

namespace {

constexpr const char* FOOTER =
    R"(Exit status: 0 if nothing but notes is found, 1 with warnings, 2 with errors.

Example:
  vireloce-kit lint examples/gcd/gcd --cell-path examples/nangate45_color)";

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("lint", "Look for problems in the files of a design");
    const auto options = std::make_shared<Options>();
    command.add("BASE", options->paths.base, "path and base name of the design files").required();
    command.add("--cell-path", options->paths.cellDir, "folder of the colour files").required();
    addDistanceOption(command, options->minDist);
    command.flag("--werror", options->strict, "take warnings for errors");
    command.flag("--json", options->json, "write JSON");
    command.footer(FOOTER);
    command.does([options] { return run(*options); });
}

} // namespace kit::lint
