// SPDX-License-Identifier: BSD-3-Clause
// Fixed ranges, boundary nets, costs and positions of the segment solver.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "legalizer/legalizer.h"
#include "legalizer/randomDesign.h"
#include "legalizer/segLegalizer.h"
#include "support/extremes.h"
#include "support/tinyDesign.h"

namespace {

using test::LARGEST;
using test::Random;
using test::RandomDesign;
using test::reportOf;
using test::SMALLEST;
using test::TinyDesign;
using Ids = std::vector<int32_t>;
using Range = std::pair<int32_t, int32_t>;

constexpr int INFEASIBLE = 0x3fffffff;

/// A segment of 10 sites of 190 from 1000 to 2900 in the row at 1900, with its solver.
class ModelTest : public testing::Test {
protected:
    Component* addAt(int x, int y)
    {
        Component* comp = tiny.addComponent(nullptr, cell, 0);
        comp->x = x;
        comp->y = y;
        return comp;
    }

    TinyDesign tiny;
    Segment* segment = tiny.addSegment(1000, 1900, 10);
    SegLegalizer solver{&tiny.legalizer, segment};
    const int cell = tiny.addCell(3, {0});
};

// --- fixed ranges

struct RangeCase {
    const char* name;
    std::vector<int> pins; ///< x, DBU
    Range range;
};

void PrintTo(const RangeCase& row, std::ostream* out)
{
    *out << row.name;
}

class FixedRangeOfPins : public ModelTest, public testing::WithParamInterface<RangeCase> {};

TEST_P(FixedRangeOfPins, IsInSitesOfTheSegmentClampedToIt)
{
    Component* inside = tiny.addComponent(segment, cell, 2);
    std::vector<Pin*> pins;
    for (const int x : GetParam().pins) {
        pins.push_back(tiny.addPin(x, /*y=*/static_cast<int>(pins.size()) * 777));
    }
    tiny.addNet({inside}, pins);
    solver.initFLRs();
    EXPECT_EQ(solver.netFLRs, std::vector<Range>{GetParam().range});
}

INSTANTIATE_TEST_SUITE_P(
    Model, FixedRangeOfPins,
    testing::Values(RangeCase{"NetOfTheSegmentAloneHasNone", {}, {-1, -1}},
                    RangeCase{"AtTheLeftEndIsSiteZero", {1000}, {0, 0}},
                    RangeCase{"LeftOfTheSegmentIsSiteZero", {999}, {0, 0}},
                    RangeCase{"FarLeftIsSiteZero", {-2000000}, {0, 0}},
                    RangeCase{"InsideIsRoundedUp", {1001}, {1, 1}},
                    RangeCase{"OnASiteIsThatSite", {1190}, {1, 1}},
                    RangeCase{"JustRightOfASiteIsTheNext", {1191}, {2, 2}},
                    RangeCase{"AtTheRightEndIsTheNumberOfSites", {2900}, {10, 10}},
                    RangeCase{"RightOfTheSegmentIsTheNumberOfSites", {2901}, {10, 10}},
                    RangeCase{"FarRightIsTheNumberOfSites", {2000000}, {10, 10}},
                    RangeCase{"SpansAllMembersOutside", {1400, 1200, 1900}, {2, 5}},
                    RangeCase{"AroundTheSegmentIsTheWholeOfIt", {-5, 5000}, {0, 10}},
                    RangeCase{"AtTheLargestCoordinateAloneCountsAsNone", {LARGEST}, {-1, -1}},
                    RangeCase{"AtTheLargestCoordinateBesideOthersCounts", {LARGEST, 1000}, {0, 10}}),
    [](const auto& row) { return row.param.name; });

class FixedRange : public ModelTest {
protected:
    /// Fixed range of a net of one component.
    Range rangeOf(Component* comp)
    {
        tiny.design.nets.clear();
        Net net;
        net.components = {comp};
        tiny.design.nets = {&net};
        solver.initFLRs();
        tiny.design.nets.clear();
        EXPECT_EQ(solver.netFLRs.size(), 1U);
        return solver.netFLRs.at(0);
    }
};

TEST_F(FixedRange, MemberLeftOfTheSegmentGivesLeftEndZero)
{
    EXPECT_EQ(rangeOf(addAt(-5000, 1900)), Range(0, 0));
}

TEST_F(FixedRange, MemberRightOfTheSegmentGivesTheNumberOfSites)
{
    EXPECT_EQ(rangeOf(addAt(5000, 1900)), Range(10, 10));
}

TEST_F(FixedRange, ComponentOutsideCountsWithItsCentre)
{
    EXPECT_EQ(rangeOf(addAt(1000, 0)), Range(2, 2)); // 285 of the way: half of 3 sites
    tiny.design.lut.cells[0]->width = 381;           // 190 are half of it, not 190.5
    EXPECT_EQ(rangeOf(addAt(1000, 0)), Range(1, 1));
    EXPECT_EQ(rangeOf(addAt(1001, 0)), Range(2, 2));
    EXPECT_EQ(rangeOf(addAt(1000 - 191, 0)), Range(0, 0));
}

TEST_F(FixedRange, ComponentIsInsideByItsRowAndItsLeftEdge)
{
    EXPECT_EQ(rangeOf(addAt(1000, 1900)), Range(-1, -1));
    EXPECT_EQ(rangeOf(addAt(2899, 1900)), Range(-1, -1)) << "although most of it is right of the segment";
    EXPECT_EQ(rangeOf(addAt(2900, 1900)), Range(10, 10));
    EXPECT_EQ(rangeOf(addAt(999, 1900)), Range(2, 2)) << "although most of it is in the segment";
    EXPECT_EQ(rangeOf(addAt(1000, 1901)), Range(2, 2));
}

TEST_F(FixedRange, PositionDecidesNotTheListOfTheSegment)
{
    Component* listed = tiny.addComponent(segment, cell, 2);
    listed->y = 0;
    EXPECT_EQ(rangeOf(listed), Range(4, 4)); // 2 sites and a half, rounded up: it counts as outside
    Component* lost = addAt(1380, 1900);
    EXPECT_EQ(rangeOf(lost), Range(-1, -1));
}

TEST_F(FixedRange, IsRoundedToSinglePrecisionFirst)
{
    segment->numSites = 100000;
    tiny.addNet({}, {tiny.addPin(1000 + 16777381, 0)});
    solver.initFLRs();
    EXPECT_EQ(solver.netFLRs, std::vector<Range>{Range(88302, 88302)}); // in integers it would be 88303
}

TEST_F(FixedRange, AtTheRightEndOfAVastSegmentIsRoundedBeyondIt)
{
    segment->numSites = 176605; // 33554950 of width, 33554952 in single precision
    tiny.addNet({}, {tiny.addPin(1000 + 33554950, 0), tiny.addPin(1000 + 33554951, 0)});
    solver.initFLRs();
    EXPECT_EQ(solver.netFLRs, std::vector<Range>{Range(176606, 176605)});
}

TEST_F(FixedRange, EveryNetOfTheDesignHasOneAndOldOnesAreForgotten)
{
    solver.netFLRs = {{7, 7}, {8, 8}, {9, 9}, {9, 9}};
    tiny.addNet({addAt(-5000, 0)});
    tiny.addNet({});
    tiny.addNet({addAt(5000, 0)});
    solver.initFLRs();
    EXPECT_EQ(solver.netFLRs, (std::vector<Range>{{0, 0}, {-1, -1}, {10, 10}}));
}

TEST_F(FixedRange, OfASegmentWithoutSitesIsSiteZero)
{
    segment->numSites = 0;
    EXPECT_EQ(rangeOf(addAt(500, 0)), Range(0, 0));
    EXPECT_EQ(rangeOf(addAt(1000 - 285, 0)), Range(0, 0));
    EXPECT_EQ(rangeOf(addAt(5000, 0)), Range(0, 0));
}

/// The fixed range, from a list of what is outside.
Range directRange(const Design& design, const Segment& segment, const Net& net)
{
    std::vector<int> outside;
    const int left = segment.x;
    const int right = segment.x + segment.numSites * SITE_WIDTH;
    for (const Component* comp : net.components) {
        if (comp->y != segment.y || comp->x < left || comp->x >= right) {
            outside.push_back(comp->x + design.cellOf(*comp).width / 2);
        }
    }
    for (const Pin* pin : net.pins) {
        outside.push_back(pin->x);
    }
    if (outside.empty()) {
        return {-1, -1};
    }
    std::sort(outside.begin(), outside.end());
    const auto toSite = [&](int x) {
        return static_cast<int>(
            std::ceil((std::clamp(x, left, right) - left) / static_cast<double>(SITE_WIDTH)));
    };
    return {toSite(outside.front()), toSite(outside.back())};
}

/// The nets for which the component at an index is the first one of a list.
Ids directFirstNets(const std::vector<Component*>& comps, size_t index)
{
    Ids ids;
    for (const Net* net : comps[index]->nets) {
        const bool isBefore =
            std::any_of(comps.begin(), comps.begin() + static_cast<long>(index), [&](auto* comp) {
                return std::find(comp->nets.begin(), comp->nets.end(), net) != comp->nets.end();
            });
        if (!isBefore && std::find(ids.begin(), ids.end(), net->id) == ids.end()) {
            ids.push_back(net->id);
        }
    }
    return ids;
}

TEST(ModelOfRandomDesigns, FixedRangesAgreeWithADirectComputation)
{
    int inside = 0;
    int outside = 0;
    for (uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        for (Segment* segment : tiny.design.segments) {
            SegLegalizer solver(&tiny.legalizer, segment);
            solver.initFLRs();
            ASSERT_EQ(solver.netFLRs.size(), tiny.design.nets.size());
            for (const Net* net : tiny.design.nets) {
                const Range range = solver.netFLRs[static_cast<size_t>(net->id)];
                EXPECT_EQ(range, directRange(tiny.design, *segment, *net)) << net->id;
                (range.first < 0 ? inside : outside) += 1;
            }
        }
    }
    EXPECT_GT(inside, 100);
    EXPECT_GT(outside, 100);
}

TEST(ModelOfRandomDesigns, BoundaryNetsAgreeWithADirectComputation)
{
    int found = 0;
    for (uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        for (Segment* segment : tiny.design.segments) {
            SegLegalizer solver(&tiny.legalizer, segment);
            solver.initLRIDs();
            std::vector<Component*> comps(segment->components.begin(), segment->components.end());
            for (size_t i = 0; i < comps.size(); ++i) {
                EXPECT_EQ(comps[i]->leftIDs, directFirstNets(comps, i)) << i;
                found += static_cast<int>(comps[i]->leftIDs.size());
            }
            std::reverse(comps.begin(), comps.end());
            for (size_t i = 0; i < comps.size(); ++i) {
                EXPECT_EQ(comps[i]->rightIDs, directFirstNets(comps, i)) << i;
            }
        }
    }
    EXPECT_GT(found, 300);
}

// --- boundary nets

class BoundaryNets : public ModelTest {
protected:
    Component* a = tiny.addComponent(segment, cell, 0);
    Component* b = tiny.addComponent(segment, cell, 3);
    Component* c = tiny.addComponent(segment, cell, 6);
};

TEST_F(BoundaryNets, BelongToTheFirstAndTheLastComponentOfTheSegment)
{
    tiny.addNet({c, a, b});
    tiny.addNet({b, c});
    solver.initLRIDs();
    EXPECT_EQ(a->leftIDs, Ids{0});
    EXPECT_EQ(b->leftIDs, Ids{1});
    EXPECT_EQ(c->leftIDs, Ids{});
    EXPECT_EQ(a->rightIDs, Ids{});
    EXPECT_EQ(b->rightIDs, Ids{});
    EXPECT_EQ(c->rightIDs, (Ids{0, 1}));
}

TEST_F(BoundaryNets, ComponentThatIsFirstAndLastHasTheNetOnBothSides)
{
    tiny.addNet({b}, {tiny.addPin(0, 0)});
    solver.initLRIDs();
    EXPECT_EQ(b->leftIDs, Ids{0});
    EXPECT_EQ(b->rightIDs, Ids{0});
}

TEST_F(BoundaryNets, AreInTheOrderOfTheComponentsNetsEachOnce)
{
    Net* first = tiny.addNet({});
    Net* second = tiny.addNet({});
    a->nets = {second, first, second};
    solver.initLRIDs();
    EXPECT_EQ(a->leftIDs, (Ids{1, 0}));
    EXPECT_EQ(a->rightIDs, (Ids{1, 0}));
}

TEST_F(BoundaryNets, FollowTheListNotThePositions)
{
    tiny.addNet({a, c});
    a->siteX = 9;
    a->x = 9000;
    solver.initLRIDs();
    EXPECT_EQ(a->leftIDs, Ids{0});
    EXPECT_EQ(c->rightIDs, Ids{0});
}

TEST_F(BoundaryNets, OldOnesAreForgottenInTheSegmentAlone)
{
    Component* elsewhere = addAt(0, 0);
    for (Component* comp : {a, b, c, elsewhere}) {
        comp->leftIDs = {5};
        comp->rightIDs = {6};
    }
    solver.initLRIDs();
    for (const Component* comp : {a, b, c}) {
        EXPECT_TRUE(comp->leftIDs.empty());
        EXPECT_TRUE(comp->rightIDs.empty());
    }
    EXPECT_EQ(elsewhere->leftIDs, Ids{5});
    EXPECT_EQ(elsewhere->rightIDs, Ids{6});
}

TEST_F(BoundaryNets, DataForTheWirelengthAreRangesAndBoundaryNets)
{
    tiny.addNet({a, b}, {tiny.addPin(1380, 0)});
    solver.initDataHPWL();
    EXPECT_EQ(solver.netFLRs, std::vector<Range>{Range(2, 2)});
    EXPECT_EQ(a->leftIDs, Ids{0});
    EXPECT_EQ(b->rightIDs, Ids{0});
}

// --- cost of a component at a site

class EdgeCost : public ModelTest {
protected:
    /// A component of the segment with boundary nets of the given fixed ranges.
    void setRanges(const std::vector<Range>& left, const std::vector<Range>& right)
    {
        solver.netFLRs.clear();
        comp->leftIDs.clear();
        comp->rightIDs.clear();
        for (const Range& range : left) {
            comp->leftIDs.push_back(static_cast<int>(solver.netFLRs.size()));
            solver.netFLRs.push_back(range);
        }
        for (const Range& range : right) {
            comp->rightIDs.push_back(static_cast<int>(solver.netFLRs.size()));
            solver.netFLRs.push_back(range);
        }
    }

    int cost(int site, int colour = 0) { return solver.getEdgeCost(comp, site, colour); }

    Component* comp = tiny.addComponent(segment, tiny.addCell(3, {0, 5}), 0); // its centre is at site + 1
};

TEST_F(EdgeCost, StartsFromTheStitchesOfTheSolution)
{
    EXPECT_EQ(cost(4, 0), 0);
    EXPECT_EQ(cost(4, 1), 5);
}

TEST_F(EdgeCost, NetOfTheSegmentAloneAddsNothing)
{
    setRanges({{-1, -1}}, {{-1, -1}});
    EXPECT_EQ(cost(0), 0);
    EXPECT_EQ(cost(7), 0);
    solver.initDataHPWL();
    tiny.addNet({comp});
    solver.initDataHPWL();
    ASSERT_EQ(comp->leftIDs, Ids{0});
    EXPECT_EQ(cost(0), 0);
    EXPECT_EQ(cost(7), 0);
}

TEST_F(EdgeCost, CountsTheSitesRightOfTheRangeOfANetItEndsOnTheRight)
{
    WEIGHT_WRLENG = 1.0F;
    setRanges({}, {{0, 4}});
    EXPECT_EQ(cost(3), 0); // the centre is on the right end of the range
    EXPECT_EQ(cost(4), 1);
    EXPECT_EQ(cost(7), 4);
    EXPECT_EQ(cost(0), 0) << "the side where another component is outermost";
}

TEST_F(EdgeCost, CountsTheSitesLeftOfTheRangeOfANetItEndsOnTheLeft)
{
    WEIGHT_WRLENG = 1.0F;
    setRanges({{4, 10}}, {});
    EXPECT_EQ(cost(3), 0);
    EXPECT_EQ(cost(2), 1);
    EXPECT_EQ(cost(0), 3);
    EXPECT_EQ(cost(9), 0) << "the side where another component is outermost";
}

TEST_F(EdgeCost, TakesTheLeftEndOnTheLeftAndTheRightEndOnTheRight)
{
    WEIGHT_WRLENG = 1.0F;
    setRanges({{6, 8}}, {{2, 3}});
    EXPECT_EQ(cost(4), (5 - 3) + (6 - 5));
}

TEST_F(EdgeCost, HalfOfTheWidthIsAWholeNumberOfSites)
{
    WEIGHT_WRLENG = 1.0F;
    setRanges({}, {{0, 0}});
    for (const auto& [sites, half] : std::vector<Range>{{1, 0}, {2, 1}, {3, 1}, {4, 2}}) {
        tiny.design.lut.cells.back()->siteWidth = sites;
        EXPECT_EQ(cost(0), half) << sites;
    }
}

TEST_F(EdgeCost, IsTruncatedAfterEveryNet)
{
    WEIGHT_WRLENG = 1.4F;
    setRanges({}, {{0, 0}});
    EXPECT_EQ(cost(1), 2); // of 2.8
    setRanges({}, {{0, 0}, {0, 0}});
    EXPECT_EQ(cost(1), 4); // of 2 + 2.8; one truncation of 5.6 would give 5
    setRanges({{3, 9}}, {{0, 0}});
    EXPECT_EQ(cost(0), 1 + 2); // of 1.4, then of 1 + 2.8
}

TEST_F(EdgeCost, RightSidesAreAddedBeforeLeftSides)
{
    WEIGHT_WRLENG = -0.7F;
    tiny.design.lut.cells.back()->stitchNums = {1};
    setRanges({{3, 3}}, {{0, 0}}); // one site on the right, two on the left
    EXPECT_EQ(cost(0), -1);        // 0 of 1 - 0.7, then -1 of -1.4; the other way round it is 0 twice
}

TEST_F(EdgeCost, CostsAreRoundedToSinglePrecision)
{
    WEIGHT_WRLENG = 1.0F;
    tiny.design.lut.cells.back()->stitchNums = {16777216};
    setRanges({}, {{0, 0}, {0, 0}});
    EXPECT_EQ(cost(0), 16777216); // one site each: 16777217 is no float
    EXPECT_EQ(cost(1), 16777216 + 4);
}

TEST_F(EdgeCost, TruncatesNegativeSumsTowardZero)
{
    WEIGHT_WRLENG = -1.4F;
    setRanges({}, {{0, 0}});
    EXPECT_EQ(cost(1), -2);   // of -2.8
    EXPECT_EQ(cost(0, 1), 3); // of 5 - 1.4
}

TEST_F(EdgeCost, OutOfTheIntegerRangeOrNotANumberIsTheSmallestInteger)
{
    setRanges({}, {{0, 0}});
    for (const float weight :
         {1e10F, -1e10F, std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN()}) {
        SCOPED_TRACE(weight);
        WEIGHT_WRLENG = weight;
        EXPECT_EQ(cost(1), SMALLEST);
    }
    setRanges({}, {{0, 9}}); // no sites, but infinitely heavy ones
    WEIGHT_WRLENG = std::numeric_limits<float>::infinity();
    EXPECT_EQ(cost(1), SMALLEST);
    WEIGHT_WRLENG = 1e10F;
    EXPECT_EQ(cost(1), 0);
}

/// The conversion of a float to an integer by the machine: toward zero, the smallest integer if it cannot be.
int toMachineInt(float value)
{
    const auto wide = static_cast<double>(value);
    if (std::isnan(wide) || wide >= 2147483648.0 || wide < -2147483648.0) {
        return SMALLEST;
    }
    return static_cast<int>(std::trunc(wide));
}

/// A cost plus a weighted count of sites.
int directSum(int cost, int sites, float weight)
{
    volatile float product = static_cast<float>(sites) * weight; // volatile: rounded to single precision
    volatile float sum = static_cast<float>(cost) + product;
    return toMachineInt(sum);
}

float anyWeight(Random& random)
{
    return random.oneOf<float>({0.0F, 1.0F, 1.4F, 0.1F, -0.7F, -1.4F, 3.3333F, 1e7F, 2.1e9F, -1e9F, 1e38F,
                                -1e38F, std::numeric_limits<float>::infinity(),
                                -std::numeric_limits<float>::infinity(),
                                std::numeric_limits<float>::quiet_NaN()});
}

void setAnyStitches(RandomDesign& tiny)
{
    for (Cell* cell : tiny.design.lut.cells) {
        for (int& stitches : cell->stitchNums) {
            stitches = tiny.random.oneOf<int>({0, 1, 2, 5, 16777217, 2000000000});
        }
    }
}

int directEdgeCost(const SegLegalizer& solver, const Cell& cell, const Component& comp, int site, int colour)
{
    int cost = cell.stitchNums[static_cast<size_t>(colour)];
    for (const int id : comp.rightIDs) {
        const int right = solver.netFLRs[static_cast<size_t>(id)].second;
        if (right != -1) {
            cost = directSum(cost, std::max(site + cell.siteWidth / 2 - right, 0), WEIGHT_WRLENG);
        }
    }
    for (const int id : comp.leftIDs) {
        const int left = solver.netFLRs[static_cast<size_t>(id)].first;
        if (left != -1) {
            cost = directSum(cost, std::max(left - (site + cell.siteWidth / 2), 0), WEIGHT_WRLENG);
        }
    }
    return cost;
}

TEST(ModelOfRandomDesigns, EdgeCostsAgreeWithADirectComputation)
{
    int beyondStitches = 0;
    for (uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        setAnyStitches(tiny);
        WEIGHT_WRLENG = anyWeight(tiny.random);
        Segment* segment = tiny.anySegment();
        SegLegalizer solver(&tiny.legalizer, segment);
        solver.initDataHPWL();
        for (Component* comp : segment->components) {
            const Cell& cell = tiny.design.cellOf(*comp);
            for (int colour = 0; colour < static_cast<int>(cell.colors.size()); ++colour) {
                for (int site = -2; site <= segment->numSites; ++site) {
                    const int cost = solver.getEdgeCost(comp, site, colour);
                    EXPECT_EQ(cost, directEdgeCost(solver, cell, *comp, site, colour))
                        << comp->name << " at " << site;
                    beyondStitches += cost == cell.stitchesOf(colour) ? 0 : 1;
                }
            }
        }
    }
    EXPECT_GT(beyondStitches, 500);
}

// --- cost of two neighbours' colours

class EdgeCostTpl : public ModelTest {
protected:
    EdgeCostTpl()
    {
        tiny.setDist(a->cellIdx, b->cellIdx, 0, 1, 1);
        tiny.setDist(a->cellIdx, b->cellIdx, 1, 0, 381);
        tiny.setDist(b->cellIdx, a->cellIdx, 0, 1, 1900);
    }

    int cost(int colA, int colB) { return solver.getEdgeCost_TPL(a, colA, b, colB); }

    Component* a = tiny.addComponent(segment, tiny.addCell(2, {10, 20}), 0);
    Component* b = tiny.addComponent(segment, tiny.addCell(2, {3, 4}), 2);
};

TEST_F(EdgeCostTpl, IsTheStitchesOfBothAndTheWeightedSpacingTruncated)
{
    EXPECT_EQ(cost(0, 0), 13);
    EXPECT_EQ(cost(0, 1), 14 + 1); // of 1.4: an entry of 1 is one site
    EXPECT_EQ(cost(1, 0), 23 + 4); // of 4.2: an entry of 381 is three sites
    EXPECT_EQ(cost(1, 1), 24);
}

TEST_F(EdgeCostTpl, TakesTheSpacingFromLeftToRight)
{
    EXPECT_EQ(solver.getEdgeCost_TPL(b, 0, a, 1), 23 + 14); // 10 sites
    EXPECT_EQ(solver.getEdgeCost_TPL(b, 1, a, 0), 14);
}

TEST_F(EdgeCostTpl, HasNoWirelengthTerm)
{
    solver.netFLRs = {{9, 0}};
    a->leftIDs = a->rightIDs = b->leftIDs = b->rightIDs = {0};
    EXPECT_EQ(cost(0, 0), 13);
}

TEST_F(EdgeCostTpl, TruncatesNegativeSumsTowardZeroAndTheImpossibleToTheSmallestInteger)
{
    WEIGHT_WRLENG = -15.7F;
    EXPECT_EQ(cost(0, 1), -1); // of 14 - 15.7
    WEIGHT_WRLENG = 1e38F;
    EXPECT_EQ(cost(0, 1), SMALLEST);
    WEIGHT_WRLENG = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(cost(0, 0), SMALLEST);
}

TEST(ModelOfRandomDesigns, ColouringCostsAgreeWithADirectComputation)
{
    int spaced = 0;
    for (uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        for (Cell* cell : tiny.design.lut.cells) {
            for (int& stitches : cell->stitchNums) {
                stitches = tiny.random.oneOf<int>({0, 1, 2, 16777217, 1000000000});
            }
        }
        WEIGHT_WRLENG = anyWeight(tiny.random);
        SegLegalizer solver(&tiny.legalizer, tiny.anySegment());
        for (Component* a : tiny.design.components) {
            for (Component* b : tiny.design.components) {
                const Cell& left = tiny.design.cellOf(*a);
                const Cell& right = tiny.design.cellOf(*b);
                const auto& block =
                    tiny.design.lut.distTable[static_cast<size_t>(left.id)][static_cast<size_t>(right.id)];
                for (size_t i = 0; i < left.colors.size(); ++i) {
                    for (size_t j = 0; j < right.colors.size(); ++j) {
                        const int sites = (block[i][j] + SITE_WIDTH - 1) / SITE_WIDTH;
                        EXPECT_EQ(solver.getEdgeCost_TPL(a, static_cast<int>(i), b, static_cast<int>(j)),
                                  directSum(left.stitchNums[i] + right.stitchNums[j], sites, WEIGHT_WRLENG));
                        spaced += sites > 0 ? 1 : 0;
                    }
                }
            }
        }
    }
    EXPECT_GT(spaced, 500);
}

// --- cost of two shifted neighbours

class LdpCost : public ModelTest {
protected:
    LdpCost() { tiny.setDist(a->cellIdx, b->cellIdx, 0, 1, 2 * SITE_WIDTH); }

    /// Of a and b at two sites.
    int costAt(int siteA, int siteB, int colA = 0, int colB = 0)
    {
        return solver.getLdpCost(a, colA, siteA - a->siteX, b, colB, siteB - b->siteX);
    }

    Component* a = tiny.addComponent(segment, tiny.addCell(2, {10, 20}), 1);
    Component* b = tiny.addComponent(segment, tiny.addCell(3, {3, 4}), 5);
};

TEST_F(LdpCost, LeftComponentMayStartAtSiteZeroButNotBefore)
{
    EXPECT_EQ(costAt(0, 5), 13);
    EXPECT_EQ(costAt(-1, 5), INFEASIBLE);
}

TEST_F(LdpCost, RightComponentMayEndAtTheRightEndButNotBehind)
{
    EXPECT_EQ(costAt(1, 7), 13);
    EXPECT_EQ(costAt(1, 8), INFEASIBLE);
}

TEST_F(LdpCost, OnlyTheOuterEndsAreHeldAgainstTheSegment)
{
    EXPECT_EQ(costAt(-1, 1), INFEASIBLE);
    segment->numSites = 4;
    EXPECT_EQ(costAt(0, 2), INFEASIBLE);
    tiny.setDist(a->cellIdx, b->cellIdx, 0, 0, -100 * SITE_WIDTH); // as if they might overlap
    EXPECT_EQ(costAt(9, 1), 13) << "the left one behind the right end, the right one within";
}

TEST_F(LdpCost, ComponentsMayTouchButNotOverlapWithoutASpacing)
{
    EXPECT_EQ(costAt(1, 3), 13);
    EXPECT_EQ(costAt(2, 3), INFEASIBLE);
    EXPECT_EQ(costAt(3, 1), INFEASIBLE);
}

TEST_F(LdpCost, GapOfTheSpacingFitsAndOneSiteLessDoesNot)
{
    EXPECT_EQ(costAt(1, 5, 0, 1), 14);
    EXPECT_EQ(costAt(2, 5, 0, 1), INFEASIBLE);
    EXPECT_EQ(costAt(2, 5, 1, 1), 24) << "another solution needs no spacing";
}

TEST_F(LdpCost, IsTheSumOfBothComponentsCostsAtTheirShiftedSites)
{
    WEIGHT_WRLENG = 1.0F;
    solver.netFLRs = {{2, 2}};
    a->leftIDs = {0};
    b->rightIDs = {0};
    EXPECT_EQ(costAt(0, 5), 10 + 1 + 3 + 4);
    EXPECT_EQ(costAt(0, 6, 1, 0), 20 + 1 + 3 + 5);
    EXPECT_EQ(solver.getLdpCost(a, 0, 0, b, 0, 0), 10 + 0 + 3 + 4) << "no shifts";
}

TEST_F(LdpCost, ShiftsCountFromThePositionsAndMoveNothing)
{
    const auto before = tiny.places();
    EXPECT_EQ(solver.getLdpCost(a, 0, -1, b, 0, 2), 13);
    EXPECT_EQ(solver.getLdpCost(a, 0, -2, b, 0, 2), INFEASIBLE);
    EXPECT_EQ(solver.getLdpCost(a, 0, -1, b, 0, 3), INFEASIBLE);
    EXPECT_EQ(tiny.places(), before);
}

// --- the older cost

class EdgeCostBak : public EdgeCost {};

TEST_F(EdgeCostBak, MetricZeroCountsBothSidesOfTheNetsItEndsOnTheLeft)
{
    WEIGHT_WRLENG = 1.0F;
    setRanges({{2, 9}}, {{0, 1}});
    tiny.legalizer.metric = 0;
    const auto bak = [&](int site, int colour) { return solver.getEdgeCost_bak(comp, site, colour); };
    EXPECT_EQ(bak(2, 0), 0 + (9 - 2 - 3));
    EXPECT_EQ(bak(0, 0), 0 + (9 - 0 - 3)) << "its left edge, not its centre";
    EXPECT_EQ(bak(4, 0), 2 + (9 - 4 - 3));
    EXPECT_EQ(bak(8, 0), 6 + 0);
    EXPECT_EQ(bak(8, 1), 5 + 6);
}

TEST_F(EdgeCostBak, MetricZeroTruncatesAfterEachSide)
{
    WEIGHT_WRLENG = 1.4F;
    setRanges({{2, 9}}, {});
    tiny.legalizer.metric = 0;
    EXPECT_EQ(solver.getEdgeCost_bak(comp, 4, 0), 4); // 2 of 2.8, then 4 of 4.8
    setRanges({{2, 9}, {3, 8}}, {});
    EXPECT_EQ(solver.getEdgeCost_bak(comp, 4, 0), 4 + 1 + 1); // then 5 of 5.4, 6 of 6.4
}

TEST_F(EdgeCostBak, MetricZeroSkipsANetThatLacksEitherEnd)
{
    tiny.legalizer.metric = 0;
    setRanges({{-1, 9}, {2, -1}, {-1, -1}}, {});
    EXPECT_EQ(solver.getEdgeCost_bak(comp, 4, 1), 5);
}

TEST_F(EdgeCostBak, MetricZeroCountsANetAtSiteZero)
{
    WEIGHT_WRLENG = 1.0F;
    tiny.legalizer.metric = 0;
    setRanges({{0, 0}}, {});
    EXPECT_EQ(solver.getEdgeCost_bak(comp, 4, 0), 4);
}

TEST_F(EdgeCostBak, MetricOneCountsTheSitesFromWhereItIs)
{
    tiny.legalizer.metric = 1;
    setRanges({{0, 9}}, {{0, 9}});
    comp->siteX = 4;
    EXPECT_EQ(solver.getEdgeCost_bak(comp, 4, 0), 0);
    EXPECT_EQ(solver.getEdgeCost_bak(comp, 7, 0), 3) << "unweighted";
    EXPECT_EQ(solver.getEdgeCost_bak(comp, 1, 1), 5 + 3);
}

TEST_F(EdgeCostBak, AnyOtherMetricWarnsAndCountsTheStitchesAlone)
{
    setRanges({{0, 9}}, {{0, 9}});
    for (const int metric : {-1, 2, 3}) {
        SCOPED_TRACE(metric);
        tiny.legalizer.metric = metric;
        int cost = 0;
        EXPECT_EQ(reportOf([&] { cost = solver.getEdgeCost_bak(comp, 9, 1); }),
                  "WARNING| SegLegalizer::getEdgeCost_bak(), unsupported cost metric\n");
        EXPECT_EQ(cost, 5);
    }
}

TEST_F(EdgeCostBak, KnownMetricsDoNotWarn)
{
    for (const int metric : {0, 1}) {
        tiny.legalizer.metric = metric;
        EXPECT_EQ(reportOf([&] { solver.getEdgeCost_bak(comp, 0, 0); }), "");
    }
}

// --- parking

class Shift2RightBnd : public ModelTest {
protected:
    Component* first = tiny.addComponent(segment, cell, 0, 2);
    Component* second = tiny.addComponent(segment, cell, 4, -1);
};

TEST_F(Shift2RightBnd, ParksEveryComponentAtTheRightEnd)
{
    Component* elsewhere = addAt(5, 6);
    solver.shift2RightBnd();
    using Places = std::vector<std::array<int32_t, 4>>;
    EXPECT_EQ(tiny.places(),
              (Places{{2, 10, 2900, 1900}, {-1, 10, 2900, 1900}, {0, elsewhere->siteX, 5, 6}}));
    EXPECT_EQ(segment->components, (std::list<Component*>{first, second}));
}

TEST_F(Shift2RightBnd, WithoutSitesTheRightEndIsTheLeftEnd)
{
    segment->numSites = 0;
    solver.shift2RightBnd();
    EXPECT_EQ(second->siteX, 0);
    EXPECT_EQ(second->x, 1000);
}

TEST_F(Shift2RightBnd, WithANegativeNumberOfSitesXStaysAndSiteXFollowsFromIt)
{
    segment->numSites = -1;
    for (const auto& [x, siteX] :
         std::vector<Range>{{1000, 0}, {1001, 1}, {1190, 1}, {1191, 2}, {999, 0}, {810, -1}, {809, -1}}) {
        SCOPED_TRACE(x);
        first->x = x;
        first->siteX = 77;
        solver.shift2RightBnd();
        EXPECT_EQ(first->x, x);
        EXPECT_EQ(first->siteX, siteX);
        EXPECT_EQ(second->siteX, 4);
        EXPECT_EQ(second->x, 1000 + 4 * SITE_WIDTH);
    }
}

TEST_F(Shift2RightBnd, EmptySegmentStaysEmpty)
{
    segment->components.clear();
    const auto before = tiny.places();
    solver.shift2RightBnd();
    EXPECT_EQ(tiny.places(), before);
}

} // namespace
