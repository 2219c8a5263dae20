// SPDX-License-Identifier: BSD-3-Clause
// The measures of a placement, the final report, and the hooks that are no part of a run.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "app/parameters.h"
#include "support/extremes.h"
#include "support/property.h"
#include "support/tinyDesign.h"

namespace {

using test::LARGEST;
using test::SMALLEST;
using test::TinyDesign;

/// Adds a cell of some width, with one solution of no stitches.
int addCellOfWidth(TinyDesign& t, int width)
{
    const int cell = t.addCell(1, {0});
    t.design.lut.cells.back()->width = width;
    return cell;
}

/// Adds a component that is in no segment.
Component* addAt(TinyDesign& t, int cell, int x, int y)
{
    Component* comp = t.addComponent(nullptr, cell, 0);
    comp->x = x;
    comp->y = y;
    return comp;
}

// evaluateBound(), evaluateHPWL()

TEST(EvaluateBound, PointOfAComponentIsTheCentreOfItsCell)
{
    TinyDesign t;
    const int cell = addCellOfWidth(t, 401);
    Net* net = t.addNet({addAt(t, cell, 0, 0), addAt(t, cell, 1000, 0)});
    t.design.evaluateBound(net);
    EXPECT_EQ(net->boxXl, 200);
    EXPECT_EQ(net->boxXh, 1200);
    EXPECT_EQ(net->boxYl, 950);
    EXPECT_EQ(net->boxYh, 950);
    EXPECT_EQ(t.design.evaluateHPWL(), 1000);
}

TEST(EvaluateBound, HalvesAreTruncatedTowardZero)
{
    TinyDesign t;
    const int cell = addCellOfWidth(t, -401);
    t.design.lut.cells[0]->height = 3;
    Net* net = t.addNet({addAt(t, cell, 0, 0), addAt(t, cell, 0, 0)});
    t.design.evaluateBound(net);
    EXPECT_EQ(net->boxXl, -200);
    EXPECT_EQ(net->boxYl, 1);
}

TEST(EvaluateBound, PinIsAPoint)
{
    TinyDesign t;
    t.addNet({}, {t.addPin(0, 0), t.addPin(10, 20)});
    EXPECT_EQ(t.design.evaluateHPWL(), 30);
}

TEST(EvaluateBound, ComponentsAndPinsWidenOneBox)
{
    TinyDesign t;
    const int cell = addCellOfWidth(t, 380);
    Net* net = t.addNet({addAt(t, cell, 1000, 1900)}, {t.addPin(-5, 9000), t.addPin(50, 3000)});
    t.design.evaluateBound(net);
    EXPECT_EQ(net->boxXl, -5);
    EXPECT_EQ(net->boxXh, 1190);
    EXPECT_EQ(net->boxYl, 2850);
    EXPECT_EQ(net->boxYh, 9000);
}

TEST(EvaluateBound, OverwritesTheBoxAndThatOfNoOtherNet)
{
    TinyDesign t;
    Net* net = t.addNet({}, {t.addPin(1, 2), t.addPin(3, 4)});
    const Net* other = t.addNet({}, {t.addPin(5, 6), t.addPin(7, 8)});
    net->boxXl = -999;
    net->boxYh = 999;
    t.design.evaluateBound(net);
    EXPECT_EQ(net->boxXl, 1);
    EXPECT_EQ(net->boxYh, 4);
    EXPECT_EQ(other->boxXh, 0) << "zero until it is evaluated";
    EXPECT_EQ(other->boxYh, 0);
}

TEST(EvaluateBound, WithoutMembersTheBoxIsInsideOut)
{
    Design design;
    Net net;
    design.evaluateBound(&net);
    EXPECT_EQ(net.boxXl, LARGEST);
    EXPECT_EQ(net.boxYl, LARGEST);
    EXPECT_EQ(net.boxXh, SMALLEST);
    EXPECT_EQ(net.boxYh, SMALLEST);
}

TEST(EvaluateHPWL, IsZeroWithoutNets)
{
    Design design;
    EXPECT_EQ(design.evaluateHPWL(), 0);
}

TEST(EvaluateHPWL, FillsTheBoxOfEveryNet)
{
    TinyDesign t;
    const Net* first = t.addNet({}, {t.addPin(1, 2), t.addPin(3, 4)});
    const Net* second = t.addNet({}, {t.addPin(5, 6), t.addPin(8, 8)});
    EXPECT_EQ(t.design.evaluateHPWL(), 4 + 5);
    EXPECT_EQ(first->boxXh, 3);
    EXPECT_EQ(second->boxXl, 5);
}

TEST(EvaluateHPWL, TotalIsOf64Bits)
{
    TinyDesign t;
    for (int i = 0; i < 3; ++i) {
        t.addNet({}, {t.addPin(0, 0), t.addPin(2'000'000'000, 100)});
    }
    EXPECT_EQ(t.design.evaluateHPWL(), 6'000'000'300);
}

TEST(EvaluateHPWL, LengthOfANetIsOf32BitsAndWrapsAround)
{
    TinyDesign t;
    t.addNet({}, {t.addPin(0, 0), t.addPin(2'000'000'000, 2'000'000'000)});
    EXPECT_EQ(t.design.evaluateHPWL(), 4'000'000'000 - 4'294'967'296);
}

PROPERTY(EvaluateHPWL, IsTheSumOfTheLargestDistancesInXAndInY)
{
    TinyDesign t;
    for (int i = 0; i < 3; ++i) {
        addCellOfWidth(t, test::draw(0, 900));
        t.design.lut.cells.back()->height = test::draw(0, 3000);
    }
    for (int i = 0; i < 10; ++i) {
        addAt(t, test::draw(0, 3), test::draw(-5000, 5000), test::draw(-5000, 5000));
        t.addPin(test::draw(-5000, 5000), test::draw(-5000, 5000));
    }
    const int netCount = test::draw(0, 8);
    for (int i = 0; i < netCount; ++i) {
        const int compCount = test::draw(0, 5);
        const int pinCount = test::draw(compCount == 0 ? 1 : 0, 4);
        std::vector<Component*> comps;
        std::vector<Pin*> pins;
        for (int k = 0; k < compCount; ++k) {
            comps.push_back(t.design.components[test::draw<size_t>(0, 10)]);
        }
        for (int k = 0; k < pinCount; ++k) {
            pins.push_back(t.design.pins[test::draw<size_t>(0, 10)]);
        }
        t.addNet(comps, pins);
    }

    int64_t want = 0;
    for (const Net* net : t.design.nets) {
        std::vector<std::pair<int, int>> points;
        for (const Component* comp : net->components) {
            const Cell& cell = *t.design.lut.cells[static_cast<size_t>(comp->cellIdx)];
            points.emplace_back(comp->x + cell.width / 2, comp->y + cell.height / 2);
        }
        for (const Pin* pin : net->pins) {
            points.emplace_back(pin->x, pin->y);
        }
        int dx = 0;
        int dy = 0;
        for (const auto& a : points) {
            for (const auto& b : points) {
                dx = std::max(dx, a.first - b.first);
                dy = std::max(dy, a.second - b.second);
            }
        }
        want += dx + dy;
    }
    RC_ASSERT(t.design.evaluateHPWL() == want);
}

// Stitches

TEST(EvaluateStitchLowerBound, SumsTheFewestStitchesOfEachComponentsCell)
{
    TinyDesign t;
    const int a = t.addCell(1, {3, 1, 2});
    const int b = t.addCell(1, {5});
    t.addCell(1, {0}); // unused
    t.addComponent(nullptr, a, 0, 2);
    t.addComponent(nullptr, b, 0, 0);
    t.addComponent(nullptr, a, 0, 0);
    EXPECT_EQ(t.design.evaluateStitchLowerBound(), 1 + 5 + 1);
}

TEST(EvaluateStitchLowerBound, CellWithoutSolutionsAddsTheLargestInteger)
{
    TinyDesign t;
    const int bare = t.addCell(1, {});
    t.addComponent(nullptr, bare, 0);
    EXPECT_EQ(t.design.evaluateStitchLowerBound(), LARGEST);
    t.addComponent(nullptr, bare, 0);
    EXPECT_EQ(t.design.evaluateStitchLowerBound(), -2) << "the sum wraps around";
}

TEST(EvaluateStitchLowerBound, IsZeroWithoutComponents)
{
    Design design;
    EXPECT_EQ(design.evaluateStitchLowerBound(), 0);
}

TEST(EvaluateStitchNum, SumsTheChosenSolutionsOfAllSegments)
{
    TinyDesign t;
    const int cell = t.addCell(1, {3, 1, 7});
    Segment* first = t.addSegment(0, 0, 10);
    Segment* second = t.addSegment(0, 1900, 10);
    t.addComponent(first, cell, 0, 0);
    t.addComponent(first, cell, 1, 2);
    t.addComponent(second, cell, 0, 1);
    EXPECT_EQ(t.design.evaluateStitchNum(), 3 + 7 + 1);
}

TEST(EvaluateStitchNum, ComponentInNoSegmentIsNotCounted)
{
    TinyDesign t;
    const int cell = t.addCell(1, {3});
    t.addSegment(0, 0, 10);
    t.addComponent(nullptr, cell, 0);
    EXPECT_EQ(t.design.evaluateStitchNum(), 0);
}

TEST(EvaluateStitchNum, SolutionThatIsNoneHasNoStitches)
{
    TinyDesign t;
    const int cell = t.addCell(1, {3});
    Segment* segment = t.addSegment(0, 0, 10);
    t.addComponent(segment, cell, 0, -1);
    t.addComponent(segment, cell, 1, 1);
    EXPECT_EQ(t.design.evaluateStitchNum(), 0);
}

// Conflicts

/// Conflicts of two cells of 1 site side by side whose spacing entry is `entry`.
int conflictsOfTwo(int leftSite, int rightSite, int entry)
{
    TinyDesign t;
    const int cell = t.addCell(1, {0});
    t.setDist(cell, cell, 0, 0, entry);
    Segment* segment = t.addSegment(0, 0, 10);
    t.addComponent(segment, cell, leftSite);
    t.addComponent(segment, cell, rightSite);
    return t.design.evaluateConflictNum();
}

TEST(EvaluateConflictNum, SegmentOfOneComponentHasNone)
{
    TinyDesign t;
    const int cell = t.addCell(1, {0});
    t.setDist(cell, cell, 0, 0, 999);
    t.addComponent(t.addSegment(0, 0, 10), cell, 0);
    t.addComponent(t.addSegment(0, 1900, 10), cell, 0);
    EXPECT_EQ(t.design.evaluateConflictNum(), 0);
}

TEST(EvaluateConflictNum, EntryIsDividedBySiteWidthAndRoundedUp)
{
    EXPECT_EQ(conflictsOfTwo(0, 2, 381), 1) << "needs 3 sites";
    EXPECT_EQ(conflictsOfTwo(0, 2, 380), 0) << "needs 2 sites";
    EXPECT_EQ(conflictsOfTwo(0, 2, 190), 0) << "needs 1 site";
}

TEST(EvaluateConflictNum, EveryEntryUpToTheSiteWidthNeedsOneSite)
{
    EXPECT_EQ(conflictsOfTwo(4, 4, 1), 1);
    EXPECT_EQ(conflictsOfTwo(4, 4, 190), 1);
    EXPECT_EQ(conflictsOfTwo(4, 5, 190), 0);
    EXPECT_EQ(conflictsOfTwo(4, 4, 0), 0);
}

TEST(EvaluateConflictNum, ComparesLeftEndWithLeftEnd)
{
    TinyDesign t;
    const int wide = t.addCell(5, {0});
    t.setDist(wide, wide, 0, 0, 3);
    Segment* segment = t.addSegment(0, 0, 20);
    t.addComponent(segment, wide, 0);
    Component* right = t.addComponent(segment, wide, 5);
    EXPECT_EQ(t.design.evaluateConflictNum(), 0) << "abutting, with 1 site needed between them";
    right->siteX = 1;
    EXPECT_EQ(t.design.evaluateConflictNum(), 0) << "overlapping";
    right->siteX = 0;
    EXPECT_EQ(t.design.evaluateConflictNum(), 1);
}

TEST(EvaluateConflictNum, OnlyNeighboursInTheListAreCompared)
{
    TinyDesign t;
    const int a = t.addCell(1, {0});
    const int b = t.addCell(1, {0});
    t.setDist(a, a, 0, 0, 1900);
    Segment* segment = t.addSegment(0, 0, 20);
    t.addComponent(segment, a, 0);
    t.addComponent(segment, b, 1);
    t.addComponent(segment, a, 2);
    EXPECT_EQ(t.design.evaluateConflictNum(), 0);
    t.addComponent(segment, a, 3);
    EXPECT_EQ(t.design.evaluateConflictNum(), 1);
}

TEST(EvaluateConflictNum, UsesTheChosenSolutions)
{
    TinyDesign t;
    const int cell = t.addCell(1, {0, 0});
    t.setDist(cell, cell, 0, 1, 1900);
    Segment* segment = t.addSegment(0, 0, 20);
    Component* left = t.addComponent(segment, cell, 0, 0);
    Component* right = t.addComponent(segment, cell, 1, 1);
    EXPECT_EQ(t.design.evaluateConflictNum(), 1);
    std::swap(left->solution, right->solution);
    EXPECT_EQ(t.design.evaluateConflictNum(), 0);
}

PROPERTY(EvaluateConflictNum, AndStitchNumAreWhatADirectRecountGives)
{
    TinyDesign t;
    SITE_WIDTH = test::draw(1, 200);
    for (int i = 0; i < 3; ++i) {
        t.addCell(test::draw(1, 4), {test::draw(0, 9), test::draw(0, 9)});
    }
    const int cellCount = 3;
    for (int i = 0; i < cellCount * cellCount * 4; ++i) {
        t.setDist(i / 4 / cellCount, i / 4 % cellCount, i / 2 % 2, i % 2, test::draw(0, 900));
    }
    const int segmentCount = test::draw(0, 4);
    for (int i = 0; i < segmentCount; ++i) {
        Segment* segment = t.addSegment(0, i * 1900, 50);
        const int compCount = test::draw(0, 8);
        for (int k = 0, site = 0; k < compCount; ++k) {
            site += test::draw(0, 6);
            t.addComponent(segment, test::draw(0, cellCount), site, test::draw(0, 2));
        }
    }

    int conflicts = 0;
    int stitches = 0;
    for (const Segment* segment : t.design.segments) {
        const std::vector<Component*> comps(segment->components.begin(), segment->components.end());
        for (size_t i = 0; i < comps.size(); ++i) {
            const auto cellOf = [](const Component* comp) { return static_cast<size_t>(comp->cellIdx); };
            const auto solutionOf = [](const Component* comp) { return static_cast<size_t>(comp->solution); };
            stitches += t.design.lut.cells[cellOf(comps[i])]->stitchNums[solutionOf(comps[i])];
            if (i == 0) {
                continue;
            }
            const int entry = t.design.lut.distTable[cellOf(comps[i - 1])][cellOf(comps[i])]
                                                    [solutionOf(comps[i - 1])][solutionOf(comps[i])];
            const int need = (entry + SITE_WIDTH - 1) / SITE_WIDTH;
            conflicts += comps[i]->siteX - comps[i - 1]->siteX < need ? 1 : 0;
        }
    }
    RC_ASSERT(t.design.evaluateConflictNum() == conflicts);
    RC_ASSERT(t.design.evaluateStitchNum() == stitches);
}

// evaluation()

/// The final report of a design whose one net has a length.
std::string reportOfLengths(int64_t before, int after)
{
    TinyDesign t;
    t.design.initHPWL = before;
    t.addNet({}, {t.addPin(0, 0), t.addPin(after, 0)});
    return test::reportOf([&] { t.design.evaluation(); });
}

TEST(Evaluation, PrintsTheFourFinalLines)
{
    TinyDesign t;
    const int cell = t.addCell(2, {4, 1});
    t.setDist(cell, cell, 0, 1, 600);
    Segment* segment = t.addSegment(0, 0, 10);
    Component* u = t.addComponent(segment, cell, 0, 0);
    Component* v = t.addComponent(segment, cell, 3, 1);
    t.addNet({u, v});
    t.design.initHPWL = 500;
    EXPECT_EQ(test::reportOf([&] { t.design.evaluation(); }),
              "STAT | final HPWL               = 570\n"
              "STAT | HPWL increases           = 70(14.000%)\n"
              "STAT | final stitch   #         = 5\n"
              "STAT | final conflict #         = 1\n");
    EXPECT_EQ(t.design.finalHPWL, 570);
    EXPECT_EQ(t.design.initHPWL, 500);
}

TEST(Evaluation, DesignWithoutSegmentsHasNoStitchesAndNoConflicts)
{
    EXPECT_EQ(reportOfLengths(100, 100), "STAT | final HPWL               = 100\n"
                                         "STAT | HPWL increases           = 0(0.000%)\n"
                                         "STAT | final stitch   #         = 0\n"
                                         "STAT | final conflict #         = 0\n");
}

struct IncreaseCase {
    const char* name;
    int64_t before;
    int after;
    const char* want;
};

void PrintTo(const IncreaseCase& row, std::ostream* out)
{
    *out << row.before << " to " << row.after;
}

class HpwlIncrease : public testing::TestWithParam<IncreaseCase> {};

TEST_P(HpwlIncrease, IsADifferenceAndAPercentage)
{
    const std::string report = reportOfLengths(GetParam().before, GetParam().after);
    const std::string want = std::string("STAT | HPWL increases           = ") + GetParam().want + "\n";
    EXPECT_NE(report.find(want), std::string::npos) << report;
}

const IncreaseCase INCREASE_CASES[] = {
    {"DecreaseIsNegative", 1000, 950, "-50(-5.000%)"},
    {"Increase", 1000, 1500, "500(50.000%)"},
    {"ThreeDigits", 300, 301, "1(0.333%)"},
    {"RoundedToNearest", 300, 302, "2(0.667%)"},
    {"NegativeZero", 1000000, 999999, "-1(-0.000%)"},
    {"DifferenceOf64Bits", 5'000'000'000, 0, "-5000000000(-100.000%)"},
    {"FromZeroIsInfinite", 0, 5, "5(inf%)"},
    {"ZeroOfZeroIsMinusNoNumberOnEveryMachine", 0, 0, "0(-nan%)"},
};

INSTANTIATE_TEST_SUITE_P(Evaluation, HpwlIncrease, testing::ValuesIn(INCREASE_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

// Hooks that are no part of a run.

/// A shell tool "calibredrv" that is first on PATH and notes its arguments, line by line; and PATH as it was.
class FakeLayoutTool {
public:
    FakeLayoutTool()
    {
        const std::string tool =
            m_dir.write("calibredrv", "#!/bin/sh\necho \"$# $*\" >> '" + m_dir.path("calls") + "'\nexit 3\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
        setenv("PATH", (m_dir.path("") + ":" + m_path).c_str(), 1);
    }
    ~FakeLayoutTool() { setenv("PATH", m_path.c_str(), 1); }
    FakeLayoutTool(const FakeLayoutTool&) = delete;
    FakeLayoutTool& operator=(const FakeLayoutTool&) = delete;

    std::string calls() const
    {
        std::ifstream in(m_dir.path("calls"));
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

private:
    std::string m_path = getenv("PATH");
    test::TempDir m_dir;
};

TEST(CalibreAllTcl, RunsTheToolOnEveryScriptInStringOrderWhateverItReturns)
{
    const FakeLayoutTool tool;
    Design design;
    design.tclFiles = {"b.tcl", "a.tcl", "B.tcl", "a10.tcl", "a2.tcl"};
    EXPECT_EQ(test::reportOf([&] { design.calibreAllTcl(); }), "");
    EXPECT_EQ(tool.calls(), "1 B.tcl\n1 a.tcl\n1 a10.tcl\n1 a2.tcl\n1 b.tcl\n");
    EXPECT_EQ(design.tclFiles.size(), 5U);
}

TEST(CalibreAllTcl, CommandGoesThroughTheShell)
{
    const FakeLayoutTool tool;
    Design design;
    design.tclFiles = {"two words"};
    design.calibreAllTcl();
    EXPECT_EQ(tool.calls(), "2 two words\n");
}

TEST(CalibreAllTcl, WithoutScriptsRunsNothing)
{
    const FakeLayoutTool tool;
    Design design;
    design.calibreAllTcl();
    EXPECT_EQ(tool.calls(), "");
}

TEST(DebugHooks, DoNothing)
{
    TinyDesign t;
    const int cell = t.addCell(2, {4, 1});
    Segment* segment = t.addSegment(0, 0, 10);
    Component* u = t.addComponent(segment, cell, 3, 1);
    t.addNet({u, u});
    const std::string report = test::reportOf([&] {
        t.design.dumpOutPlace();
        t.design.debugPlace("a", "b");
        t.design.debugMetal1();
        t.design.debugColors();
        t.design.debugCellDistribution();
    });
    EXPECT_EQ(report, "");
    EXPECT_EQ(u->siteX, 3);
    EXPECT_EQ(u->solution, 1);
    EXPECT_EQ(segment->components.size(), 1U);
    EXPECT_EQ(t.design.nets[0]->boxXh, 0);
    EXPECT_TRUE(t.design.tclFiles.empty());
}

} // namespace
