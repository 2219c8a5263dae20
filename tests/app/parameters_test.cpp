// SPDX-License-Identifier: BSD-3-Clause
#include "app/parameters.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "support/guards.h"

namespace {

/// The parameters as they are before any test.
struct BuiltIn {
    int32_t siteWidth = SITE_WIDTH;
    int32_t siteHeight = SITE_HEIGHT;
    int32_t minDist = MINDPLDIST;
    float weight = WEIGHT_WRLENG;
    int32_t range = LDP_M;
    int32_t solutions = LDP_K;
};

const BuiltIn AT_START;

TEST(Parameters, HaveTheirBuiltInValuesAtProcessStart)
{
    EXPECT_EQ(AT_START.siteWidth, 190);
    EXPECT_EQ(AT_START.siteHeight, 1900);
    EXPECT_EQ(AT_START.minDist, 185);
    EXPECT_EQ(AT_START.range, 8);
    EXPECT_EQ(AT_START.solutions, 0);
}

TEST(Parameters, BuiltInWeightIsOnePointFourWhateverTheUsageSays)
{
    EXPECT_EQ(AT_START.weight, 1.4F);
}

TEST(Parameters, AreSigned32BitIntegersAndASinglePrecisionFloat)
{
    EXPECT_TRUE((std::is_same_v<decltype(SITE_WIDTH), int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(SITE_HEIGHT), int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(MINDPLDIST), int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(WEIGHT_WRLENG), float>));
    EXPECT_TRUE((std::is_same_v<decltype(LDP_M), int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(LDP_K), int32_t>));
}

} // namespace
