// SPDX-License-Identifier: BSD-3-Clause
// What the subcommand `export` is asked to do.
#pragma once

#include <string>
#include <vector>

namespace kit::exporter {

/// The arguments of `export`. Empty paths were not given.
struct Options {
    std::string result;            ///< OUT.json of `place`
    std::string def;               ///< the design that the placement was imported from
    std::string out;               ///< the DEF file with the new places
    std::string gds;               ///< GDSII file
    std::vector<std::string> lefs; ///< libraries, the technology's first
    std::string layer;             ///< name of metal 1 in them; if it is empty it is found
    std::string lefMasks;          ///< LEF file with a master per cell and solution
    std::string defMasks;          ///< DEF file with those masters
    std::string cellDir;           ///< folder of the colour files; empty for the one that the run had
    bool dropFillers = false;      ///< leaves fillers out
    bool fill = false;             ///< leaves fillers out and puts others into the gaps
    bool keepRouting = false;      ///< keeps routing that ends where components were
    bool force = false;            ///< replaces earlier results
    bool json = false;             ///< JSON in place of lines
};

/// Path of the layer properties beside a GDSII file: its name with the ending ".lyp", also in place of
/// ".gds.gz".
std::string layerPropertiesOf(const std::string& gds);

/// Paths of all files that are written.
std::vector<std::string> outputsOf(const Options& options);

} // namespace kit::exporter
