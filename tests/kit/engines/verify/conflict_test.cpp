// SPDX-License-Identifier: BSD-3-Clause
// When the metal of two cells is too close.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>
#include <tuple>

#include "kit/design/rowKinds.h"
#include "kit/design/standing.h"
#include "kit/engines/verify/judged.h"
#include "kit/geometry/sweep.h"
#include "support/property.h"

namespace {

using namespace test;
using kit::geometry::Span;
using test::Cell; // not the placer's, which other tests of the folder include
using test::Component;

/// A cell of one site with one bar on mask 1, from 400 to 1000.
Cell oneBar(const std::string& name, int32_t xl, int32_t xh)
{
    return makeCell(name, 190, {{xl, 400, xh, 1000}}, {1});
}

/// The conflict of a bar that ends at the right edge of its cell with one of the next cell.
Issues judgeNextTo(const Rect& rect, int32_t mask = 1, int32_t minDist = 185)
{
    Judged judged({oneBar("A", 100, 190), makeCell("B", 380, {rect}, {mask})});
    judged.add(0, 0, 0);
    judged.add(1, 1, 0);
    return judged.judge(minDist);
}

TEST(KitVerifyConflict, ShapesAtTheDistanceAreFarEnough)
{
    EXPECT_EQ(kindsOf(judgeNextTo({185, 400, 240, 1000})), "");
}

TEST(KitVerifyConflict, ShapesOneUnitCloserAreTooClose)
{
    const Issue issue = onlyIssue(judgeNextTo({184, 400, 240, 1000}));
    EXPECT_EQ(issue.kind, Kind::CONFLICT);
    EXPECT_DOUBLE_EQ(issue.distance, 184);
    EXPECT_EQ(issue.shapePairs, 1);
    EXPECT_EQ(issue.mask, 1);
    EXPECT_EQ(issue.component, 0);
    EXPECT_EQ(issue.other, 1);
    EXPECT_EQ(issue.line, 10);
    EXPECT_EQ(issue.box.xh, 190);
    EXPECT_EQ(issue.otherBox.xl, 374);
}

TEST(KitVerifyConflict, DistanceIsThatOfTheCorners)
{
    EXPECT_EQ(kindsOf(judgeNextTo({111, 1148, 240, 1300})), ""); // 111, 148, 185
    EXPECT_DOUBLE_EQ(onlyIssue(judgeNextTo({111, 1147, 240, 1300})).distance, std::hypot(111, 147));
    EXPECT_DOUBLE_EQ(onlyIssue(judgeNextTo({110, 100, 240, 252})).distance, std::hypot(110, 148));
}

TEST(KitVerifyConflict, TouchingShapesAreAtDistanceNought)
{
    EXPECT_EQ(onlyIssue(judgeNextTo({0, 400, 60, 1000})).distance, 0);
    EXPECT_EQ(onlyIssue(judgeNextTo({-50, 300, 60, 1100})).distance, 0);
}

TEST(KitVerifyConflict, OtherMaskIsNone)
{
    EXPECT_EQ(kindsOf(judgeNextTo({0, 400, 60, 1000}, 2)), "");
    EXPECT_EQ(kindsOf(judgeNextTo({0, 400, 60, 1000}, 0)), "");
}

TEST(KitVerifyConflict, DistanceIsAnOption)
{
    EXPECT_EQ(kindsOf(judgeNextTo({150, 400, 240, 1000}, 1, 150)), "");
    EXPECT_EQ(kindsOf(judgeNextTo({150, 400, 240, 1000}, 1, 151)), "conflict");
    EXPECT_EQ(kindsOf(judgeNextTo({0, 400, 60, 1000}, 1, 0)), "");
}

/// Two cells side by side whose bars face each other on a mask, 20 apart, and reach from yl to yh.
Issues judgeFacing(int32_t mask, int32_t yl, int32_t yh)
{
    Judged judged({makeCell("A", 190, {{10, yl, 180, yh}}, {mask})});
    judged.add(0, 0, 0);
    judged.add(0, 1, 0);
    return judged.judge();
}

TEST(KitVerifyConflict, RailsHaveNone)
{
    EXPECT_EQ(kindsOf(judgeFacing(0, -85, 85)), "");
    EXPECT_EQ(kindsOf(judgeFacing(0, 0, 85)), "");
    EXPECT_EQ(kindsOf(judgeFacing(0, 1300, 1400)), "");
}

TEST(KitVerifyConflict, MetalOfMaskNoughtInsideTheCellIsNoRail)
{
    EXPECT_EQ(kindsOf(judgeFacing(0, 1, 1399)), "conflict");
}

TEST(KitVerifyConflict, MetalOfAnotherMaskAtTheEdgeIsNoRail)
{
    EXPECT_EQ(kindsOf(judgeFacing(1, 0, 85)), "conflict");
}

TEST(KitVerifyConflict, ShapeIsARailAsAWhole)
{
    Cell cell = makeCell("A", 190, {{10, 0, 180, 85}}, {0});
    cell.shapes[0].rects.push_back({10, 85, 180, 700});
    Judged judged({cell});
    judged.add(0, 0, 0);
    judged.add(0, 1, 0);
    EXPECT_EQ(kindsOf(judged.judge()), "");
}

TEST(KitVerifyConflict, PairOfCellsCountsOnceWithItsWorst)
{
    Cell left = makeCell("L", 190, {{100, 100, 180, 500}, {100, 700, 150, 1300}}, {1, 2});
    Cell right = makeCell("R", 190, {{10, 100, 60, 500}, {70, 700, 90, 1300}, {20, 520, 60, 600}}, {1, 2, 1});
    right.shapes[0].rects.push_back({10, 300, 60, 500}); // the same piece of metal
    Judged judged({left, right});
    judged.add(0, 0, 0);
    judged.add(1, 1, 0);
    const Issue issue = onlyIssue(judged.judge());
    EXPECT_EQ(issue.shapePairs, 3);
    EXPECT_DOUBLE_EQ(issue.distance, 20);
    EXPECT_EQ(issue.mask, 1);
}

TEST(KitVerifyConflict, CellsThatAreNoNeighboursAreCompared)
{
    const auto judgeWith = [](int32_t gap) {
        Judged judged({oneBar("A", 100, 190), makeCell("EMPTY", 190, {}, {}), oneBar("B", 0, 90)});
        judged.add(0, 0, 0);
        judged.add(1, 1, 0);
        judged.add(2, 2, 0);
        return judged.judge(gap);
    };
    EXPECT_EQ(kindsOf(judgeWith(190)), "");
    const Issue issue = onlyIssue(judgeWith(191));
    EXPECT_EQ(issue.component, 0);
    EXPECT_EQ(issue.other, 2);
}

TEST(KitVerifyConflict, CellsOfTwoRowsSideBySideAreInOneRow)
{
    Judged judged({oneBar("A", 10, 180)});
    judged.addRow(12, 0, 12);
    judged.add(0, 11, 0);
    judged.add(0, 12, 0);
    EXPECT_EQ(kindsOf(judged.judge()), "conflict");
}

struct StepCase {
    int32_t step;    ///< DBU
    int32_t shift;   ///< of the right cell, DBU
    double distance; ///< library coordinates
};

class KitVerifyStep : public testing::TestWithParam<StepCase> {};

TEST_P(KitVerifyStep, ScalesThePlacementToTheLibrary)
{
    const StepCase& row = GetParam();
    Judged judged({oneBar("A", 40, 100), oneBar("B", 60, 100)}, row.step); // 150 apart
    judged.add(0, 0, 0);
    judged.add(1, 1, 0);
    judged.component(1).x += row.shift;
    const Issues issues = judged.judge();
    ASSERT_FALSE(issues.empty());
    EXPECT_NEAR(issues.back().distance, row.distance, 1e-9);
    EXPECT_NEAR(issues.back().box.xh, 100.0 * row.step / 190, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Steps, KitVerifyStep,
                         testing::Values(StepCase{190, 0, 150}, StepCase{380, 0, 150}, StepCase{123, 0, 150},
                                         StepCase{380, 69, 184.5}, StepCase{123, -1, 150 - 190.0 / 123}));

TEST(KitVerifyConflict, DistanceOfAStepIsExactAtTheLimit)
{
    Judged judged({oneBar("A", 40, 100), oneBar("B", 60, 100)}, 380);
    judged.add(0, 0, 0);
    judged.add(1, 1, 0);
    judged.component(1).x += 70;
    EXPECT_EQ(kindsOf(judged.judge()), "off-grid");
}

/// A cell with a bar near its right edge on mask 1, in the lower half.
Cell lopsided()
{
    return makeCell("LOP", 380, {{300, 200, 370, 500}}, {1});
}

struct MirrorCase {
    const char* left;
    const char* right;
    double distance; ///< -1: none
};

class KitVerifyMirror : public testing::TestWithParam<MirrorCase> {};

/// The metal is 10 from its cell's edge on one side and 300 on the other, 200 from the bottom and 900 from
/// the top.
TEST_P(KitVerifyMirror, TurnsTheMetal)
{
    const MirrorCase& row = GetParam();
    Judged judged({lopsided()});
    judged.add(0, 0, 0, 0, row.left);
    judged.add(0, 2, 0, 0, row.right);
    const Issues issues = judged.judge();
    EXPECT_EQ(kindsOf(issues), row.distance < 0 ? "" : "conflict");
    if (!issues.empty()) {
        EXPECT_DOUBLE_EQ(issues[0].distance, row.distance);
    }
}

INSTANTIATE_TEST_SUITE_P(Orientations, KitVerifyMirror,
                         testing::Values(MirrorCase{"N", "N", -1}, MirrorCase{"N", "FN", 20},
                                         MirrorCase{"FN", "N", -1}, MirrorCase{"FS", "S", 20},
                                         MirrorCase{"S", "FS", -1}, MirrorCase{"FS", "FS", -1},
                                         MirrorCase{"N", "S", -1}, MirrorCase{"FS", "FN", -1}));

TEST(KitVerifyConflict, BottomAndTopChangePlacesInFsAndS)
{
    const auto boxOf = [](const char* orient) {
        const kit::design::Stencil stencil =
            kit::design::stencilOf(lopsided(), kit::design::turnOf(orient), kit::design::Scale{1});
        const kit::design::FineBox& box = stencil.pieces[0].box;
        return std::tuple(box.xl, box.yl, box.xh, box.yh);
    };
    EXPECT_EQ(boxOf("N"), std::tuple(300, 200, 370, 500));
    EXPECT_EQ(boxOf("FN"), std::tuple(10, 200, 80, 500));
    EXPECT_EQ(boxOf("FS"), std::tuple(300, 900, 370, 1200));
    EXPECT_EQ(boxOf("S"), std::tuple(10, 900, 80, 1200));
}

TEST(KitVerifyConflict, ShapesOfAbuttingRowsAreANote)
{
    Judged judged({makeCell("A", 190, {{10, 100, 180, 1350}}, {1})});
    judged.add(0, 3, 0);
    judged.add(0, 3, 1);
    const Issue issue = onlyIssue(judged.judge());
    EXPECT_EQ(issue.kind, Kind::ROW_CONFLICT);
    EXPECT_DOUBLE_EQ(issue.distance, 150);
    EXPECT_EQ(issue.component, 0);
    EXPECT_EQ(issue.other, 1);
    EXPECT_EQ(kit::verify::exitStatusOf(judged.input, judged.judge()), 0);
    const Issues asked = kit::verify::judge(judged.input, {.acrossRows = true});
    EXPECT_EQ(onlyIssue(asked).kind, Kind::ROW_CONFLICT);
    EXPECT_EQ(kit::verify::exitStatusOf(judged.input, asked), 1);
}

TEST(KitVerifyConflict, TheCellAfterNextIsSeen)
{
    Judged judged({makeCell("A", 380, {{300, 400, 370, 800}}, {1}), makeCell("EMPTY", 190, {}, {}),
                   makeCell("B", 380, {{-20, 400, 40, 800}}, {1})});
    judged.add(0, 0, 0);
    judged.add(1, 2, 0);
    judged.add(2, 3, 0);
    const Issue issue = onlyIssue(judged.judge(185));
    EXPECT_EQ(issue.kind, Kind::CONFLICT);
    EXPECT_EQ(issue.other, 2);
    EXPECT_DOUBLE_EQ(issue.distance, 180);
}

/// All pairs of spans with a gap below reach, the slow way.
std::set<std::pair<size_t, size_t>> slowPairs(const std::vector<Span>& a, const std::vector<Span>& b,
                                              int64_t reach, bool sameRow)
{
    std::set<std::pair<size_t, size_t>> pairs;
    for (size_t i = 0; i < a.size(); ++i) {
        for (size_t j = sameRow ? i + 1 : 0; j < b.size(); ++j) {
            const int64_t gap = std::max(b[j].from - a[i].to, a[i].from - b[j].to);
            if (gap < reach) {
                pairs.emplace(i, j);
            }
        }
    }
    return pairs;
}

std::vector<Span> randomSpans()
{
    std::vector<Span> spans;
    const auto count = test::draw(0, 40);
    for (int i = 0; i < count; ++i) {
        const int64_t from = test::draw(-200, 200);
        const bool isLong = test::draw(0, 5) == 0;
        spans.push_back({from, from + test::draw(1, isLong ? 200 : 20)});
    }
    std::sort(spans.begin(), spans.end(), [](const Span& x, const Span& y) { return x.from < y.from; });
    return spans;
}

PROPERTY(KitVerifySweep, RowFindsEveryPairOnce)
{
    const std::vector<Span> spans = randomSpans();
    const int64_t reach = test::draw(0, 60);
    std::set<std::pair<size_t, size_t>> found;
    RC_ASSERT(kit::geometry::sweepRow(spans, reach, [&](size_t i, size_t j) {
        RC_ASSERT(found.emplace(i, j).second);
        return true;
    }));
    RC_ASSERT(found == slowPairs(spans, spans, reach, true));
}

PROPERTY(KitVerifySweep, TwoRowsFindEveryPairOnce)
{
    const std::vector<Span> first = randomSpans();
    const std::vector<Span> second = randomSpans();
    const int64_t reach = test::draw(0, 60);
    std::set<std::pair<size_t, size_t>> found;
    RC_ASSERT(kit::geometry::sweepRows(first, second, reach, [&](size_t i, size_t j) {
        RC_ASSERT(found.emplace(i, j).second);
        return true;
    }));
    RC_ASSERT(found == slowPairs(first, second, reach, false));
}

TEST(KitVerifySweep, EndsWhenAVisitSaysSo)
{
    const std::vector<Span> spans(5, Span{0, 10});
    int visits = 0;
    const auto third = [&](size_t, size_t) { return ++visits < 3; };
    EXPECT_FALSE(kit::geometry::sweepRow(spans, 0, third));
    EXPECT_EQ(visits, 3);
    visits = 0;
    EXPECT_FALSE(kit::geometry::sweepRows(spans, spans, 0, third));
    EXPECT_EQ(visits, 3);
}

/// A rectangle of a placed cell, library coordinates.
struct SlowBox {
    double xl, yl, xh, yh;
    int32_t mask;
    size_t shape;
    bool rail;
};

/// The metal of a component, worked out anew: in library coordinates, by a matrix.
std::vector<SlowBox> slowMetal(const Judged& judged, size_t index, double step)
{
    const Component& comp = judged.input.design.components[index];
    const Cell& cell = judged.input.design.cells[static_cast<size_t>(comp.cell)];
    const bool flipX = comp.orient == "FN" || comp.orient == "S";
    const bool flipY = comp.orient == "FS" || comp.orient == "S";
    std::vector<SlowBox> boxes;
    for (size_t k = 0; k < cell.shapes.size(); ++k) {
        bool rail = false;
        for (const Rect& rect : cell.shapes[k].rects) {
            rail = rail || rect.yl <= 0 || rect.yh >= cell.height;
        }
        const int32_t mask = judged.input.colors[index].masks[k];
        for (const Rect& rect : cell.shapes[k].rects) {
            const double x[] = {flipX ? cell.width - static_cast<double>(rect.xl) : rect.xl,
                                flipX ? cell.width - static_cast<double>(rect.xh) : rect.xh};
            const double y[] = {flipY ? cell.height - static_cast<double>(rect.yl) : rect.yl,
                                flipY ? cell.height - static_cast<double>(rect.yh) : rect.yh};
            const double dx = comp.x * 190.0 / step;
            const double dy = comp.y * 190.0 / step;
            boxes.push_back({dx + std::min(x[0], x[1]), dy + std::min(y[0], y[1]), dx + std::max(x[0], x[1]),
                             dy + std::max(y[0], y[1]), mask, k, rail && mask == 0});
        }
    }
    return boxes;
}

double slowDistance(const SlowBox& a, const SlowBox& b)
{
    return std::hypot(std::max({0.0, b.xl - a.xh, a.xl - b.xh}), std::max({0.0, b.yl - a.yh, a.yl - b.yh}));
}

using Found = std::map<std::tuple<int32_t, int32_t, Kind>, std::pair<int32_t, int64_t>>;

/// [components, kind] pairs of shapes, and the least distance in millionths.
Found slowConflicts(const Judged& judged, double step)
{
    Found found;
    const auto& comps = judged.input.design.components;
    for (size_t i = 0; i < comps.size(); ++i) {
        for (size_t j = i + 1; j < comps.size(); ++j) {
            std::map<Kind, std::set<std::pair<size_t, size_t>>> shapes;
            std::map<Kind, double> least;
            for (const SlowBox& a : slowMetal(judged, i, step)) {
                for (const SlowBox& b : slowMetal(judged, j, step)) {
                    const double distance = slowDistance(a, b);
                    const bool touchesRail = (a.rail || b.rail) && distance < 1e-7;
                    if (a.mask != b.mask || (a.rail && b.rail) || touchesRail || distance >= 185 - 1e-7) {
                        continue;
                    }
                    const Kind kind = a.rail || b.rail           ? Kind::RAIL_CONFLICT
                                      : comps[i].y == comps[j].y ? Kind::CONFLICT
                                                                 : Kind::ROW_CONFLICT;
                    shapes[kind].emplace(a.shape, b.shape);
                    least.try_emplace(kind, distance);
                    least[kind] = std::min(least[kind], distance);
                }
            }
            for (const auto& [kind, pairs] : shapes) {
                found[{static_cast<int32_t>(i), static_cast<int32_t>(j), kind}] = {
                    static_cast<int32_t>(pairs.size()), std::llround(least[kind] * 1e6)};
            }
        }
    }
    return found;
}

Cell randomCell(int index)
{
    const int32_t width = 190 * test::draw(1, 4);
    std::vector<Rect> rects;
    std::vector<int32_t> masks;
    const auto count = test::draw(0, 5);
    for (int i = 0; i < count; ++i) {
        const int32_t x = test::draw(-20, width);
        const int32_t y = test::draw(-50, 1400);
        rects.push_back({x, y, x + test::draw(10, 150), y + test::draw(10, 400)});
        masks.push_back(test::draw(0, 3));
    }
    Cell cell = makeCell("C" + std::to_string(index), width, rects, masks);
    if (count > 0 && test::draw(0, 2) == 0) {
        cell.shapes[0].rects.push_back({60, 600, 90, 700});
    }
    return cell;
}

TEST(KitVerifyConflict, ShapesAreThoseOfTheLefFileWhereTheyAreKnown)
{
    struct Row {
        const char* orient; // of the right one of two cells
        double distance;
    };
    for (const Row& row : {Row{"N", 185.4}, Row{"FN", 185.0}, Row{"S", 185.0}, Row{"FS", 185.4}}) {
        Cell cell = makeCell("BAR", 380, {{92, 400, 288, 1000}}, {1});
        cell.trueMetal = {190'000, 380'000, 1'400'000, {{92'900, 400'000, 287'500, 1'000'000}}};
        Judged design({cell});
        design.add(0, 0, 0);
        design.add(0, 2, 0, 0, row.orient);
        EXPECT_EQ(kindsOf(design.judge()), "") << row.orient;
        EXPECT_NEAR(onlyIssue(design.judge(186)).distance, row.distance, 1e-9) << row.orient;
        design.input.design.cells[0].trueMetal.reset();
        EXPECT_EQ(onlyIssue(design.judge()).distance, 184) << row.orient;
    }
}

PROPERTY(KitVerifyConflict, AgreesWithAllPairsOnRandomRows)
{
    const int32_t step = test::drawOne({190, 380, 123});
    Judged judged({randomCell(0), randomCell(1), randomCell(2)}, step);
    const auto count = test::draw(2, 16);
    for (int i = 0; i < count; ++i) { // overlaps and cells beyond the rows are welcome
        judged.add(test::draw(0, 3), test::draw(0, 25), test::draw(0, 3), 0,
                   test::drawOne<std::string>({"N", "FN", "S", "FS"}));
    }
    Found found;
    for (const Issue& issue : kit::verify::judge(judged.input, {.rails = true})) {
        if (kit::design::isConflict(issue)) {
            const auto [low, high] = std::minmax(issue.component, issue.other);
            const auto [at, isNew] = found.try_emplace({low, high, issue.kind}, issue.shapePairs,
                                                       std::llround(issue.distance * 1e6));
            RC_ASSERT(isNew);
        }
    }
    RC_ASSERT(found == slowConflicts(judged, step));
}

/// Two cells side by side, the left one with metal of mask 0 that is 30 from the right one's rail.
Judged nearARail()
{
    const Rect rail{0, -85, 380, 85};
    Judged judged(
        {makeCell("METAL", 380, {rail, {300, 115, 380, 600}}, {0, 0}), makeCell("RAIL", 380, {rail}, {0})});
    judged.add(0, 0, 0);
    judged.add(1, 2, 0);
    return judged;
}

/// A cell with a bar at either edge, and a solution of each kind of rows.
Cell edgeCell(const std::string& name, int32_t lower, int32_t upper)
{
    Cell cell =
        makeCell(name, 190, {{0, 0, 0, 1}, {40, 50, 150, 500}, {40, 900, 150, 1350}}, {0, lower, upper});
    kit::placer::Solution other = cell.solutions[0];
    kit::design::exchangeMasks(other.masks);
    cell.solutions.push_back(other);
    return cell;
}

/// The reasons of all conflicts across rows.
std::string reasonsOf(const Issues& issues)
{
    std::string reasons;
    for (const Issue& issue : issues) {
        reasons += issue.kind == Kind::ROW_CONFLICT ? issue.reason + "\n" : "";
    }
    return reasons;
}

TEST(KitVerifyRows, ConflictIsTheFaultOfTheCellThatIsNotOnTheMaskOfItsRow)
{
    Judged judged({edgeCell("GOOD", 1, 1), edgeCell("BAD", 1, 2)});
    judged.add(0, 0, 0);
    judged.add(1, 0, 1);
    EXPECT_EQ(reasonsOf(judged.judge()),
              "BAD has metal near the next rows on other masks than 2, that of its row\n");
}

TEST(KitVerifyRows, ConflictOnMask0IsTheFaultOfBoth)
{
    Judged judged({edgeCell("A", 1, 0), edgeCell("B", 0, 1)});
    judged.add(0, 0, 0);
    judged.add(1, 0, 1);
    EXPECT_EQ(reasonsOf(judged.judge()),
              "A has metal near the next rows on other masks than 1, that of its row; "
              "B has metal near the next rows on other masks than 2, that of its row\n");
}

TEST(KitVerifyRows, ReasonIsToldOnlyWhereAllCellsAreColouredForRowsThatMeet)
{
    Judged judged({edgeCell("A", 1, 1), makeCell("B", 190, {{40, 50, 150, 500}}, {1})});
    judged.add(0, 0, 0);
    judged.add(1, 0, 1);
    EXPECT_EQ(reasonsOf(judged.judge()), "\n");
}

TEST(KitVerifyRows, ReasonEndsTheMessage)
{
    Judged judged({edgeCell("A", 1, 2), edgeCell("B", 2, 1)});
    judged.add(0, 0, 0);
    judged.add(1, 0, 1);
    const std::string text = kit::verify::textOf(onlyIssue(judged.judge()), judged.input.design, "185");
    EXPECT_EQ(
        text,
        "u0 (A) at (0, 0) and u1 (B) at (0, 1400) have shapes of mask 2 100.0 apart, 185 are needed; "
        "1 pair of shapes too close; A has metal near the next rows on other masks than 1, that of its row");
}

TEST(KitVerifyRails, MetalTooCloseToARailIsCountedInANote)
{
    const Judged judged = nearARail();
    const Issue issue = onlyIssue(judged.judge());
    EXPECT_EQ(issue.kind, Kind::RAIL_CONFLICT);
    EXPECT_EQ(severityOf(issue), kit::Severity::NOTE);
    EXPECT_EQ(issue.what,
              "1 pair of cells has metal of mask 0 too close to a rail, which the placer leaves out; "
              "the closest: u0 (METAL) at (0, 0) and u1 (RAIL) at (380, 0)");
    EXPECT_EQ(kit::verify::exitStatusOf(judged.input, judged.judge()), 0);
    EXPECT_EQ(kindsOf(judged.judge(30)), "");
}

TEST(KitVerifyRails, EachPairIsAnErrorWhereAsked)
{
    const Judged judged = nearARail();
    const Issue issue = onlyIssue(kit::verify::judge(judged.input, {.rails = true}));
    EXPECT_EQ(severityOf(issue), kit::Severity::ERROR);
    EXPECT_EQ(issue.distance, 30);
    EXPECT_EQ(issue.component, 0);
    EXPECT_EQ(issue.other, 1);
}

TEST(KitVerifyRails, WhatTouchesARailIsOneWithIt)
{
    Judged judged = nearARail();
    judged.input.design.cells[0].shapes[1].rects[0].yl = 85;
    EXPECT_EQ(kindsOf(judged.judge()), "");
}

TEST(KitVerifyRails, OtherMasksMayBeNearARail)
{
    Judged judged = nearARail();
    judged.input.colors[0].masks[1] = 1;
    judged.input.design.cells[0].solutions[0].masks[1] = 1;
    EXPECT_EQ(kindsOf(judged.judge()), "");
}

} // namespace
