// SPDX-License-Identifier: BSD-3-Clause
// The tunable parameters of a run: read by every subsystem, set by the options and by the set-up.
#pragma once

#include <cstdint>

/// Width of a placement site, DBU. Option "-siteW"; the first row's site step replaces it during set-up.
extern int32_t SITE_WIDTH;

/// Height of a row, DBU. The smallest distance of a row to the first one replaces it during set-up.
extern int32_t SITE_HEIGHT;

/// Minimum colouring distance between two shapes of one mask, DBU. Option "-mindp".
extern int32_t MINDPLDIST;

/// Weight of a site of wirelength against a stitch, dimensionless. Option "-W".
extern float WEIGHT_WRLENG;

/// Move range of the local shift program, sites. Option "-M".
extern int32_t LDP_M;

/// Largest number of colour solutions of any library cell, -1 without cells. Set during set-up.
extern int32_t LDP_K;

namespace vireloce {

/// The parameters as a value, each with what it begins as in a process.
struct Parameters {
    int32_t siteWidth = 190;   ///< SITE_WIDTH
    int32_t siteHeight = 1900; ///< SITE_HEIGHT
    int32_t minDist = 185;     ///< MINDPLDIST
    float weight = 1.4F;       ///< WEIGHT_WRLENG. Required: 1.4, although the usage text announces 10
    int32_t moveRange = 8;     ///< LDP_M
    int32_t maxSolutions = 0;  ///< LDP_K
};

/// The parameters as they are now.
Parameters parametersNow();

/// Sets all parameters.
void setParameters(const Parameters& parameters);

} // namespace vireloce
