// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/commands.h"

#include <charconv>
#include <memory>
#include <string>

#include "kit/engines/gen/generate.h"
#include "kit/engines/gen/options.h"

namespace kit::gen {

namespace {

/// Adds an integer option with its range and default.
Option addInteger(const Command& command, const std::string& name, int32_t& value, Range range,
                  const std::string& help)
{
    return command.add("--" + name, value, help).between(range.least, range.greatest).withDefault();
}

void addDesignOptions(const Command& command, Options& options)
{
    addInteger(command, "components", options.components, COMPONENTS_RANGE, "placed cells");
    addInteger(command, "utilization", options.utilisation, UTILISATION_RANGE,
               "sites that the cells take, in per cent of those in the segments")
        .formerly("--utilisation");
    addInteger(command, "sites-per-row", options.sitesPerRow, SITES_PER_ROW_RANGE, "most sites in a row");
    addInteger(command, "macros", options.macros, MACROS_RANGE, "macros that cut the rows");
    addInteger(command, "site-step", options.siteStep, SITE_STEP_RANGE, "distance of two sites, DBU");
    addInteger(command, "mirrored", options.mirrored, MIRRORED_RANGE, "mirrored components, in per cent");
}

void addLibraryOptions(const Command& command, Options& options)
{
    addInteger(command, "cell-types", options.cellTypes, CELL_TYPES_RANGE, "cells of the library");
    addInteger(command, "solutions", options.solutions, SOLUTIONS_RANGE, "most colour solutions of a cell");
}

void addNetOptions(const Command& command, Options& options)
{
    addInteger(command, "window-sites", options.windowSites, WINDOW_SITES_RANGE,
               "farthest member of a local net, in sites to either side of its driver");
    addInteger(command, "window-rows", options.windowRows, WINDOW_ROWS_RANGE,
               "farthest member of a local net, in rows up or down");
    addInteger(command, "wide-nets", options.wideNets, WIDE_NETS_RANGE,
               "nets of 10 to 1000 members, of every 1000 nets");
}

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
    addDesignOptions(command, *options);
    addLibraryOptions(command, *options);
    addNetOptions(command, *options);
    command.does([options] {
        generate(*options);
        return 0;
    });
}

} // namespace kit::gen
