// SPDX-License-Identifier: BSD-3-Clause
// What the subcommand `place` is asked to do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kit/design/distance.h"

namespace kit::place {

/// The arguments of `place`. Numbers that are not given are the placer's own defaults.
struct Options {
    std::string base;                        ///< path of the design files without extension
    std::string cellPath;                    ///< folder of the colour files
    std::string out;                         ///< path of the result files without extension
    std::optional<int32_t> algo;             ///< placement method
    std::optional<design::Distance> minDist; ///< what shapes of one mask need
    std::optional<int32_t> siteWidth;        ///< site width until the rows give theirs, DBU
    std::optional<int32_t> moveRange;        ///< move range of the local shift program, sites
    std::optional<double> weight;            ///< cost of a site of wirelength against a stitch
    bool trueOrientation = false;            ///< take turned cells as they lie
    bool rowsMeet = false;                   ///< exchange masks 1 and 2 in every second row
    bool rescue = false;                     ///< make the placement legal if that can be done
    bool force = false;                      ///< replace earlier results
    bool quiet = false;                      ///< no progress line
};

/// The placer's own arguments for these, its name first.
std::vector<std::string> placerArguments(const Options& options);

/// Checks that the results may be written.
///
/// Errors: throws Fault if a result would replace an input, or anything without `force`.
void checkOutputs(const Options& options);

} // namespace kit::place
