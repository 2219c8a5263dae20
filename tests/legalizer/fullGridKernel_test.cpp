// SPDX-License-Identifier: BSD-3-Clause
// The grid kernel for any numbers against the grid itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "legalizer/everyProfileOps.h"
#include "legalizer/fullGridKernel.h"
#include "legalizer/literalKernels.h"
#include "support/extremes.h"

namespace {

using test::GridPlaces;
using test::HandMade;
using test::HandMadeArrays;
using test::INF;
using test::Ints;
using test::largeHandMade;
using test::LARGEST;
using test::LEFT_OUT;
using test::LiteralGrid;
using test::Random;
using test::randomHandMade;
using test::strangeHandMade;
using vireloce::bestProfileOps;
using vireloce::FullGridKernel;
using vireloce::GridPlace;
using vireloce::INFINITE_COST;
using vireloce::ORDERED_UNREACHED;

std::optional<GridPlaces> solved(FullGridKernel& kernel, const HandMade& made,
                                 int32_t unreached = INFINITE_COST, bool shareClasses = true)
{
    const HandMadeArrays arrays(made, shareClasses);
    if (!kernel.solve(arrays.grid(unreached))) {
        return std::nullopt;
    }
    return GridPlaces(kernel.places().begin(), kernel.places().end());
}

class EveryFullGridKernel : public test::OpsTest {};

TEST_P(EveryFullGridKernel, FindsTheGridsPathForAnyNumbers)
{
    FullGridKernel kernel(*GetParam()); // one for all: its memory must not show
    int placed = 0;
    for (uint32_t seed = 1; seed <= 1200 && !HasFailure(); ++seed) {
        const HandMade made = seed % 3 == 0 ? randomHandMade(seed)
                                            : (seed % 3 == 1 ? largeHandMade(seed) : strangeHandMade(seed));
        const int32_t unreached = seed % 2 == 0 ? INFINITE_COST : ORDERED_UNREACHED;
        const GridPlaces want = LiteralGrid(made, unreached).places();
        ASSERT_EQ(solved(kernel, made, unreached, /*shareClasses=*/seed % 5 != 0), want) << "seed " << seed;
        placed += want.front() == LEFT_OUT ? 0 : 1;
    }
    EXPECT_GT(placed, 600);
}

INSTANTIATE_TEST_SUITE_P(FullGridKernel, EveryFullGridKernel, test::everyOps(), test::nameOfOps);

TEST(FullGridKernel, FollowsPathsThatBeginAtANodeThatHasNotBeenReached)
{
    FullGridKernel kernel;
    int unreached = 0;
    int written = 0; // in a row that the path waits in only
    for (uint32_t seed = 1; seed <= 1500 && !HasFailure(); ++seed) {
        HandMade made = strangeHandMade(seed);
        Random random(seed);
        made.weight = random.oneOf<float>({1.0F, -1.0F, 0.0F});
        const int32_t start = random.oneOf<int>({3, 40, 300, ORDERED_UNREACHED, INFINITE_COST});
        for (size_t q = 1; q < made.comps.size();
             ++q) { // worth it behind a component that costs the start value
            for (int32_t& stitch : made.comps[q].stitches) {
                stitch = random.oneOf<int>({0, -100, -1000, -5000});
            }
        }
        const HandMadeArrays arrays(made);
        const LiteralGrid joint(made, start, /*placesWaiting=*/false);
        const LiteralGrid ordered(made, start, /*placesWaiting=*/true);
        ASSERT_TRUE(kernel.solve(arrays.grid(start, /*placesWaiting=*/false)));
        ASSERT_TRUE(std::ranges::equal(kernel.places(), joint.places())) << "seed " << seed;
        ASSERT_TRUE(kernel.solve(arrays.grid(start, /*placesWaiting=*/true)));
        ASSERT_TRUE(std::ranges::equal(kernel.places(), ordered.places())) << "seed " << seed;
        unreached += joint.beginsUnreached() ? 1 : 0;
        written += joint.places() == ordered.places() ? 0 : 1;
    }
    EXPECT_GT(unreached, 50);
    EXPECT_GT(written, 20);
}

TEST(FullGridKernel, WritesTheLeftmostWaitingNodeThatIsReachedInOrderedPlacement)
{
    // No path leads to the first component. The path begins at its node of site 0 and waits, as the second
    // one is pulled to the right: the node of site 1 is the first with a predecessor.
    HandMade made{.numSites = 9, .comps = {{.width = 0, .stitches = {1 << 24}}, {.lefts = {6}}}};
    made.comps[1].stitches = {-100};
    FullGridKernel kernel;
    EXPECT_EQ(LiteralGrid(made, ORDERED_UNREACHED).places(), (GridPlaces{{1, 0}, {6, 0}}));
    EXPECT_EQ(solved(kernel, made, ORDERED_UNREACHED), (GridPlaces{{1, 0}, {6, 0}}));
    made.comps[0].width = 3; // it sticks out up to the node of site 2
    EXPECT_EQ(LiteralGrid(made, ORDERED_UNREACHED).places(), (GridPlaces{{0, 0}, {6, 0}}));
    EXPECT_EQ(solved(kernel, made, ORDERED_UNREACHED), (GridPlaces{{0, 0}, {6, 0}}));
    made.comps[0].width = 7; // up to the last one: the path leads through its row, but to no site
    EXPECT_EQ(LiteralGrid(made, ORDERED_UNREACHED).places(), (GridPlaces{{GridPlace::NOWHERE, 0}, {6, 0}}));
    EXPECT_EQ(solved(kernel, made, ORDERED_UNREACHED), (GridPlaces{{GridPlace::NOWHERE, 0}, {6, 0}}));
}

TEST(FullGridKernel, FindsTheSameWhereLayersAreMadeAgain)
{
    int withLess = 0;
    int refused = 0;
    for (uint32_t seed = 1; seed <= 400 && !HasFailure(); ++seed) {
        const HandMade made = seed % 2 == 0 ? randomHandMade(seed) : strangeHandMade(seed);
        const GridPlaces want = LiteralGrid(made, INFINITE_COST).places();
        for (const int64_t most : {100, 150, 200, 300, 500, 900}) {
            FullGridKernel kernel(bestProfileOps(), most);
            const auto places = solved(kernel, made);
            refused += places.has_value() ? 0 : 1;
            if (places.has_value()) {
                ASSERT_EQ(*places, want) << "seed " << seed << " entries " << most;
                const auto profiles = static_cast<int64_t>(made.comps.size()); // one each at least
                withLess += profiles * (made.numSites + 1) > most ? 1 : 0;
            }
        }
    }
    EXPECT_GT(withLess, 20);
    EXPECT_GT(refused, 100);
}

struct AnyCase {
    const char* name;
    HandMade made;
};

void PrintTo(const AnyCase& row, std::ostream* out)
{
    *out << row.name;
}

class FullGridKernelTakes : public testing::TestWithParam<AnyCase> {};

TEST_P(FullGridKernelTakes, AndFindsTheGridsPath)
{
    for (const int32_t start : {INFINITE_COST, ORDERED_UNREACHED, vireloce::UNREACHABLE, 5, 0, -7}) {
        FullGridKernel kernel;
        EXPECT_EQ(solved(kernel, GetParam().made, start), LiteralGrid(GetParam().made, start).places())
            << "start value " << start;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FullGridKernelTakes,
    testing::Values(
        AnyCase{"NoSites", {.numSites = 0, .comps = {{}, {.width = 0, .stitches = {0, 0}}, {.width = 0}}}},
        AnyCase{"NoSolutionOfTheFirst", {.comps = {{.stitches = {}}, {}, {.stitches = {-400}}}}},
        AnyCase{"NoSolutionInTheMiddle", {.comps = {{}, {.stitches = {}}, {.stitches = {-400}}, {}}}},
        AnyCase{"NoSolutionAtAll", {.comps = {{.stitches = {}}, {.stitches = {}}}}},
        AnyCase{"NegativeStitches", {.comps = {{.stitches = {0, -1}}, {.stitches = {-50, -50}}}}},
        AnyCase{"StitchesThatWrapAround",
                {.comps = {{.stitches = {LARGEST, 1}},
                           {.stitches = {LARGEST, -5}},
                           {.stitches = {LARGEST, -LARGEST}}}}},
        AnyCase{"NegativeWeight",
                {.weight = -1.4F, .comps = {{.lefts = {9}, .rights = {2}}, {.lefts = {9, 9}}}}},
        AnyCase{"WeightThatIsNoNumber", {.weight = std::nanf(""), .comps = {{.lefts = {9}}, {}}}},
        AnyCase{"InfiniteWeight", {.weight = INF, .comps = {{.lefts = {9}, .rights = {9}}, {.rights = {0}}}}},
        AnyCase{"NegativeInfiniteWeight", {.weight = -INF, .comps = {{.lefts = {9}}, {.rights = {0}}}}},
        AnyCase{"TermsOfMoreThan32Bits", {.weight = 1e9F, .comps = {{.lefts = Ints(5, 9)}, {.rights = {1}}}}},
        AnyCase{"GapsFartherApartThanThePad",
                {.numSites = 60,
                 .comps = {{.stitches = {0, 3}},
                           {.stitches = {0, 0}, .gaps = {{1, 40}, {30, 0}}},
                           {.gaps = {{50}, {2}}}}}},
        AnyCase{"AGapOfMoreThanTheSegment", {.comps = {{}, {.stitches = {0, 0}, .gaps = {{LARGEST, 11}}}}}},
        AnyCase{"AComponentThatIsTooWide", {.comps = {{}, {.width = 11}, {.stitches = {-400}}}}},
        AnyCase{"AWidthOfMoreThan32BitsTogether", {.comps = {{}, {.width = LARGEST}, {.width = LARGEST}}}},
        AnyCase{
            "NothingThatIsReachedBehindALongGap",
            {.numSites = 5, .weight = -3.0F, .comps = {{}, {.gaps = {{9}}, .lefts = {5}}, {.lefts = {5}}}}}),
    [](const auto& row) { return row.param.name; });

} // namespace
