// SPDX-License-Identifier: BSD-3-Clause
// Where stitches may lie, and how polygons are cut there.
#include "kit/engines/color/cuts.h"

#include "kit/engines/color/judge.h"
#include "kit/engines/color/parts.h"
#include "kit/engines/color/smallCell.h"
#include "support/property.h"

namespace {

using namespace test;
using kit::color::Cut;
using kit::color::Rules;

struct CutCase {
    const char* name;
    std::vector<Rects> polygons; ///< the first is cut
    Rules rules;
    const char* want; ///< boxes of the cuts
};

constexpr int32_t WIDE = 5000; // nothing is at a side of the cell

// A wire from 1000 to 2000, 70 wide; others stand 100 above it: they shade 155 further to either side.
const Rect WIRE{1000, 500, 2000, 570};

const CutCase CUTS[] = {
    {"NoneWithoutNeighbours", {{WIRE}}, {}, ""},
    {"NoneBetweenAFreeEndAndANeighbour", {{WIRE}, {{1400, 670, 1500, 700}}}, {}, ""},
    {"BetweenTwoShades",
     {{WIRE}, {{1000, 670, 1200, 700}}, {{1700, 670, 1800, 700}}},
     {},
     "1450 500 1450 570"},
    {"OneNeighbourMayShadeTheStitch",
     {{WIRE}, {{1000, 670, 1200, 700}}, {{1700, 670, 1800, 700}}, {{1400, 370, 1500, 400}}},
     {},
     "1450 500 1450 570"},
    {"NotWhereShadesBeginBeforeOthersEnd",
     {{WIRE}, {{1000, 670, 1200, 700}}, {{1500, 670, 1800, 700}}},
     {},
     ""},
    {"ShadesThatMeetLeaveAPlace",
     {{WIRE}, {{1000, 670, 1200, 700}}, {{1512, 670, 1800, 700}}},
     {},
     "1356 500 1356 570"},
    {"FarShapesDoNotShade", {{WIRE}, {{1000, 755, 1200, 800}}, {{1700, 670, 1800, 700}}}, {}, ""},
    {"OverlapFits",
     {{WIRE}, {{1000, 670, 1200, 700}}, {{1700, 670, 1800, 700}}},
     {185, 61},
     "1420 500 1481 570"},
    {"OverlapThatDoesNotFitIsNoPlace",
     {{WIRE}, {{1000, 670, 1200, 700}}, {{1562, 670, 1800, 700}}},
     {185, 51},
     ""},
    {"OverlapThatJustFits",
     {{WIRE}, {{1000, 670, 1200, 700}}, {{1562, 670, 1800, 700}}},
     {185, 50},
     "1356 500 1406 570"},
    {"BearableConflictsDoNotShade",
     {{WIRE}, {{1000, 670, 1200, 700}}, {{1700, 670, 1800, 700}}},
     {185, 0, 100},
     ""},
    {"ShortBodyIsNoArm",
     {{{1000, 500, 1100, 570}}, {{800, 500, 980, 570}}, {{1120, 500, 1300, 570}}},
     {60, 0},
     ""},
    {"UprightWireIsCutByAFlatLine",
     {{{500, 1000, 570, 2000}}, {{670, 1000, 700, 1200}}, {{670, 1700, 700, 1800}}},
     {},
     "500 1450 570 1450"},
    {"WhereAnArmLeavesTheBody",
     // The body's neighbour shades the arm's root; the arm's neighbour all but the root, and of the body what
     // is above the arm.
     {{{1000, 500, 1070, 1500}, {1070, 1000, 1800, 1070}},
      {{700, 900, 900, 1100}},
      {{1226, 1170, 1500, 1200}}},
     {},
     "1070 1000 1070 1070, 1000 1070 1070 1070"},
    {"BetweenTheBodyAndAShade",
     {{{1000, 500, 1070, 1500}, {1070, 1000, 1800, 1070}},
      {{700, 1200, 900, 1300}},
      {{1256, 1170, 1500, 1200}}},
     {},
     "1085 1000 1085 1070"},
    {"FreeEndKeepsASquare",
     {{WIRE}, {{930, 580, 965, 590}}, {{1174, 580, 1300, 590}}},
     {100, 0},
     "1070 500 1070 570"},
    {"FreeEndWithoutRoomForASquareIsNotCut",
     {{WIRE}, {{930, 580, 965, 590}}, {{1169, 580, 1300, 590}}},
     {100, 0},
     ""},
};

class KitColorCuts : public testing::TestWithParam<CutCase> {};

TEST_P(KitColorCuts, LieWhereNeighboursArePartedBest)
{
    const CellMetal cell = metal(WIDE, GetParam().polygons);
    std::vector<const Polygon*> others;
    for (size_t i = 1; i < cell.polygons.size(); ++i) {
        others.push_back(&cell.polygons[i]);
    }
    Rects boxes;
    for (const Cut& cut : kit::color::cutsOf(cell.polygons[0], others, GetParam().rules, WIDE)) {
        boxes.push_back(cut.box);
    }
    EXPECT_EQ(textOf(boxes), GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(All, KitColorCuts, testing::ValuesIn(CUTS),
                         [](const auto& row) { return std::string(row.param.name); });

std::string cutsAtSides(const Rects& polygon, int32_t width)
{
    Rects boxes;
    for (const Cut& cut : kit::color::cutsOf({0, polygon}, {}, {}, width)) {
        boxes.push_back(cut.box);
    }
    return textOf(boxes);
}

TEST(KitColorCuts, UprightArmAtASideIsCutInItsMiddle)
{
    EXPECT_EQ(cutsAtSides({{184, 200, 254, 1000}}, WIDE), "184 600 254 600");
    EXPECT_EQ(cutsAtSides({{185, 200, 255, 1000}}, WIDE), "");
    EXPECT_EQ(cutsAtSides({{WIDE - 254, 200, WIDE - 184, 1000}}, WIDE), "4746 600 4816 600");
    EXPECT_EQ(cutsAtSides({{10, 200, 80, 339}}, WIDE), ""); // two squares do not fit
}

TEST(KitColorCuts, PolygonFromSideToSideIsCutInItsMiddle)
{
    EXPECT_EQ(cutsAtSides({{100, 500, 900, 570}}, 1000), "500 500 500 570");
    EXPECT_EQ(cutsAtSides({{185, 500, 900, 570}}, 1000), "");
}

PROPERTY(KitColorPieces, HaveTheMetalOfThePolygon)
{
    Rects others;
    std::vector<Rects> polygons(3);
    for (Rects& rects : polygons) {
        int32_t x = test::draw(0, 1000);
        int32_t y = test::draw(0, 1000);
        for (int i = test::draw(1, 5); i > 0; --i) { // a wire with corners
            const int32_t length = test::draw(100, 600);
            const bool flat = test::draw(0, 2) == 0;
            rects.push_back(flat ? Rect{x, y, x + length, y + 70} : Rect{x, y, x + 70, y + length});
            x += flat ? length - 70 : 0;
            y += flat ? 0 : length - 70;
        }
    }
    const Rules rules{185, test::drawOne({0, 20})};
    const Polygon a{0, polygons[0]};
    const Polygon b{1, polygons[1]};
    const Polygon c{2, polygons[2]};
    const std::vector<Cut> cuts = kit::color::cutsOf(a, {&b, &c}, rules, 3000);
    const kit::color::Pieces pieces = kit::color::cutUp(a.rects, cuts);
    Rects all = a.rects;
    int64_t sum = 0;
    for (const Rects& piece : pieces.rects) {
        all.insert(all.end(), piece.begin(), piece.end());
        sum += areaOf(piece);
    }
    int64_t common = 0;
    for (size_t i = 0; i < cuts.size(); ++i) {
        const auto [p, q] = pieces.joined[i];
        common += p == q ? 0 : areaOf({cuts[i].box});
        RC_ASSERT(meet(pieces.rects[p], {cuts[i].box}));
        RC_ASSERT(meet(pieces.rects[q], {cuts[i].box}));
    }
    RC_ASSERT(areaOf(all) == areaOf(a.rects));
    RC_ASSERT(sum == areaOf(a.rects) + common);
}

TEST(KitColorPieces, CornerAloneHoldsThemTogether)
{
    const kit::color::Pieces pieces = kit::color::cutUp({{0, 0, 10, 10}, {10, 10, 20, 20}}, {});
    EXPECT_EQ(pieces.rects.size(), 1U);
    EXPECT_EQ(kit::color::cutUp({{0, 10, 10, 20}, {10, 0, 20, 10}}, {}).rects.size(), 1U);
}

TEST(KitColorParts, SignalAtTheEdgeIsNotOnMask0)
{
    const auto masksOf = [](const Rect& rect, int32_t bottom) {
        return static_cast<int>(kit::color::graphOf(metal(WIDE, {{rect}}), {}, bottom).parts.at(0).masks);
    };
    EXPECT_EQ(masksOf({1000, 0, 1070, 100}, 0), 6);
    EXPECT_EQ(masksOf({1000, 1, 1070, 100}, 0), 7);
    EXPECT_EQ(masksOf({1000, 1000, 1070, 1400}, 0), 6);
    EXPECT_EQ(masksOf({1000, 1000, 1070, 1399}, 0), 7);
    EXPECT_EQ(masksOf({1000, 1000, 1070, 1315}, -85), 6); // the placer moves it up by 85
    EXPECT_EQ(masksOf({1000, 1000, 1070, 1314}, -85), 7);
}

} // namespace
