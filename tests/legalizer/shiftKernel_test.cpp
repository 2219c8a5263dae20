// SPDX-License-Identifier: BSD-3-Clause
// The local shift kernel for ordinary numbers against the table of all states.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <vector>

#include "legalizer/literalKernels.h"
#include "legalizer/shiftKernel.h"
#include "support/extremes.h"

namespace {

using test::HandMade;
using test::HandMadeArrays;
using test::HandMadeComp;
using test::INF;
using test::Ints;
using test::largeHandMade;
using test::literalShifts;
using test::Random;
using test::randomHandMade;
using test::ShiftPlaces;
using test::ShiftRange;
using test::solved;
using test::solvedBy;
using vireloce::ShiftKernel;
using vireloce::ShiftPlace;

/// As the local shift program has it: from -sites - 1 to sites - 1.
ShiftRange within(int32_t sites, bool prune = false)
{
    return {.first = -sites - 1, .count = 2 * sites + 1, .prune = prune};
}

TEST(ShiftKernel, FindsTheTablesChoiceOnRandomSegments)
{
    ShiftKernel kernel; // one for all: its memory must not show
    int refused = 0;
    int fitting = 0;
    constexpr uint32_t COUNT = 1500;
    for (uint32_t seed = 1; seed <= COUNT && !HasFailure(); ++seed) {
        const HandMade made = randomHandMade(seed);
        ShiftRange range = within(static_cast<int32_t>(seed % 5), /*prune=*/seed % 2 == 0);
        range.solutions = seed % 7 == 0 ? 2 : 12; // of up to 9
        const auto places = solved(kernel, made, range, /*shareClasses=*/seed % 3 != 0);
        refused += places.has_value() ? 0 : 1;
        if (places.has_value()) {
            fitting += places->empty() ? 0 : 1;
            ASSERT_EQ(*places, literalShifts(made, range)) << "seed " << seed;
        }
    }
    EXPECT_LT(refused, static_cast<int>(COUNT / 100)) << "ordinary segments";
    EXPECT_GT(fitting, static_cast<int>(COUNT / 4));
}

struct ShiftCase {
    const char* name;
    HandMade made;
    int32_t range;
    ShiftPlaces want; ///< shifts as indices from the leftmost one
};

void PrintTo(const ShiftCase& row, std::ostream* out)
{
    *out << row.name;
}

class ShiftKernelChoice : public testing::TestWithParam<ShiftCase> {};

TEST_P(ShiftKernelChoice, IsThatOfTheTable)
{
    for (const bool prune : {false, true}) {
        const ShiftRange range = within(GetParam().range, prune);
        ShiftPlaces want = GetParam().want;
        for (ShiftPlace& place : want) {
            place.shift += range.first;
        }
        EXPECT_EQ(literalShifts(GetParam().made, range), want);
        EXPECT_EQ(solvedBy<ShiftKernel>(GetParam().made, range), want) << "prune " << prune;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ShiftKernelChoice,
    testing::Values(
        ShiftCase{
            "OneComponentTakesItsFirstState", {.comps = {{.stitches = {9, 0}, .site = 5}}}, 2, {{0, 0}}},
        ShiftCase{"OneComponentLeftOfTheSegmentToo", {.comps = {{.lefts = {9}, .site = -7}}}, 1, {{0, 0}}},
        ShiftCase{"OneThatIsTooWideToo", {.numSites = 2, .comps = {{.width = 5}}}, 1, {{0, 0}}},
        ShiftCase{"TiesGoToTheLowestSolution",
                  {.comps = {{.stitches = {3, 3}, .site = 2}, {.stitches = {1, 1}, .site = 4}}},
                  1,
                  {{0, 0}, {0, 0}}},
        ShiftCase{"TiesGoToTheLowestSolutionOfTheLeftOneBeforeItsShift", // solution 1 could be at shift 0
                  {.weight = 1.0F,
                   .comps = {{.stitches = {1, 0}, .lefts = {1}, .site = 2},
                             {.gaps = {{0}, {1}}, .rights = {2}, .site = 4}}},
                  1,
                  {{1, 0}, {0, 0}}},
        ShiftCase{"TiesGoToTheLowestShift",
                  {.numSites = 20, .comps = {{.lefts = {3}, .site = 5}, {.rights = {12}, .site = 10}}},
                  2,
                  {{1, 0}, {0, 0}}},
        ShiftCase{"NothingFitsWithoutRoom",
                  {.numSites = 3, .comps = {{.width = 2}, {.width = 2, .site = 2}}},
                  3,
                  {}},
        ShiftCase{"NothingFitsLeftOfTheSegment", {.comps = {{.site = -1}, {.site = 5}}}, 1, {}},
        ShiftCase{"NothingFitsWithinTheRange",
                  {.numSites = 50, .comps = {{.width = 9, .site = 5}, {.site = 6}}},
                  2,
                  {}},
        ShiftCase{"FromLeftOfTheSegmentIntoIt", {.comps = {{.site = -1}, {.site = 5}}}, 2, {{4, 0}, {0, 0}}},
        ShiftCase{"UpToTheLastSite",
                  {.numSites = 4, .comps = {{.width = 2, .site = 1}, {.width = 2, .site = 3}}},
                  0,
                  {{0, 0}, {0, 0}}}),
    [](const auto& row) { return row.param.name; });

TEST(ShiftKernel, AgreesWithTheTableOnLargeNumbersWhereItTakesThem)
{
    ShiftKernel kernel;
    int taken = 0;
    int refused = 0;
    for (uint32_t seed = 1; seed <= 1500 && !HasFailure(); ++seed) {
        const HandMade made = largeHandMade(seed);
        const auto places = solved(kernel, made, within(2, seed % 2 == 0));
        (places.has_value() ? taken : refused) += 1;
        if (places.has_value()) {
            ASSERT_EQ(*places, literalShifts(made, within(2, seed % 2 == 0))) << "seed " << seed;
        }
    }
    EXPECT_GT(taken, 100);
    EXPECT_GT(refused, 100);
}

TEST(ShiftKernel, SaturatesSumsThatGrowBeyondTheStartValue)
{
    for (const size_t n : {60U, 64U, 65U, 66U, 70U, 140U}) { // 2 * (n - 1) times 2^23: 65 make 2^30
        HandMade made{.numSites = 200, .weight = 1.0F, .comps = std::vector<HandMadeComp>(n)};
        for (size_t q = 0; q < n; ++q) {
            made.comps[q].stitches = {(1 << 23) - static_cast<int32_t>(q % 3), 1 << 23};
            made.comps[q].site = static_cast<int32_t>(q) + 1;
        }
        const ShiftPlaces want = literalShifts(made, within(1));
        ASSERT_EQ(want.empty(), n > 65);
        EXPECT_EQ(solvedBy<ShiftKernel>(made, within(1)), want) << n << " components";
    }
}

TEST(ShiftKernel, ChoosesTheSameWithPruning)
{
    // A state that is dearer than one further left has dearer own costs too, as room to the left only helps.
    for (uint32_t seed = 1; seed <= 1500; ++seed) {
        const HandMade made = randomHandMade(seed);
        ASSERT_EQ(solvedBy<ShiftKernel>(made, within(3)),
                  solvedBy<ShiftKernel>(made, within(3, /*prune=*/true)))
            << "seed " << seed;
    }
}

TEST(ShiftKernel, FindsTheSameWhereStatesAreMadeAgain)
{
    int solvedWithLess = 0;
    int refused = 0;
    for (uint32_t seed = 1; seed <= 600 && !HasFailure(); ++seed) {
        const HandMade made = randomHandMade(seed);
        const ShiftRange range = within(3, /*prune=*/seed % 2 == 0);
        int64_t all = 0; // states
        for (const HandMadeComp& comp : made.comps) {
            all += static_cast<int64_t>(comp.stitches.size()) * range.count;
        }
        for (const int64_t most : {10, 40, 130}) {
            ShiftKernel kernel(vireloce::bestProfileOps(), most);
            const auto places = solved(kernel, made, range);
            refused += places.has_value() ? 0 : 1;
            if (places.has_value()) {
                ASSERT_EQ(*places, literalShifts(made, range)) << "seed " << seed << " states " << most;
                solvedWithLess += 2 * most < all && !places->empty() ? 1 : 0;
            }
        }
    }
    EXPECT_GT(solvedWithLess, 20);
    EXPECT_GT(refused, 20);
}

TEST(ShiftKernel, LooksAtSitesOfTheSegmentOnly)
{
    const HandMade made{.numSites = 20, .comps = {{.lefts = {7}, .site = 3}, {.rights = {2}, .site = 9}}};
    ShiftKernel kernel(vireloce::bestProfileOps(), /*mostEntries=*/40);
    const ShiftRange all{.first = -(1 << 27), .count = int64_t{1} << 28};
    EXPECT_EQ(solved(kernel, made, all), literalShifts(made, {.first = -20, .count = 40}));
}

struct RefusedShifts {
    const char* name;
    HandMade made;
    int32_t range = 2;
};

void PrintTo(const RefusedShifts& row, std::ostream* out)
{
    *out << row.name;
}

class ShiftKernelRefuses : public testing::TestWithParam<RefusedShifts> {};

TEST_P(ShiftKernelRefuses, LeavesIt)
{
    EXPECT_EQ(solvedBy<ShiftKernel>(GetParam().made, within(GetParam().range)), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ShiftKernelRefuses,
    testing::Values(RefusedShifts{"NoComponents", {}},
                    RefusedShifts{"NoSolution", {.comps = {{.stitches = {}}}}},
                    RefusedShifts{"NoShifts", {.comps = {{}}}, -1},
                    RefusedShifts{"NegativeSites", {.numSites = -1, .comps = {{}}}},
                    RefusedShifts{"FarNegativeSites", {.numSites = -1000, .comps = {{}}}},
                    RefusedShifts{"NegativeStitches", {.comps = {{.stitches = {0, -1}}}}},
                    RefusedShifts{"StitchesOfMoreThanASiteMayCost", {.comps = {{.stitches = {1 << 28}}}}},
                    RefusedShifts{"NegativeWeight", {.weight = -1.4F, .comps = {{}}}},
                    RefusedShifts{"WeightThatIsNoNumber", {.weight = std::nanf(""), .comps = {{}}}},
                    RefusedShifts{"InfiniteWeight", {.weight = INF, .comps = {{}}}},
                    RefusedShifts{"TermsOfMoreThanASiteMayCost",
                                  {.weight = 1e5F, .comps = {{.lefts = Ints(2000, 9)}}}},
                    RefusedShifts{"NegativeWidth", {.comps = {{.width = -1}}}},
                    RefusedShifts{"NegativeGap", {.comps = {{}, {.gaps = {{-1}}}}}},
                    RefusedShifts{"GapsThatMightWrap", {.comps = {{}, {.gaps = {{1 << 28}}}}}},
                    RefusedShifts{"PlacesThatMightWrap", {.comps = {{.site = 1 << 28}}}},
                    RefusedShifts{"NegativePlacesThatMightWrap", {.comps = {{.site = -2147483647 - 1}}}},
                    RefusedShifts{"WidthsThatMightWrap", {.comps = {{.width = 1 << 28}}}}),
    [](const auto& row) { return row.param.name; });

} // namespace
