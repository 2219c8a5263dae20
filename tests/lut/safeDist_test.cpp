// SPDX-License-Identifier: BSD-3-Clause
// The safe distance of two abutting cells: case by case, and against the rules written a second time.
#include <gtest/gtest.h>
#include <rapidcheck/Log.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "lut/cells.h"
#include "lut/lutable.h"
#include "lut/randomCell.h"
#include "support/guards.h"
#include "support/property.h"

namespace {

using test::Corners;
using test::makeCell;
using test::MaskList;
using test::pickCell;
using test::reportOf;
using test::ShapeList;

/// A distance and the lines printed on the way to it.
struct Answer {
    int32_t dist = 0;
    std::string text;

    bool operator==(const Answer&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Answer& answer)
{
    return out << answer.dist << " \"" << answer.text << '"';
}

/// A cell of a pair: what it is, how it stands, and in which solution.
struct Side {
    Cell* cell;
    bool flip;
    int32_t solution;
};

Answer ask(const Side& a, const Side& b)
{
    const LUTable lut;
    Answer answer;
    answer.text = reportOf(
        [&] { answer.dist = lut.getSafeDist(a.cell, a.flip, a.solution, b.cell, b.flip, b.solution); });
    return answer;
}

/// A number taken down to 32 bits.
int32_t wrap(int64_t n)
{
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(n)));
}

/// A rectangle where it stands, the left cell's origin being the origin.
struct Standing {
    int32_t x1, x2, y1, y2;
};

int directionCode(const Standing& a, const Standing& b)
{
    if (a.x1 < b.x2) {
        if (b.y1 >= a.y2) {
            return 0;
        }
        return a.y1 < b.y2 ? 8 : 3;
    }
    if (b.y1 >= a.y2) {
        return 5;
    }
    return a.y1 >= b.y2 ? 6 : 2;
}

/// What two rectangles of one mask ask for; nothing if they do not conflict.
std::vector<int32_t> conflict(const Standing& a, const Standing& b, std::string& text)
{
    int32_t dy = 0;
    if (b.x1 < a.x2) {
        text += "WARNING| myBox2BoxDistY(), direction = " + std::to_string(directionCode(a, b)) + "\n";
    } else if (b.y1 >= a.y2) {
        dy = wrap(int64_t{b.y1} - a.y2);
    } else if (b.y2 <= a.y1) {
        dy = wrap(int64_t{a.y1} - b.y2);
    }
    const int32_t dx = wrap(int64_t{b.x1} - a.x2);
    const int32_t dxSquare = wrap(int64_t{dx} * dx);
    const int32_t dySquare = wrap(int64_t{dy} * dy);
    const int32_t mSquare = wrap(int64_t{MINDPLDIST} * MINDPLDIST);
    if (dy >= MINDPLDIST || dx >= MINDPLDIST || wrap(int64_t{dxSquare} + dySquare) > mSquare) {
        return {};
    }
    const double v = std::sqrt(static_cast<double>(wrap(int64_t{mSquare} - dxSquare))) - dy;
    const bool fits = v > -2147483649.0 && v < 2147483648.0;
    return {fits ? static_cast<int32_t>(v) : std::numeric_limits<int32_t>::min()};
}

/// Whether a shape of mask 0 reaches the bottom or the top edge.
bool isRail(const Cell& cell, const std::vector<qBox*>& shape)
{
    for (const qBox* box : shape) {
        if (box->yl <= cell.outlineYl || box->yh >= cell.outlineYh) {
            return true;
        }
    }
    return false;
}

/// The safe distance once more: every rule at every pair of rectangles, and no short cut but the one that
/// belongs to the answer.
Answer literalAnswer(const Side& a, const Side& b)
{
    const Cell& cellA = *a.cell;
    const Cell& cellB = *b.cell;
    if (a.solution < 0 || a.solution >= static_cast<int64_t>(cellA.colors.size())) {
        return {0, "WARNING| larger id1\n"};
    }
    if (b.solution < 0 || b.solution >= static_cast<int64_t>(cellB.colors.size())) {
        return {0, "WARNING| larger id2\n"};
    }
    Answer answer;
    int32_t best = std::numeric_limits<int32_t>::min();
    for (size_t p = 0; p < cellA.shapes.size(); ++p) {
        for (size_t q = 0; q < cellB.shapes.size(); ++q) {
            for (const qBox* boxA : cellA.shapes[p]) {
                for (const qBox* boxB : cellB.shapes[q]) {
                    const int32_t maskA = cellA.colors.at(static_cast<size_t>(a.solution)).at(p);
                    const int32_t maskB = cellB.colors.at(static_cast<size_t>(b.solution)).at(q);
                    if (maskA != maskB || (maskA != 0 && maskA != 1 && maskA != 2)) {
                        continue;
                    }
                    if (maskA == 0 && (isRail(cellA, cellA.shapes[p]) || isRail(cellB, cellB.shapes[q]))) {
                        continue;
                    }
                    const int32_t edgeA = a.flip ? boxA->xl : wrap(int64_t{cellA.outlineXh} - boxA->xh);
                    const int32_t edgeB = b.flip ? wrap(int64_t{cellB.outlineXh} - boxB->xh) : boxB->xl;
                    if (edgeA >= MINDPLDIST || edgeB >= MINDPLDIST) {
                        continue;
                    }
                    Standing placedA{boxA->xl, boxA->xh, boxA->yl, boxA->yh};
                    if (a.flip) {
                        placedA.x1 = wrap(int64_t{cellA.outlineXh} - boxA->xh);
                        placedA.x2 = wrap(int64_t{cellA.outlineXh} - boxA->xl);
                    }
                    Standing placedB{wrap(int64_t{boxB->xl} + cellA.width),
                                     wrap(int64_t{boxB->xh} + cellA.width), boxB->yl, boxB->yh};
                    if (b.flip) {
                        placedB.x1 = wrap(int64_t{cellA.width} + cellB.width - boxB->xh);
                        placedB.x2 = wrap(int64_t{cellA.width} + cellB.width - boxB->xl);
                    }
                    for (const int32_t v : conflict(placedA, placedB, answer.text)) {
                        best = std::max(best, v);
                        if (best > 0) {
                            answer.dist = best;
                            return answer;
                        }
                    }
                }
            }
        }
    }
    answer.dist = std::max(best, 0);
    return answer;
}

class GetSafeDist : public testing::Test {
    test::ParameterGuard m_parameters;
};

TEST_F(GetSafeDist, FacingShapesOfDifferentMasksNeedNothing)
{
    const auto cell = makeCell(600, 1400, {{{50, 500, 550, 900}}}, {{0}, {1}, {2}});
    for (int32_t s = 0; s < 3; ++s) {
        for (int32_t t = 0; t < 3; ++t) {
            const Answer want{s == t ? 155 : 0, ""};
            EXPECT_EQ(ask({cell.get(), false, s}, {cell.get(), false, t}), want) << s << ' ' << t;
        }
    }
}

struct PairCase {
    const char* name;
    Corners left;  ///< rectangle of the left cell, 1000 by 2000
    Corners right; ///< rectangle of the right cell, 1000 by 2000
    int32_t want;
    const char* text = "";
};

void PrintTo(const PairCase& row, std::ostream* out)
{
    *out << row.name;
}

class GetSafeDistOfOnePair : public testing::TestWithParam<PairCase> {
    test::ParameterGuard m_parameters;
};

TEST_P(GetSafeDistOfOnePair, IsTheRootOverTheHorizontalGapLessTheVerticalOne)
{
    const auto left = makeCell(1000, 2000, {{GetParam().left}}, {{1}});
    const auto right = makeCell(1000, 2000, {{GetParam().right}}, {{1}});
    const Answer want{GetParam().want, GetParam().text};
    EXPECT_EQ(ask({left.get(), false, 0}, {right.get(), false, 0}), want);
    EXPECT_EQ(literalAnswer({left.get(), false, 0}, {right.get(), false, 0}), want);
}

TEST_P(GetSafeDistOfOnePair, IsTheSameWithBothCellsDrawnTheOtherWayRoundAndMirrored)
{
    const auto mirrored = [](const Corners& c) { return Corners{1000 - c[2], c[1], 1000 - c[0], c[3]}; };
    const auto left = makeCell(1000, 2000, {{mirrored(GetParam().left)}}, {{1}});
    const auto right = makeCell(1000, 2000, {{mirrored(GetParam().right)}}, {{1}});
    const Answer want{GetParam().want, GetParam().text};
    EXPECT_EQ(ask({left.get(), true, 0}, {right.get(), true, 0}), want);
}

#define OVERLAP(code) "WARNING| myBox2BoxDistY(), direction = " code "\n"

const PairCase PAIRS[] = {
    {"each_50_from_the_touching_edges", {100, 500, 950, 900}, {50, 500, 900, 900}, 155}, // sqrt(24225)
    {"touching_at_the_edges", {100, 500, 1000, 900}, {0, 500, 900, 900}, 185},
    {"exactly_the_distance_apart", {100, 500, 900, 900}, {85, 500, 900, 900}, 0},
    {"one_less_than_the_distance_apart", {100, 500, 900, 900}, {84, 500, 900, 900}, 19}, // sqrt(369)
    {"left_one_the_distance_from_its_edge", {100, 500, 815, 900}, {-5, 500, 900, 900}, 0},
    {"left_one_just_nearer_to_its_edge", {100, 500, 816, 900}, {-5, 500, 900, 900}, 46}, // sqrt(2184)
    {"right_one_the_distance_from_its_edge", {100, 500, 1005, 900}, {185, 500, 900, 900}, 0},
    {"right_one_just_nearer_to_its_edge", {100, 500, 1005, 900}, {184, 500, 900, 900}, 46},
    {"y_ranges_overlap", {100, 500, 950, 900}, {50, 850, 900, 1300}, 155},
    {"y_ranges_touch", {100, 500, 950, 900}, {50, 900, 900, 1300}, 155},
    {"right_one_50_above", {100, 500, 950, 900}, {50, 950, 900, 1300}, 105},
    {"right_one_50_below", {100, 500, 950, 900}, {50, 100, 900, 450}, 105},
    {"right_one_155_above", {100, 500, 950, 900}, {50, 1055, 900, 1300}, 0}, // 100^2 + 155^2 < 185^2
    {"right_one_156_above", {100, 500, 950, 900}, {50, 1056, 900, 1300}, 0},
    {"exactly_the_distance_apart_in_the_slope", {100, 500, 945, 900}, {56, 1048, 900, 1300}, 0},
    {"one_nearer_in_the_slope", {100, 500, 945, 900}, {56, 1047, 900, 1300}, 1},
    {"the_distance_above", {100, 500, 1000, 900}, {0, 1085, 900, 1300}, 0},
    {"just_less_than_the_distance_above", {100, 500, 1000, 900}, {0, 1084, 900, 1300}, 1},
    {"the_distance_below", {100, 500, 1000, 900}, {0, 100, 900, 315}, 0},
    {"just_less_than_the_distance_below", {100, 500, 1000, 900}, {0, 100, 900, 316}, 1},

    // They overlap in x by 10: dx is -10, dy counts as 0, and the root of 185^2 - 10^2 is 184.7.
    {"overlap_right_one_above", {100, 500, 1000, 900}, {-10, 950, 900, 990}, 184, OVERLAP("0")},
    {"overlap_right_one_touches_above", {100, 500, 1000, 900}, {-10, 900, 900, 990}, 184, OVERLAP("0")},
    {"overlap_in_y_too", {100, 500, 1000, 900}, {-10, 600, 900, 990}, 184, OVERLAP("8")},
    {"overlap_right_one_below", {100, 500, 1000, 900}, {-10, 100, 900, 450}, 184, OVERLAP("3")},
    {"overlap_right_one_touches_below", {100, 500, 1000, 900}, {-10, 100, 900, 500}, 184, OVERLAP("3")},
    {"overlap_far_above_counts_all_the_same",
     {100, 500, 1000, 900},
     {-10, 1500, 900, 1600},
     184,
     OVERLAP("0")},
    {"overlap_by_more_than_the_distance", {100, 500, 1000, 900}, {-186, 500, 900, 900}, 0, OVERLAP("8")},
    {"overlap_by_the_distance", {100, 500, 1000, 900}, {-185, 500, 900, 900}, 0, OVERLAP("8")},

    // The right one ends left of where the left one begins.
    {"wrong_side_right_one_above", {990, 500, 1000, 900}, {-20, 950, -10, 990}, 183, OVERLAP("5")},
    {"wrong_side_right_one_touches_above", {990, 500, 1000, 900}, {-20, 900, -15, 990}, 183, OVERLAP("5")},
    {"wrong_side_in_one_y_range", {990, 500, 1000, 900}, {-20, 600, -10, 990}, 183, OVERLAP("2")},
    {"wrong_side_right_one_below", {990, 500, 1000, 900}, {-20, 100, -10, 450}, 183, OVERLAP("6")},
    {"wrong_side_right_one_touches_below", {990, 500, 1000, 900}, {-20, 100, -10, 500}, 183, OVERLAP("6")},
};
INSTANTIATE_TEST_SUITE_P(Pair, GetSafeDistOfOnePair, testing::ValuesIn(PAIRS),
                         [](const auto& row) { return row.param.name; });

TEST_F(GetSafeDist, Mask0ShapeAtTheTopOrBottomEdgeNeverConflicts)
{
    const auto inner = makeCell(600, 1400, {{{50, 5, 550, 1395}}}, {{0}});
    EXPECT_EQ(ask({inner.get(), false, 0}, {inner.get(), false, 0}), (Answer{155, ""}));
    for (const Corners& shape : {Corners{50, 0, 550, 70}, Corners{50, 1330, 550, 1400},
                                 Corners{50, -70, 550, 70}, Corners{50, 1330, 550, 1470}}) {
        const auto rail = makeCell(600, 1400, {{shape}}, {{0}, {1}});
        const auto neighbour = makeCell(600, 1400, {{shape}, {{50, 5, 550, 1395}}}, {{0, 0}, {1, 1}});
        EXPECT_EQ(ask({rail.get(), false, 0}, {neighbour.get(), false, 0}), (Answer{0, ""}));
        EXPECT_EQ(ask({neighbour.get(), false, 0}, {rail.get(), false, 0}), (Answer{0, ""}));
        EXPECT_EQ(ask({rail.get(), false, 1}, {rail.get(), false, 1}), (Answer{155, ""}))
            << "of another mask it does";
    }
}

TEST_F(GetSafeDist, OneRectangleAtTheEdgeMakesTheWholeShapeARail)
{
    const auto cell = makeCell(600, 1400, {{{50, 500, 550, 900}, {300, 900, 310, 1400}}}, {{0}, {2}});
    EXPECT_EQ(ask({cell.get(), false, 0}, {cell.get(), false, 0}), (Answer{0, ""}));
    EXPECT_EQ(ask({cell.get(), false, 1}, {cell.get(), false, 1}), (Answer{155, ""}));
}

TEST_F(GetSafeDist, MasksOtherThanTheThreeNeverConflict)
{
    const auto cell = makeCell(600, 1400, {{{50, 500, 550, 900}}},
                               {{3}, {4}, {-1}, {std::numeric_limits<int32_t>::min()}, {100}});
    for (int32_t s = 0; s < 5; ++s) {
        EXPECT_EQ(ask({cell.get(), false, s}, {cell.get(), false, s}), (Answer{0, ""})) << s;
    }
}

TEST_F(GetSafeDist, SolutionOutOfRangePrintsAWarningAndGives0)
{
    const auto two = makeCell(600, 1400, {{{50, 500, 550, 900}}}, {{1}, {1}});
    const auto none = makeCell(600, 1400, {}, {});
    for (const int32_t bad :
         {2, -1, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()}) {
        EXPECT_EQ(ask({two.get(), false, bad}, {two.get(), false, 0}), (Answer{0, "WARNING| larger id1\n"}));
        EXPECT_EQ(ask({two.get(), false, 0}, {two.get(), false, bad}), (Answer{0, "WARNING| larger id2\n"}));
    }
    EXPECT_EQ(ask({two.get(), false, 9}, {two.get(), false, 9}), (Answer{0, "WARNING| larger id1\n"}))
        << "of two the first";
    EXPECT_EQ(ask({none.get(), false, 0}, {two.get(), false, 0}), (Answer{0, "WARNING| larger id1\n"}));
    EXPECT_EQ(ask({two.get(), false, 1}, {none.get(), true, 0}), (Answer{0, "WARNING| larger id2\n"}));
}

TEST_F(GetSafeDist, FirstPairThatNeedsSpaceDecidesNotTheOneThatNeedsMost)
{
    const Corners near{50, 500, 550, 900};
    const Corners far{80, 500, 520, 900};
    const auto farFirst = makeCell(600, 1400, {{far}, {near}}, {{1, 1}});
    const auto nearFirst = makeCell(600, 1400, {{near}, {far}}, {{1, 1}});
    const auto farFirstInOneShape = makeCell(600, 1400, {{far, near}}, {{1}});
    const Side f{farFirst.get(), false, 0};
    const Side n{nearFirst.get(), false, 0};
    const Side one{farFirstInOneShape.get(), false, 0};
    EXPECT_EQ(ask(f, f).dist, 92);  // sqrt(185^2 - 160^2)
    EXPECT_EQ(ask(n, n).dist, 155); // sqrt(185^2 - 100^2)
    EXPECT_EQ(ask(f, n).dist, 131); // sqrt(185^2 - 130^2)
    EXPECT_EQ(ask(one, one).dist, 92);
}

TEST_F(GetSafeDist, PairsAreVisitedByLeftShapeThenRightShapeThenLeftRectangleThenRightRectangle)
{
    // Every pair needs another distance, and the masks let through one pair of shapes after the other.
    const auto left = makeCell(
        600, 1400, {{{0, 500, 590, 900}, {0, 500, 570, 900}}, {{0, 500, 550, 900}, {0, 500, 530, 900}}},
        {{1, 1}, {2, 1}});
    const auto right = makeCell(
        600, 1400, {{{1, 500, 600, 900}, {4, 500, 600, 900}}, {{7, 500, 600, 900}, {9, 500, 600, 900}}},
        {{1, 1}, {2, 1}});
    const auto dist = [&](int32_t s, int32_t t) {
        return ask({left.get(), false, s}, {right.get(), false, t}).dist;
    };
    const auto root = [](int32_t dx) { return static_cast<int32_t>(std::sqrt(185.0 * 185.0 - dx * dx)); };
    EXPECT_EQ(dist(0, 0), root(10 + 1));
    EXPECT_EQ(dist(0, 1), root(10 + 7));
    EXPECT_EQ(dist(1, 0), root(50 + 1));
    EXPECT_EQ(dist(1, 1), root(10 + 1)) << "mask 2 of both first shapes";
}

TEST_F(GetSafeDist, RightRectanglesAreVisitedBeforeTheNextLeftOne)
{
    // The first left rectangle does not reach the first right one, but the second; the second left one
    // reaches both.
    const auto left = makeCell(600, 1400, {{{500, 200, 590, 300}, {500, 800, 580, 900}}}, {{1}});
    const auto right = makeCell(600, 1400, {{{0, 800, 90, 900}, {20, 200, 90, 300}}}, {{1}});
    EXPECT_EQ(ask({left.get(), false, 0}, {right.get(), false, 0}).dist, 182); // sqrt(185^2 - 30^2)
}

TEST_F(GetSafeDist, RightShapesAreVisitedBeforeTheNextLeftRectangle)
{
    const auto left = makeCell(600, 1400, {{{500, 200, 590, 300}, {500, 800, 580, 900}}}, {{1}});
    const auto right = makeCell(600, 1400, {{{0, 800, 90, 900}}, {{20, 200, 90, 300}}}, {{1, 1}});
    // Shape by shape: with the first right shape only the second left rectangle needs space.
    EXPECT_EQ(ask({left.get(), false, 0}, {right.get(), false, 0}).dist, 183); // sqrt(185^2 - 20^2)
}

TEST_F(GetSafeDist, PairThatNeedsNothingLetsTheVisitGoOn)
{
    // 111^2 + 148^2 is 185^2: the first pair conflicts and needs 0.
    const auto left = makeCell(600, 1400, {{{0, 500, 545, 900}}}, {{1}});
    const auto right = makeCell(600, 1400, {{{56, 1048, 90, 1100}}, {{45, 500, 90, 900}}}, {{1, 1}});
    EXPECT_EQ(ask({left.get(), false, 0}, {right.get(), false, 0}).dist, 155);
}

TEST_F(GetSafeDist, EveryOverlapOnTheWayIsWarnedOf)
{
    // 186 over: too far for a conflict, so the visit goes on.
    const auto left = makeCell(600, 1400, {{{0, 500, 600, 900}}}, {{1}});
    const auto right =
        makeCell(600, 1400, {{{-186, 500, 90, 900}, {-187, 950, 90, 990}}, {{0, 500, 90, 900}}}, {{1, 1}});
    EXPECT_EQ(ask({left.get(), false, 0}, {right.get(), false, 0}), (Answer{185, OVERLAP("8") OVERLAP("0")}));
}

TEST_F(GetSafeDist, MirroredCellsStandMirrored)
{
    // 10 from the left edge, 60 from the right one.
    const auto cell = makeCell(600, 1400, {{{10, 500, 540, 900}}}, {{1}});
    const auto dist = [&cell](bool leftFlip, bool rightFlip) {
        return ask({cell.get(), leftFlip, 0}, {cell.get(), rightFlip, 0}).dist;
    };
    EXPECT_EQ(dist(false, false), 171); // sqrt(185^2 - 70^2)
    EXPECT_EQ(dist(false, true), 140);  // sqrt(185^2 - 120^2)
    EXPECT_EQ(dist(true, false), 183);  // sqrt(185^2 - 20^2)
    EXPECT_EQ(dist(true, true), 171);
}

struct DistanceCase {
    const char* name;
    int32_t minDist;
    int32_t gap; ///< between the two rectangles, which face each other, half of it in each cell
    int32_t want;
    const char* text = "";
};

void PrintTo(const DistanceCase& row, std::ostream* out)
{
    *out << row.name;
}

class GetSafeDistOfMinimum : public testing::TestWithParam<DistanceCase> {
    test::ParameterGuard m_parameters;
};

TEST_P(GetSafeDistOfMinimum, IsComputedIn32Bits)
{
    MINDPLDIST = GetParam().minDist;
    const int32_t half = GetParam().gap / 2;
    const auto left = makeCell(100000, 1400, {{{0, 500, 100000 - half, 900}}}, {{1}});
    const auto right = makeCell(100000, 1400, {{{GetParam().gap - half, 500, 100000, 900}}}, {{1}});
    const Answer want{GetParam().want, GetParam().text};
    EXPECT_EQ(ask({left.get(), false, 0}, {right.get(), false, 0}), want);
    EXPECT_EQ(literalAnswer({left.get(), false, 0}, {right.get(), false, 0}), want);
}

const DistanceCase MINIMA[] = {
    {"none", 0, 0, 0},
    {"negative", -185, 0, 0},
    {"one_and_touching", 1, 0, 1},
    {"one_and_one_apart", 1, 1, 0},
    {"largest_whose_square_fits", 46340, 0, 46340},
    {"largest_whose_square_fits_and_a_gap", 46340, 40000, 23396},
    {"square_wraps_to_a_negative", 46341, 0, 0},
    {"square_wraps_to_0_and_touching", 65536, 0, 0},
    {"square_wraps_to_0_and_apart", 65536, 1, 0},
    {"square_wraps_to_a_small_one", 65537, 0, 362},           // sqrt(131073)
    {"square_wraps_to_a_small_one_and_a_gap", 65537, 362, 5}, // sqrt(131073 - 131044)
    {"square_wraps_and_so_does_that_of_the_gap", 65537, 65536, 362},
    {"square_of_a_gap_that_is_too_large_wraps_to_0", 46340, 65536, 0},
    {"square_of_an_overlap_wraps_to_0", 185, -65536, 185, OVERLAP("8")},
    {"negative_and_the_square_of_an_overlap_wraps_to_0", -185, -65536, 0, OVERLAP("8")},
    {"largest", std::numeric_limits<int32_t>::max(), 0, 1}, // its square wraps to 1
};
INSTANTIATE_TEST_SUITE_P(Distance, GetSafeDistOfMinimum, testing::ValuesIn(MINIMA),
                         [](const auto& row) { return row.param.name; });

struct SiteCase {
    int32_t minDist;
    int32_t want;
};

TEST_F(GetSafeDist, InSitesOf190ItIsRoundedUp)
{
    const LUTable lut;
    const auto cell = makeCell(600, 1400, {{{0, 500, 600, 900}}}, {{1}, {2}});
    for (const SiteCase& row : {SiteCase{1, 1}, {190, 1}, {191, 2}, {380, 2}, {381, 3}, {1900, 10}}) {
        MINDPLDIST = row.minDist;
        SITE_WIDTH = 7; // no part in it
        EXPECT_EQ(lut.getSafeSiteDist(cell.get(), false, 0, cell.get(), true, 0), row.want) << row.minDist;
        EXPECT_EQ(lut.getSafeSiteDist(cell.get(), false, 0, cell.get(), true, 1), 0);
    }
}

TEST_F(GetSafeDist, OfFiftyAndFiftyInSitesIsOne)
{
    const LUTable lut;
    const auto cell = makeCell(600, 1400, {{{50, 500, 550, 900}}}, {{1}});
    EXPECT_EQ(lut.getSafeDist(cell.get(), false, 0, cell.get(), false, 0), 155);
    EXPECT_EQ(lut.getSafeSiteDist(cell.get(), false, 0, cell.get(), false, 0), 1);
}

/// The cell in words, for the report of a failure.
std::string describe(const Side& side)
{
    std::ostringstream out;
    out << side.cell->width << " by " << side.cell->height << (side.flip ? ", mirrored" : "") << ", solution "
        << side.solution;
    for (size_t k = 0; k < side.cell->shapes.size(); ++k) {
        out << "; shape " << k << ':';
        for (const qBox* box : side.cell->shapes[k]) {
            out << " (" << box->xl << ' ' << box->yl << ' ' << box->xh << ' ' << box->yh << ')';
        }
        out << " masks";
        for (const std::vector<int32_t>& masks : side.cell->colors) {
            out << ' ' << masks[k];
        }
    }
    return out.str();
}

/// Compares every pair of solutions of two random cells, the ones just out of range included.
void comparePairs(int32_t minDist, int32_t scale)
{
    const test::ParameterGuard parameters;
    MINDPLDIST = minDist;
    const auto left = pickCell(scale);
    const auto right = pickCell(scale);
    for (const bool leftFlip : {false, true}) {
        for (const bool rightFlip : {false, true}) {
            for (int32_t s = -1; s <= static_cast<int32_t>(left->colors.size()); ++s) {
                for (int32_t t = -1; t <= static_cast<int32_t>(right->colors.size()); ++t) {
                    const Side a{left.get(), leftFlip, s};
                    const Side b{right.get(), rightFlip, t};
                    RC_LOG() << "left: " << describe(a) << "\nright: " << describe(b)
                             << "\nminimum distance: " << minDist << std::endl;
                    RC_ASSERT(ask(a, b) == literalAnswer(a, b));
                }
            }
        }
    }
}

PROPERTY(GetSafeDistOfAnyCells, IsWhatTheRulesGive)
{
    comparePairs(test::drawOne({185, test::draw(1, 400)}), 1);
}

PROPERTY(GetSafeDistOfAnyCells, IsWhatTheRulesGiveAtAnyMinimumDistance)
{
    const auto minDist = test::drawOne(
        {test::drawOne({0, -1, -60, 1, 46340, 46341, 65535, 65536, 65537, 92682, 92683,
                        std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()}),
         test::draw(-200, 200000), test::drawInt()});
    comparePairs(minDist, test::drawOne({1, 100, 300, 1000000}));
}

} // namespace
