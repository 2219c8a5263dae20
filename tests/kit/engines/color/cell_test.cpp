// SPDX-License-Identifier: BSD-3-Clause
// Cells from their metal to what their colour files say.
#include "kit/engines/color/cell.h"

#include <map>
#include <set>

#include "kit/design/rowKinds.h"
#include "kit/engines/color/cuts.h"
#include "kit/engines/color/judge.h"
#include "kit/engines/color/smallCell.h"
#include "support/property.h"

namespace {

using namespace test;
using kit::color::ColouredCell;
using kit::color::Graph;
using kit::color::Part;
using kit::color::Rules;
using kit::color::Settings;

ColouredCell coloured(const CellMetal& cell, const Settings& settings = {})
{
    return kit::color::colour(cell, settings, kit::color::bottomOf({cell}));
}

/// Four squares that are all closer than 185 to one another: at the corners of a square with sides of 100.
CellMetal fourSquares(int32_t gap = 100)
{
    std::vector<Rects> squares;
    for (const int32_t x : {400, 500 + gap}) {
        for (const int32_t y : {400, 500 + gap}) {
            squares.push_back({{x, y, x + 100, y + 100}});
        }
    }
    return metal(1900, squares);
}

TEST(KitColorCell, RailsComeFirstAndHaveMask0)
{
    std::vector<LefPin> pins{pin("A", {rectShape(200, 500, 270, 900)})};
    for (const LefPin& rail : rails(570)) {
        pins.push_back(rail);
    }
    const ColouredCell cell = coloured(sorted(macro(570, pins)));
    ASSERT_TRUE(cell.file);
    EXPECT_EQ(textOf(cell.file->shapes.at(0).rects), "0 -85 570 85");
    EXPECT_EQ(textOf(cell.file->shapes.at(1).rects), "0 1315 570 1485");
    EXPECT_EQ(cell.shapeNames, (std::vector<std::string>{"VSS", "VDD", "A"}));
    for (const kit::placer::Solution& solution : cell.file->solutions) {
        EXPECT_EQ(solution.masks[0], 0);
        EXPECT_EQ(solution.masks[1], 0);
    }
}

TEST(KitColorCell, RailsDoNotCountInTheSpacing)
{
    std::vector<LefPin> pins = rails(190);
    pins.push_back(pin("A", {rectShape(60, 95, 130, 300)}));
    Settings settings;
    settings.mostSolutions = 1;
    const ColouredCell cell = coloured(sorted(macro(190, pins)), settings);
    ASSERT_TRUE(cell.file);
    EXPECT_EQ(cell.file->solutions.front().masks, (std::vector<int32_t>{0, 0, 0}));
}

/// Three squares that are closer than 185 to one another, and so many of them to the rail below.
CellMetal threeSquares(int nearRail)
{
    std::vector<LefPin> pins = rails(1900);
    const int32_t low = 150;  // 65 above the rail
    const int32_t high = 300; // 215 above it
    pins.push_back(pin("A", {rectShape(800, low, 850, 350)}));
    pins.push_back(pin("B", {rectShape(900, nearRail > 1 ? low : high, 950, 350)}));
    pins.push_back(pin("C", {rectShape(1000, nearRail > 2 ? low : high, 1050, 350)}));
    return sorted(macro(1900, pins));
}

/// How many of the shapes A, B and C a solution has on mask 0.
int64_t nearRailOnMask0(const kit::placer::Solution& solution, int nearRail)
{
    return std::count(solution.masks.begin() + 2, solution.masks.begin() + 2 + nearRail, 0);
}

TEST(KitColorCell, AmongEqualStitchesMask0KeepsAwayFromRails)
{
    for (int nearRail = 1; nearRail <= 3; ++nearRail) {
        const ColouredCell cell = coloured(threeSquares(nearRail));
        ASSERT_TRUE(cell.file);
        EXPECT_EQ(cell.file->solutions.front().stitches, 0);
        EXPECT_EQ(nearRailOnMask0(cell.file->solutions.front(), nearRail), nearRail == 3 ? 1 : 0) << nearRail;
    }
}

TEST(KitColorCell, RailsConflictWhereTheCellCanBeColouredSo)
{
    for (int nearRail = 1; nearRail <= 3; ++nearRail) {
        Settings settings;
        settings.rules.railsConflict = true;
        const ColouredCell cell = coloured(threeSquares(nearRail), settings);
        ASSERT_TRUE(cell.file);
        EXPECT_FALSE(cell.trouble);
        EXPECT_EQ(cell.isClearOfRails, nearRail < 3);
        for (const kit::placer::Solution& solution : cell.file->solutions) {
            EXPECT_EQ(nearRailOnMask0(solution, nearRail), nearRail == 3 ? 1 : 0);
        }
    }
}

TEST(KitColorCell, RailsThatConflictMayBeAStitchAway)
{
    // A and B are near the upper rail. So they have masks 1 and 2, and leave mask 0 to the upper end of the
    // bar.
    std::vector<LefPin> pins = rails(1900);
    pins.push_back(pin("BAR", {rectShape(800, 150, 870, 1000)}));
    pins.push_back(pin("A", {rectShape(930, 950, 980, 1250)}));
    pins.push_back(pin("B", {rectShape(1040, 950, 1090, 1250)}));
    Settings settings;
    const CellMetal metal = sorted(macro(1900, pins));
    const auto stitchesOf = [&](bool railsConflict) {
        settings.rules.railsConflict = railsConflict;
        return coloured(metal, settings).file->solutions.front().stitches;
    };
    EXPECT_EQ(stitchesOf(false), 0);
    EXPECT_EQ(stitchesOf(true), 1);
}

TEST(KitColorRowsMeet, LeastDepthIsThatOfMetalButRails)
{
    std::vector<LefPin> pins = rails(1900);
    pins.push_back(pin("A", {rectShape(800, 150, 870, 1250)}));
    EXPECT_EQ(kit::color::leastDepthOf({sorted(macro(1900, pins))}), 150);
    EXPECT_EQ(kit::color::leastDepthOf({sorted(macro(1900, pins)), metal(190, {{{0, 500, 90, 1290}}})}), 110);
    EXPECT_EQ(kit::color::leastDepthOf({metal(190, {{{0, -40, 90, 600}}})}), -40);
    EXPECT_EQ(kit::color::leastDepthOf({metal(190, {})}), 0);
}

/// How cells are coloured where the next row may have metal 90 from its edge.
Settings meetingRows()
{
    Settings settings;
    settings.rules.rowsMeet = true;
    settings.rules.leastDepth = 90;
    return settings;
}

TEST(KitColorRowsMeet, MetalNearTheNextRowHasMask1InOneKindOfRowsAndMask2InTheOther)
{
    const CellMetal cell =
        metal(1900, {{{800, 94, 870, 300}}, {{800, 1000, 870, 1306}}, {{800, 500, 870, 800}}});
    const ColouredCell found = coloured(cell, meetingRows());
    ASSERT_TRUE(found.file);
    EXPECT_TRUE(found.meetsRows);
    EXPECT_TRUE(kit::design::isPaired(*found.file));
    const std::vector<kit::placer::Solution>& solutions = found.file->solutions;
    for (size_t i = 0; i < solutions.size(); ++i) {
        const int32_t mask = i < solutions.size() / 2 ? 1 : 2;
        EXPECT_EQ(solutions[i].masks[1], mask);
        EXPECT_EQ(solutions[i].masks[2], mask);
    }
    EXPECT_EQ(found.conflicts.size(), solutions.size());
}

TEST(KitColorRowsMeet, MetalThatIsFarEnoughHasAnyMask)
{
    const ColouredCell found = coloured(metal(190, {{{60, 95, 130, 1305}}}), meetingRows());
    ASSERT_TRUE(found.file);
    EXPECT_TRUE(found.meetsRows);
    std::set<int32_t> masks;
    for (size_t i = 0; i < found.file->solutions.size() / 2; ++i) {
        masks.insert(found.file->solutions[i].masks[1]);
    }
    EXPECT_EQ(masks, (std::set<int32_t>{0, 1, 2}));
}

TEST(KitColorRowsMeet, NearMetalMayBeAStitchAway)
{
    // Both ends of the bar would have mask 1: the lower for the row below, but not the upper, as the other
    // bar has it for the row above.
    const CellMetal cell = metal(1900, {{{800, 90, 870, 1000}}, {{930, 900, 1000, 1310}}});
    EXPECT_EQ(coloured(cell).file->solutions.front().stitches, 0);
    const ColouredCell found = coloured(cell, meetingRows());
    ASSERT_TRUE(found.file);
    EXPECT_TRUE(found.meetsRows);
    EXPECT_EQ(found.file->solutions.front().stitches, 1);
}

TEST(KitColorRowsMeet, CellThatCannotIsColouredAsUsual)
{
    const CellMetal cell = metal(1900, {{{800, 90, 870, 300}}, {{930, 90, 1000, 300}}});
    const ColouredCell found = coloured(cell, meetingRows());
    ASSERT_TRUE(found.file);
    EXPECT_FALSE(found.meetsRows);
    EXPECT_FALSE(found.trouble);
    EXPECT_TRUE(kit::design::isPaired(*found.file));
}

TEST(KitColorRowsMeet, CellWithConflictsInsideKeepsThemFromTheNextRow)
{
    CellMetal cell = fourSquares();
    cell.polygons.push_back({0, {{1500, 90, 1570, 300}}});
    Settings settings = meetingRows();
    EXPECT_FALSE(coloured(cell, settings).file);
    settings.allowConflicts = true;
    const ColouredCell found = coloured(cell, settings);
    ASSERT_TRUE(found.file);
    EXPECT_TRUE(found.trouble);
    EXPECT_TRUE(found.meetsRows);
    EXPECT_EQ(found.file->solutions.front().masks.back(), 1);
}

TEST(KitColorRowsMeet, RailsAreGivenUpFirst)
{
    std::vector<LefPin> pins = rails(1900); // three squares near the rail, one of them near the next row
    pins.push_back(pin("A", {rectShape(800, 94, 850, 350)}));
    pins.push_back(pin("B", {rectShape(900, 150, 950, 350)}));
    pins.push_back(pin("C", {rectShape(1000, 150, 1050, 350)}));
    Settings settings = meetingRows();
    settings.rules.railsConflict = true;
    const ColouredCell found = coloured(sorted(macro(1900, pins)), settings);
    EXPECT_TRUE(found.meetsRows);
    EXPECT_FALSE(found.isClearOfRails);
}

struct RailCase {
    const char* name;
    std::vector<LefPin> pins;
    int32_t bottom; ///< of the library
    std::vector<const char*> want;
};

const RailCase RAILS[] = {
    {"AsTheyAre", rails(190), -85, {"0 -85 190 85", "0 1315 190 1485"}},
    {"CellWithoutRailsGetsALineAtTheCorner", {}, -85, {"0 -85 0 85"}},
    {"CellWithoutRailsInALibraryWithoutMetalBelow", {}, 0, {"0 0 0 1"}},
    {"RailThatBeginsInsideGetsALine",
     {pin("VSS", {rectShape(20, -85, 190, 85)}, PinUse::GROUND)},
     -85,
     {"20 -85 190 85, 0 -85 0 85"}},
    {"RailThatIsNotAsLowAsOthersGetsALine",
     {pin("VSS", {rectShape(0, 0, 190, 85)}, PinUse::GROUND)},
     -85,
     {"0 0 190 85, 0 -85 0 85"}},
    {"RailAtTheTopAloneGetsALine",
     {pin("VDD", {rectShape(0, 1315, 190, 1485)}, PinUse::POWER)},
     -85,
     {"0 1315 190 1485, 0 -85 0 85"}},
    {"RailsInsideGetLines",
     {pin("VSS", {rectShape(0, 20, 190, 85)}, PinUse::GROUND),
      pin("VDD", {rectShape(0, 1315, 190, 1380)}, PinUse::POWER)},
     0,
     {"0 20 190 85, 0 0 0 1", "0 1315 190 1380, 0 0 0 1"}},
};

class KitColorRailShapes : public testing::TestWithParam<RailCase> {};

TEST_P(KitColorRailShapes, AreRailsForThePlacer)
{
    const CellMetal cell = sorted(macro(190, GetParam().pins));
    std::vector<std::string> want(GetParam().want.begin(), GetParam().want.end());
    std::vector<std::string> got;
    kit::placer::Cell file;
    file.height = cell.height;
    file.shapes = kit::color::railsOf(cell, GetParam().bottom);
    file.solutions.push_back({0, std::vector<int32_t>(file.shapes.size()), 0});
    int32_t left = 1;
    int32_t lowest = 1;
    for (size_t i = 0; i < file.shapes.size(); ++i) {
        got.push_back(textOf(file.shapes[i].rects));
        EXPECT_TRUE(isRail(file, i, file.solutions[0])) << i;
        for (const Rect& rect : file.shapes[i].rects) {
            left = std::min(left, rect.xl);
            lowest = std::min(lowest, rect.yl);
        }
    }
    EXPECT_EQ(got, want);
    EXPECT_EQ(left, 0);
    EXPECT_EQ(lowest, GetParam().bottom);
}

INSTANTIATE_TEST_SUITE_P(All, KitColorRailShapes, testing::ValuesIn(RAILS),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KitColorCell, CellWithoutMetalHasOneSolution)
{
    const ColouredCell cell = coloured(metal(190, {}));
    ASSERT_TRUE(cell.file);
    EXPECT_EQ(cell.file->shapes.size(), 1U);
    ASSERT_EQ(cell.file->solutions.size(), 1U);
    EXPECT_EQ(cell.file->solutions[0].masks, std::vector<int32_t>{0});
}

TEST(KitColorCell, BridgeBetweenBarsOfDifferentMasksNeedsAStitch)
{
    // All reach the bottom and have two masks. The bars are close to the next, so the first and the fourth,
    // the only ones close to the bridge, differ.
    const CellMetal cell = metal(1900, {{{0, 400, 1000, 460}, {0, 0, 60, 460}},
                                        {{150, 0, 210, 300}},
                                        {{300, 0, 360, 150}},
                                        {{450, 0, 510, 150}},
                                        {{600, 0, 660, 300}}});
    const ColouredCell got = coloured(cell);
    ASSERT_TRUE(got.file);
    EXPECT_EQ(got.file->solutions.front().stitches, 1);
    EXPECT_EQ(got.file->shapes.at(1).rects.size() + got.file->shapes.at(2).rects.size(), 3U);
    EXPECT_EQ(textOf({got.file->headerBoxes.at(1)}), "405 400 405 460"); // between their shades
    EXPECT_EQ(judgeSolution(*got.file, 0, 1, 185).conflicts, 0);
}

TEST(KitColorCell, UncolourableCellHasNoFileButAReason)
{
    const ColouredCell cell = coloured(fourSquares());
    EXPECT_FALSE(cell.file);
    ASSERT_TRUE(cell.trouble);
    EXPECT_EQ(cell.trouble->polygons, (std::vector<size_t>{0, 1, 2, 3}));
    EXPECT_EQ(cell.trouble->close.size(), 6U);
    EXPECT_EQ(cell.trouble->goodDistance, 141); // the diagonal of 100, rounded down
}

TEST(KitColorCell, ReasonHasNoShapeTooMany)
{
    CellMetal cell = fourSquares();
    for (const int32_t x : {100, 200, 800, 900}) { // close to some of the four, but no part of the trouble
        cell.nets.push_back("more");
        cell.polygons.insert(cell.polygons.begin(), {cell.nets.size() - 1, {{x, 800, x + 50, 1000}}});
    }
    const ColouredCell got = coloured(cell);
    ASSERT_TRUE(got.trouble);
    EXPECT_EQ(got.trouble->polygons, (std::vector<size_t>{4, 5, 6, 7}));
}

TEST(KitColorCell, TroubleNamesNetsRectanglesAndDistances)
{
    const CellMetal cell = fourSquares();
    EXPECT_EQ(
        kit::color::textOf(*coloured(cell).trouble, cell, {}),
        "4 shapes that are all closer than 185 to one another: a (400 400 500 500), b (400 600 500 700), "
        "c (600 400 700 500), d (600 600 700 700); distances a - b 100.0, a - c 100.0, b - c 141.4, "
        "a - d 141.4, b - d 100.0, c - d 100.0");
}

TEST(KitColorCell, TroubleThatIsNotMutualIsTold)
{
    // A wheel: a hub and a ring of five around it, each close to the next, needs four masks. All are stout.
    const CellMetal cell = metal(3000, {{{1000, 500, 1200, 700}},
                                        {{850, 480, 900, 520}},
                                        {{850, 650, 910, 750}},
                                        {{1000, 800, 1080, 850}},
                                        {{1250, 570, 1450, 810}},
                                        {{1060, 370, 1150, 420}}});
    const ColouredCell got = coloured(cell);
    ASSERT_TRUE(got.trouble);
    EXPECT_EQ(got.trouble->polygons.size(), 6U);
    EXPECT_EQ(kit::color::textOf(*got.trouble, cell, {}).substr(0, 48),
              "6 shapes that three masks cannot part by 185: a ");
}

TEST(KitColorCell, SignalAtTheEdgeMayLeaveNoMask)
{
    // Three at the edge that are close to each other have two masks.
    const CellMetal cell = metal(1900, {{{400, 0, 470, 200}}, {{540, 0, 610, 200}}, {{470, 300, 540, 350}}});
    EXPECT_TRUE(coloured(cell).file);
    const CellMetal worse = metal(1900, {{{400, 0, 470, 200}}, {{500, 0, 540, 200}}, {{570, 0, 640, 200}}});
    const ColouredCell got = coloured(worse);
    EXPECT_FALSE(got.file);
    ASSERT_TRUE(got.trouble);
    EXPECT_EQ(got.trouble->polygons.size(), 3U);
}

TEST(KitColorCell, AllowedConflictIsTheWidestPair)
{
    Settings settings;
    settings.allowConflicts = true;
    const ColouredCell cell = coloured(fourSquares(), settings);
    ASSERT_TRUE(cell.file);
    EXPECT_TRUE(cell.trouble);
    for (size_t i = 0; i < cell.file->solutions.size(); ++i) {
        const Judgement judgement = judgeSolution(*cell.file, i, 1, 185);
        EXPECT_EQ(judgement.conflicts, 1) << i;
        EXPECT_EQ(judgement.closest, 20'000) << i;
        ASSERT_EQ(cell.conflicts[i].size(), 1U);
        EXPECT_EQ(cell.conflicts[i][0].squared, 20'000);
    }
}

TEST(KitColorCell, TooIntricateCellIsGivenUp)
{
    Settings settings;
    settings.limits.states = 3;
    const ColouredCell cell = coloured(fourSquares(300), settings);
    EXPECT_TRUE(coloured(fourSquares(300)).file);
    EXPECT_FALSE(coloured(metal(1900, {{{400, 400, 500, 500}}, {{600, 400, 700, 500}}}), settings).file);
    EXPECT_TRUE(coloured(metal(1900, {{{400, 400, 500, 500}}, {{600, 400, 700, 500}}}), settings).tooLarge);
    EXPECT_FALSE(cell.trouble);
}

/// A random cell of crowded wires, some with a corner.
///
/// @param most  wires
CellMetal someCell(int most)
{
    std::vector<Rects> polygons;
    const int count = test::draw(2, most + 1);
    for (int tries = 0; tries < 60 && static_cast<int>(polygons.size()) < count; ++tries) {
        const int32_t x = test::draw(0, 10) * 60;
        const int32_t y = 100 + test::draw(0, 10) * 60;
        const int32_t length = test::draw(1, 9) * 60;
        const bool flat = test::draw(0, 2) == 0;
        Rects rects{flat ? Rect{x, y, x + length, y + 60} : Rect{x, y, x + 60, y + length}};
        if (test::draw(0, 3) == 0) {
            rects.push_back({x, y, x + 60, y + 300});
        }
        const bool apart = std::all_of(polygons.begin(), polygons.end(),
                                       [&](const Rects& other) { return gapSquared(rects, other) > 0; });
        if (apart) {
            polygons.push_back(rects);
        }
    }
    return metal(1140, polygons);
}

/// Bars that stand on the bottom, the taller ones close to a bridge above them that stands there as well: as
/// there they have but two masks, the bridge often needs a stitch.
CellMetal barsUnderABridge()
{
    std::vector<Rects> polygons{{{0, 400, 1000, 460}, {0, 0, 60, 460}}};
    int32_t x = 60;
    const int bars = test::draw(2, 6);
    for (int i = 0; i < bars; ++i) {
        x += test::drawOne({80, 100, 130, 190});
        polygons.push_back({{x, 0, x + 60, test::drawOne({150, 300})}});
        x += 60;
    }
    return metal(1900, polygons);
}

/// A cell in parts, with all places for stitches.
struct AllParts {
    AllParts(const CellMetal& cell, const Rules& rules) : bottom(kit::color::bottomOf({cell}))
    {
        for (size_t i = 0; i < cell.polygons.size(); ++i) {
            std::vector<const Polygon*> others;
            for (const Polygon& other : cell.polygons) {
                if (&other != &cell.polygons[i]) {
                    others.push_back(&other);
                }
            }
            const auto cuts = kit::color::cutsOf(cell.polygons[i], others, rules, cell.width);
            const kit::color::Pieces pieces = kit::color::cutUp(cell.polygons[i].rects, cuts);
            for (const auto& [a, b] : pieces.joined) {
                joints.emplace_back(shapes.size() + a, shapes.size() + b);
            }
            shapes.insert(shapes.end(), pieces.rects.begin(), pieces.rects.end());
        }
    }

    /// Whether no part at the bottom or the top is on mask 0.
    bool isAllowed(const std::vector<uint8_t>& masks) const
    {
        for (size_t i = 0; i < masks.size(); ++i) {
            const bool atEdge = std::any_of(shapes[i].begin(), shapes[i].end(), [this](const Rect& rect) {
                return rect.yl <= 0 || rect.yh >= 1400 + bottom;
            });
            if (masks[i] == 0 && atEdge) {
                return false;
            }
        }
        return true;
    }

    /// The fewest stitches of all colourings without conflicts, by geometry; -1 if there is none.
    int32_t fewestStitches(int32_t distance) const
    {
        std::vector<uint8_t> masks(shapes.size());
        int32_t best = -1;
        while (true) {
            const auto stitches =
                static_cast<int32_t>(std::count_if(joints.begin(), joints.end(), [&](const auto& joint) {
                    return masks[joint.first] != masks[joint.second];
                }));
            if ((best < 0 || stitches < best) && isAllowed(masks) &&
                judge(shapes, masks, distance).conflicts == 0) {
                best = stitches;
            }
            size_t i = 0;
            while (i < masks.size() && masks[i] == 2) {
                masks[i++] = 0;
            }
            if (i == masks.size()) {
                return best;
            }
            ++masks[i];
        }
    }

    std::vector<Rects> shapes;
    std::vector<std::pair<size_t, size_t>> joints;
    int32_t bottom; ///< lowest metal, at most 0
};

/// Compares a cell with all colourings of its parts. @return its fewest stitches, -1 if it has no colouring
int32_t expectBest(const CellMetal& cell, const Settings& settings, const AllParts& parts)
{
    const int32_t fewest = parts.fewestStitches(settings.rules.distance);
    const ColouredCell got = coloured(cell, settings);
    RC_ASSERT(got.file.has_value() == (fewest >= 0));
    RC_ASSERT(got.trouble.has_value() == (fewest < 0));
    if (fewest < 0) {
        return fewest;
    }
    RC_ASSERT(got.file->solutions.front().stitches == fewest);
    for (size_t i = 0; i < got.file->solutions.size(); ++i) {
        RC_ASSERT(judgeSolution(*got.file, i, 1, settings.rules.distance).conflicts == 0);
    }
    RC_ASSERT(!testing::Test::HasFailure());
    return fewest;
}

TEST(KitColorCell, RandomCellsHaveTheFewestStitchesAndNoConflicts)
{
    std::map<int32_t, int32_t> cells; // by their fewest stitches
    test::tryCases([&cells] {
        for (int i = 0; i < 5; ++i) {
            const CellMetal cell = i % 2 == 0 ? someCell(6) : barsUnderABridge();
            Settings settings;
            settings.rules.distance = test::drawOne({125, 185, 250});
            settings.rules.stitchOverlap = test::drawOne({0, 10});
            const AllParts parts(cell, settings.rules);
            if (parts.shapes.size() <= 8) { // or there are too many colourings to try them all
                ++cells[expectBest(cell, settings, parts)];
            }
        }
    });
    EXPECT_GT(cells[-1], 0);
    EXPECT_GT(cells[0], 0);
    EXPECT_GT(cells[1], 0);
}

/// Whether all that is close to one part is close to another, or that part itself.
bool isWithin(const Graph& graph, size_t end, size_t body)
{
    std::vector<std::vector<size_t>> close(graph.parts.size());
    const auto add = [&close](const auto& links) {
        for (const auto& one : links) {
            close[one.a].push_back(one.b);
            close[one.b].push_back(one.a);
        }
    };
    add(graph.joints);
    add(graph.pairs);
    add(graph.bonds);
    return std::all_of(close[end].begin(), close[end].end(), [&](size_t part) {
        return part == body || std::count(close[body].begin(), close[body].end(), part) > 0;
    });
}

TEST(KitColorParts, EndThatGainsNothingStaysJoined)
{
    size_t dropped = 0;
    test::tryCases([&dropped] {
        CellMetal cell = someCell(8);
        for (Polygon& polygon : cell.polygons) { // no neighbour sees it
            for (Rect& rect : polygon.rects) {
                rect.xl += 1000;
                rect.xh += 1000;
            }
        }
        cell.width = 5000;
        const Graph graph = kit::color::graphOf(cell, {}, 0);
        dropped += AllParts(cell, {}).joints.size() - graph.joints.size();
        for (const kit::color::Joint& joint : graph.joints) {
            const auto uses = [&](size_t part) {
                return std::count_if(graph.joints.begin(), graph.joints.end(), [part](const auto& other) {
                    return other.a == part || other.b == part;
                });
            };
            RC_ASSERT(uses(joint.a) > 1 || !isWithin(graph, joint.a, joint.b));
            RC_ASSERT(uses(joint.b) > 1 || !isWithin(graph, joint.b, joint.a));
        }
    });
    EXPECT_GT(dropped, 0U);
}

TEST(KitColorCell, LeftConflictsOfRandomCellsAreAsFarAsCanBe)
{
    int32_t troubles = 0;
    test::tryCases([&troubles] {
        const CellMetal cell = someCell(6);
        Settings settings;
        settings.rules.distance = 300; // much is too close
        settings.allowConflicts = true;
        const ColouredCell got = coloured(cell, settings);
        RC_ASSERT(got.file.has_value());
        int64_t closest = std::numeric_limits<int64_t>::max();
        for (size_t i = 0; i < got.file->solutions.size(); ++i) {
            const Judgement judgement = judgeSolution(*got.file, i, 1, settings.rules.distance);
            RC_ASSERT((judgement.conflicts > 0) == got.trouble.has_value());
            closest = std::min(closest, judgement.closest);
        }
        if (!got.trouble) {
            return;
        }
        ++troubles;
        // No closer than the distance that would do, and with one more it would not do.
        const int64_t good = got.trouble->goodDistance;
        RC_ASSERT(closest >= good * good);
        settings.allowConflicts = false;
        settings.rules.distance = got.trouble->goodDistance;
        RC_ASSERT(coloured(cell, settings).file.has_value());
        ++settings.rules.distance;
        RC_ASSERT(!coloured(cell, settings).file.has_value());
    });
    EXPECT_GT(troubles, 0);
}

TEST(KitColorCell, ReasonOfRandomCellsIsMinimal)
{
    int32_t troubles = 0;
    test::tryCases([&troubles] {
        const CellMetal cell = someCell(6);
        Settings settings;
        settings.rules.distance = 300;
        const ColouredCell got = coloured(cell, settings);
        if (!got.trouble) {
            return;
        }
        ++troubles;
        const Graph graph = kit::color::graphOf(cell, settings.rules, 0);
        const auto possible = [&](size_t without) {
            std::vector<bool> wanted;
            for (const Part& part : graph.parts) {
                const auto& core = got.trouble->polygons;
                wanted.push_back(part.polygon != without &&
                                 std::find(core.begin(), core.end(), part.polygon) != core.end());
            }
            return kit::color::isColourable(graph, wanted, settings.rules, settings.limits).value();
        };
        RC_ASSERT(!possible(cell.polygons.size()));
        for (const size_t polygon : got.trouble->polygons) {
            RC_ASSERT(possible(polygon));
        }
    });
    EXPECT_GT(troubles, 0);
}

} // namespace
