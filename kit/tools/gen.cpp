// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <charconv>
#include <memory>
#include <string>

#include "kit/engines/gen/generate.h"

namespace kit::gen {

namespace {

/// An option with a whole number.
struct Number {
    const char* name;
    int32_t Options::*value;
    int32_t least;
    int32_t greatest;
    const char* help;
};

constexpr Number NUMBERS[] = {
    {"--components", &Options::components, 1'000, 10'000'000, "placed cells"},
    {"--utilization", &Options::utilisation, 10, 95,
     "sites that the cells take, in per cent of those in the segments"},
    {"--sites-per-row", &Options::sitesPerRow, 50, 1'000'000, "most sites in a row"},
    {"--macros", &Options::macros, 0, 10'000, "macros that cut the rows"},
    {"--site-step", &Options::siteStep, 10, 1'900, "distance of two sites, DBU"},
    {"--mirrored", &Options::mirrored, 0, 100, "mirrored components, in per cent"},
    {"--cell-types", &Options::cellTypes, 1, 5'000, "cells of the library"},
    {"--solutions", &Options::solutions, 1, 64, "most colour solutions of a cell"},
    {"--window-sites", &Options::windowSites, 5, 100'000,
     "farthest member of a local net, in sites to either side of its driver"},
    {"--window-rows", &Options::windowRows, 1, 10'000, "farthest member of a local net, in rows up or down"},
    {"--wide-nets", &Options::wideNets, 0, 100, "nets of 10 to 1000 members, of every 1000 nets"},
};

/// Why a text is no seed, empty if it is one. The option's own conversion lets a sign pass, and cuts what is
/// too large.
std::string faultOfSeed(const std::string& text)
{
    uint64_t seed = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seed);
    const bool whole = error == std::errc() && stop == end;
    return whole ? "" : "Value " + text + " is not a whole number from 0 to 2^64 - 1";
}

void addFileOptions(const Command& command, Options& options)
{
    command.add("OUT", options.out, "path and base name of the design files").required();
    command.add("--cell-path", options.cellDir, "folder of the colour files (default: OUT.colors)")
        .formerly("--cell-dir");
    command.add("--seed", options.seed, "the same seed gives the same files")
        .check(faultOfSeed)
        .withDefault();
    command.flag("--lef-def", options.lefDef, "write OUT.lef and OUT.def as well");
    command.flag("--force", options.force, "replace files that exist");
}

} // namespace

void addCommand(const Command& program)
{
    const Command command = program.subcommand("gen", "Write a synthetic design with its cell library");
    const auto options = std::make_shared<Options>();
    addFileOptions(command, *options);
    for (const Number& number : NUMBERS) {
        Option option = command.add(number.name, options.get()->*number.value, number.help)
                            .between(number.least, number.greatest)
                            .withDefault();
        if (number.value == &Options::utilisation) {
            option.formerly("--utilisation");
        }
    }
    command.does([options] {
        generate(*options);
        return 0;
    });
}

} // namespace kit::gen
