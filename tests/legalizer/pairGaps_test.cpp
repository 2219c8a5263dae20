// SPDX-License-Identifier: BSD-3-Clause
// The kept gaps of pairs of cells against the design's table.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "app/parameters.h"
#include "legalizer/pairGaps.h"
#include "legalizer/randomDesign.h"

namespace {

using test::Random;
using vireloce::GapCache;
using vireloce::PairGaps;

/// Cells of 0 to 6 solutions and a table of a few distinct entries, some of which are the same in sites.
class AnyTable : public test::TinyDesign {
public:
    explicit AnyTable(uint32_t seed) : m_random(seed)
    {
        SITE_WIDTH = m_random.oneOf<int>({1, 7, 100, 189, 190, 191, 1000000});
        for (int i = m_random.pick(1, 5); i > 0; --i) {
            const auto solutions = static_cast<size_t>(m_random.pick(0, 6));
            comps.push_back(addComponent(nullptr, addCell(2, std::vector<int>(solutions)), 0));
        }
        const std::vector<int> entries = m_random.oneOf<std::vector<int>>(
            {{0}, {1}, {0, 1, 2, 3}, {0, 189, 190, 191, 380, 381}, {5, 16777217, 2147483647}, {0, -1, -400}});
        for (auto& rows : design.lut.distTable) {
            for (auto& block : rows) {
                for (auto& row : block) {
                    std::generate(row.begin(), row.end(), [&] { return m_random.oneOf(entries); });
                }
            }
        }
    }

    std::vector<Component*> comps; ///< one of each cell

private:
    Random m_random;
};

/// Calls check(left, right, gaps) for every pair of cells of many tables.
template <class Check>
void onPairs(Check check)
{
    for (uint32_t seed = 1; seed <= 300 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("table of seed " + std::to_string(seed));
        AnyTable table(seed);
        GapCache cache(table.design.lut, SITE_WIDTH);
        for (const Component* left : table.comps) {
            for (const Component* right : table.comps) {
                check(table.design, *left, *right, cache.between(left->cellIdx, right->cellIdx));
            }
        }
    }
}

int32_t solutionsOf(const Design& design, const Component& comp)
{
    return static_cast<int32_t>(design.cellOf(comp).colors.size());
}

TEST(GapCache, SaysWhatTheDesignSaysOfEveryPairOfSolutions)
{
    onPairs([](const Design& design, const Component& left, const Component& right, const PairGaps& pair) {
        for (int32_t i = 0; i < solutionsOf(design, left); ++i) {
            for (int32_t j = 0; j < solutionsOf(design, right); ++j) {
                EXPECT_EQ(pair.between(i, j), design.safeSites(left, i, right, j)) << i << " " << j;
            }
        }
    });
}

TEST(GapCache, SharesAClassExactlyWhereAllLeftSolutionsNeedTheSameGaps)
{
    onPairs([](const Design& design, const Component& left, const Component& right, const PairGaps& pair) {
        for (int32_t j = 0; j < solutionsOf(design, right); ++j) {
            for (int32_t k = 0; k < j; ++k) {
                bool alike = true;
                for (int32_t i = 0; i < solutionsOf(design, left); ++i) {
                    alike =
                        alike && design.safeSites(left, i, right, j) == design.safeSites(left, i, right, k);
                }
                EXPECT_EQ(pair.classOf[j] == pair.classOf[k], alike) << j << " " << k;
            }
        }
    });
}

TEST(GapCache, NumbersItsClassesFromZeroOnWithoutOmission)
{
    onPairs([](const Design& design, const Component&, const Component& right, const PairGaps& pair) {
        std::vector<bool> used(static_cast<size_t>(pair.numClasses), false);
        for (int32_t j = 0; j < solutionsOf(design, right); ++j) {
            ASSERT_GE(pair.classOf[j], 0);
            ASSERT_LT(pair.classOf[j], pair.numClasses);
            used[static_cast<size_t>(pair.classOf[j])] = true;
        }
        EXPECT_EQ(std::count(used.begin(), used.end(), false), 0);
    });
}

TEST(GapCache, KnowsTheLeastAndTheMostGap)
{
    onPairs([](const Design& design, const Component& left, const Component& right, const PairGaps& pair) {
        int32_t least = std::numeric_limits<int32_t>::max();
        int32_t most = std::numeric_limits<int32_t>::min();
        for (int32_t i = 0; i < solutionsOf(design, left); ++i) {
            for (int32_t j = 0; j < solutionsOf(design, right); ++j) {
                least = std::min(least, design.safeSites(left, i, right, j));
                most = std::max(most, design.safeSites(left, i, right, j));
            }
        }
        EXPECT_EQ(pair.least, least);
        EXPECT_EQ(pair.most, most);
    });
}

TEST(GapCache, TakesEntriesOfOneSiteCountForTheSame)
{
    test::TinyDesign tiny;
    const int cell = tiny.addCell(2, {0, 0, 0, 0});
    for (int i = 0; i < 4; ++i) {
        tiny.setDist(cell, cell, i, 0, 1);
        tiny.setDist(cell, cell, i, 1, SITE_WIDTH);
        tiny.setDist(cell, cell, i, 2, SITE_WIDTH + 1);
    }
    GapCache cache(tiny.design.lut, SITE_WIDTH);
    const PairGaps& pair = cache.between(cell, cell);
    EXPECT_EQ(pair.numClasses, 3);
    EXPECT_EQ(pair.classOf[0], pair.classOf[1]);
    EXPECT_EQ(pair.between(3, 1), 1);
    EXPECT_EQ(pair.between(3, 2), 2);
    EXPECT_EQ(pair.between(3, 3), 0);
}

TEST(GapCache, TellsThePairFromItsReverse)
{
    test::TinyDesign tiny;
    const int a = tiny.addCell(2, {0});
    const int b = tiny.addCell(2, {0, 0});
    tiny.setDist(a, b, 0, 1, SITE_WIDTH);
    tiny.setDist(b, a, 0, 0, 2 * SITE_WIDTH);
    GapCache cache(tiny.design.lut, SITE_WIDTH);
    EXPECT_EQ(cache.between(a, b).between(0, 1), 1);
    EXPECT_EQ(cache.between(b, a).between(0, 0), 2);
    EXPECT_EQ(cache.between(b, a).between(1, 0), 0);
}

TEST(GapCache, KeepsAPairWhereItIsWhileOthersAreMade)
{
    AnyTable table(5);
    GapCache cache(table.design.lut, SITE_WIDTH);
    const PairGaps* first = &cache.between(0, 0);
    const int32_t* gaps = first->gaps;
    for (int round = 0; round < 2; ++round) {
        for (const Component* left : table.comps) {
            for (const Component* right : table.comps) {
                cache.between(left->cellIdx, right->cellIdx);
            }
        }
    }
    EXPECT_EQ(&cache.between(0, 0), first);
    EXPECT_EQ(first->gaps, gaps);
}

} // namespace
