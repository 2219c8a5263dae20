// SPDX-License-Identifier: BSD-3-Clause
// The grid kernel for ordinary numbers against the grid itself, within all limits of its work.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "legalizer/everyProfileOps.h"
#include "legalizer/gridKernel.h"
#include "legalizer/literalKernels.h"
#include "support/extremes.h"

namespace {

using test::GridPlaces;
using test::HandMade;
using test::HandMadeArrays;
using test::HandMadeComp;
using test::INF;
using test::Ints;
using test::largeHandMade;
using test::LEFT_OUT;
using test::LiteralGrid;
using test::Random;
using test::randomHandMade;
using test::roomyHandMade;
using vireloce::bestProfileOps;
using vireloce::GridKernel;
using vireloce::INFINITE_COST;
using vireloce::ORDERED_UNREACHED;

/// The kernel's places, nothing if it does not take the segment.
std::optional<GridPlaces> solved(GridKernel& kernel, const HandMade& made, int32_t unreached = INFINITE_COST,
                                 bool shareClasses = true)
{
    const HandMadeArrays arrays(made, shareClasses, /*knowsFarthest=*/shareClasses);
    if (!kernel.solve(arrays.grid(unreached))) {
        return std::nullopt;
    }
    return GridPlaces(kernel.places().begin(), kernel.places().end());
}

std::optional<GridPlaces> solved(const HandMade& made, int32_t unreached = INFINITE_COST)
{
    GridKernel kernel;
    return solved(kernel, made, unreached);
}

class EveryGridKernel : public test::OpsTest {};

TEST_P(EveryGridKernel, FindsTheGridsPathOnRandomSegments)
{
    GridKernel plain(*GetParam()); // one for all: its memory must not show
    GridKernel cutting(*GetParam(), {.narrow = 0});
    int refused = 0;
    constexpr uint32_t COUNT = 1000;
    for (uint32_t seed = 1; seed <= COUNT && !HasFailure(); ++seed) {
        const HandMade made = randomHandMade(seed);
        const int32_t unreached = seed % 2 == 0 ? INFINITE_COST : ORDERED_UNREACHED;
        const GridPlaces want = LiteralGrid(made, unreached).places();
        for (GridKernel* kernel : {&plain, &cutting}) {
            const auto places = solved(*kernel, made, unreached, /*shareClasses=*/seed % 3 != 0);
            refused += places.has_value() ? 0 : 1;
            if (places.has_value()) {
                ASSERT_EQ(*places, want) << "seed " << seed << (kernel == &cutting ? " cutting" : " plain");
            }
        }
    }
    EXPECT_LT(refused, static_cast<int>(COUNT / 100)) << "ordinary segments";
}

INSTANTIATE_TEST_SUITE_P(GridKernel, EveryGridKernel, test::everyOps(), test::nameOfOps);

// --- limits of its work

TEST(GridKernel, FindsTheSamePathWhereUselessSpaceIsCutOff)
{
    GridKernel plain;
    GridKernel cutting(bestProfileOps(), {.narrow = 0});
    int cut = 0;
    int severalTries = 0;
    for (uint32_t seed = 1; seed <= 250 && !HasFailure(); ++seed) {
        const HandMade made = roomyHandMade(seed);
        const int32_t unreached = seed % 2 == 0 ? INFINITE_COST : ORDERED_UNREACHED;
        const auto places = solved(cutting, made, unreached);
        ASSERT_TRUE(places.has_value()) << "seed " << seed;
        ASSERT_EQ(*places, LiteralGrid(made, unreached).places()) << "seed " << seed;
        ASSERT_EQ(solved(plain, made, unreached), places) << "seed " << seed;
        cut += cutting.work().entries < plain.work().entries ? 1 : 0;
        severalTries += cutting.work().tries > plain.work().tries ? 1 : 0;
    }
    EXPECT_GT(cut, 50);
    EXPECT_GT(severalTries, 5);
}

TEST(GridKernel, KeepsAPathThatIsAsDearAsTheBestWhereItCutsOff)
{
    // The first try keeps what sites cost up to 256. All that it finds is the path with 257 stitches; the
    // first component on site 0 and the second one without stitches cost the same, and the later solution
    // wins.
    const HandMade made{.numSites = 50,
                        .weight = 257.0F,
                        .comps = {{.lefts = {1}}, {.stitches = {257, 0}, .gaps = {{0, 1}}, .rights = {2}}}};
    GridKernel kernel(bestProfileOps(), {.narrow = 0});
    EXPECT_EQ(LiteralGrid(made, INFINITE_COST).places(), (GridPlaces{{0, 0}, {2, 1}}));
    EXPECT_EQ(solved(kernel, made), (GridPlaces{{0, 0}, {2, 1}}));
}

TEST(GridKernel, FindsTheSamePathWhereLayersAreMadeAgain)
{
    int madeAgain = 0;
    int refused = 0;
    for (uint32_t seed = 1; seed <= 400 && !HasFailure(); ++seed) {
        const HandMade made = seed % 4 == 0 ? roomyHandMade(seed) : randomHandMade(seed);
        const int32_t narrow = seed % 2 == 0 ? 384 : 0;
        GridKernel unbounded(bestProfileOps(), {.narrow = narrow});
        const auto want = solved(unbounded, made);
        ASSERT_TRUE(want.has_value());
        for (const int64_t most : {64, 128, 256, 512, 1024, 2048}) {
            GridKernel kernel(bestProfileOps(), {.mostEntries = most, .narrow = narrow});
            const auto places = solved(kernel, made);
            refused += places.has_value() ? 0 : 1;
            if (places.has_value()) {
                ASSERT_EQ(places, want) << "seed " << seed << " entries " << most;
                madeAgain += kernel.work().profiles > unbounded.work().profiles ? 1 : 0;
            }
        }
    }
    EXPECT_GT(madeAgain, 100);
    EXPECT_GT(refused, 200) << "two neighbours that do not fit";
}

TEST(GridKernel, MakesLayersAgainFromCheckpointsOfALongSegment)
{
    HandMade made{.numSites = 150, .comps = std::vector<HandMadeComp>(70)};
    Random random(1);
    for (size_t q = 1; q < made.comps.size(); ++q) {
        made.comps[q].stitches = {0, 2, 1};
        made.comps[q].gaps.assign(made.comps[q - 1].stitches.size(), {0, 1, 0});
    }
    addRandomEnds(made, random, 2);
    const GridPlaces want = LiteralGrid(made, INFINITE_COST).places();
    for (const int64_t most : {700, 1500, 4000, 12000}) {
        for (const int32_t narrow : {384, 0}) {
            GridKernel kernel(bestProfileOps(), {.mostEntries = most, .narrow = narrow});
            EXPECT_EQ(solved(kernel, made), want) << "entries " << most << " narrow " << narrow;
        }
    }
}

TEST(GridKernel, RefusesOneComponentWhoseProfilesDoNotFit)
{
    const HandMade made{.numSites = 100, .comps = {{}}};
    GridKernel kernel(bestProfileOps(), {.mostEntries = 127}); // 101 sites are 112 entries and the pad of 16
    EXPECT_EQ(solved(kernel, made), std::nullopt);
    GridKernel larger(bestProfileOps(), {.mostEntries = 128});
    EXPECT_EQ(solved(larger, made), (GridPlaces{{0, 0}}));
}

TEST(GridKernel, RefusesProfilesThatDoNotFitBeforeItMakesThem)
{
    const HandMade made{.numSites = 5000, .comps = {{.lefts = {5000}}}}; // all sites are of use
    GridKernel kernel(bestProfileOps(), {.mostEntries = 1000});
    EXPECT_EQ(solved(kernel, made), std::nullopt);
    EXPECT_EQ(kernel.work().entries, 0);
}

TEST(GridKernel, FillsTheProfilesOnceWhereAllFit)
{
    GridKernel kernel;
    const HandMade made{.numSites = 10, .comps = {{.width = 3}, {.width = 4}}};
    ASSERT_TRUE(solved(kernel, made).has_value());
    EXPECT_EQ(kernel.work().entries, 2 * (10 - 7 + 1));
    EXPECT_EQ(kernel.work().tries, 1);
}

TEST(GridKernel, FillsThemAgainWithAnEarlierLastComponent)
{
    GridKernel kernel;
    const HandMade made{.numSites = 10, .comps = {{.width = 3}, {.width = 4, .stitches = {1000}}}};
    EXPECT_EQ(solved(kernel, made), (GridPlaces{{0, 0}, LEFT_OUT}));
    EXPECT_EQ(kernel.work().entries, 2 * (10 - 7 + 1) + (10 - 3 + 1) + (10 - 7 + 1));
}

TEST(GridKernel, GivesAnEarlierEndNoChanceWhereItIsAsDear)
{
    GridKernel kernel;
    const HandMade made{.numSites = 2, .comps = {{}, {.stitches = {20}}}};
    ASSERT_TRUE(solved(kernel, made).has_value());
    EXPECT_EQ(kernel.work().entries, 2);
}

TEST(GridKernel, LooksAtTheUsefulSitesOfALongRowOnly)
{
    HandMade made{.numSites = 100'000, .comps = std::vector<HandMadeComp>(20)};
    for (size_t q = 0; q < 20; ++q) {
        made.comps[q].lefts = made.comps[q].rights = {1000 + 2 * static_cast<int32_t>(q % 7)};
    }
    GridKernel kernel;
    ASSERT_TRUE(solved(kernel, made).has_value());
    EXPECT_LT(kernel.work().entries, 100'000);
    EXPECT_LT(kernel.work().kept, 10'000);
}

TEST(GridKernel, ChoosesAmongEndsThatAreNearlyEquallyDear)
{
    int early = 0;
    for (uint32_t seed = 1; seed <= 600 && !HasFailure(); ++seed) {
        HandMade made = seed % 2 == 0 ? randomHandMade(seed) : roomyHandMade(seed);
        made.numSites = std::min(made.numSites, 90);
        Random random(seed);
        const int32_t saved = 10 * made.numSites; // by ending one component later
        for (HandMadeComp& comp : made.comps) {
            for (int32_t& stitch : comp.stitches) {
                stitch = std::max(0, random.oneOf<int>({saved, saved - 1, saved + 1, saved - 3, saved + 4}));
            }
        }
        GridKernel kernel(bestProfileOps(), {.narrow = static_cast<int32_t>(seed % 3) * 40});
        const GridPlaces want = LiteralGrid(made, INFINITE_COST).places();
        ASSERT_EQ(solved(kernel, made), want) << "seed " << seed;
        early += want.back() == LEFT_OUT && want.front() != LEFT_OUT ? 1 : 0;
    }
    EXPECT_GT(early, 100);
}

// --- start values and large numbers

TEST(GridKernel, AgreesWithTheGridForEveryStartValueNearTheBestCost)
{
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        const HandMade made = randomHandMade(seed);
        const int32_t best = LiteralGrid(made, INFINITE_COST).best();
        for (int32_t start = std::max(1, best - 20); start < best + 20 && best < INFINITE_COST; ++start) {
            const auto places = solved(made, start);
            ASSERT_TRUE(places.has_value()) << "seed " << seed << " start " << start;
            ASSERT_EQ(*places, LiteralGrid(made, start).places()) << "seed " << seed << " start " << start;
        }
    }
}

TEST(GridKernel, TakesNoPathThatIsDearerThanTheStartValue)
{
    const HandMade made{.numSites = 10, .comps = {{.stitches = {5}}, {.stitches = {7}}}};
    ASSERT_EQ(LiteralGrid(made, INFINITE_COST).best(), 112);
    EXPECT_EQ(solved(made, 111), (GridPlaces{LEFT_OUT, LEFT_OUT}));
    EXPECT_EQ(solved(made, 112), (GridPlaces{{0, 0}, {1, 0}}));
}

TEST(GridKernel, AgreesWithTheGridOnLargeNumbersWhereItTakesThem)
{
    GridKernel kernels[2]{GridKernel(), GridKernel(bestProfileOps(), {.narrow = 0})};
    int taken = 0;
    int refused = 0;
    for (uint32_t seed = 1; seed <= 1500 && !HasFailure(); ++seed) {
        const HandMade made = largeHandMade(seed);
        const int32_t unreached = seed % 2 == 0 ? INFINITE_COST : ORDERED_UNREACHED;
        const auto places = solved(kernels[seed / 2 % 2], made, unreached);
        (places.has_value() ? taken : refused) += 1;
        if (places.has_value()) {
            ASSERT_EQ(*places, LiteralGrid(made, unreached).places()) << "seed " << seed;
        }
    }
    EXPECT_GT(taken, 100);
    EXPECT_GT(refused, 100);
}

TEST(GridKernel, TakesCostsThatDependOnTheirOrder)
{
    const HandMade made{
        .numSites = 100,
        .weight = 1000.7F,
        .comps = {{.width = 3, .stitches = {0, 1, 5}, .lefts = Ints(200, 90), .rights = Ints(150, 10)}}};
    EXPECT_EQ(solved(made), LiteralGrid(made, INFINITE_COST).places());
}

// --- what it does not take

struct RefusedCase {
    const char* name;
    HandMade made;
};

void PrintTo(const RefusedCase& row, std::ostream* out)
{
    *out << row.name;
}

class GridKernelRefuses : public testing::TestWithParam<RefusedCase> {};

TEST_P(GridKernelRefuses, LeavesIt)
{
    EXPECT_EQ(solved(GetParam().made), std::nullopt);
}

HandMade manyGapClasses(size_t classes)
{
    HandMade made{.comps = {{.stitches = Ints(10)}, {.stitches = Ints(classes)}}};
    for (int32_t i = 0, power = 1; i < 10; ++i, power *= 2) { // digits of the class's number
        Ints& row = made.comps[1].gaps.emplace_back();
        for (int32_t j = 0; j < static_cast<int32_t>(classes); ++j) {
            row.push_back(j / power % 2);
        }
    }
    return made;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GridKernelRefuses,
    testing::Values(RefusedCase{"NoComponents", {}},
                    RefusedCase{"NoSites", {.numSites = 0, .comps = {{.width = 0}}}},
                    RefusedCase{"NoSolution", {.comps = {{}, {.stitches = {}, .gaps = {{}}}}}},
                    RefusedCase{"NegativeStitches", {.comps = {{.stitches = {0, -1}}}}},
                    RefusedCase{"StitchesOfMoreThanASiteMayCost", {.comps = {{.stitches = {0, 1 << 28}}}}},
                    RefusedCase{"NegativeWeight", {.weight = -1.4F, .comps = {{}}}},
                    RefusedCase{"WeightThatIsNoNumber", {.weight = std::nanf(""), .comps = {{}}}},
                    RefusedCase{"InfiniteWeight", {.weight = INF, .comps = {{}}}},
                    RefusedCase{"NegativeWidth", {.comps = {{.width = -1}}}},
                    RefusedCase{"TermsOfMoreThanASiteMayCost", {.weight = 1e8F, .comps = {{.lefts = {9}}}}},
                    RefusedCase{"NegativeGap", {.comps = {{}, {.stitches = {0, 0}, .gaps = {{0, -1}}}}}},
                    RefusedCase{"GapsFartherApartThanThePad",
                                {.numSites = 50, .comps = {{}, {.stitches = {0, 0}, .gaps = {{1, 18}}}}}},
                    RefusedCase{"MoreThanAThousandGapClasses", manyGapClasses(1001)}),
    [](const auto& row) { return row.param.name; });

TEST(GridKernel, TakesNumbersUpToThoseThatItRefuses)
{
    EXPECT_TRUE(solved({.numSites = 50, .comps = {{}, {.stitches = {0, 0}, .gaps = {{1, 17}}}}}).has_value());
    EXPECT_TRUE(solved({.comps = {{.stitches = {0, (1 << 28) - 1}}}}).has_value());
    EXPECT_TRUE(solved(manyGapClasses(1000)).has_value());
    EXPECT_EQ(solved({.comps = {{}}}, vireloce::UNREACHABLE + 1), std::nullopt);
    EXPECT_TRUE(solved({.comps = {{}}}, vireloce::UNREACHABLE).has_value());
}

} // namespace
