// SPDX-License-Identifier: BSD-3-Clause
// The kept colouring costs of pairs of cells against SegLegalizer::getEdgeCost_TPL().
#include <gtest/gtest.h>

#include <vector>

#include "app/parameters.h"
#include "legalizer/pairCosts.h"
#include "legalizer/randomDesign.h"
#include "legalizer/segLegalizer.h"
#include "support/extremes.h"

namespace {

using test::INF;
using test::LARGEST;
using test::Random;
using test::SMALLEST;
using vireloce::GapCache;
using vireloce::PairCostCache;
using vireloce::PairCosts;

TEST(PairCostCache, SaysWhatTheGraphsEdgesCost)
{
    for (uint32_t seed = 1; seed <= 400 && !HasFailure(); ++seed) {
        Random random(seed);
        test::TinyDesign tiny;
        SITE_WIDTH = random.oneOf<int>({1, 190, 191});
        WEIGHT_WRLENG = random.oneOf<float>({0.0F, 1.4F, 0.3F, -1.4F, 1e9F, -1e30F, INF, std::nanf("")});
        std::vector<Component*> comps;
        for (int i = random.pick(1, 3); i > 0; --i) {
            std::vector<int> stitches(static_cast<size_t>(random.pick(0, 4)));
            for (int& stitch : stitches) {
                stitch = random.oneOf<int>({0, 1, 2, 16777217, LARGEST, SMALLEST, -5, 1 << 30});
            }
            comps.push_back(tiny.addComponent(nullptr, tiny.addCell(1, stitches), 0));
        }
        for (auto& rows : tiny.design.lut.distTable) {
            for (auto& block : rows) {
                for (auto& row : block) {
                    for (int32_t& dist : row) {
                        dist = random.oneOf<int>({0, 0, 1, 190, 400, 1 << 20});
                    }
                }
            }
        }
        SegLegalizer solver(&tiny.legalizer, nullptr);
        GapCache gaps(tiny.design.lut, SITE_WIDTH);
        PairCostCache cache(tiny.design.lut, gaps, WEIGHT_WRLENG);
        for (int round = 0; round < 2; ++round) { // made, then kept
            for (Component* left : comps) {
                for (Component* right : comps) {
                    const PairCosts& pair = cache.between(left->cellIdx, right->cellIdx);
                    ASSERT_EQ(static_cast<size_t>(pair.numLeft), tiny.design.cellOf(*left).colors.size());
                    ASSERT_EQ(static_cast<size_t>(pair.numRight), tiny.design.cellOf(*right).colors.size());
                    for (int i = 0; i < pair.numLeft; ++i) {
                        for (int j = 0; j < pair.numRight; ++j) {
                            ASSERT_EQ(pair.costs[i * pair.numRight + j],
                                      solver.getEdgeCost_TPL(left, i, right, j))
                                << "seed " << seed << " solutions " << i << " " << j;
                        }
                    }
                }
            }
        }
    }
}

} // namespace
