// SPDX-License-Identifier: BSD-3-Clause
// Moves of components between segments.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "legalizer/legalizer.h"
#include "legalizer/randomDesign.h"
#include "support/tinyDesign.h"

namespace {

using test::RandomDesign;
using test::TinyDesign;
using Point = std::pair<int, int>;
using Components = std::list<Component*>;

/// A tiny design whose bound leaves every position as it is, with one cell of one site.
class MoveTest : public testing::Test {
protected:
    MoveTest() { setBound(-2000000000, 2000000000, -2000000000, 2000000000); }

    void setBound(int xl, int xh, int yl, int yh)
    {
        tiny.design.boundXl = xl;
        tiny.design.boundXh = xh;
        tiny.design.boundYl = yl;
        tiny.design.boundYh = yh;
    }

    Component* addComponentAt(int x, int y)
    {
        Component* comp = tiny.addComponent(nullptr, cell, 0);
        comp->x = x;
        comp->y = y;
        return comp;
    }

    Point optimalPos(Component* comp)
    {
        Point pos{-7, -7};
        tiny.legalizer.getOptimalPos(comp, pos.first, pos.second);
        return pos;
    }

    /// Adds a segment of one site with a density, not done.
    Segment* addTarget(int x, int y, float density)
    {
        Segment* segment = tiny.addSegment(x, y, 1);
        tiny.legalizer.segDone.push_back(false);
        tiny.legalizer.segDensity.push_back(density);
        return segment;
    }

    /// As addTarget(), one that the pass has come to.
    Segment* addDone(int x, int y)
    {
        Segment* segment = addTarget(x, y, 0.0F);
        tiny.legalizer.segDone.back() = true;
        return segment;
    }

    /// The segment that a component is sent to from (0, 0), nullptr if none.
    Segment* targetFromOrigin()
    {
        Component* comp = addComponentAt(1, 2);
        tiny.legalizer.lastTargetSeg = nullptr;
        const int found = tiny.legalizer.moveComponent(comp, 0, 0);
        EXPECT_EQ(found, tiny.legalizer.lastTargetSeg == nullptr ? 0 : 1);
        return tiny.legalizer.lastTargetSeg;
    }

    TinyDesign tiny;
    const int cell = tiny.addCell(1, {0});
};

// --- byDeltaY

class ByDeltaY : public MoveTest {
protected:
    /// A candidate at a y whose preferred y is another.
    MoveCandidate candidate(int y, int optimalY) { return {{5, optimalY}, {addComponentAt(9, y), 1}}; }
};

TEST_F(ByDeltaY, PutsTheFarthestFromItsPreferredRowFirst)
{
    EXPECT_TRUE(byDeltaY(candidate(0, 20), candidate(0, 10)));
    EXPECT_FALSE(byDeltaY(candidate(0, 10), candidate(0, 20)));
}

TEST_F(ByDeltaY, CountsUpAndDownAlike)
{
    EXPECT_TRUE(byDeltaY(candidate(20, 0), candidate(0, 10)));
    EXPECT_TRUE(byDeltaY(candidate(0, 20), candidate(10, 0)));
}

TEST_F(ByDeltaY, PutsEqualDistancesInNoOrder)
{
    EXPECT_FALSE(byDeltaY(candidate(0, 10), candidate(30, 20)));
    EXPECT_FALSE(byDeltaY(candidate(30, 20), candidate(0, 10)));
}

// --- getOptimalPos

class GetOptimalPos : public MoveTest {
protected:
    Component* comp = addComponentAt(100, 200);
};

TEST_F(GetOptimalPos, WithoutNetsIsTheComponentsOwnPosition)
{
    EXPECT_EQ(optimalPos(comp), Point(100, 200));
}

TEST_F(GetOptimalPos, WithoutOtherMembersIsTheComponentsOwnPositionUnclamped)
{
    setBound(0, 10, 0, 10);
    tiny.addNet({comp, comp});
    EXPECT_EQ(optimalPos(comp), Point(100, 200));
    comp->nets.clear();
    EXPECT_EQ(optimalPos(comp), Point(100, 200));
}

TEST_F(GetOptimalPos, IsTheMeanOfPinsAndOtherComponents)
{
    tiny.addNet({comp, addComponentAt(10, 20)}, {tiny.addPin(30, 50), tiny.addPin(50, 80)});
    EXPECT_EQ(optimalPos(comp), Point(30, 50));
}

TEST_F(GetOptimalPos, TakesCornersNotCentres)
{
    Component* wide = tiny.addComponent(nullptr, tiny.addCell(20, {0}), 0);
    wide->x = 10;
    wide->y = 20;
    tiny.addNet({comp, wide});
    EXPECT_EQ(optimalPos(comp), Point(10, 20));
}

TEST_F(GetOptimalPos, CountsAComponentOncePerSharedNet)
{
    Component* twice = addComponentAt(0, 0);
    tiny.addNet({comp, twice});
    tiny.addNet({comp, twice, addComponentAt(30, 60)});
    EXPECT_EQ(optimalPos(comp), Point(10, 20));
}

TEST_F(GetOptimalPos, TruncatesTheMeanTowardZero)
{
    tiny.addNet({comp}, {tiny.addPin(-7, 7), tiny.addPin(0, 0)});
    EXPECT_EQ(optimalPos(comp), Point(-3, 3));
}

TEST_F(GetOptimalPos, SumsWrapAroundInThirtyTwoBits)
{
    tiny.addNet({comp}, {tiny.addPin(2000000000, 0), tiny.addPin(2000000000, 4)});
    EXPECT_EQ(optimalPos(comp), Point((4000000000 - 4294967296) / 2, 2));
}

TEST_F(GetOptimalPos, OutsideTheDesignBoundIsClampedOntoIt)
{
    setBound(0, 1000, 10, 2000);
    Pin* pin = tiny.addPin(-1, 9);
    tiny.addNet({comp}, {pin});
    EXPECT_EQ(optimalPos(comp), Point(0, 10));
    pin->x = 1001;
    pin->y = 2001;
    EXPECT_EQ(optimalPos(comp), Point(1000, 2000));
    pin->x = 1000;
    pin->y = 10;
    EXPECT_EQ(optimalPos(comp), Point(1000, 10));
}

TEST_F(GetOptimalPos, OfAnInvertedBoundTheUpperEndWins)
{
    setBound(500, 400, 50, 40);
    Pin* pin = tiny.addPin(0, 0);
    tiny.addNet({comp}, {pin});
    EXPECT_EQ(optimalPos(comp), Point(400, 40));
    pin->x = 450;
    pin->y = 45;
    EXPECT_EQ(optimalPos(comp), Point(400, 40));
}

/// Lists what pulls at a component, then takes the mean.
Point directOptimalPos(const Design& design, const Component* comp)
{
    std::vector<Point> points;
    for (const Net* net : comp->nets) {
        for (const Component* other : net->components) {
            if (other != comp) {
                points.emplace_back(other->x, other->y);
            }
        }
        for (const Pin* pin : net->pins) {
            points.emplace_back(pin->x, pin->y);
        }
    }
    if (points.empty()) {
        return {comp->x, comp->y};
    }
    int64_t sumX = 0;
    int64_t sumY = 0;
    for (const Point& point : points) {
        sumX += point.first;
        sumY += point.second;
    }
    const auto count = static_cast<int64_t>(points.size());
    const auto clamp = [](int64_t value, int64_t low, int64_t high) {
        const int64_t raised = value < low ? low : value;
        return static_cast<int>(raised > high ? high : raised);
    };
    return {clamp(sumX / count, design.boundXl, design.boundXh),
            clamp(sumY / count, design.boundYl, design.boundYh)};
}

TEST(GetOptimalPosOfRandomDesigns, AgreesWithADirectMean)
{
    for (uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        if (tiny.random.pick(0, 3) == 0) {
            std::swap(tiny.design.boundXl, tiny.design.boundXh);
            std::swap(tiny.design.boundYl, tiny.design.boundYh);
        }
        for (Component* comp : tiny.design.components) {
            Point pos;
            tiny.legalizer.getOptimalPos(comp, pos.first, pos.second);
            EXPECT_EQ(pos, directOptimalPos(tiny.design, comp)) << comp->name;
        }
    }
}

// --- moveComponent: the target

class MoveTarget : public MoveTest {};

/// The ranges that are searched one after the other.
std::vector<int> searchedRanges()
{
    std::vector<int> ranges = {2};
    while (ranges.size() < 11) {
        ranges.push_back(2 * ranges.back() + SITE_HEIGHT);
    }
    return ranges;
}

TEST_F(MoveTarget, RangesDoubleAndGrowByARowHeightEachTime)
{
    const std::vector<int> ranges = searchedRanges();
    ASSERT_EQ(ranges[1], 4 + SITE_HEIGHT);
    for (size_t i = 0; i < ranges.size(); ++i) {
        SCOPED_TRACE(ranges[i]);
        TinyDesign one;
        Segment* justReached = one.addSegment(ranges[i], 0, 1);
        Segment* justMissed = one.addSegment(ranges[i] + 1, 0, 1);
        Segment* reachedNext = one.addSegment(i + 1 < ranges.size() ? ranges[i + 1] : ranges[i] + 2, 0, 1);
        one.legalizer.segDone.assign(3, false);
        one.legalizer.segDensity = {0.9F, 0.5F, 0.1F};
        Component* comp = one.addComponent(nullptr, one.addCell(1, {0}), 0);
        EXPECT_EQ(one.legalizer.moveComponent(comp, 0, 0), 1);
        EXPECT_EQ(one.legalizer.lastTargetSeg, justReached) << "there is no such search, or none before it";
        one.legalizer.segDone[0] = true;
        const bool isLast = i + 1 == ranges.size();
        EXPECT_EQ(one.legalizer.moveComponent(comp, 0, 0), isLast ? 0 : 1);
        EXPECT_EQ(one.legalizer.lastTargetSeg, isLast ? justReached : reachedNext)
            << "there is a search between this one and the next";
        EXPECT_TRUE(justMissed->components.empty());
    }
}

TEST_F(MoveTarget, RangeGrowsByTheRowHeightOfNow)
{
    SITE_HEIGHT = 10;
    addTarget(4 + 10, 0, 0.9F);
    addTarget(4 + 10 + 1, 0, 0.1F);
    EXPECT_EQ(targetFromOrigin(), tiny.design.segments[0]);
}

TEST_F(MoveTarget, ElevenSearchesAreTheMost)
{
    const int last = searchedRanges().back();
    ASSERT_EQ(last, 1902 * 1024 - 1900);
    Segment* target = addTarget(last, 0, 0.1F);
    EXPECT_EQ(targetFromOrigin(), target);
    tiny.legalizer.segDone[0] = true;
    addTarget(last + 1, 0, 0.1F);
    EXPECT_EQ(targetFromOrigin(), nullptr);
}

TEST_F(MoveTarget, DoubledRangeUpToTheLimitIsSearched)
{
    SITE_HEIGHT = 1073741822 / 2 - 4;
    Segment* target = addTarget(1073741822 + SITE_HEIGHT, 0, 0.1F);
    EXPECT_EQ(targetFromOrigin(), target);
}

TEST_F(MoveTarget, DoubledRangeAboveTheLimitEndsTheSearch)
{
    SITE_HEIGHT = 1073741822 / 2 - 3;
    Segment* target = addTarget(4 + SITE_HEIGHT, 0, 0.1F);
    EXPECT_EQ(targetFromOrigin(), target);
    tiny.legalizer.segDone[0] = true;
    addTarget(4 + SITE_HEIGHT + 1, 0, 0.1F);
    EXPECT_EQ(targetFromOrigin(), nullptr);
}

TEST_F(MoveTarget, SearchThatFindsAsManySegmentsAsThereAreIsTheLast)
{
    Segment* done = addDone(0, 0);
    Segment* far = addTarget(1000, 0, 0.1F);
    EXPECT_EQ(targetFromOrigin(), far);
    // What the search finds is counted, here one segment twice.
    qLib::insertItem(tiny.design.segmentTree, done, 0, 0, SITE_WIDTH, SITE_HEIGHT);
    EXPECT_EQ(targetFromOrigin(), nullptr);
}

TEST_F(MoveTarget, WithoutSegmentsThereIsNone)
{
    EXPECT_EQ(targetFromOrigin(), nullptr);
}

TEST_F(MoveTarget, IsTheLeastDenseInReach)
{
    addTarget(0, 0, 0.5F);
    Segment* sparse = addTarget(0, -SITE_HEIGHT, 0.25F);
    addTarget(-SITE_WIDTH, 0, 0.5F);
    EXPECT_EQ(targetFromOrigin(), sparse);
}

TEST_F(MoveTarget, IsNoneThatThePassHasComeTo)
{
    Segment* dense = addTarget(0, 0, 0.5F);
    addDone(0, -SITE_HEIGHT);
    EXPECT_EQ(targetFromOrigin(), dense);
    Segment* far = addTarget(5000, 0, 0.5F);
    tiny.legalizer.segDone[0] = true;
    EXPECT_EQ(targetFromOrigin(), far) << "the search goes on while it finds none but such";
    tiny.legalizer.segDone[2] = true;
    EXPECT_EQ(targetFromOrigin(), nullptr);
}

TEST_F(MoveTarget, OfEquallyDenseSegmentsIsTheLastInTheSearch)
{
    for (int i = 0; i < 30; ++i) { // more than a node of the index holds
        addTarget(i % 5 - 4, i % 7 - 3, 0.5F);
    }
    const std::vector<Segment*> found = tiny.design.searchSegments(0, 0, 2);
    ASSERT_NE(found.front(), found.back());
    EXPECT_EQ(targetFromOrigin(), found.back());
    tiny.legalizer.segDone[static_cast<size_t>(found.back()->id)] = true;
    EXPECT_EQ(targetFromOrigin(), found[found.size() - 2]);
}

TEST_F(MoveTarget, DensityOfTenToTheTenthIsTheLastThatCounts)
{
    Segment* target = addTarget(0, 0, 1e10F);
    EXPECT_EQ(targetFromOrigin(), target);
    for (const float tooDense : {std::nextafter(1e10F, 2e10F), std::numeric_limits<float>::infinity()}) {
        tiny.legalizer.segDensity[0] = tooDense;
        EXPECT_EQ(targetFromOrigin(), nullptr);
    }
}

TEST_F(MoveTarget, ChoiceLeavesTheDensitiesAsTheyAre)
{
    Segment* target = addTarget(0, 0, 0.25F);
    tiny.addComponent(target, cell, 0);
    targetFromOrigin();
    EXPECT_EQ(target->components.size(), 2U);
    EXPECT_EQ(tiny.legalizer.segDensity, std::vector<float>{0.25F});
}

// --- moveComponent: the insertion

class MoveInsertion : public MoveTest {
protected:
    /// Moves a component that stands at (1, 2) to (x, 1900), the target's row.
    Component* moveTo(int x)
    {
        Component* comp = addComponentAt(1, 2);
        EXPECT_EQ(tiny.legalizer.moveComponent(comp, x, 1900), 1);
        EXPECT_EQ(tiny.legalizer.lastTargetSeg, target);
        return comp;
    }

    Segment* target = addTarget(1000, 1900, 0.5F);
};

TEST_F(MoveInsertion, IsBeforeTheFirstComponentAtOrRightOfThePoint)
{
    Component* left = tiny.addComponent(target, cell, 0);
    Component* middle = tiny.addComponent(target, cell, 3);
    Component* right = tiny.addComponent(target, cell, 6);
    Component* between = moveTo(1000 + 2 * SITE_WIDTH);
    EXPECT_EQ(target->components, (Components{left, between, middle, right}));
    Component* equal = moveTo(right->x);
    EXPECT_EQ(target->components, (Components{left, between, middle, equal, right}));
    Component* first = moveTo(1000 - 5);
    EXPECT_EQ(target->components, (Components{first, left, between, middle, equal, right}));
    EXPECT_EQ(*tiny.legalizer.lastInsertPos, first);
}

TEST_F(MoveInsertion, StopsAtTheFirstComponentThatIsNotLeftOfThePointWhateverFollows)
{
    Component* right = tiny.addComponent(target, cell, 6);
    Component* left = tiny.addComponent(target, cell, 0); // the list is not in the order of x
    Component* moved = moveTo(1000 + 2 * SITE_WIDTH);
    EXPECT_EQ(target->components, (Components{moved, right, left}));
}

TEST_F(MoveInsertion, SetsXToThePointSiteXRoundedUpAndYToTheRow)
{
    tiny.addComponent(target, cell, 20);
    for (const auto& [x, siteX] : std::vector<Point>{
             {1000, 0}, {1001, 1}, {1190, 1}, {1191, 2}, {999, 0}, {1000 - 190, -1}, {1000 - 191, -1}}) {
        SCOPED_TRACE(x);
        const Component* moved = moveTo(x);
        EXPECT_EQ(moved->x, x) << "not on a site";
        EXPECT_EQ(moved->siteX, siteX);
        EXPECT_EQ(moved->y, 1900);
    }
}

TEST_F(MoveInsertion, RoundsSiteXToSinglePrecisionFirst)
{
    Component* far = tiny.addComponent(target, cell, 0);
    far->x = 20000000;
    qLib::insertItem(tiny.design.segmentTree, target, 1000, 1900, far->x, 3800);
    EXPECT_EQ(moveTo(1000 + 16777381)->siteX, 88302); // in integers it would be 88303
}

TEST_F(MoveInsertion, KeepsTheSolution)
{
    tiny.addComponent(target, cell, 20);
    Component* comp = addComponentAt(1, 2);
    comp->solution = 5;
    tiny.legalizer.moveComponent(comp, 1000, 1900);
    EXPECT_EQ(comp->solution, 5);
}

TEST_F(MoveInsertion, IntoAnEmptySegmentSucceedsButInsertsNothing)
{
    const Component* comp = moveTo(1000);
    EXPECT_TRUE(target->components.empty());
    EXPECT_TRUE(tiny.legalizer.lastInsertPos == target->components.end());
    EXPECT_EQ(Point(comp->x, comp->y), Point(1, 2));
    EXPECT_EQ(comp->siteX, 0);
}

TEST_F(MoveInsertion, RightOfAllComponentsSucceedsButInsertsNothing)
{
    Component* there = tiny.addComponent(target, cell, 0);
    const Component* comp = moveTo(1001);
    EXPECT_EQ(target->components, Components{there});
    EXPECT_TRUE(tiny.legalizer.lastInsertPos == target->components.end());
    EXPECT_EQ(Point(comp->x, comp->y), Point(1, 2));
    EXPECT_EQ(comp->siteX, 0);
}

TEST_F(MoveInsertion, WithoutATargetChangesNothing)
{
    Component* there = tiny.addComponent(target, cell, 0);
    moveTo(1000);
    const auto before = tiny.places();
    tiny.legalizer.segDone[0] = true;
    EXPECT_EQ(tiny.legalizer.moveComponent(there, 1000, 1900), 0);
    EXPECT_EQ(tiny.legalizer.lastTargetSeg, target);
    EXPECT_EQ(*tiny.legalizer.lastInsertPos, target->components.front());
    EXPECT_EQ(target->components.size(), 2U);
    EXPECT_EQ(tiny.places(), before);
}

// --- globalMove

/// A source segment at (0, 0) that is being solved, and a target two rows above it.
class GlobalMove : public MoveTest {
protected:
    GlobalMove() { tiny.addComponent(target, cell, 50); }

    /// Adds a component of so many sites to the source, drawn to the target by a pin so far above its row.
    Component* add(int sites, int pull)
    {
        Component* comp =
            tiny.addComponent(source, tiny.addCell(sites, {0}), static_cast<int>(source->components.size()));
        tiny.addNet({comp}, {tiny.addPin(7, pull)});
        return comp;
    }

    bool isInTarget(Component* comp) const
    {
        return std::find(target->components.begin(), target->components.end(), comp) !=
               target->components.end();
    }

    Segment* source = addDone(0, 0);
    Segment* target = addTarget(0, 3800, 0.1F);
};

TEST_F(GlobalMove, EmptySegmentHasWhateverIsNeeded)
{
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 1000));
    EXPECT_EQ(target->components.size(), 1U);
}

TEST_F(GlobalMove, StopsAfterTheFirstMoveThatFreesEnough)
{
    Component* stays = add(1, 3000);
    Component* goes = add(1, 3800);
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 1));
    EXPECT_EQ(source->components, Components{stays});
    EXPECT_TRUE(isInTarget(goes));
    EXPECT_EQ(Point(goes->x, goes->y), Point(7, 3800));
}

TEST_F(GlobalMove, TakesTheFarthestFromItsPreferredRowFirst)
{
    Component* near = add(1, 2000);
    Component* farthest = add(1, 4000);
    Component* far = add(1, 3000);
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 1));
    EXPECT_EQ(source->components, (Components{near, far}));
    EXPECT_TRUE(isInTarget(farthest));
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 1));
    EXPECT_EQ(source->components, Components{near});
}

TEST_F(GlobalMove, NeedOfZeroOrLessStillMovesOne)
{
    Component* first = add(1, 3800);
    add(1, 3000);
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 0));
    EXPECT_TRUE(isInTarget(first));
    EXPECT_EQ(source->components.size(), 1U);
    tiny.legalizer.segDone[static_cast<size_t>(target->id)] = true;
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 0)) << "nothing moved, but nothing was needed";
    EXPECT_EQ(source->components.size(), 1U);
}

TEST_F(GlobalMove, FirstComponentFreesItsWidthAndOthersTheSpacingBeforeThemToo)
{
    // 3 for the first, 1 + 2 for the second, 2 + 1 for the third: also after a neighbour has left.
    for (const auto& [need, isEnough] : std::vector<std::pair<int, bool>>{{9, true}, {10, false}}) {
        SCOPED_TRACE(need);
        source->components.clear();
        Component* a = add(3, 3800);
        Component* b = add(2, 4000);
        Component* c = add(1, 3900);
        tiny.setDist(a->cellIdx, b->cellIdx, 0, 0, 1);
        tiny.setDist(b->cellIdx, c->cellIdx, 0, 0, 191);
        tiny.setDist(a->cellIdx, c->cellIdx, 0, 0, 1900); // they would meet when b has left
        EXPECT_EQ(tiny.legalizer.globalMove(source, need), isEnough);
        EXPECT_TRUE(source->components.empty());
    }
}

struct FreedCase {
    const char* name;
    size_t who; ///< which of the three components leaves first
    int freed;
};

void PrintTo(const FreedCase& row, std::ostream* out)
{
    *out << row.name;
}

class FreedSites : public GlobalMove, public testing::WithParamInterface<FreedCase> {};

TEST_P(FreedSites, DecideWhetherASecondComponentMoves)
{
    for (const int beyond : {0, 1}) {
        SCOPED_TRACE(beyond);
        source->components.clear();
        std::vector<Component*> comps;
        for (size_t i = 0; i < 3; ++i) {
            comps.push_back(add(3, i == GetParam().who ? 4000 : 3000));
        }
        tiny.setDist(comps[0]->cellIdx, comps[1]->cellIdx, 0, 0, 1);
        tiny.setDist(comps[1]->cellIdx, comps[2]->cellIdx, 0, 0, 191);
        EXPECT_TRUE(tiny.legalizer.globalMove(source, GetParam().freed + beyond));
        EXPECT_EQ(source->components.size(), beyond == 0 ? 2U : 1U);
        EXPECT_TRUE(isInTarget(comps[GetParam().who]));
    }
}

INSTANTIATE_TEST_SUITE_P(GlobalMove, FreedSites,
                         testing::Values(FreedCase{"FirstFreesItsWidth", 0, 3},
                                         FreedCase{"OneBehindASpacingOfOneSiteFreesItToo", 1, 3 + 1},
                                         FreedCase{"OneBehindASpacingOfTwoSitesFreesThemToo", 2, 3 + 2}),
                         [](const auto& row) { return row.param.name; });

TEST_F(GlobalMove, WithAllTargetsDoneFailsAndChangesNothing)
{
    add(1, 3800);
    add(1, 3800);
    tiny.legalizer.segDone[static_cast<size_t>(target->id)] = true;
    const auto before = tiny.places();
    EXPECT_FALSE(tiny.legalizer.globalMove(source, 1));
    EXPECT_EQ(source->components.size(), 2U);
    EXPECT_EQ(target->components.size(), 1U);
    EXPECT_EQ(tiny.places(), before);
}

TEST_F(GlobalMove, CandidateThatFindsNoTargetIsSkippedAndFreesNothing)
{
    Component* lost = add(5, 1000000000); // farther than any search reaches
    Component* goes = add(1, 3800);
    EXPECT_FALSE(tiny.legalizer.globalMove(source, 2));
    EXPECT_EQ(source->components, Components{lost});
    EXPECT_TRUE(isInTarget(goes));
}

TEST_F(GlobalMove, ThatFreesTooLittleHasMovedAllTheSame)
{
    add(1, 3800);
    add(1, 3800);
    EXPECT_FALSE(tiny.legalizer.globalMove(source, 3));
    EXPECT_TRUE(source->components.empty());
    EXPECT_EQ(target->components.size(), 3U);
}

TEST_F(GlobalMove, ComponentWithoutNetsGoesToASegmentNearWhereItStands)
{
    Component* comp = tiny.addComponent(source, cell, 0);
    tiny.addComponent(addTarget(0, 1900, 0.9F), cell, 50); // the row above its own
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 1));
    EXPECT_EQ(Point(comp->x, comp->y), Point(0, 1900)) << "the sparser target is farther away";
}

TEST_F(GlobalMove, IntoAnEmptySegmentLeavesTheComponentInNone)
{
    target->components.clear();
    Component* comp = add(1, 3800);
    comp->x = 7;
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 1));
    EXPECT_TRUE(source->components.empty());
    EXPECT_TRUE(target->components.empty());
    EXPECT_EQ(Point(comp->x, comp->y), Point(7, 0)) << "it keeps its old coordinates";
}

TEST_F(GlobalMove, RemovesEveryOccurrenceOfAComponentFromTheSegment)
{
    Component* comp = add(1, 3800);
    Component* other = add(1, 1000);
    source->components.push_back(comp);
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 1));
    EXPECT_EQ(source->components, Components{other});
    EXPECT_TRUE(isInTarget(comp));
}

TEST_F(GlobalMove, TakesEquallyFarComponentsInTheOrderOfAnUnstableSort)
{
    std::vector<std::pair<int, Component*>> byDistance;
    test::Random random(5);
    for (int i = 0; i < 40; ++i) {
        const int pull = random.oneOf<int>({3700, 3800});
        Component* comp = tiny.addComponent(source, cell, i);
        tiny.addNet({comp}, {tiny.addPin(0, pull)});
        byDistance.emplace_back(pull, comp);
    }
    const auto farther = [](const auto& a, const auto& b) { return a.first > b.first; };
    auto stable = byDistance;
    std::stable_sort(stable.begin(), stable.end(), farther);
    std::sort(byDistance.begin(), byDistance.end(), farther);
    ASSERT_NE(byDistance[0], stable[0]);
    EXPECT_TRUE(tiny.legalizer.globalMove(source, 5));
    for (size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(isInTarget(byDistance[i].second), i < 5) << i;
    }
}

// --- postMove

class PostMove : public GlobalMove {
protected:
    PostMove() { source->numSites = 10; }

    Component* addAt(int siteX, int sites)
    {
        Component* comp = add(sites, 3800);
        comp->siteX = siteX;
        return comp;
    }
};

TEST_F(PostMove, MovesWhatSticksOutOfTheRightEnd)
{
    Component* fits = addAt(0, 3);
    Component* ends = addAt(7, 3);
    Component* sticksOut = addAt(8, 3);
    Component* beyond = addAt(10, 1);
    tiny.legalizer.postMove(source);
    EXPECT_EQ(source->components, (Components{fits, ends}));
    EXPECT_TRUE(isInTarget(sticksOut));
    EXPECT_TRUE(isInTarget(beyond));
    EXPECT_EQ(Point(sticksOut->x, sticksOut->y), Point(7, 3800));
}

TEST_F(PostMove, MovesThemInTheOrderOfTheList)
{
    Component* first = addAt(10, 1);
    Component* second = addAt(9, 2);
    tiny.legalizer.postMove(source);
    EXPECT_EQ(target->components.size(), 3U);
    EXPECT_EQ(target->components.front(), second) << "the later one comes before the earlier at the same x";
    EXPECT_EQ(*std::next(target->components.begin()), first);
}

TEST_F(PostMove, RemovesAComponentEvenIfItsMoveFails)
{
    Component* comp = addAt(8, 3);
    tiny.legalizer.segDone[static_cast<size_t>(target->id)] = true;
    tiny.legalizer.postMove(source);
    EXPECT_TRUE(source->components.empty());
    EXPECT_FALSE(isInTarget(comp));
    EXPECT_EQ(comp->siteX, 8);
}

TEST_F(PostMove, NotesTheSegmentAsTheLastTargetUntilAMoveFindsOne)
{
    tiny.legalizer.lastTargetSeg = target;
    tiny.legalizer.postMove(source);
    EXPECT_EQ(tiny.legalizer.lastTargetSeg, source);
    addAt(8, 3);
    tiny.legalizer.postMove(source);
    EXPECT_EQ(tiny.legalizer.lastTargetSeg, target);
}

// --- against a direct computation

/// What moveComponent() does, written without its loop control: the first range of the sequence that shows a
/// segment to move to.
int directMove(TinyDesign& tiny, Component* comp, int x, int y)
{
    const Legalizer& legalizer = tiny.legalizer;
    Segment* target = nullptr;
    for (const int range : searchedRanges()) {
        for (Segment* found : tiny.design.searchSegments(x, y, range)) {
            const auto id = static_cast<size_t>(found->id);
            if (!legalizer.segDone[id] &&
                (target == nullptr ||
                 legalizer.segDensity[id] <= legalizer.segDensity[static_cast<size_t>(target->id)])) {
                target = found;
            }
        }
        if (target != nullptr) {
            break;
        }
    }
    if (target == nullptr) {
        return 0;
    }
    for (auto it = target->components.begin(); it != target->components.end(); ++it) {
        if ((*it)->x >= x) {
            target->components.insert(it, comp);
            comp->x = x;
            comp->y = target->y;
            comp->siteX = static_cast<int>(std::ceil(static_cast<double>(x - target->x) / SITE_WIDTH));
            break;
        }
    }
    return 1;
}

bool directGlobalMove(TinyDesign& tiny, Segment* seg, int need)
{
    if (seg->components.empty()) {
        return true;
    }
    struct Candidate {
        int distance;
        Point pos;
        Component* comp;
        int freed;
    };
    std::vector<Candidate> candidates;
    for (Component* comp : seg->components) {
        int freed = tiny.design.cellOf(*comp).siteWidth;
        if (!candidates.empty()) {
            const Component* left = candidates.back().comp;
            freed += tiny.design.safeSites(*left, left->solution, *comp, comp->solution);
        }
        const Point pos = directOptimalPos(tiny.design, comp);
        candidates.push_back({std::abs(comp->y - pos.second), pos, comp, freed});
    }
    std::sort(candidates.begin(), candidates.end(),
              [](const Candidate& a, const Candidate& b) { return a.distance > b.distance; });
    int freed = 0;
    for (const Candidate& candidate : candidates) {
        if (directMove(tiny, candidate.comp, candidate.pos.first, candidate.pos.second) == 1) {
            seg->components.remove(candidate.comp);
            freed += candidate.freed;
            if (freed >= need) {
                return true;
            }
        }
    }
    return freed >= need;
}

/// Marks and densities as in the middle of a pass that is solving a segment.
void beginPass(RandomDesign& tiny, const Segment* seg)
{
    for (Segment* segment : tiny.design.segments) {
        tiny.legalizer.segDone.push_back(segment == seg || tiny.random.pick(0, 2) == 0);
        tiny.legalizer.segDensity.push_back(tiny.legalizer.getDensity(segment));
    }
}

std::vector<std::vector<std::string>> namesInSegments(const Design& design)
{
    std::vector<std::vector<std::string>> names;
    for (const Segment* segment : design.segments) {
        names.emplace_back();
        for (const Component* comp : segment->components) {
            names.back().push_back(comp->name);
        }
    }
    return names;
}

TEST(GlobalMoveOfRandomDesigns, AgreesWithADirectComputation)
{
    int moves = 0;
    for (uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        Segment* seg = tiny.anySegment();
        beginPass(tiny, seg);
        const int need = tiny.random.pick(1, 8);

        RandomDesign direct(seed);
        Segment* directSeg = direct.anySegment();
        beginPass(direct, directSeg);

        const auto before = namesInSegments(tiny.design);
        EXPECT_EQ(tiny.legalizer.globalMove(seg, need), directGlobalMove(direct, directSeg, need));
        EXPECT_EQ(tiny.places(), direct.places());
        EXPECT_EQ(namesInSegments(tiny.design), namesInSegments(direct.design));
        moves += before == namesInSegments(tiny.design) ? 0 : 1;
    }
    EXPECT_GT(moves, 50);
}

} // namespace
