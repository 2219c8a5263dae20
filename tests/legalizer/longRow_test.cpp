// SPDX-License-Identifier: BSD-3-Clause
// Rows so long that the end costs of the grid wrap around. The grid itself would be too large, so both
// kernels are compared with what follows by hand where components have no nets.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "legalizer/fullGridKernel.h"
#include "legalizer/gridKernel.h"
#include "legalizer/literalKernels.h"

namespace {

using test::GridPlaces;
using test::HandMade;
using test::HandMadeArrays;
using test::HandMadeComp;
using test::Random;
using test::wrapped;
using vireloce::FullGridKernel;
using vireloce::GridKernel;
using vireloce::INFINITE_COST;

/// A cost modulo 2^32.
int32_t low32(int64_t cost)
{
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(cost)));
}

/// What the grid comes to without nets and gaps and with one solution each. All that fit together are
/// reached, each as far left as possible.
struct ByHand {
    GridPlaces places;
    bool beginsUnreached = false; ///< places are meaningless
};

ByHand byHand(const HandMade& made)
{
    const size_t n = made.comps.size();
    GridPlaces packed;
    int32_t best = INFINITE_COST;
    size_t placed = 0; // components on the best path
    bool isUnreached = false;
    int64_t end = 0;
    int64_t value = 0;
    for (size_t q = 0; q < n; ++q) {
        end += made.comps[q].width;
        value += made.comps[q].stitches[0];
        const bool isReached = end <= made.numSites && value < INFINITE_COST;
        const int32_t price = low32(int64_t{10} * made.numSites * static_cast<int64_t>(n - q));
        const int32_t cost = wrapped(isReached ? static_cast<int32_t>(value) : INFINITE_COST, price);
        packed.push_back(
            {static_cast<int32_t>(std::min(end, int64_t{made.numSites})) - made.comps[q].width, 0});
        if (cost <= best) {
            best = cost;
            placed = q + 1;
            isUnreached = !isReached;
        }
    }
    std::fill(packed.begin() + static_cast<ptrdiff_t>(placed), packed.end(), vireloce::GridPlace{});
    return {packed, isUnreached};
}

/// Components of few distinct widths and stitches, as many as make end costs wrap around.
HandMade anyLongRow(uint32_t seed, int32_t numSites, size_t comps)
{
    Random random(seed);
    HandMade made{.numSites = numSites, .comps = std::vector<HandMadeComp>(comps)};
    const int32_t saved = 10 * numSites; // by ending one component later
    const test::Ints numbers = random.oneOf<test::Ints>(
        {{0}, {0, 0, 0, 1 << 24}, {saved, saved - 1, saved + 1}, {saved, 2 * saved, 0}, {0, (1 << 28) - 1}});
    const int32_t width = random.oneOf<int>({1, 3, numSites / 100, numSites / 300});
    for (HandMadeComp& comp : made.comps) {
        comp.width = random.oneOf<int>({width, width, 1, 0});
        comp.stitches = {random.oneOf(numbers)};
    }
    return made;
}

TEST(LongRow, EndCostsWrapAroundInTheGridKernel)
{
    GridKernel kernel;
    int taken = 0;
    int endsEarly = 0;
    int refused = 0;
    for (uint32_t seed = 1; seed <= 70 && !HasFailure(); ++seed) {
        Random random(seed + 500);
        const HandMade made =
            anyLongRow(seed, (1 << 20) + random.pick(-9, 9),
                       random.oneOf<size_t>({103, 110, 204, 205, 206, 300, 409, 410, 411, 420}));
        const HandMadeArrays arrays(made);
        const ByHand want = byHand(made);
        if (!kernel.solve(arrays.grid(INFINITE_COST))) {
            ++refused;
            continue;
        }
        ASSERT_FALSE(want.beginsUnreached) << "seed " << seed;
        ASSERT_TRUE(std::ranges::equal(kernel.places(), want.places)) << "seed " << seed;
        ++taken;
        endsEarly += want.places.back() == vireloce::GridPlace{} ? 1 : 0;
    }
    EXPECT_GT(taken, 15);
    EXPECT_GT(endsEarly, 8);
    EXPECT_GT(refused, 1);
}

TEST(LongRow, EndCostsWrapAroundInTheKernelForAnyNumbers)
{
    // The end cost of the first is the only one above 2^31: the path that ends with it is the cheapest of
    // all.
    HandMade made{.numSites = 1000, .comps = std::vector<HandMadeComp>(214'749)};
    for (HandMadeComp& comp : made.comps) {
        comp.width = 0; // so that all fit
        comp.stitches = {1};
    }
    const HandMadeArrays arrays(made);
    const ByHand want = byHand(made);
    ASSERT_FALSE(want.beginsUnreached);
    ASSERT_EQ(std::count(want.places.begin(), want.places.end(), vireloce::GridPlace{}), 214'748);
    FullGridKernel kernel(vireloce::bestProfileOps(), /*mostEntries=*/1 << 24);
    ASSERT_TRUE(kernel.solve(arrays.grid(INFINITE_COST)));
    EXPECT_TRUE(std::ranges::equal(kernel.places(), want.places));
}

TEST(LongRow, BothKernelsAgreeWhereNetsPullAndEndCostsWrapAround)
{
    Random random(1);
    HandMade made{.numSites = 1 << 20, .comps = std::vector<HandMadeComp>(104)};
    for (HandMadeComp& comp : made.comps) {
        comp.width = 100;
        comp.stitches = {random.oneOf<int>({0, 10 << 20})};
    }
    addRandomEnds(made, random, 2, made.numSites / 2);
    const HandMadeArrays arrays(made);
    const vireloce::GridProblem problem = arrays.grid(INFINITE_COST);
    GridKernel kernel;
    FullGridKernel full(vireloce::bestProfileOps(), /*mostEntries=*/1 << 25);
    ASSERT_TRUE(kernel.solve(problem));
    ASSERT_TRUE(full.solve(problem));
    EXPECT_TRUE(std::ranges::equal(kernel.places(), full.places()));
}

} // namespace
