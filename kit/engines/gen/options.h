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

/// Least and greatest value of an option.
struct Range {
    int32_t least;
    int32_t greatest;
};

inline constexpr Range COMPONENTS_RANGE{1'000, 10'000'000};
inline constexpr Range CELL_TYPES_RANGE{1, 5'000};
inline constexpr Range SOLUTIONS_RANGE{1, 64};
inline constexpr Range UTILISATION_RANGE{10, 95};
inline constexpr Range SITES_PER_ROW_RANGE{50, 1'000'000};
inline constexpr Range MACROS_RANGE{0, 10'000};
inline constexpr Range SITE_STEP_RANGE{10, 1'900};
inline constexpr Range WINDOW_SITES_RANGE{5, 100'000};
inline constexpr Range WINDOW_ROWS_RANGE{1, 10'000};
inline constexpr Range WIDE_NETS_RANGE{0, 100};
inline constexpr Range MIRRORED_RANGE{0, 100};

/// Checks what the ranges of the single options leave open.
///
/// Errors: throws Fault if a row would be longer than the placer's single-precision lengths can hold, or the
/// library too large for its spacing table.
void checkTogether(const Options& options);

/// Height of a row, DBU: that of the library's cells at the site step of the design.
int32_t rowHeight(const Options& options);

/// The folder of the colour files.
std::string cellFolder(const Options& options);

} // namespace kit::gen
