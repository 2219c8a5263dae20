// SPDX-License-Identifier: BSD-3-Clause
// The metal of a master as nets and polygons.
#include "kit/engines/color/metal.h"

#include "kit/engines/color/grid.h"
#include "kit/engines/color/judge.h"
#include "kit/engines/color/smallCell.h"
#include "kit/formats/lefdef/units.h"
#include "support/property.h"

namespace {

using namespace test;
using kit::color::CellFault;
using kit::color::Rounding;
using kit::color::Scale;

/// Nets and rectangles of polygons: "A: 0 0 1 1, 2 2 3 3; B: ...".
std::string textOf(const CellMetal& metal, const std::vector<Polygon>& polygons)
{
    std::string text;
    for (const Polygon& polygon : polygons) {
        text += (text.empty() ? "" : "; ") + metal.nets[polygon.net] + ": " + test::textOf(polygon.rects);
    }
    return text;
}

struct NetCase {
    const char* name;
    std::vector<LefPin> pins;
    std::vector<LefShape> obstructions;
    const char* want; ///< polygons
};

const NetCase NETS[] = {
    {"TouchingRectanglesOfAPinAreOnePolygon",
     {pin("A", {rectShape(0, 100, 10, 200), rectShape(10, 150, 50, 160)})},
     {},
     "A: 0 100 10 200, 10 150 50 160"},
    {"ApartRectanglesOfAPinAreTwoPolygons",
     {pin("A", {rectShape(0, 100, 10, 200), rectShape(11, 150, 50, 160)})},
     {},
     "A: 0 100 10 200; A: 11 150 50 160"},
    {"TouchingAtACornerIsTouching",
     {pin("A", {rectShape(0, 100, 10, 200), rectShape(10, 200, 50, 260)})},
     {},
     "A: 0 100 10 200, 10 200 50 260"},
    {"TouchingObstructionsAreANet",
     {},
     {rectShape(0, 100, 10, 200), rectShape(100, 100, 110, 200), rectShape(5, 150, 50, 160)},
     "obstruction 1: 0 100 10 200, 5 150 50 160; obstruction 2: 100 100 110 200"},
    {"ObstructionThatTouchesAPinBelongsToIt",
     {pin("A", {rectShape(0, 100, 10, 200)})},
     {rectShape(50, 100, 60, 200), rectShape(10, 150, 50, 160)},
     "A: 0 100 10 200, 50 100 60 200, 10 150 50 160"},
    {"PinsComeInTheirOrderAndObstructionsLast",
     {pin("B", {rectShape(90, 100, 99, 200)}), pin("A", {rectShape(0, 100, 10, 200)})},
     {rectShape(50, 100, 60, 200)},
     "B: 90 100 99 200; A: 0 100 10 200; obstruction 1: 50 100 60 200"},
    {"LinesAreNoMetal",
     {pin("A", {rectShape(0, 100, 0, 200), rectShape(5, 100, 9, 200)})},
     {},
     "A: 5 100 9 200"},
    {"PolygonIsCutIntoRectangles",
     {pin("A", {polygonShape({{0, 100}, {0, 300}, {20, 300}, {20, 120}, {90, 120}, {90, 100}})})},
     {},
     "A: 0 100 90 120, 0 120 20 300"},
    {"SupplyMetalInsideIsNoRail",
     {pin("VDD", {rectShape(10, 500, 80, 600)}, PinUse::POWER)},
     {},
     "VDD: 10 500 80 600"},
    {"SignalAtTheEdgeIsNoRail", {pin("A", {rectShape(10, -85, 80, 600)})}, {}, "A: 10 -85 80 600"},
    {"ObstructionThatEndsBeforeTheSideIsNoRail",
     {},
     {rectShape(0, -85, 189, 85)},
     "obstruction 1: 0 -85 189 85"},
    {"ObstructionsWithAGapAtTheEdgeAreNoRail",
     {},
     {rectShape(0, 0, 90, 85), rectShape(100, 0, 190, 85), rectShape(0, 85, 190, 95)},
     "obstruction 1: 0 0 90 85, 100 0 190 85, 0 85 190 95"},
    {"ObstructionFromSideToSideInsideIsNoRail", {}, {rectShape(0, 5, 190, 95)}, "obstruction 1: 0 5 190 95"},
};

class KitColorNets : public testing::TestWithParam<NetCase> {};

TEST_P(KitColorNets, AreFoundByTouch)
{
    const CellMetal found = sorted(macro(190, GetParam().pins, GetParam().obstructions));
    EXPECT_EQ(textOf(found, found.polygons), GetParam().want);
    EXPECT_TRUE(found.rails.empty());
}

INSTANTIATE_TEST_SUITE_P(All, KitColorNets, testing::ValuesIn(NETS),
                         [](const auto& row) { return std::string(row.param.name); });

const NetCase RAIL_METAL[] = {
    {"FingersBelongToTheirRail",
     {pin("VSS", {rectShape(0, -85, 190, 85), rectShape(20, -85, 50, 300)}, PinUse::GROUND)},
     {rectShape(50, 250, 90, 300)},
     "VSS: 0 -85 190 85, 20 -85 50 300, 50 250 90 300"},
    {"LowestRailComesFirst",
     {pin("VDD", {rectShape(0, 1315, 190, 1485)}, PinUse::POWER),
      pin("VSS", {rectShape(0, -85, 190, 85)}, PinUse::GROUND)},
     {},
     "VSS: 0 -85 190 85; VDD: 0 1315 190 1485"},
    {"PartsOfARailAreOneShape",
     {pin("VSS", {rectShape(0, -85, 50, 85), rectShape(150, -85, 190, 85)}, PinUse::GROUND)},
     {},
     "VSS: 0 -85 50 85, 150 -85 190 85"},
    {"RailIsCutToTheOutline",
     {pin("VSS", {rectShape(-30, -85, 260, 85)}, PinUse::GROUND)},
     {},
     "VSS: 0 -85 190 85"},
    {"RailMayLieInsideIfItReachesAcross",
     {pin("VSS", {rectShape(0, 20, 190, 90)}, PinUse::GROUND)},
     {},
     "VSS: 0 20 190 90"},
    {"SignalThatTouchesARailIsPartOfIt",
     {pin("Z", {rectShape(50, 85, 60, 200)}), pin("VSS", {rectShape(0, -85, 190, 85)}, PinUse::GROUND)},
     {},
     "VSS: 50 85 60 200, 0 -85 190 85"},
    {"ObstructionAlongTheBottom",
     {},
     {rectShape(0, -85, 190, 85), rectShape(20, 85, 50, 300)},
     "obstruction 1: 0 -85 190 85, 20 85 50 300"},
    {"ObstructionAlongTheTop",
     {pin("A", {rectShape(0, 1315, 190, 1400)})},
     {rectShape(20, 1200, 50, 1320)},
     "A: 0 1315 190 1400, 20 1200 50 1320"},
    {"PartsAlongTheBottomTogether",
     {},
     {rectShape(100, 0, 190, 85), rectShape(0, -20, 100, 85)},
     "obstruction 1: 100 0 190 85, 0 -20 100 85"},
};

class KitColorRails : public testing::TestWithParam<NetCase> {};

TEST_P(KitColorRails, AreSupplyMetalAtTheEdgeAndAnyAlongAllOfIt)
{
    const CellMetal found = sorted(macro(190, GetParam().pins, GetParam().obstructions));
    EXPECT_EQ(textOf(found, found.rails), GetParam().want);
    EXPECT_TRUE(found.polygons.empty());
}

INSTANTIATE_TEST_SUITE_P(All, KitColorRails, testing::ValuesIn(RAIL_METAL),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KitColorMetal, PinsThatTouchAreRemarkedOnce)
{
    const CellMetal found =
        sorted(macro(190, {pin("A", {rectShape(0, 100, 10, 200), rectShape(0, 200, 10, 300)}),
                           pin("B", {rectShape(10, 100, 20, 200)})}));
    ASSERT_EQ(found.remarks.size(), 1U);
    EXPECT_EQ(found.remarks[0], "metal of the pins A and B touches, and is taken for one net");
    EXPECT_EQ(found.polygons.size(), 1U);
}

struct MetalFault {
    const char* name;
    LefMacro master;
    const char* want;
};

const MetalFault METAL_FAULTS[] = {
    {"SlantingPolygon", macro(190, {pin("A", {polygonShape({{0, 0}, {50, 50}, {50, 0}})})}),
     "a polygon of A has edges that are not along an axis, or no area"},
    {"SlantingObstruction", macro(190, {}, {polygonShape({{0, 0}, {50, 50}, {50, 0}})}),
     "a polygon of the obstructions has edges that are not along an axis, or no area"},
    {"PolygonWithoutArea", macro(190, {pin("A", {polygonShape({{0, 0}, {50, 0}})})}),
     "a polygon of A has edges that are not along an axis, or no area"},
    {"MetalLeftOfTheCell", macro(190, {pin("A", {rectShape(-1, 100, 50, 200)})}),
     "metal of A at -1 100 50 200 reaches beyond the cell's left or right edge (0 to 190)"},
    {"MetalRightOfTheCell", macro(190, {}, {rectShape(10, 100, 191, 200)}),
     "metal of obstruction 1 at 10 100 191 200 reaches beyond the cell's left or right edge (0 to 190)"},
    {"HugeCell", macro(Length{1} << 40, {}), "a coordinate of the cell is too large"},
    {"ManyRectangles", macro(190, {pin("A", std::vector<LefShape>(1001, rectShape(0, 0, 1, 1)))}),
     "the cell has more than 1000 rectangles of metal"},
};

class KitColorMetalFaults : public testing::TestWithParam<MetalFault> {};

TEST_P(KitColorMetalFaults, IsTold)
{
    try {
        sorted(GetParam().master);
        FAIL() << "no fault";
    } catch (const CellFault& fault) {
        EXPECT_STREQ(fault.what(), GetParam().want);
    }
}

INSTANTIATE_TEST_SUITE_P(All, KitColorMetalFaults, testing::ValuesIn(METAL_FAULTS),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KitColorScale, ASiteIs190Wide)
{
    const Scale scale(200 * NM);
    EXPECT_EQ(scale.of(200 * NM), 190);
    EXPECT_EQ(scale.of(-200 * NM), -190);
    EXPECT_EQ(scale.of(0), 0);
}

TEST(KitColorScale, RoundsToTheNearestOrAsTold)
{
    const Scale scale(380 * NM);    // a unit is 2 nm
    EXPECT_EQ(scale.of(3 * NM), 2); // halves go up
    EXPECT_EQ(scale.of(-3 * NM), -1);
    EXPECT_EQ(scale.of(3 * NM - 1), 1);
    EXPECT_EQ(scale.of(-3 * NM - 1), -2);
    EXPECT_EQ(scale.of(3 * NM, Rounding::DOWN), 1);
    EXPECT_EQ(scale.of(3 * NM, Rounding::UP), 2);
    EXPECT_EQ(scale.of(-3 * NM, Rounding::DOWN), -2);
    EXPECT_EQ(scale.of(-3 * NM, Rounding::UP), -1);
    EXPECT_EQ(scale.of(2 * NM + 1, Rounding::UP), 2);
    EXPECT_EQ(scale.of(4 * NM - 1, Rounding::DOWN), 1);
    for (const Rounding rounding : {Rounding::NEAREST, Rounding::DOWN, Rounding::UP}) {
        EXPECT_EQ(scale.of(4 * NM, rounding), 2);
        EXPECT_EQ(scale.of(-4 * NM, rounding), -2);
    }
    EXPECT_TRUE(scale.isExact(4 * NM));
    EXPECT_FALSE(scale.isExact(3 * NM));
}

TEST(KitColorMetal, SaysWhetherItWasRounded)
{
    const LefMacro even = macro(380, {pin("A", {rectShape(20, 40, 60, 80)})});
    const LefMacro odd = macro(380, {pin("A", {rectShape(21, 40, 60, 80)})});
    EXPECT_TRUE(kit::color::metalOf(even, Scale(380 * NM)).exact);
    EXPECT_FALSE(kit::color::metalOf(odd, Scale(380 * NM)).exact);
}

// What is apart by the distance in the colour file is so in truth.
TEST(KitColorMetal, ShapesAreRoundedOutward)
{
    const LefMacro odd = macro(380, {pin("A", {rectShape(21, 41, 61, 81)})});
    const kit::color::CellMetal metal = kit::color::metalOf(odd, Scale(380 * NM));
    ASSERT_EQ(metal.polygons.size(), 1U);
    EXPECT_EQ(metal.polygons[0].rects, (Rects{{10, 20, 31, 41}}));
}

TEST(KitColorMicron, TextHasNoZerosAtItsEnd)
{
    EXPECT_EQ(kit::lefdef::micronText(190'000), "0.19");
    EXPECT_EQ(kit::lefdef::micronText(1'400'000), "1.4");
    EXPECT_EQ(kit::lefdef::micronText(-2'000'000), "-2");
    EXPECT_EQ(kit::lefdef::micronText(1), "0.000001");
}

/// Random rectangles with few different coordinates.
Rects someRects()
{
    const auto count = test::draw(1, 8);
    Rects rects;
    for (int i = 0; i < count; ++i) {
        const int32_t x = test::draw(0, 8);
        const int32_t y = test::draw(0, 8);
        rects.push_back({x, y, x + test::draw(1, 4), y + test::draw(1, 4)});
    }
    return rects;
}

PROPERTY(KitColorGrid, TidiedRectanglesCoverTheSameWithoutOverlap)
{
    const Rects rects = someRects();
    const Rects tidied = kit::color::tidied(rects);
    Rects both = rects;
    both.insert(both.end(), tidied.begin(), tidied.end());
    int64_t sum = 0;
    for (const Rect& rect : tidied) {
        sum += int64_t{rect.xh - rect.xl} * (rect.yh - rect.yl);
    }
    RC_ASSERT(areaOf(both) == areaOf(rects));
    RC_ASSERT(sum == areaOf(rects));
}

PROPERTY(KitColorGrid, SlabsReachFromEdgeToEdge)
{
    const Rects rects = someRects();
    const auto isMetal = [&](int32_t x, int32_t y) {
        return std::any_of(rects.begin(), rects.end(), [&](const Rect& rect) {
            return rect.xl <= x && x < rect.xh && rect.yl <= y && y < rect.yh;
        });
    };
    for (const Rect& slab : kit::color::Grid(rects).slabs()) {
        for (int32_t x = slab.xl; x < slab.xh; ++x) {
            RC_ASSERT(!isMetal(x, slab.yl - 1));
            RC_ASSERT(!isMetal(x, slab.yh));
        }
    }
}

} // namespace
