// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>

namespace kit::gen {

/// What `gen` is asked for.
struct Options {
    std::string out;             ///< path and base name of the design files
    std::string cellDir;         ///< folder of the colour files; empty: OUT.colors
    bool lefDef = false;         ///< write LEF and DEF files as well
    bool force = false;          ///< replace files that exist
    uint64_t seed = 1;           ///< decides everything random
    int32_t components = 20'000; ///< placed cells
    int32_t cellTypes = 104;     ///< cells of the library
    int32_t solutions = 12;      ///< most colour solutions of a cell
    int32_t utilisation = 80;    ///< cells' share of the segments, per cent of the sites
    int32_t sitesPerRow = 1100;  ///< most sites in a row
    int32_t macros = 0;          ///< macros that cut the rows
    int32_t siteStep = 380;      ///< distance of two sites, DBU
    int32_t windowSites = 60;    ///< farthest member of a local net, sites to either side of its driver
    int32_t windowRows = 2;      ///< farthest member of a local net, rows up or down
    int32_t wideNets = 4;        ///< nets of 10 to 1000 members, of 1000 nets
    int32_t mirrored = 30;       ///< mirrored components, per cent
};

/// Writes a synthetic design and prints one line about it.
///
/// Errors: throws Fault if options contradict each other, a file exists and must not be replaced, or
/// something cannot be written.
void generate(const Options& options);

} // namespace kit::gen
