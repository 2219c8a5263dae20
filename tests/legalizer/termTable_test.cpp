// SPDX-License-Identifier: BSD-3-Clause
// The table of wirelength terms against sums that are truncated one by one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "legalizer/termTable.h"
#include "qlib/exact.h"
#include "support/extremes.h"
#include "support/property.h"

namespace {

using test::INF;
using vireloce::addTruncated;
using vireloce::TermTable;

/// Whether a term adds what the table says to a cost.
bool adds(const TermTable& table, float weight, int32_t cost, int32_t d)
{
    return addTruncated(cost, d, weight) == cost + table.rising()[d];
}

class TermTableOfWeight : public testing::TestWithParam<float> {};

TEST_P(TermTableOfWeight, AddsWhatATruncatedSumAddsBelowTheLimit)
{
    for (const int32_t most : {0, 1, 7, 60, 2000}) {
        TermTable table;
        table.prepare(GetParam(), most);
        for (int32_t d = 0; d <= most; ++d) {
            const int32_t limit = table.additiveLimit(d);
            const int32_t last = limit - table.rising()[d] - 1; // dearest cost whose sum is below the limit
            const auto check = [&](int32_t from, int32_t to) {
                for (int32_t cost = std::max(from, 0); cost <= std::min(to, last); ++cost) {
                    ASSERT_TRUE(adds(table, GetParam(), cost, d)) << "cost " << cost << " distance " << d;
                }
            };
            check(0, 40);
            check(last - 40, last);
            for (int32_t power = 64; power < limit; power *= 2) { // where floats get farther apart
                check(power - table.rising()[d] - 3, power - table.rising()[d] + 3);
                check(power - 3, power + 3);
            }
        }
    }
}

TEST_P(TermTableOfWeight, HoldsEveryTermTruncated)
{
    TermTable table;
    table.prepare(GetParam(), 300);
    ASSERT_GT(table.additiveLimit(300), 0);
    for (int32_t d = 0; d <= 300; ++d) {
        EXPECT_EQ(table.rising()[d], static_cast<int32_t>(static_cast<float>(d) * GetParam())) << d;
    }
}

TEST_P(TermTableOfWeight, FallsFromAnyDistanceToNone)
{
    TermTable table;
    table.prepare(GetParam(), 100);
    for (int32_t d = 0; d <= 100; ++d) {
        for (int32_t k = 0; k <= d; ++k) {
            ASSERT_EQ(table.falling(d)[k], table.rising()[d - k]) << d << " " << k;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Weights, TermTableOfWeight,
                         testing::Values(0.0F, -0.0F, 1e-30F, 1e-3F, 0.05F, 0.1F, 0.3F, 0.5F, 0.7F, 0.99F,
                                         1.0F, 1.4F, 2.5F, 2.7F, 3.1F, 10.0F, 100.25F, 1e3F));

TEST(TermTable, AddsExactlyForEveryCostThatItVouchesFor)
{
    for (const float weight : {1.4F, 0.3F, 2.7F}) {
        TermTable table;
        table.prepare(weight, 5);
        for (const int32_t d : {1, 3, 5}) {
            const int32_t end = table.additiveLimit(d) - table.rising()[d];
            int32_t wrong = 0;
            for (int32_t cost = 0; cost < end; ++cost) {
                wrong += adds(table, weight, cost, d) ? 0 : 1;
            }
            EXPECT_EQ(wrong, 0) << "weight " << weight << " distance " << d;
        }
    }
}

TEST(TermTable, VouchesForFewerCostsTheNearerATermComesToAWholeNumber)
{
    TermTable halves;
    halves.prepare(0.5F, 100);
    EXPECT_EQ(halves.additiveLimit(100),
              1 << 22); // 1 - 0.5 is not more than 2^23 / 2^24, but than half of that
    TermTable wholes;
    wholes.prepare(10.0F, 100);
    EXPECT_EQ(wholes.additiveLimit(100), 1 << 24);
    TermTable nearlyWhole;
    nearlyWhole.prepare(0.999999F, 1);
    EXPECT_LT(nearlyWhole.additiveLimit(1), 1 << 6);
    EXPECT_GT(nearlyWhole.additiveLimit(1), 0);
}

TEST(TermTable, HasALowerLimitForTermsFromTheFirstAwkwardOneOn)
{
    // 60 sites at 1.05 are 62.999996: on top of 2 the sum is rounded up.
    TermTable table;
    table.prepare(1.05F, 100);
    ASSERT_FALSE(adds(table, 1.05F, 2, 60));
    EXPECT_LE(table.additiveLimit(60), 65);
    EXPECT_GT(table.additiveLimit(59), 65);
    EXPECT_EQ(table.additiveLimit(0), 1 << 24);
    for (int32_t d = 1; d <= 100; ++d) {
        EXPECT_LE(table.additiveLimit(d), table.additiveLimit(d - 1)) << d;
    }
}

TEST(TermTable, IsNeededBecauseTermsAddDifferentlyAboveSomeLimit)
{
    TermTable table;
    table.prepare(0.999999F, 1);
    bool differs = false;
    for (int32_t cost = table.additiveLimit(1); cost < 1 << 20; ++cost) {
        differs = differs || !adds(table, 0.999999F, cost, 1);
    }
    EXPECT_TRUE(differs);
}

struct RefusedTerms {
    const char* name;
    float weight;
    int32_t most;
};

void PrintTo(const RefusedTerms& row, std::ostream* out)
{
    *out << row.name;
}

class TermTableRefuses : public testing::TestWithParam<RefusedTerms> {};

TEST_P(TermTableRefuses, WithALimitOfNone)
{
    TermTable table;
    table.prepare(GetParam().weight, GetParam().most);
    EXPECT_EQ(table.additiveLimit(std::max(GetParam().most, 0)), 0);
    table.prepare(1.0F, 10); // and is of use again afterwards
    EXPECT_EQ(table.additiveLimit(10), 1 << 24);
    EXPECT_EQ(table.rising()[10], 10);
    table.prepare(GetParam().weight, GetParam().most);
    EXPECT_EQ(table.additiveLimit(std::max(GetParam().most, 0)), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TermTableRefuses,
    testing::Values(RefusedTerms{"Negative", -1.4F, 10}, RefusedTerms{"SmallestNegative", -1e-40F, 10},
                    RefusedTerms{"Infinite", INF, 10}, RefusedTerms{"InfiniteWithoutSites", INF, 0},
                    RefusedTerms{"MinusInfinite", -INF, 10}, RefusedTerms{"NotANumber", std::nanf(""), 10},
                    RefusedTerms{"TermBeyondTheLimit", 1e7F, 2},
                    RefusedTerms{"TermEqualToTheLimit", 8388608.0F, 2},
                    RefusedTerms{"TermBeyond32Bits", 1e9F, 3}, RefusedTerms{"TermBeyondFloats", 3e38F, 2},
                    RefusedTerms{"NegativeRange", 1.4F, -1}, RefusedTerms{"FarNegativeRange", 1.4F, -1000},
                    RefusedTerms{"MoreSitesThanATableIsWorth", 1e-3F, 2147483647}),
    [](const auto& row) { return row.param.name; });

TEST(TermTable, TakesTheLargestTermsBelowTheLimit)
{
    TermTable table;
    table.prepare(1e5F, 167);
    EXPECT_EQ(table.additiveLimit(167), 1 << 24);
    EXPECT_EQ(table.rising()[167], 16700000);
    table.prepare(1e5F, 168);
    EXPECT_EQ(table.additiveLimit(168), 0);
    EXPECT_EQ(table.additiveLimit(167), 1 << 24);
}

TEST(TermTable, KeepsALargerTableOfTheSameWeight)
{
    TermTable table;
    table.prepare(1.4F, 100);
    const int32_t* before = table.rising();
    table.prepare(1.4F, 10);
    EXPECT_EQ(table.rising(), before);
    EXPECT_EQ(table.rising()[100], 140);
    EXPECT_EQ(table.falling(10)[3], table.rising()[7]);
}

TEST(TermTable, VouchesForNothingWithANegativeRangeAfterALargerTable)
{
    TermTable table;
    table.prepare(1.4F, 100);
    table.prepare(1.4F, -1);
    EXPECT_EQ(table.additiveLimit(0), 0);
    EXPECT_EQ(table.most(), -1);
    table.prepare(1.4F, 10);
    EXPECT_GT(table.additiveLimit(10), 0);
    EXPECT_EQ(table.most(), 10);
}

TEST(TermTable, IsMadeAnewForAnotherWeightOrALargerRange)
{
    TermTable table;
    table.prepare(1.4F, 20);
    table.prepare(3.0F, 10);
    EXPECT_EQ(table.rising()[10], 30);
    EXPECT_EQ(table.falling(10)[0], 30);
    table.prepare(3.0F, 40);
    EXPECT_EQ(table.rising()[40], 120);
    EXPECT_EQ(table.falling(40)[0], 120);
    EXPECT_EQ(table.falling(10)[10], 0);
}

PROPERTY(TermTable, NeverVouchesForASumThatIsTruncatedDifferently)
{
    const float weight =
        static_cast<float>(test::draw(0, 1 << 24)) / static_cast<float>(1 << test::draw(4, 24));
    const auto most = test::draw(0, 500);
    TermTable table;
    table.prepare(weight, most);
    for (int i = 0; i < 50; ++i) {
        const auto d = test::draw(0, most + 1);
        const int32_t limit = table.additiveLimit(d);
        const int32_t room = limit > 0 ? limit - table.rising()[d] : 0;
        if (room > 0) {
            const auto cost = test::drawOne({test::draw(0, room), room - 1});
            RC_ASSERT(adds(table, weight, cost, d));
        }
    }
}

} // namespace
