// SPDX-License-Identifier: BSD-3-Clause
// What sites cost, profile by profile and with every instruction set, against sums of single terms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

#include "legalizer/everyProfileOps.h"
#include "legalizer/handMade.h"
#include "legalizer/siteCosts.h"
#include "support/extremes.h"

namespace {

using test::HandMade;
using test::HandMadeArrays;
using test::HandMadeComp;
using test::Ints;
using test::LARGEST;
using test::Random;
using test::SMALLEST;
using vireloce::FAR_AWAY;
using vireloce::hasSmallCosts;
using vireloce::siteCost;
using vireloce::SiteCosts;

const std::vector<float> AWKWARD_WEIGHTS{1.05F, 0.65F,  1.3F,  2.1F,     0.999999F, 0.1F,
                                         1.4F,  10.07F, 33.3F, 12345.6F, 0.0F,      0.123457F};

/// One component with many nets on either side.
HandMade anyComponent(uint32_t seed, float weight)
{
    Random random(seed);
    HandMade made{.numSites = random.pick(1, 150), .weight = weight, .comps = {{}}};
    HandMadeComp& comp = made.comps.front();
    comp.width = std::min(random.pick(0, 6), made.numSites);
    comp.stitches.resize(static_cast<size_t>(random.pick(1, 6)));
    const Ints numbers = random.oneOf<Ints>({{0, 1}, {0, 1, 2, 3}, {5, 700, 70000}, {0, 1 << 24}});
    std::generate(comp.stitches.begin(), comp.stitches.end(), [&] { return random.oneOf(numbers); });
    addRandomEnds(made, random, random.oneOf<int>({0, 1, 3, 20}));
    if (random.pick(0, 4) == 0) { // by rounding, an end may lie behind the segment
        comp.lefts.push_back(made.numSites + 1);
        comp.rights.push_back(made.numSites + 1);
    }
    return made;
}

class EverySiteCosts : public test::OpsTest {};

TEST_P(EverySiteCosts, OfSharedProfilesAndStitchesAreTheSumsOfSingleTerms)
{
    SiteCosts costs(*GetParam());
    int shared = 0;
    int several = 0;
    for (const float weight : AWKWARD_WEIGHTS) {
        for (uint32_t seed = 1; seed <= 120; ++seed) {
            const HandMade made = anyComponent(seed, weight);
            const HandMadeArrays arrays(made, /*shareClasses=*/true, /*knowsFarthest=*/seed % 2 == 0);
            const Ints& stitches = made.comps[0].stitches;
            const int32_t first = static_cast<int32_t>(seed) % (made.numSites - made.comps[0].width + 1);
            const int32_t count = made.numSites - made.comps[0].width + 1 - first;
            const int32_t most = *std::max_element(stitches.begin(), stitches.end());
            costs.makeShared(arrays.segment, arrays.terms, 0, stitches, most, first, count);
            for (size_t j = 0; j < stitches.size(); ++j) {
                ASSERT_LT(costs.profileOf(j), costs.numProfiles());
                const int32_t* const profile = costs.profile(costs.profileOf(j));
                for (int32_t k = 0; k < count; ++k) {
                    ASSERT_EQ(profile[k] + stitches[j], made.cost(0, first + k, j))
                        << "weight " << weight << " seed " << seed << " solution " << j << " site "
                        << first + k;
                }
            }
            const std::set<int32_t> numbers(stitches.begin(), stitches.end());
            std::set<int32_t> used;
            for (size_t j = 0; j < stitches.size(); ++j) {
                used.insert(costs.profileOf(j));
            }
            shared += used.size() < numbers.size() ? 1 : 0;
            several += used.size() > 1 ? 1 : 0;
        }
    }
    EXPECT_GT(shared, 100);
    EXPECT_GT(several, 20);
}

TEST_P(EverySiteCosts, OfWholeProfilesAreThoseOfTheSitesForAnyNumbers)
{
    SiteCosts costs(*GetParam());
    for (const float weight : {1.05F, -2.1F, 1e9F, -3e38F, std::nanf(""), test::INF}) {
        for (uint32_t seed = 1; seed <= 60; ++seed) {
            HandMade made = anyComponent(seed, weight);
            Random random(seed);
            for (int32_t& stitch : made.comps[0].stitches) {
                stitch = random.oneOf<int>({0, 1, -1, LARGEST, SMALLEST, 1 << 24});
            }
            const HandMadeArrays arrays(made);
            const Ints& stitches = made.comps[0].stitches;
            const int32_t first = random.pick(-20, 20); // sites outside of the segment, too
            const int32_t count = random.pick(1, 100);
            costs.makeWhole(arrays.segment, weight, 0, stitches, first, count);
            for (size_t j = 0; j < stitches.size(); ++j) {
                for (int32_t k = 0; k < count; ++k) {
                    ASSERT_EQ(costs.profile(costs.profileOf(j))[k], made.cost(0, first + k, j))
                        << "weight " << weight << " seed " << seed << " site " << first + k;
                }
                for (size_t i = 0; i < j; ++i) {
                    ASSERT_EQ(costs.profileOf(i) == costs.profileOf(j), stitches[i] == stitches[j]);
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(SiteCosts, EverySiteCosts, test::everyOps(), test::nameOfOps);

TEST(SiteCost, AddsTheRightEndsBeforeTheLeftEnds)
{
    // 60 sites at 1.05 add 62 to 0, but 63 to 2.
    const HandMade made{.numSites = 100, .weight = 1.05F, .comps = {{.lefts = {62}, .rights = {0}}}};
    const HandMadeArrays arrays(made);
    EXPECT_EQ(siteCost(arrays.segment, made.weight, 0, 60, 0), 62 + 2);
    EXPECT_EQ(siteCost(arrays.segment, made.weight, 0, 60, 2), 65 + 2);
}

TEST(SiteCost, IsThatOfEverySiteForAnyNumbers)
{
    for (uint32_t seed = 1; seed <= 300 && !HasFailure(); ++seed) {
        const HandMade made = test::largeHandMade(seed);
        const HandMadeArrays arrays(made);
        for (size_t q = 0; q < made.comps.size(); ++q) {
            for (int32_t site = 0; site <= made.numSites; ++site) {
                EXPECT_EQ(siteCost(arrays.segment, made.weight, q, site, made.comps[q].stitches[0]),
                          made.cost(q, site, 0))
                    << "seed " << seed;
            }
        }
    }
}

TEST(SiteCosts, ShareAProfileOnlyWhereStitchesDoNotMoveTheRounding)
{
    // 60 sites at 1.05 add 62 to 0, but 63 to 2.
    const HandMade made{.numSites = 70, .weight = 1.05F, .comps = {{.stitches = {0, 2}, .lefts = {60}}}};
    const HandMadeArrays arrays(made);
    SiteCosts costs(vireloce::bestProfileOps());
    costs.makeShared(arrays.segment, arrays.terms, 0, made.comps[0].stitches, /*most=*/2, 0, 70);
    EXPECT_NE(costs.profileOf(0), costs.profileOf(1));
    costs.makeShared(arrays.segment, arrays.terms, 0, made.comps[0].stitches, /*most=*/2, 1,
                     69); // up to 59 sites
    EXPECT_EQ(costs.profileOf(0), costs.profileOf(1));
}

TEST(SiteCosts, HaveAFloorThatNoSiteIsBelow)
{
    SiteCosts costs(vireloce::bestProfileOps());
    int above = 0;
    for (const float weight : AWKWARD_WEIGHTS) {
        for (uint32_t seed = 1; seed <= 150; ++seed) {
            HandMade made = anyComponent(seed, weight);
            made.comps[0].stitches = {0, 1, 77};
            const HandMadeArrays arrays(made);
            const int32_t floor = costs.floorOf(arrays.segment, weight, 0);
            EXPECT_GE(floor, 0);
            above += floor > 0 ? 1 : 0;
            for (int32_t site = 0; site + made.comps[0].width <= made.numSites; ++site) {
                for (size_t j = 0; j < made.comps[0].stitches.size(); ++j) {
                    ASSERT_GE(made.cost(0, site, j) - made.comps[0].stitches[j], floor)
                        << "weight " << weight << " seed " << seed << " site " << site;
                }
            }
        }
    }
    EXPECT_GT(above, 200);
}

TEST(SiteCosts, HaveAFloorNearTheLeastCost)
{
    const HandMade made{
        .numSites = 1000, .weight = 1.4F, .comps = {{.lefts = {600, 700}, .rights = {100, 200}}}};
    const HandMadeArrays arrays(made);
    SiteCosts costs(vireloce::bestProfileOps());
    const int32_t least = made.cost(0, 400, 0); // anywhere from 200 to 600
    EXPECT_LE(costs.floorOf(arrays.segment, 1.4F, 0), least);
    EXPECT_GE(costs.floorOf(arrays.segment, 1.4F, 0), least - 5);
}

/// By every site: whether a component's costs, and the sums on the way to them, stay within the bounds.
bool hasSmallCostsBySites(const HandMade& made, int32_t stitches)
{
    for (int32_t site = 0; site + made.comps[0].width <= made.numSites; ++site) {
        HandMade part = made;
        part.comps[0].stitches = {stitches};
        part.comps[0].lefts.clear();
        part.comps[0].rights.clear();
        const auto isSmall = [&] { return 0 <= part.cost(0, site, 0) && part.cost(0, site, 0) < FAR_AWAY; };
        bool small = isSmall();
        for (const int32_t right : made.comps[0].rights) {
            part.comps[0].rights.push_back(right);
            small = small && isSmall();
        }
        for (const int32_t left : made.comps[0].lefts) {
            part.comps[0].lefts.push_back(left);
            small = small && isSmall();
        }
        if (!small) {
            return false;
        }
    }
    return true;
}

TEST(HasSmallCosts, NeverSaysSoWhereASumOnTheWayLeavesTheBounds)
{
    int large = 0;
    int small = 0;
    for (const float weight : {1.4F, 1e4F, 1e5F, 151830.0F, 1e6F, 3e6F, 1e7F, 1e9F, 3e38F}) {
        for (uint32_t seed = 1; seed <= 120; ++seed) {
            HandMade made = anyComponent(seed, weight);
            made.numSites = std::min(made.numSites, 30);
            made.comps[0].width = std::min(made.comps[0].width, made.numSites);
            const int32_t stitches = Random(seed).oneOf<int>({0, 7, 1 << 20, (1 << 28) - 1, 1 << 28, -1});
            const HandMadeArrays arrays(made);
            const bool said = hasSmallCosts(arrays.segment, weight, 0, stitches);
            const bool is = hasSmallCostsBySites(made, stitches);
            ASSERT_TRUE(is || !said) << "weight " << weight << " seed " << seed;
            (is ? small : large) += 1;
        }
    }
    EXPECT_GT(large, 100);
    EXPECT_GT(small, 100);
}

TEST(HasSmallCosts, SaysSoOfOrdinaryComponents)
{
    for (uint32_t seed = 1; seed <= 300; ++seed) {
        const HandMade made = test::randomHandMade(seed);
        const HandMadeArrays arrays(made);
        for (size_t q = 0; q < made.comps.size(); ++q) {
            EXPECT_TRUE(hasSmallCosts(arrays.segment, made.weight, q, 300)) << "seed " << seed;
        }
    }
}

} // namespace
