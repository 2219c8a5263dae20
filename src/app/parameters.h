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
///
/// Required: 1.4 here, although the usage text announces 10; both are kept.
extern float WEIGHT_WRLENG;

/// Move range of the local shift program, sites. Option "-M".
extern int32_t LDP_M;

/// Largest number of colour solutions of any library cell, -1 without cells. Set during set-up.
extern int32_t LDP_K;
