// SPDX-License-Identifier: BSD-3-Clause
// Densities, coloured counts, and the passes over all segments.
#include "legalizer/legalizer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <limits>

#include "legalizer/randomDesign.h"
#include "support/property.h"
#include "support/tinyDesign.h"

namespace {

using test::RandomDesign;
using test::reportOf;
using test::reportOfEndedRun;
using test::TinyDesign;

constexpr auto GREEDY_ERROR = "ERROR| cannot solve the placement through greedy algorithm\n";
constexpr auto MOVE_ERROR = "ERROR| can NOT solve the placement through global moving\n";

/// A cell of so many sites, whatever its width in DBU.
int addCellOfSites(TinyDesign& tiny, int sites)
{
    const int cell = tiny.addCell(1, {0});
    tiny.design.lut.cells.back()->siteWidth = sites;
    return cell;
}

TEST(Legalizer, StartsWithItsDesignAndNothingElse)
{
    Design design;
    const Legalizer legalizer(&design);
    EXPECT_EQ(legalizer.design, &design);
    EXPECT_TRUE(legalizer.segDone.empty());
    EXPECT_TRUE(legalizer.segDensity.empty());
    EXPECT_EQ(legalizer.passCount, 0);
    EXPECT_EQ(legalizer.lastTargetSeg, nullptr);
}

TEST(Legalizer, RefinementClearsEveryMarkAndKeepsTheirNumber)
{
    TinyDesign tiny;
    tiny.legalizer.segDone = {true, false, true};
    tiny.legalizer.refinement();
    EXPECT_EQ(tiny.legalizer.segDone, std::vector<bool>(3, false));
}

TEST(Legalizer, DebugGlobalMoveDoesNothing)
{
    RandomDesign design(1);
    design.legalizer.segDone = {true, false};
    const auto before = design.places();
    EXPECT_EQ(reportOf([&] {
                  for (const int number : {-1, 0, 1}) {
                      design.legalizer.debugGlobalMove(number);
                  }
              }),
              "");
    EXPECT_EQ(design.places(), before);
    EXPECT_EQ(design.legalizer.segDone, (std::vector<bool>{true, false}));
}

TEST(ByDec, PutsTheLargerValueFirstWhateverTheIndex)
{
    EXPECT_TRUE(byDec({0.5F, 1}, {0.25F, 9}));
    EXPECT_FALSE(byDec({0.25F, 9}, {0.5F, 1}));
    EXPECT_TRUE(byDec({0.25F, 9}, {-0.5F, 1}));
}

TEST(ByDec, PutsEqualValuesInNoOrder)
{
    EXPECT_FALSE(byDec({0.5F, 1}, {0.5F, 2}));
    EXPECT_FALSE(byDec({0.5F, 2}, {0.5F, 1}));
}

// --- density

struct DensityCase {
    const char* name;
    std::vector<int> widths; ///< of the components, sites
    int numSites;
    float density;
};

void PrintTo(const DensityCase& row, std::ostream* out)
{
    *out << row.name;
}

class Density : public testing::TestWithParam<DensityCase> {};

TEST_P(Density, IsTheSitesOfTheCellsOverTheCapacity)
{
    TinyDesign tiny;
    Segment* segment = tiny.addSegment(0, 0, GetParam().numSites);
    for (const int sites : GetParam().widths) {
        tiny.addComponent(segment, addCellOfSites(tiny, sites), 0);
    }
    EXPECT_EQ(tiny.legalizer.getDensity(segment), GetParam().density);
}

INSTANTIATE_TEST_SUITE_P(
    Legalizer, Density,
    testing::Values(DensityCase{"OfAnEmptySegmentIsZero", {}, 10, 0.0F},
                    DensityCase{"AddsAllCells", {2, 1, 2}, 10, 0.5F},
                    DensityCase{"IsDividedInSinglePrecision", {1}, 3, 1.0F / 3.0F},
                    DensityCase{"OfAnOverfullSegmentIsAboveOne", {6, 6}, 10, 1.2F},
                    // A sum in single precision would stop at 16777216.
                    DensityCase{"IsSummedInIntegers", {16777216, 1, 1}, 1, 16777218.0F},
                    DensityCase{"OfCellsWithoutWidthIsZeroEvenWithoutCapacity", {0, 0}, 0, 0.0F},
                    DensityCase{"WithoutCapacityIsInfinite", {1}, 0, std::numeric_limits<float>::infinity()}),
    [](const auto& row) { return row.param.name; });

// --- coloured count

struct SpacingCase {
    const char* name;
    int siteWidth;
    int entry; ///< of the spacing table
    int sites; ///< between two neighbours
};

void PrintTo(const SpacingCase& row, std::ostream* out)
{
    *out << row.name;
}

class ColoredSiteNum : public testing::TestWithParam<SpacingCase> {};

TEST_P(ColoredSiteNum, CountsTheSpacingBetweenNeighbours)
{
    TinyDesign tiny;
    const int left = tiny.addCell(2, {0});
    const int right = tiny.addCell(3, {0});
    tiny.setDist(left, right, 0, 0, GetParam().entry);
    Segment* segment = tiny.addSegment(0, 0, 20);
    tiny.addComponent(segment, left, 0);
    tiny.addComponent(segment, right, 2);
    SITE_WIDTH = GetParam().siteWidth;
    EXPECT_EQ(tiny.legalizer.getColoredSiteNum(segment), 2 + GetParam().sites + 3);
}

INSTANTIATE_TEST_SUITE_P(Legalizer, ColoredSiteNum,
                         testing::Values(SpacingCase{"NeighboursWithSpacingZeroAddNoSites", 190, 0, 0},
                                         SpacingCase{"SpacingOfOneAddsOneSite", 190, 1, 1},
                                         SpacingCase{"SpacingUpToTheSiteWidthAddsOneSite", 190, 190, 1},
                                         SpacingCase{"SpacingAboveTheSiteWidthAddsTwoSites", 190, 191, 2},
                                         SpacingCase{"SpacingOfTwoSiteWidthsAddsTwoSites", 190, 380, 2},
                                         SpacingCase{"SpacingIsDividedByTheSiteWidthOfNow", 3, 7, 3},
                                         SpacingCase{"SiteWidthOfOneKeepsTheSpacing", 1, 7, 7},
                                         // In integers it would be 88303 sites.
                                         SpacingCase{"IsRoundedToSinglePrecisionFirst", 190, 16777381,
                                                     88302}),
                         [](const auto& row) { return row.param.name; });

TEST(ColoredSiteNum, OfOneComponentIsItsWidth)
{
    TinyDesign tiny;
    const int cell = tiny.addCell(3, {0});
    tiny.setDist(cell, cell, 0, 0, 500);
    Segment* segment = tiny.addSegment(0, 0, 10);
    tiny.addComponent(segment, cell, 4);
    EXPECT_EQ(tiny.legalizer.getColoredSiteNum(segment), 3);
}

TEST(ColoredSiteNum, TakesTheSpacingFromLeftToRightOfTheChosenSolutions)
{
    TinyDesign tiny;
    const int a = tiny.addCell(1, {0, 0});
    const int b = tiny.addCell(1, {0, 0});
    tiny.setDist(a, b, 0, 1, 190);
    tiny.setDist(a, b, 1, 0, 380);
    tiny.setDist(b, a, 0, 1, 570);
    tiny.setDist(b, a, 1, 0, 760);
    Segment* segment = tiny.addSegment(0, 0, 10);
    Component* left = tiny.addComponent(segment, a, 0, 0);
    Component* right = tiny.addComponent(segment, b, 1, 1);
    EXPECT_EQ(tiny.legalizer.getColoredSiteNum(segment), 2 + 1);
    std::swap(left->solution, right->solution);
    EXPECT_EQ(tiny.legalizer.getColoredSiteNum(segment), 2 + 2);
    segment->components.reverse(); // the list decides who is left, not siteX
    EXPECT_EQ(tiny.legalizer.getColoredSiteNum(segment), 2 + 3);
    std::swap(left->solution, right->solution);
    EXPECT_EQ(tiny.legalizer.getColoredSiteNum(segment), 2 + 4);
}

TEST(ColoredSiteNum, RoundsUpPerPairNotOverTheSum)
{
    TinyDesign tiny;
    const int cell = tiny.addCell(1, {0});
    tiny.setDist(cell, cell, 0, 0, 1);
    Segment* segment = tiny.addSegment(0, 0, 10);
    for (int site = 0; site < 4; ++site) {
        tiny.addComponent(segment, cell, site);
    }
    EXPECT_EQ(tiny.legalizer.getColoredSiteNum(segment), 4 + 3);
}

TEST(ColoredSiteNum, OfASolutionThatTheCellLacksHasNoSpacing)
{
    TinyDesign tiny;
    const int cell = tiny.addCell(1, {0});
    tiny.setDist(cell, cell, 0, 0, 190);
    Segment* segment = tiny.addSegment(0, 0, 10);
    tiny.addComponent(segment, cell, 0, -1);
    tiny.addComponent(segment, cell, 1, 0);
    tiny.addComponent(segment, cell, 2, 1);
    EXPECT_EQ(tiny.legalizer.getColoredSiteNum(segment), 3);
}

TEST(ColoredSiteNum, AgreesWithADirectSum)
{
    for (uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        const LUTable& lut = tiny.design.lut;
        for (Segment* segment : tiny.design.segments) {
            if (segment->components.empty()) {
                continue;
            }
            const std::vector<Component*> comps(segment->components.begin(), segment->components.end());
            int sum = 0;
            for (size_t i = 0; i < comps.size(); ++i) {
                const auto cell = static_cast<size_t>(comps[i]->cellIdx);
                sum += lut.cells[cell]->siteWidth;
                if (i > 0 && comps[i - 1]->solution >= 0 && comps[i]->solution >= 0) {
                    const int entry =
                        lut.distTable[static_cast<size_t>(comps[i - 1]->cellIdx)][cell][static_cast<size_t>(
                            comps[i - 1]->solution)][static_cast<size_t>(comps[i]->solution)];
                    sum += (entry + SITE_WIDTH - 1) / SITE_WIDTH;
                }
            }
            EXPECT_EQ(tiny.legalizer.getColoredSiteNum(segment), sum);
            EXPECT_EQ(tiny.legalizer.getColoredDensity(segment),
                      static_cast<float>(sum) / static_cast<float>(segment->numSites));
        }
    }
}

TEST(ColoredDensity, IsTheColoredCountOverTheCapacity)
{
    TinyDesign tiny;
    const int cell = tiny.addCell(1, {0});
    tiny.setDist(cell, cell, 0, 0, 1);
    Segment* segment = tiny.addSegment(0, 0, 7);
    tiny.addComponent(segment, cell, 0);
    tiny.addComponent(segment, cell, 1);
    EXPECT_EQ(tiny.legalizer.getColoredDensity(segment), 3.0F / 7.0F);
}

TEST(ColoredDensity, OfACountOfZeroIsZeroEvenWithoutCapacity)
{
    TinyDesign tiny;
    Segment* segment = tiny.addSegment(0, 0, 0);
    tiny.addComponent(segment, addCellOfSites(tiny, 0), 0);
    EXPECT_EQ(tiny.legalizer.getColoredDensity(segment), 0.0F);
}

// --- the passes

/// Cells for segments that overflow: an "end" cell keeps 8 sites between itself and another one.
class SolveDPlace : public testing::Test {
protected:
    SolveDPlace()
    {
        tiny.setDist(end, end, 0, 0, 8 * SITE_WIDTH);
        tiny.design.algo = -1; // keeps what is there
    }

    /// Adds a pin, far from the component in y, that draws it to a point.
    void draw(Component* comp, int x, int y) { tiny.addNet({comp}, {tiny.addPin(x, y)}); }

    void solve()
    {
        tiny.design.initDesignBound();
        tiny.legalizer.solveDPlace();
    }

    /// The solutions that rand() draws, from a known start, for the first components of segments in the
    /// order of their visit.
    std::vector<int> drawnSolutions(size_t count, int colours)
    {
        std::srand(1);
        std::vector<int> drawn;
        for (size_t i = 0; i < count; ++i) {
            drawn.push_back(std::rand() % colours);
        }
        std::srand(1);
        return drawn;
    }

    /// A segment of 8 sites with two components that need 10.
    Segment* addOverfull(int x, int y, Component** left, Component** right)
    {
        Segment* segment = tiny.addSegment(x, y, 8);
        *left = tiny.addComponent(segment, end, 2);
        *right = tiny.addComponent(segment, end, 4);
        return segment;
    }

    TinyDesign tiny;
    const int end = tiny.addCell(1, {0});
    const int plain = tiny.addCell(1, {0});
};

TEST_F(SolveDPlace, WithoutSegmentsReturnsAfterOnePass)
{
    tiny.legalizer.segDone = {true};
    tiny.legalizer.segDensity = {1.0F};
    tiny.legalizer.passCount = 99;
    EXPECT_EQ(reportOf([&] { solve(); }), "");
    EXPECT_EQ(tiny.legalizer.passCount, 1);
    EXPECT_TRUE(tiny.legalizer.segDone.empty());
    EXPECT_TRUE(tiny.legalizer.segDensity.empty());
}

TEST_F(SolveDPlace, EmptySegmentHasDensityZeroAndTriggersNoMove)
{
    for (const int algo : {-1, 0, 1, 2, 3, 4}) {
        SCOPED_TRACE(algo);
        tiny.design.algo = algo;
        tiny.addSegment(0, 0, 0); // even without any capacity
        EXPECT_EQ(reportOf([&] { solve(); }), "");
        EXPECT_EQ(tiny.legalizer.passCount, 1);
        EXPECT_EQ(tiny.legalizer.segDensity, std::vector<float>(tiny.design.segments.size(), 0.0F));
        EXPECT_EQ(tiny.legalizer.segDone, std::vector<bool>(tiny.design.segments.size(), true));
    }
}

TEST_F(SolveDPlace, VisitsTheDensestSegmentFirstAndAnEmptyOneLast)
{
    const int cell = tiny.addCell(2, std::vector<int>(50));
    const std::vector<int> capacities = {20, 4, 10};
    const std::vector<size_t> rank = {2, 0, 1};
    for (const int numSites : capacities) {
        tiny.addComponent(tiny.addSegment(0, 0, numSites), cell, 0);
    }
    tiny.addSegment(0, 0, 5);
    tiny.design.algo = 2; // draws one solution per segment
    const std::vector<int> drawn = drawnSolutions(3, 50);
    ASSERT_TRUE(drawn[0] != drawn[1] && drawn[1] != drawn[2] && drawn[0] != drawn[2]);
    solve();
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(tiny.design.components[i]->solution, drawn[rank[i]]) << i;
    }
}

TEST_F(SolveDPlace, VisitsEquallyDenseSegmentsInTheOrderOfAnUnstableSort)
{
    const int cell = tiny.addCell(2, std::vector<int>(50));
    test::Random random(3);
    std::vector<std::pair<float, int>> order;
    for (int i = 0; i < 40; ++i) {
        const int numSites = random.oneOf<int>({4, 8});
        tiny.addComponent(tiny.addSegment(0, 0, numSites), cell, 0);
        order.emplace_back(2.0F / static_cast<float>(numSites), i);
    }
    const auto denser = [](const auto& a, const auto& b) { return a.first > b.first; };
    auto stable = order;
    std::stable_sort(stable.begin(), stable.end(), denser);
    std::sort(order.begin(), order.end(), denser);
    ASSERT_NE(order, stable);
    tiny.design.algo = 2;
    const std::vector<int> drawn = drawnSolutions(40, 50);
    solve();
    for (size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(tiny.design.components[static_cast<size_t>(order[i].second)]->solution, drawn[i]) << i;
    }
}

TEST_F(SolveDPlace, SegmentThatIsExactlyFullIsNotMovedFrom)
{
    for (const int algo : {-1, 0, 1, 2, 3, 4}) {
        SCOPED_TRACE(algo);
        TinyDesign full;
        const int cell = full.addCell(2, {0});
        full.setDist(cell, cell, 0, 0, 1);
        Segment* segment = full.addSegment(0, 0, 5);
        full.addComponent(segment, cell, 0);
        full.addComponent(segment, cell, 3);
        full.design.algo = algo;
        EXPECT_EQ(reportOf([&] { full.legalizer.solveDPlace(); }), "");
        EXPECT_EQ(full.legalizer.passCount, 1);
        EXPECT_EQ(segment->components.size(), 2U);
        EXPECT_EQ(full.legalizer.lastTargetSeg, nullptr);
    }
}

TEST_F(SolveDPlace, GreedyMethodEndsTheRunAtTheFirstOverflow)
{
    Component* left = nullptr;
    Component* right = nullptr;
    addOverfull(0, 0, &left, &right);
    Component* later = tiny.addComponent(tiny.addSegment(0, SITE_HEIGHT, 50), plain, 0, 7);
    tiny.design.algo = 2;
    EXPECT_EQ(reportOfEndedRun([&] { solve(); }), GREEDY_ERROR);
    EXPECT_EQ(later->solution, 7) << "the less dense segment was solved all the same";
    EXPECT_EQ(tiny.design.segments[0]->components.size(), 2U);
}

TEST_F(SolveDPlace, OtherMethodsEndTheRunWhenMovingFreesTooFewSites)
{
    for (const int algo : {-1, 0, 1, 3, 4, 5}) {
        SCOPED_TRACE(algo);
        TinyDesign one;
        const int cell = one.addCell(1, {0});
        one.setDist(cell, cell, 0, 0, 8 * SITE_WIDTH);
        Segment* overfull = one.addSegment(0, 0, 8);
        one.addComponent(overfull, cell, 2);
        one.addComponent(overfull, cell, 4);
        one.design.algo = algo;
        EXPECT_EQ(reportOfEndedRun([&] { one.legalizer.solveDPlace(); }), MOVE_ERROR);
    }
}

TEST_F(SolveDPlace, SegmentIsMarkedBeforeItIsSolvedSoThatItIsNoTarget)
{
    Component* left = nullptr;
    Component* right = nullptr;
    Segment* overfull = addOverfull(0, 0, &left, &right);
    Segment* other = tiny.addSegment(0, SITE_HEIGHT, 50);
    tiny.addComponent(other, plain, 40);
    solve(); // the components stand in their own segment and are drawn nowhere else
    EXPECT_TRUE(overfull->components.empty());
    EXPECT_EQ(other->components.size(), 3U);
}

TEST_F(SolveDPlace, MovesOnlyIntoSegmentsThatThePassHasNotComeTo)
{
    Segment* dense = tiny.addSegment(0, SITE_HEIGHT, 2);
    tiny.addComponent(dense, plain, 1);
    Component* left = nullptr;
    Component* right = nullptr;
    Segment* overfull = addOverfull(0, 0, &left, &right);
    Segment* sparse = tiny.addSegment(0, 3 * SITE_HEIGHT, 50);
    tiny.addComponent(sparse, plain, 40);
    draw(right, 0, SITE_HEIGHT); // the densest segment is there
    solve();
    EXPECT_EQ(dense->components.size(), 1U);
    EXPECT_EQ(overfull->components, std::list<Component*>{left});
    EXPECT_EQ(sparse->components.front(), right);
}

TEST_F(SolveDPlace, TargetsAreChosenByTheDensitiesOfThePassStart)
{
    Segment* overfull = tiny.addSegment(0, 0, 3);
    for (int site = 0; site < 4; ++site) {
        draw(tiny.addComponent(overfull, end, site), 0, SITE_HEIGHT);
    }
    Segment* sparse = tiny.addSegment(0, SITE_HEIGHT, 100);
    tiny.addComponent(sparse, plain, 0);
    Segment* denser = tiny.addSegment(0, SITE_HEIGHT, 90);
    tiny.addComponent(denser, plain, 0);
    for (Segment* target : {sparse, denser}) {
        target->components.front()->x = 190;
    }
    solve();
    EXPECT_TRUE(overfull->components.empty());
    EXPECT_EQ(sparse->components.size(), 5U);
    EXPECT_EQ(denser->components.size(), 1U) << "it was the sparser one from the first move on";
}

TEST_F(SolveDPlace, MoveIsFollowedByAPassOverEverySegmentAgain)
{
    // With a range of 0 the local shift program puts a component that is alone one site to the left, so its
    // position tells how often its segment was solved.
    LDP_M = 0;
    tiny.design.algo = 3;
    Component* before = tiny.addComponent(tiny.addSegment(0, 0, 20), tiny.addCell(18, {0}), 7);
    Component* left = nullptr;
    Component* right = nullptr;
    Segment* overfull = addOverfull(0, SITE_HEIGHT, &left, &right);
    draw(right, 0, 2 * SITE_HEIGHT);
    Segment* target = tiny.addSegment(0, 2 * SITE_HEIGHT, 50);
    tiny.addComponent(target, plain, 30);
    solve();
    EXPECT_EQ(tiny.legalizer.passCount, 2);
    EXPECT_EQ(overfull->components, std::list<Component*>{left});
    EXPECT_EQ(target->components.front(), right);
    EXPECT_EQ(before->siteX, 7 - 2) << "solved before the move, and again after it";
    EXPECT_EQ(left->siteX, 2 - 2) << "step two after the move, and step one of the next pass";
}

TEST_F(SolveDPlace, DensitiesAndMarksAreTakenAnewInEveryPass)
{
    // When b has left, its neighbours meet and need still more room: a move in the second pass as well, into
    // a segment that the first pass has been to.
    Segment* crowded = tiny.addSegment(0, 0, 4);
    Component* a = tiny.addComponent(crowded, end, 0);
    Component* b = tiny.addComponent(crowded, tiny.addCell(3, {0}), 1);
    Component* c = tiny.addComponent(crowded, end, 3);
    draw(b, 0, 3 * SITE_HEIGHT);
    draw(c, 0, 2 * SITE_HEIGHT);
    Segment* target = tiny.addSegment(0, 2 * SITE_HEIGHT, 50);
    Component* there = tiny.addComponent(target, plain, 30);
    solve();
    EXPECT_EQ(tiny.legalizer.passCount, 3);
    EXPECT_EQ(crowded->components, std::list<Component*>{a});
    EXPECT_EQ(target->components, (std::list<Component*>{c, b, there}));
    EXPECT_EQ(tiny.legalizer.segDensity, (std::vector<float>{1.0F / 4.0F, 5.0F / 50.0F}));
    EXPECT_EQ(tiny.legalizer.segDone, std::vector<bool>(2, true));
}

TEST_F(SolveDPlace, TellsHowFarItHasComeAfterEverySegment)
{
    Component* left = nullptr;
    Component* right = nullptr;
    addOverfull(0, SITE_HEIGHT, &left, &right);
    draw(right, 0, 2 * SITE_HEIGHT);
    tiny.addComponent(tiny.addSegment(0, 2 * SITE_HEIGHT, 50), plain, 30);
    std::vector<std::array<int32_t, 5>> told;
    tiny.legalizer.onProgress = [&told](const vireloce::Progress& progress) {
        told.push_back({progress.pass, progress.segmentsDone, progress.numSegments, progress.overfull,
                        progress.movedOut});
    };
    solve();
    EXPECT_EQ(told, (std::vector<std::array<int32_t, 5>>{
                        {1, 1, 2, 1, 1}, {1, 2, 2, 1, 1}, {2, 1, 2, 0, 0}, {2, 2, 2, 0, 0}}));
}

TEST_F(SolveDPlace, SecondStepFollowsAMoveWithEveryMethod)
{
    struct StepTwo {
        int algo;
        int siteX; ///< of the component that stays, in a segment of 8 sites
    };
    // Without nets all sites cost the same: 0 and 1 place at the left end, 3 and 4 shift once per step two
    // and once in the next pass; where there is no step two it stays.
    for (const StepTwo& want : {StepTwo{-1, 5}, StepTwo{0, 0}, StepTwo{1, 0}, StepTwo{3, 3}, StepTwo{4, 3}}) {
        SCOPED_TRACE(want.algo);
        TinyDesign one;
        const int cell = one.addCell(1, {0});
        one.setDist(cell, cell, 0, 0, 8 * SITE_WIDTH);
        Segment* overfull = one.addSegment(0, 0, 8);
        Component* stays = one.addComponent(overfull, cell, 5);
        Component* goes = one.addComponent(overfull, cell, 6);
        one.addNet({goes}, {one.addPin(0, SITE_HEIGHT)});
        one.addComponent(one.addSegment(0, SITE_HEIGHT, 50), cell, 30);
        one.design.initDesignBound();
        one.design.algo = want.algo;
        LDP_M = 0;
        one.legalizer.solveDPlace();
        EXPECT_EQ(overfull->components, std::list<Component*>{stays});
        EXPECT_EQ(stays->siteX, want.siteX);
    }
}

TEST_F(SolveDPlace, SegmentThatFitsGetsAStepTwoFromTheTwoStepMethodAlone)
{
    struct StepTwo {
        int algo;
        int siteX;
    };
    LDP_M = 0;
    Component* comp = tiny.addComponent(tiny.addSegment(0, 0, 20), plain, 5);
    draw(comp, 9 * SITE_WIDTH, 0);
    // Step one of 1 only colours, its step two places; a step two of 3 or 4 would shift a second time.
    for (const StepTwo& want : {StepTwo{-1, 5}, StepTwo{1, 9}, StepTwo{2, 5}, StepTwo{3, 4}, StepTwo{4, 4}}) {
        SCOPED_TRACE(want.algo);
        comp->siteX = 5;
        comp->x = 5 * SITE_WIDTH;
        tiny.design.algo = want.algo;
        solve();
        EXPECT_EQ(comp->siteX, want.siteX);
        EXPECT_EQ(tiny.legalizer.passCount, 1);
    }
}

} // namespace
