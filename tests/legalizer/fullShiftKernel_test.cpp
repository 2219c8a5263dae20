// SPDX-License-Identifier: BSD-3-Clause
// The local shift kernel for any numbers against the table of all states.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "legalizer/fullShiftKernel.h"
#include "legalizer/literalKernels.h"
#include "support/extremes.h"

namespace {

using test::HandMade;
using test::HandMadeArrays;
using test::HandMadeComp;
using test::INF;
using test::Ints;
using test::largeHandMade;
using test::LARGEST;
using test::literalShifts;
using test::Random;
using test::randomHandMade;
using test::ShiftPlaces;
using test::ShiftRange;
using test::solved;
using test::solvedBy;
using test::strangeHandMade;
using vireloce::bestProfileOps;
using vireloce::FullShiftKernel;
using vireloce::ShiftPlace;

HandMade anyHandMade(uint32_t seed)
{
    return seed % 3 == 0 ? randomHandMade(seed)
                         : (seed % 3 == 1 ? largeHandMade(seed) : strangeHandMade(seed));
}

TEST(FullShiftKernel, FindsTheTablesChoiceForAnyNumbers)
{
    for (const vireloce::ProfileOps* ops : vireloce::profileOpsHere()) {
        FullShiftKernel kernel(*ops); // one for all: its memory must not show
        int fitting = 0;
        for (uint32_t seed = 1; seed <= 700 && !HasFailure(); ++seed) {
            const HandMade made = anyHandMade(seed);
            const auto sites = static_cast<int32_t>(seed % 4);
            ShiftRange range{.first = -sites - 1, .count = 2 * sites + 1, .prune = seed % 2 == 0};
            range.solutions = seed % 7 == 0 ? 2 : 12;
            const ShiftPlaces want = literalShifts(made, range);
            ASSERT_EQ(solved(kernel, made, range, /*shareClasses=*/seed % 5 != 0), want)
                << ops->name << " seed " << seed;
            fitting += want.size() > 1 ? 1 : 0;
        }
        EXPECT_GT(fitting, 100);
    }
}

TEST(FullShiftKernel, FindsTheSameWhereStatesAreMadeAgain)
{
    int withLess = 0;
    int refused = 0;
    for (uint32_t seed = 1; seed <= 400 && !HasFailure(); ++seed) {
        const HandMade made = anyHandMade(seed);
        const ShiftRange range{.first = -3, .count = 5, .prune = seed % 2 == 0};
        int64_t all = 0; // states
        for (const HandMadeComp& comp : made.comps) {
            all += static_cast<int64_t>(comp.stitches.size()) * range.count;
        }
        const ShiftPlaces want = literalShifts(made, range);
        for (const int64_t most : {10, 20, 30, 50, 90}) {
            FullShiftKernel kernel(bestProfileOps(), most);
            const auto places = solved(kernel, made, range);
            refused += places.has_value() ? 0 : 1;
            if (places.has_value()) {
                ASSERT_EQ(*places, want) << "seed " << seed << " states " << most;
                withLess += 2 * most < all && want.size() > 1 ? 1 : 0;
            }
        }
    }
    EXPECT_GT(withLess, 10);
    EXPECT_GT(refused, 50);
}

struct AnyShifts {
    const char* name;
    HandMade made;
    ShiftRange range = {};
};

void PrintTo(const AnyShifts& row, std::ostream* out)
{
    *out << row.name;
}

class FullShiftKernelTakes : public testing::TestWithParam<AnyShifts> {};

TEST_P(FullShiftKernelTakes, AndFindsTheTablesChoice)
{
    for (const bool prune : {false, true}) {
        ShiftRange range = GetParam().range;
        range.prune = prune;
        EXPECT_EQ(solvedBy<FullShiftKernel>(GetParam().made, range), literalShifts(GetParam().made, range))
            << "prune " << prune;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FullShiftKernelTakes,
    testing::Values(
        AnyShifts{"NoShifts", {.comps = {{}}}, {.count = 0}},
        AnyShifts{"NoShiftsOfTwo", {.comps = {{}, {.site = 3}}}, {.count = 0}},
        AnyShifts{"NoSolutionsInTheTable", {.comps = {{}}}, {.solutions = 0}},
        AnyShifts{"OneComponentWithoutSolutions", {.comps = {{.stitches = {}}}}},
        AnyShifts{"AComponentWithoutSolutions", {.comps = {{}, {.stitches = {}, .site = 3}, {.site = 6}}}},
        AnyShifts{"NoSites", {.numSites = 0, .comps = {{.width = 0}, {.width = 0}}}},
        AnyShifts{"NegativeSites", {.numSites = -5, .comps = {{.site = 3}, {.site = 5}}}},
        AnyShifts{"NegativeStitches",
                  {.comps = {{.stitches = {0, -9}, .site = 3}, {.stitches = {-9}, .site = 5}}}},
        AnyShifts{"AStepThatDoesNotFitBehindANegativeCost",
                  {.comps = {{.site = 3}, {.stitches = {-2}, .site = 5}, {.site = 5}}}},
        AnyShifts{"AStateAtTheLimitBeforeANegativeStep",
                  {.comps = {{.stitches = {1073741817}, .site = 2},
                             {.stitches = {5}, .site = 5},
                             {.stitches = {-10}, .site = 8}}}},
        AnyShifts{"SumsThatWrapAround",
                  {.comps = {{.stitches = {1000000000}, .site = 2},
                             {.site = 5},
                             {.stitches = {1200000000}, .site = 8}}}},
        AnyShifts{"PositionsThatWrapAround", {.comps = {{.site = -LARGEST}, {.site = LARGEST}}}},
        AnyShifts{"AWidthThatWrapsAround", {.comps = {{.site = 3}, {.width = LARGEST, .site = 5}}}},
        AnyShifts{"AGapThatWrapsAround", {.comps = {{.site = 3}, {.gaps = {{LARGEST}}, .site = 6}}}},
        AnyShifts{"ANegativeGap",
                  {.comps = {{.width = 3, .site = 3}, {.gaps = {{-2}}, .lefts = {2}, .site = 5}}}},
        AnyShifts{"NegativeWeight",
                  {.weight = -1.4F, .comps = {{.lefts = {9}, .site = 3}, {.rights = {1}, .site = 6}}}},
        AnyShifts{"WeightThatIsNoNumber",
                  {.weight = std::nanf(""), .comps = {{.lefts = {9}, .site = 3}, {.site = 6}}}},
        AnyShifts{"InfiniteWeight",
                  {.weight = INF, .comps = {{.lefts = {9}, .site = 3}, {.rights = {1}, .site = 6}}}}),
    [](const auto& row) { return row.param.name; });

TEST(FullShiftKernel, HasNoMemoryForMoreShiftsThanCanBeCounted)
{
    EXPECT_EQ(solvedBy<FullShiftKernel>({.comps = {{}, {}}}, {.count = int64_t{LARGEST} + 1}), std::nullopt);
    EXPECT_EQ(solvedBy<FullShiftKernel>({.comps = {{}}}, {.count = int64_t{LARGEST} + 1}),
              (ShiftPlaces{{-2, 0}}));
}

TEST(FullShiftKernel, GoesOnFromTheCheaperStateFurtherLeftOnlyWhereItPrunes)
{
    // The middle component costs -2e9, -1e9 or 0 on sites 4 to 6. Counted twice, the least wraps around and
    // is positive: the way over site 5 is the cheapest in the end, if it is looked at.
    const HandMade made{.weight = 1e9F,
                        .comps = {{.site = 3},
                                  {.stitches = {-2000000000}, .lefts = {4}, .rights = {4}, .site = 6},
                                  {.site = 9}}};
    EXPECT_EQ(solvedBy<FullShiftKernel>(made, {}), (ShiftPlaces{{-2, 0}, {-1, 0}, {-2, 0}}));
    EXPECT_EQ(solvedBy<FullShiftKernel>(made, {.prune = true}), (ShiftPlaces{{-2, 0}, {-2, 0}, {-2, 0}}));
}

} // namespace
