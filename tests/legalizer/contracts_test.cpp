// SPDX-License-Identifier: BSD-3-Clause
// What breaks a contract stops at once where assertions are on.
#include <gtest/gtest.h>

#include <vector>

#include "legalizer/cellPairCache.h"
#include "legalizer/fullGridKernel.h"
#include "legalizer/fullShiftKernel.h"
#include "legalizer/handMade.h"
#include "legalizer/layerStore.h"
#include "legalizer/siteCosts.h"
#include "legalizer/slice.h"

namespace {

using test::HandMade;
using test::HandMadeArrays;

class Contracts : public testing::Test {
protected:
    void SetUp() override
    {
#ifdef NDEBUG
        GTEST_SKIP() << "assertions are off in this build";
#endif
        testing::FLAGS_gtest_death_test_style = "threadsafe";
    }
};

using ContractsDeathTest = Contracts;

TEST_F(ContractsDeathTest, ASliceBehindTheLastOwnerStops)
{
    const std::vector<int32_t> all{1, 2};
    const std::vector<int32_t> begins{0, 1, 2};
    EXPECT_EQ(vireloce::sliceOf(all, begins, 1).size(), 1U);
    EXPECT_DEATH(vireloce::sliceOf(all, begins, 2), "owner");
}

TEST_F(ContractsDeathTest, ALayerThatIsNotBehindTheOthersStops)
{
    vireloce::LayerStore store(10);
    ASSERT_NE(store.add(3, 1), nullptr);
    EXPECT_DEATH(store.add(3, 1), "layer");
}

TEST_F(ContractsDeathTest, ARestartBehindALayerThatIsNotThereStops)
{
    vireloce::LayerStore store(10);
    ASSERT_NE(store.add(3, 1), nullptr);
    EXPECT_DEATH(store.restartBehind(2), "layer");
}

TEST_F(ContractsDeathTest, ACellThatTheLibraryDoesNotHaveStops)
{
    vireloce::CellPairCache<int> cache(2);
    static const int VALUE = 7;
    EXPECT_EQ(*cache.between(1, 1, [] { return &VALUE; }), 7);
    EXPECT_DEATH(cache.between(0, 2, [] { return &VALUE; }), "numCells");
    EXPECT_DEATH(cache.between(-1, 0, [] { return &VALUE; }), "numCells");
}

TEST_F(ContractsDeathTest, SitesBehindTheSegmentStop)
{
    const HandMade made{.numSites = 10, .comps = {{.width = 3}}};
    const HandMadeArrays arrays(made);
    vireloce::SiteCosts costs(vireloce::bestProfileOps());
    costs.makeShared(arrays.segment, arrays.terms, 0, arrays.stitches[0], 0, 0, 8);
    EXPECT_DEATH(costs.makeShared(arrays.segment, arrays.terms, 0, arrays.stitches[0], 0, 0, 9), "numSites");
    EXPECT_DEATH(costs.makeShared(arrays.segment, arrays.terms, 0, arrays.stitches[0], 0, -1, 3),
                 "firstSite");
}

TEST_F(ContractsDeathTest, ANegativeGapStopsInTheGrid)
{
    const HandMade made{.comps = {{}, {.gaps = {{-1}}}}};
    const HandMadeArrays arrays(made);
    vireloce::FullGridKernel kernel;
    EXPECT_DEATH(kernel.solve(arrays.grid(vireloce::INFINITE_COST)), "gap");
}

TEST_F(ContractsDeathTest, ASegmentOfLessThanNoSitesStopsInTheGrid)
{
    const HandMade made{.numSites = -1, .comps = {{}}};
    const HandMadeArrays arrays(made);
    vireloce::FullGridKernel kernel;
    EXPECT_DEATH(kernel.solve(arrays.grid(vireloce::INFINITE_COST)), "numSites");
}

TEST_F(ContractsDeathTest, ASegmentWithoutComponentsStops)
{
    const HandMade made;
    const HandMadeArrays arrays(made);
    vireloce::FullGridKernel grid;
    EXPECT_DEATH(grid.solve(arrays.grid(vireloce::INFINITE_COST)), "size");
    vireloce::FullShiftKernel shifts;
    EXPECT_DEATH(shifts.solve(arrays.shifts({})), "n > 0");
}

} // namespace
