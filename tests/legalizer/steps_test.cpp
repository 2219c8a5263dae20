// SPDX-License-Identifier: BSD-3-Clause
// The two steps of a segment with every method, and the greedy colourings.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <map>

#include "legalizer/legalizer.h"
#include "legalizer/randomDesign.h"
#include "legalizer/segLegalizer.h"
#include "support/extremes.h"
#include "support/tinyDesign.h"

namespace {

using test::LARGEST;
using test::RandomDesign;
using test::reportOf;
using test::SMALLEST;
using test::TinyDesign;
using Places = std::vector<std::array<int32_t, 4>>;
using Solve = std::function<void(SegLegalizer&)>;

constexpr uint32_t TRIALS = 200;

// --- which program a step runs

struct MethodCase {
    const char* name;
    int algo;
    Solve step1;
    Solve step2;
};

void PrintTo(const MethodCase& row, std::ostream* out)
{
    *out << row.name;
}

void nothing(SegLegalizer&) {}

const std::vector<MethodCase>& methods()
{
    static const std::vector<MethodCase> s_methods = {
        {"ZeroPlacesAndColoursJointlyInBothSteps", 0, &SegLegalizer::solveTPLOSR, &SegLegalizer::solveTPLOSR},
        {"OneColoursAndThenPlaces", 1, &SegLegalizer::solveTPL, &SegLegalizer::solveOSR},
        {"TwoIsGreedyInStepOneAlone", 2, &SegLegalizer::solveGreedy, nothing},
        {"ThreeShiftsLocallyInBothSteps", 3, [](SegLegalizer& s) { s.solveLdp(1); },
         [](SegLegalizer& s) { s.solveLdp(2); }},
        {"FourShiftsLocallyWithPruningInBothSteps", 4, [](SegLegalizer& s) { s.solveLdpFast(1); },
         [](SegLegalizer& s) { s.solveLdpFast(2); }},
        {"FiveRunsNothing", 5, nothing, nothing},
        {"MinusOneRunsNothing", -1, nothing, nothing},
        {"MinusFourRunsNothing", -4, nothing, nothing},
        {"TheSmallestNumberRunsNothing", SMALLEST, nothing, nothing},
        {"TheLargestNumberRunsNothing", LARGEST, nothing, nothing}};
    return s_methods;
}

class Method : public testing::TestWithParam<MethodCase> {};

TEST_P(Method, StepOneRunsItsProgramThenColoursWhatHasNoColourAndReturnsTheOverflow)
{
    for (uint32_t seed = 0; seed < TRIALS; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        tiny.design.algo = GetParam().algo;
        Segment* segment = tiny.anySegment();
        std::srand(seed);
        const int overflow = SegLegalizer(&tiny.legalizer, segment).solveStep1();

        RandomDesign direct(seed);
        Segment* directSegment = direct.anySegment();
        SegLegalizer solver(&direct.legalizer, directSegment);
        int directOverflow = 0;
        if (!directSegment->components.empty()) {
            std::srand(seed);
            GetParam().step1(solver);
            solver.postGreedyColorAssignment();
            directOverflow = direct.legalizer.getColoredSiteNum(directSegment) - directSegment->numSites;
        }
        EXPECT_EQ(tiny.places(), direct.places());
        EXPECT_EQ(overflow, directOverflow);
    }
}

TEST_P(Method, StepTwoRunsItsProgramAloneAndReturnsOne)
{
    for (uint32_t seed = 0; seed < TRIALS; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        tiny.design.algo = GetParam().algo;
        EXPECT_EQ(SegLegalizer(&tiny.legalizer, tiny.anySegment()).solveStep2(), 1);

        RandomDesign direct(seed);
        Segment* directSegment = direct.anySegment();
        SegLegalizer solver(&direct.legalizer, directSegment);
        if (!directSegment->components.empty()) {
            GetParam().step2(solver);
        }
        EXPECT_EQ(tiny.places(), direct.places());
    }
}

TEST_P(Method, EmptySegmentGivesZeroThenOneAndNothingHappens)
{
    TinyDesign tiny;
    tiny.addComponent(nullptr, tiny.addCell(2, {0, 1}), 0, -1);
    Segment* segment = tiny.addSegment(0, 0, 5);
    tiny.design.algo = GetParam().algo;
    const auto before = tiny.places();
    SegLegalizer solver(&tiny.legalizer, segment);
    EXPECT_EQ(reportOf([&] {
                  EXPECT_EQ(solver.solveStep1(), 0);
                  EXPECT_EQ(solver.solveStep2(), 1);
              }),
              "");
    EXPECT_EQ(tiny.places(), before);
    segment->numSites = -3;
    EXPECT_EQ(solver.solveStep1(), 0) << "nothing is taken from the capacity";
}

INSTANTIATE_TEST_SUITE_P(Steps, Method, testing::ValuesIn(methods()),
                         [](const auto& row) { return row.param.name; });

/// Counts the trials in which two programs give different places.
int countDifferences(const Solve& one, const Solve& other)
{
    int differences = 0;
    for (uint32_t seed = 0; seed < TRIALS; ++seed) {
        const auto placesAfter = [seed](const Solve& solve) {
            RandomDesign tiny(seed);
            SegLegalizer solver(&tiny.legalizer, tiny.anySegment());
            std::srand(seed);
            solve(solver);
            return tiny.places();
        };
        differences += placesAfter(one) == placesAfter(other) ? 0 : 1;
    }
    return differences;
}

TEST(Method, TrialsTellEveryTwoProgramsApart)
{
    const std::vector<MethodCase> programs(methods().begin(), methods().begin() + 6);
    for (size_t i = 0; i < programs.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            if (programs[i].algo != 4 || programs[j].algo != 3) { // these two: the next test
                EXPECT_GT(countDifferences(programs[i].step1, programs[j].step1), 0)
                    << programs[i].algo << " and " << programs[j].algo << ", step one";
            }
        }
    }
    for (const size_t i : {0U, 1U, 3U, 4U}) {
        EXPECT_GT(countDifferences(programs[i].step2, nothing), 0) << programs[i].algo << ", step two";
    }
    EXPECT_GT(countDifferences(programs[3].step1, programs[3].step2), 0);
    EXPECT_GT(countDifferences(programs[4].step1, programs[4].step2), 0);
}

TEST(Method, ThreeKeepsWhatFourPrunes)
{
    // What is pruned is never needed, unless sums wrap around. Here the middle component costs 0 at site 4
    // and 900000000 at site 5, twice, for it stands in two pairs; with the 900000000 of the last one at site
    // 8 that is a negative sum.
    for (const int algo : {3, 4}) {
        for (const bool isStepTwo : {false, true}) {
            SCOPED_TRACE(std::to_string(algo) + (isStepTwo ? ", step two" : ", step one"));
            TinyDesign tiny;
            WEIGHT_WRLENG = 9e8F;
            LDP_M = 1; // shifts by -2, -1 and 0
            const int cell = tiny.addCell(1, {0});
            Segment* segment = tiny.addSegment(0, 0, 20);
            tiny.addComponent(segment, cell, 2);
            Component* middle = tiny.addComponent(segment, cell, 6);
            Component* last = tiny.addComponent(segment, cell, 10);
            tiny.addNet({middle}, {tiny.addPin(4 * SITE_WIDTH, 0)});
            tiny.addNet({last}, {tiny.addPin(9 * SITE_WIDTH, 0)});
            tiny.design.algo = algo;
            SegLegalizer solver(&tiny.legalizer, segment);
            if (isStepTwo) {
                solver.solveStep2();
            } else {
                solver.solveStep1();
            }
            EXPECT_EQ(middle->siteX, algo == 3 ? 5 : 4);
            EXPECT_EQ(last->siteX, algo == 3 ? 8 : 9);
        }
    }
}

TEST(StepOne, ReturnsHowManySitesAreMissingOrLeft)
{
    TinyDesign tiny;
    const int cell = tiny.addCell(2, {0});
    tiny.setDist(cell, cell, 0, 0, 1);
    Segment* segment = tiny.addSegment(0, 0, 5);
    tiny.addComponent(segment, cell, 0);
    tiny.addComponent(segment, cell, 2);
    tiny.design.algo = -1;
    for (const auto& [numSites, overflow] : std::map<int, int>{{4, 1}, {5, 0}, {6, -1}, {0, 5}, {-2, 7}}) {
        segment->numSites = numSites;
        EXPECT_EQ(SegLegalizer(&tiny.legalizer, segment).solveStep1(), overflow);
    }
}

TEST(StepOne, OfANumberWithoutProgramOnlyFillsInMissingColoursAndCounts)
{
    TinyDesign tiny;
    const int cell = tiny.addCell(2, {0, 0});
    tiny.setDist(cell, cell, 0, 0, 1);
    Segment* segment = tiny.addSegment(0, 0, 5);
    tiny.addComponent(segment, cell, 0, 0);
    tiny.addComponent(segment, cell, 1, -1); // it overlaps the first, and stays there
    tiny.addComponent(segment, cell, 9, 0);
    for (const int algo : {-1, 5}) {
        tiny.design.algo = algo;
        tiny.design.components[1]->solution = -1;
        EXPECT_EQ(SegLegalizer(&tiny.legalizer, segment).solveStep1(), 6 - 5);
        EXPECT_EQ(tiny.places(), (Places{{0, 0, 0, 0}, {1, 1, 190, 0}, {0, 9, 9 * 190, 0}}));
        EXPECT_EQ(SegLegalizer(&tiny.legalizer, segment).solveStep2(), 1);
        EXPECT_EQ(tiny.places(), (Places{{0, 0, 0, 0}, {1, 1, 190, 0}, {0, 9, 9 * 190, 0}}));
    }
}

TEST(StepOne, FillsInColoursThatItsProgramCouldNotGive)
{
    TinyDesign tiny;
    const int cell = tiny.addCell(1, {0, 0});
    const int blank = tiny.addCell(1, {});
    Segment* segment = tiny.addSegment(0, 0, 9);
    tiny.addComponent(segment, cell, 0, 1);
    tiny.addComponent(segment, cell, 3, -1);
    tiny.addComponent(segment, blank, 6, -1); // no solution: no way to the end of the colouring graph
    tiny.design.algo = 1;
    EXPECT_EQ(SegLegalizer(&tiny.legalizer, segment).solveStep1(), 3 - 9);
    EXPECT_EQ(tiny.places(), (Places{{1, 0, 0, 0}, {0, 3, 3 * 190, 0}, {0, 6, 6 * 190, 0}}));
}

TEST(Algorithms, HaveTheirNumbers)
{
    EXPECT_EQ(SegLegalizer::ALGO_JOINT, 0);
    EXPECT_EQ(SegLegalizer::ALGO_SPD, 1);
    EXPECT_EQ(SegLegalizer::ALGO_GREEDY, 2);
    EXPECT_EQ(SegLegalizer::ALGO_LDP, 3);
    EXPECT_EQ(SegLegalizer::ALGO_LDP_FAST, 4);
}

// --- greedy placement

/// A segment at 1000 and cells of 2 sites with three solutions.
class SolveGreedy : public testing::Test {
protected:
    /// Spacing in sites from the left cell in a solution to the right cell in each of its solutions.
    void setSpacings(int leftSolution, const std::vector<int>& sites)
    {
        for (size_t j = 0; j < sites.size(); ++j) {
            tiny.setDist(left, right, leftSolution, static_cast<int>(j), sites[j] * SITE_WIDTH);
        }
    }

    void solve() { SegLegalizer(&tiny.legalizer, segment).solveGreedy(); }

    TinyDesign tiny;
    Segment* segment = tiny.addSegment(1000, 1900, 20);
    const int left = tiny.addCell(2, {0});
    const int right = tiny.addCell(2, {0, 0, 0});
};

TEST_F(SolveGreedy, EmptySegmentIsLeftAndDrawsNothing)
{
    std::srand(5);
    const int first = std::rand();
    std::srand(5);
    solve();
    EXPECT_EQ(std::rand(), first);
}

TEST_F(SolveGreedy, FirstComponentsSolutionIsDrawnAmongThoseOfItsCell)
{
    Component* first = tiny.addComponent(segment, right, 3, -1);
    tiny.addComponent(segment, left, 6);
    std::srand(42);
    std::vector<int> drawn;
    for (int i = 0; i < 20; ++i) {
        drawn.push_back(std::rand());
    }
    std::srand(42);
    for (const int number : drawn) { // one number a segment
        solve();
        EXPECT_EQ(first->solution, number % 3);
    }
    EXPECT_EQ(first->siteX, 3);
    EXPECT_EQ(first->x, 1000 + 3 * SITE_WIDTH);
}

TEST_F(SolveGreedy, NumberIsDrawnEvenForASingleSolution)
{
    tiny.addComponent(segment, left, 3);
    std::srand(5);
    std::rand();
    const int second = std::rand();
    std::srand(5);
    solve();
    EXPECT_EQ(std::rand(), second);
}

TEST_F(SolveGreedy, FirstComponentWithoutSolutionsTakesZero)
{
    Component* first = tiny.addComponent(segment, tiny.addCell(1, {}), 3, 9);
    solve();
    EXPECT_EQ(first->solution, 0);
}

TEST_F(SolveGreedy, ComponentTooCloseIsPushedRightToExactlyItsSpacing)
{
    setSpacings(0, {3, 2, 4});
    Component* first = tiny.addComponent(segment, left, 1);
    for (const int siteX : {0, 1, 3, 4, 5}) {
        SCOPED_TRACE(siteX);
        segment->components = {first};
        Component* comp = tiny.addComponent(segment, right, siteX);
        solve();
        EXPECT_EQ(comp->siteX, 1 + 2 + 2);
        EXPECT_EQ(comp->x, 1000 + 5 * SITE_WIDTH);
        EXPECT_EQ(comp->solution, 1);
        EXPECT_EQ(comp->y, 1900);
    }
}

TEST_F(SolveGreedy, GapLargerThanTheSpacingIsKept)
{
    setSpacings(0, {3, 2, 4});
    tiny.addComponent(segment, left, 1);
    Component* comp = tiny.addComponent(segment, right, 6);
    comp->x += 7; // not on a site: it is not even touched
    solve();
    EXPECT_EQ(comp->siteX, 6);
    EXPECT_EQ(comp->x, 1000 + 6 * SITE_WIDTH + 7);
    EXPECT_EQ(comp->solution, 1);
}

TEST_F(SolveGreedy, GapOfExactlyTheSpacingIsKept)
{
    setSpacings(0, {3, 2, 4});
    tiny.addComponent(segment, left, 1);
    Component* comp = tiny.addComponent(segment, right, 5);
    comp->x += 7;
    solve();
    EXPECT_EQ(comp->siteX, 5);
    EXPECT_EQ(comp->x, 1000 + 5 * SITE_WIDTH + 7);
}

TEST_F(SolveGreedy, OfEquallyCloseSolutionsTheLowestIsTaken)
{
    setSpacings(0, {3, 1, 1});
    tiny.addComponent(segment, left, 0);
    Component* comp = tiny.addComponent(segment, right, 9, 2);
    solve();
    EXPECT_EQ(comp->solution, 1);
    setSpacings(0, {0, 0, 0});
    solve();
    EXPECT_EQ(comp->solution, 0);
}

TEST_F(SolveGreedy, SpacingsCompareAsWholeSites)
{
    tiny.setDist(left, right, 0, 0, 190); // one site each
    tiny.setDist(left, right, 0, 1, 1);
    tiny.setDist(left, right, 0, 2, 100);
    tiny.addComponent(segment, left, 0);
    Component* comp = tiny.addComponent(segment, right, 2, 2);
    solve();
    EXPECT_EQ(comp->solution, 0);
    EXPECT_EQ(comp->siteX, 3);
}

TEST_F(SolveGreedy, StitchesCountForNothing)
{
    tiny.design.lut.cells[static_cast<size_t>(right)]->stitchNums = {9, 0, 0};
    tiny.addComponent(segment, left, 0);
    Component* comp = tiny.addComponent(segment, right, 9, 2);
    solve();
    EXPECT_EQ(comp->solution, 0);
}

TEST_F(SolveGreedy, PushesGoOnToTheRightBeyondTheEnd)
{
    segment->numSites = 5;
    tiny.addComponent(segment, left, 0);
    tiny.addComponent(segment, left, 0);
    Component* last = tiny.addComponent(segment, left, 0);
    tiny.design.algo = 2;
    EXPECT_EQ(SegLegalizer(&tiny.legalizer, segment).solveStep1(), 6 - 5);
    EXPECT_EQ(last->siteX, 4);
    EXPECT_EQ(last->x, 1000 + 4 * SITE_WIDTH);
}

TEST_F(SolveGreedy, EachChoiceReadsTheNewSolutionOfTheLeftNeighbour)
{
    const int third = tiny.addCell(1, {0, 0});
    setSpacings(0, {5, 0, 5});                        // the second takes solution 1
    tiny.setDist(right, third, 0, 0, 0);              // which the third would take solution 0 behind, if it
    tiny.setDist(right, third, 0, 1, 9 * SITE_WIDTH); // were still 0
    tiny.setDist(right, third, 1, 0, 9 * SITE_WIDTH);
    tiny.addComponent(segment, left, 0);
    tiny.addComponent(segment, right, 2, 0);
    Component* comp = tiny.addComponent(segment, third, 4, 0);
    solve();
    EXPECT_EQ(comp->solution, 1);
    EXPECT_EQ(comp->siteX, 4);
}

TEST_F(SolveGreedy, PushToASiteLeftOfTheSegmentKeepsXAndSiteXFollowsFromIt)
{
    tiny.addComponent(segment, left, -9);
    Component* comp = tiny.addComponent(segment, right, -8);
    comp->x = 1000 - 3 * SITE_WIDTH + 1;
    solve(); // to -7, which is not in the segment
    EXPECT_EQ(comp->x, 1000 - 3 * SITE_WIDTH + 1);
    EXPECT_EQ(comp->siteX, -2);
}

TEST_F(SolveGreedy, PushToSiteZeroIsInTheSegment)
{
    tiny.addComponent(segment, left, -2);
    Component* comp = tiny.addComponent(segment, right, -1);
    solve();
    EXPECT_EQ(comp->siteX, 0);
    EXPECT_EQ(comp->x, 1000);
}

TEST_F(SolveGreedy, ComponentWithoutSolutionsTakesZeroAndKeepsX)
{
    tiny.addComponent(segment, left, 1);
    Component* comp = tiny.addComponent(segment, tiny.addCell(1, {}), 9, 7);
    comp->x = 1000 + 5 * SITE_WIDTH + 1;
    solve(); // the largest spacing there is wraps around to a negative site
    EXPECT_EQ(comp->solution, 0);
    EXPECT_EQ(comp->x, 1000 + 5 * SITE_WIDTH + 1);
    EXPECT_EQ(comp->siteX, 6);
}

// --- filling in colours

/// As SolveGreedy, with spacings that differ from solution to solution.
class PostGreedy : public SolveGreedy {
protected:
    void assign() { SegLegalizer(&tiny.legalizer, segment).postGreedyColorAssignment(); }
};

TEST_F(PostGreedy, EmptySegmentIsLeftAndNothingIsDrawn)
{
    std::srand(5);
    const int first = std::rand();
    std::srand(5);
    assign();
    tiny.addComponent(segment, left, 0, -1);
    tiny.addComponent(segment, right, 2, -1);
    assign();
    EXPECT_EQ(std::rand(), first);
}

TEST_F(PostGreedy, FirstComponentIsLeftEvenWithoutAColour)
{
    Component* first = tiny.addComponent(segment, right, 0, -3);
    assign();
    EXPECT_EQ(first->solution, -3);
}

TEST_F(PostGreedy, ColoursThatAreThereAreKept)
{
    setSpacings(0, {0, 5, 5});
    tiny.addComponent(segment, left, 0, 0);
    Component* zero = tiny.addComponent(segment, right, 2, 0);
    Component* two = tiny.addComponent(segment, right, 4, 2);
    assign();
    EXPECT_EQ(zero->solution, 0);
    EXPECT_EQ(two->solution, 2);
}

TEST_F(PostGreedy, MissingColourIsTheOneThatNeedsTheLeastSpacing)
{
    setSpacings(0, {3, 2, 1});
    tiny.addComponent(segment, left, 0, 0);
    Component* comp = tiny.addComponent(segment, right, 2, -1);
    assign();
    EXPECT_EQ(comp->solution, 2);
}

TEST_F(PostGreedy, OfEquallyCloseSolutionsTheLowestIsTaken)
{
    setSpacings(0, {3, 1, 1});
    tiny.addComponent(segment, left, 0, 0);
    Component* comp = tiny.addComponent(segment, right, 2, -5);
    assign();
    EXPECT_EQ(comp->solution, 1);
}

TEST_F(PostGreedy, WorksStrictlyFromLeftToRight)
{
    tiny.setDist(right, right, 1, 0, 1);
    tiny.setDist(right, right, 1, 1, 1);
    tiny.setDist(right, right, 2, 0, 1);
    tiny.setDist(right, right, 2, 2, 1);
    tiny.addComponent(segment, right, 0, 1);
    for (const int siteX : {2, 4, 6}) {
        tiny.addComponent(segment, right, siteX, -1);
    }
    assign(); // behind 1 only 2 needs no spacing, behind 2 only 1
    EXPECT_EQ(tiny.design.components[1]->solution, 2);
    EXPECT_EQ(tiny.design.components[2]->solution, 1);
    EXPECT_EQ(tiny.design.components[3]->solution, 2);
}

TEST_F(PostGreedy, CellWithoutSolutionsGetsZero)
{
    tiny.addComponent(segment, left, 0, 0);
    Component* comp = tiny.addComponent(segment, tiny.addCell(1, {}), 2, -1);
    assign();
    EXPECT_EQ(comp->solution, 0);
}

TEST_F(PostGreedy, MovesNothing)
{
    setSpacings(0, {3, 2, 4});
    tiny.addComponent(segment, left, 4, 0);
    tiny.addComponent(segment, right, 4, -1); // on top of the first
    assign();
    EXPECT_EQ(tiny.places(), (Places{{0, 4, 1760, 1900}, {1, 4, 1760, 1900}}));
}

// --- against a direct computation

/// The solutions and the spacings that a component may have behind its left neighbour.
std::multimap<int, int> solutionsBySpacing(const Design& design, const Component& left, const Component& comp)
{
    std::multimap<int, int> bySpacing; // equal keys stay in the order of insertion
    const auto colours = static_cast<int>(design.cellOf(comp).colors.size());
    for (int j = 0; j < colours; ++j) {
        bySpacing.emplace(design.safeSites(left, left.solution, comp, j), j);
    }
    return bySpacing;
}

TEST(GreedyOfRandomDesigns, PlacementAgreesWithADirectComputation)
{
    int pushed = 0;
    for (uint32_t seed = 0; seed < TRIALS; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        Segment* segment = tiny.anySegment();
        RandomDesign direct(seed);
        const Segment* directSegment = direct.anySegment();

        std::srand(seed);
        SegLegalizer(&tiny.legalizer, segment).solveGreedy();

        std::srand(seed);
        const Component* left = nullptr;
        for (Component* comp : directSegment->components) {
            if (left == nullptr) {
                comp->solution = std::rand() % static_cast<int>(direct.design.cellOf(*comp).colors.size());
            } else {
                const auto [spacing, solution] = *solutionsBySpacing(direct.design, *left, *comp).begin();
                comp->solution = solution;
                const int least = left->siteX + direct.design.cellOf(*left).siteWidth + spacing;
                if (comp->siteX < least) {
                    comp->siteX = least;
                    comp->x = directSegment->x + least * SITE_WIDTH;
                    ++pushed;
                }
            }
            left = comp;
        }
        EXPECT_EQ(tiny.places(), direct.places());
    }
    EXPECT_GT(pushed, 50);
}

TEST(GreedyOfRandomDesigns, ColoursAgreeWithADirectComputation)
{
    int filled = 0;
    for (uint32_t seed = 0; seed < TRIALS; ++seed) {
        SCOPED_TRACE(seed);
        RandomDesign tiny(seed);
        Segment* segment = tiny.anySegment();
        RandomDesign direct(seed);
        const Segment* directSegment = direct.anySegment();

        SegLegalizer(&tiny.legalizer, segment).postGreedyColorAssignment();

        const Component* left = nullptr;
        for (Component* comp : directSegment->components) {
            if (left != nullptr && comp->solution < 0) {
                comp->solution = solutionsBySpacing(direct.design, *left, *comp).begin()->second;
                ++filled;
            }
            left = comp;
        }
        EXPECT_EQ(tiny.places(), direct.places());
    }
    EXPECT_GT(filled, 50);
}

} // namespace
