// SPDX-License-Identifier: BSD-3-Clause
// What the subcommand `refine` is asked to do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kit/design/distance.h"

namespace kit::refine {

/// What a stitch costs if nobody says it, widths of a site.
inline constexpr int32_t STITCH_PRICE_SITES = 2;

/// The arguments of `refine`.
struct Options {
    std::string input;                       ///< OUT.json of `place`, or a placement file
    std::string colors;                      ///< color choices; empty for those beside the placement
    std::string cellPath;                    ///< folder of the color files; empty for that in OUT.json
    std::string base;                        ///< earlier result to start from, as the input; empty for none
    bool anew = false;                       ///< start where the cells were before they were placed
    std::string out;                         ///< path of the result files without extension
    int32_t effort = 3;                      ///< 0 to 9
    int32_t jobs = 1;                        ///< threads
    std::optional<double> seconds;           ///< it ends after so long
    std::optional<double> stitchPrice;       ///< wirelength that a stitch costs, micrometres
    std::optional<double> maxDisplacement;   ///< |dx| + |dy| of a cell, micrometres
    std::string fixedNames;                  ///< path of names of cells that stay; empty for none
    std::string netWeights;                  ///< path of weights of nets; empty for none
    std::optional<design::Distance> minDist; ///< what shapes of one mask need; none for that in OUT.json
    bool rowsMeet = false;                   ///< masks 1 and 2 have changed places in every second row
    bool force = false;                      ///< replace earlier results
    bool quiet = false;                      ///< no progress line
};

} // namespace kit::refine
