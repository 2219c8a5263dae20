// SPDX-License-Identifier: BSD-3-Clause
#include "kit/lint/command.h"

#include <memory>

#include "kit/lint/lint.h"

namespace kit::lint {

namespace {

constexpr const char* FOOTER =
    R"(Exit status: 0 if nothing but notes is found, 1 with warnings, 2 with errors.

Example:
  vireloce-kit lint examples/gcd/gcd --cell-path examples/nangate45_color)";

} // namespace

void addCommand(CLI::App& program, int& exitStatus)
{
    CLI::App& command = *program.add_subcommand("lint", "Look for problems in the files of a design");
    const auto options = std::make_shared<Options>();
    command.add_option("BASE", options->paths.base, "path and base name of the design files")->required();
    command.add_option("--cell-path", options->paths.cellDir, "folder of the colour files")->required();
    // A larger distance would overflow the placer's squares.
    command.add_option("--mindp", options->distance, "colouring distance, DBU of the library")
        ->check(CLI::Range(0, 10'000))
        ->capture_default_str();
    command.add_flag("--werror", options->strict, "take warnings for errors");
    command.add_flag("--json", options->json, "write JSON");
    command.footer(FOOTER);
    command.callback([options, &exitStatus] { exitStatus = run(*options); });
}

} // namespace kit::lint
