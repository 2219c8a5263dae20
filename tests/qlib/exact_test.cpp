// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/exact.h"
#include "support/extremes.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

using test::LARGEST;
using test::SMALLEST;
using vireloce::addTruncated;
using vireloce::ceilSites;
using vireloce::toInt;

struct DoubleCase {
    const char* name;
    double value;
    int32_t want;
};

void PrintTo(const DoubleCase& row, std::ostream* out)
{
    *out << row.name;
}

class ToIntOfDouble : public testing::TestWithParam<DoubleCase> {};

TEST_P(ToIntOfDouble, TruncatesOrGivesTheSmallestInteger)
{
    EXPECT_EQ(toInt(GetParam().value), GetParam().want);
}

const DoubleCase DOUBLES[] = {
    {"zero", 0.0, 0},
    {"minus_zero", -0.0, 0},
    {"fraction_is_dropped", 2.999, 2},
    {"negative_fraction_is_dropped_toward_zero", -2.999, -2},
    {"largest", 2147483647.0, LARGEST},
    {"fraction_above_the_largest_still_fits", 2147483647.999, LARGEST},
    {"one_above_the_largest", 2147483648.0, SMALLEST},
    {"smallest", -2147483648.0, SMALLEST},
    {"fraction_below_the_smallest_still_fits", -2147483648.999, SMALLEST},
    {"one_below_the_smallest", -2147483649.0, SMALLEST},
    {"infinity", std::numeric_limits<double>::infinity(), SMALLEST},
    {"minus_infinity", -std::numeric_limits<double>::infinity(), SMALLEST},
    {"not_a_number", std::numeric_limits<double>::quiet_NaN(), SMALLEST},
};
INSTANTIATE_TEST_SUITE_P(Value, ToIntOfDouble, testing::ValuesIn(DOUBLES),
                         [](const auto& row) { return row.param.name; });

struct FloatCase {
    const char* name;
    float value;
    int32_t want;
};

void PrintTo(const FloatCase& row, std::ostream* out)
{
    *out << row.name;
}

class ToIntOfFloat : public testing::TestWithParam<FloatCase> {};

TEST_P(ToIntOfFloat, TruncatesOrGivesTheSmallestInteger)
{
    EXPECT_EQ(toInt(GetParam().value), GetParam().want);
}

const FloatCase FLOATS[] = {
    {"fraction_is_dropped", 7.9F, 7},
    {"negative_fraction_is_dropped_toward_zero", -7.9F, -7},
    {"largest_float_that_fits", 2147483520.0F, 2147483520},
    {"first_float_that_does_not", 2147483648.0F, SMALLEST},
    {"smallest", -2147483648.0F, SMALLEST},
    {"next_below_the_smallest", -2147483904.0F, SMALLEST},
    {"infinity", std::numeric_limits<float>::infinity(), SMALLEST},
    {"minus_infinity", -std::numeric_limits<float>::infinity(), SMALLEST},
    {"not_a_number", std::numeric_limits<float>::quiet_NaN(), SMALLEST},
};
INSTANTIATE_TEST_SUITE_P(Value, ToIntOfFloat, testing::ValuesIn(FLOATS),
                         [](const auto& row) { return row.param.name; });

#ifdef __SSE2__

TEST(ToIntOfFloat, GivesWhatTheConversionInstructionGives)
{
    std::mt19937 random(1);
    for (int i = 0; i < 200000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<uint32_t>(random()));
        ASSERT_EQ(toInt(value), _mm_cvttss_si32(_mm_set_ss(value))) << value;
    }
}

TEST(ToIntOfDouble, GivesWhatTheConversionInstructionGives)
{
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> aroundTheRange(-5e9, 5e9);
    for (int i = 0; i < 100000; ++i) {
        for (const double value : {std::bit_cast<double>(random()), aroundTheRange(random)}) {
            ASSERT_EQ(toInt(value), _mm_cvttsd_si32(_mm_set_sd(value))) << value;
        }
    }
}

#endif

struct SitesCase {
    const char* name;
    int32_t length;
    int32_t siteWidth;
    int32_t want;
};

void PrintTo(const SitesCase& row, std::ostream* out)
{
    *out << row.name;
}

class CeilSites : public testing::TestWithParam<SitesCase> {};

TEST_P(CeilSites, IsTheQuotientInSinglePrecisionTakenUp)
{
    EXPECT_EQ(ceilSites(GetParam().length, GetParam().siteWidth), GetParam().want);
}

const SitesCase SITES[] = {
    {"nothing", 0, 190, 0},
    {"one_unit_takes_a_site", 1, 190, 1},
    {"a_whole_site", 190, 190, 1},
    {"one_more_than_a_site", 191, 190, 2},
    {"entry_of_sites_divided_again", 3, 190, 1},
    {"negative_goes_up_toward_zero", -1, 190, 0},
    {"negative_beyond_a_site", -191, 190, -1},
    {"negative_site_width", 380, -190, -2},
    {"length_is_rounded_before_it_is_divided", 16777381, 190, 88302}, // in integers 88303
    {"width_0_gives_the_smallest", 190, 0, SMALLEST},
    {"nothing_by_width_0_gives_the_smallest", 0, 0, SMALLEST},
};
INSTANTIATE_TEST_SUITE_P(Length, CeilSites, testing::ValuesIn(SITES),
                         [](const auto& row) { return row.param.name; });

struct AddCase {
    const char* name;
    int32_t cost;
    int32_t sites;
    float weight;
    int32_t want;
};

void PrintTo(const AddCase& row, std::ostream* out)
{
    *out << row.name;
}

class AddTruncated : public testing::TestWithParam<AddCase> {};

TEST_P(AddTruncated, AddsInSinglePrecisionAndTruncatesAtOnce)
{
    EXPECT_EQ(addTruncated(GetParam().cost, GetParam().sites, GetParam().weight), GetParam().want);
}

const AddCase ADDITIONS[] = {
    {"first_of_two_terms", 0, 2, 1.4F, 2},
    {"second_of_two_terms_starts_from_the_truncated_one", 2, 2, 1.4F, 4},
    {"product_is_rounded_to_single_precision", 0, 5, 1.4F, 7}, // with the weight in double precision 6
    {"negative_sum_goes_toward_zero", 0, -2, 1.4F, -2},
    {"negative_weight", 10, 3, -1.5F, 5},
    {"cost_is_rounded_to_single_precision", 16777217, 0, 1.4F, 16777216},
    {"sum_out_of_range_gives_the_smallest", LARGEST, LARGEST, 1.4F, SMALLEST},
    {"weight_0_adds_nothing", 17, 1000, 0.0F, 17},
};
INSTANTIATE_TEST_SUITE_P(Term, AddTruncated, testing::ValuesIn(ADDITIONS),
                         [](const auto& row) { return row.param.name; });

TEST(InfiniteCost, TwoOfThemStillFit)
{
    EXPECT_EQ(vireloce::INFINITE_COST, 1073741823);
    EXPECT_EQ(static_cast<int64_t>(vireloce::INFINITE_COST) * 2, static_cast<int64_t>(LARGEST) - 1);
}

} // namespace
