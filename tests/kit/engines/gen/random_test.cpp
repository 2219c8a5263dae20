// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/random.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

namespace {

using kit::gen::Random;

TEST(KitRandom, FollowsThePublishedSequence)
{
    // The mixer sends 0 to 0, so that this is the generator started at 0, whose first numbers are known.
    Random random(0, 0);
    EXPECT_EQ(random.next(), 0xe220a8397b1dcdafU);
    EXPECT_EQ(random.next(), 0x6e789e6aa1b965f4U);
    EXPECT_EQ(random.next(), 0x06c45d188009454fU);
}

TEST(KitRandom, BelowGivesEveryNumberAboutEquallyOften)
{
    Random random(1, 0);
    std::array<int, 7> counts{};
    for (int i = 0; i < 7000; ++i) {
        ++counts.at(static_cast<size_t>(random.below(7)));
    }
    for (const int count : counts) {
        EXPECT_NEAR(count, 1000, 150);
    }
}

TEST(KitRandom, LowBelowLeansToTheLowEnd)
{
    Random random(1, 0);
    std::array<int, 2> counts{};
    for (int i = 0; i < 4000; ++i) {
        ++counts.at(static_cast<size_t>(random.lowBelow(2)));
    }
    EXPECT_NEAR(counts[0], 3000, 150);
}

TEST(KitRandom, SeedsAndStreamsAreApart)
{
    std::set<uint64_t> first;
    for (uint64_t seed = 0; seed < 20; ++seed) {
        for (uint64_t stream = 0; stream < 7; ++stream) {
            first.insert(Random(seed, stream).next());
        }
    }
    EXPECT_EQ(first.size(), 140U);
}

} // namespace
