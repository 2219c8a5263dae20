// SPDX-License-Identifier: BSD-3-Clause
#include "app/parameters.h"

namespace {

constexpr vireloce::Parameters BUILT_IN;

} // namespace

int32_t SITE_WIDTH = BUILT_IN.siteWidth;
int32_t SITE_HEIGHT = BUILT_IN.siteHeight;
int32_t MINDPLDIST = BUILT_IN.minDist;
float WEIGHT_WRLENG = BUILT_IN.weight;
int32_t LDP_M = BUILT_IN.moveRange;
int32_t LDP_K = BUILT_IN.maxSolutions;

namespace vireloce {

Parameters parametersNow()
{
    return {.siteWidth = SITE_WIDTH,
            .siteHeight = SITE_HEIGHT,
            .minDist = MINDPLDIST,
            .weight = WEIGHT_WRLENG,
            .moveRange = LDP_M,
            .maxSolutions = LDP_K};
}

void setParameters(const Parameters& parameters)
{
    SITE_WIDTH = parameters.siteWidth;
    SITE_HEIGHT = parameters.siteHeight;
    MINDPLDIST = parameters.minDist;
    WEIGHT_WRLENG = parameters.weight;
    LDP_M = parameters.moveRange;
    LDP_K = parameters.maxSolutions;
}

} // namespace vireloce
