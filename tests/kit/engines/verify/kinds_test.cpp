// SPDX-License-Identifier: BSD-3-Clause
// Every kind of issue has an input that shows it and nothing else.
#include <functional>
#include <set>

#include "kit/base/fault.h"
#include "kit/design/coloredPlacement.h"
#include "kit/engines/verify/checks.h"
#include "kit/engines/verify/judged.h"

namespace {

using namespace test;

/// Three components: two in the lower row, parted by five sites, one in the upper.
Judged cleanInput()
{
    Judged judged;
    judged.add(0, 1, 0, 0);
    judged.add(0, 8, 0, 1);
    judged.add(0, 4, 1, 2);
    return judged;
}

TEST(KitVerify, CleanInputHasNoIssue)
{
    EXPECT_EQ(kindsOf(cleanInput().judge()), "");
}

struct KindCase {
    const char* name;
    std::function<void(Judged&)> spoil; ///< what is done to cleanInput()
    std::string kinds;                  ///< all that come of it
    int64_t line;                       ///< of the first
    std::string what;                   ///< its text
};

void PrintTo(const KindCase& row, std::ostream* out)
{
    *out << row.name;
}

class Spoilt : public testing::TestWithParam<KindCase> {};

TEST_P(Spoilt, GivesTheseIssues)
{
    Judged judged = cleanInput();
    GetParam().spoil(judged);
    const Issues issues = judged.judge();
    EXPECT_EQ(kindsOf(issues), GetParam().kinds);
    ASSERT_FALSE(issues.empty());
    EXPECT_EQ(issues[0].line, GetParam().line);
    EXPECT_EQ(issues[0].what, GetParam().what);
}

const KindCase KIND_CASES[] = {
    {"DoubleComponent",
     [](Judged& j) {
         j.component(1).name = "u0";
         j.colors(1).name = "u0";
     },
     "double-component", 20, "the name u0 has come in line 10 already"},
    {"NotPlaced",
     [](Judged& j) {
         j.input.design.fillers.push_back({.name = "FILLER_1", .cellName = "F", .orient = "N", .line = 90});
         j.input.design.fillers.push_back({.name = "u7", .cellName = "BARS", .orient = "N", .line = 92});
     },
     "fillers not-placed", 92, "u7 (BARS) at (0, 0) comes behind FILLER_1: the placer leaves it out"},
    {"Fillers",
     [](Judged& j) {
         j.input.design.fillers.push_back({.name = "FILLER_1", .cellName = "F", .orient = "N", .line = 90});
         j.input.design.fillers.push_back({.name = "FILLER_2", .cellName = "F", .orient = "N", .line = 92});
     },
     "fillers", 90, "the fillers from here on, 2, are not judged: fill the rows again"},
    {"UnknownCell",
     [](Judged& j) {
         j.component(1).cell = -1;
         j.component(1).cellName = j.colors(1).cell = "NONE";
     },
     "unknown-cell", 20, "u1 (NONE) at (1520, 0): its cell is not in the library"},
    {"NoColours", [](Judged& j) { j.input.colors.pop_back(); }, "no-colors", 30, "u2 (BARS) has no colours"},
    {"StrayColours",
     [](Judged& j) {
         j.input.colors.push_back({"u9", "BARS", 0, 0, {0, 0, 1, 2}, 6});
     },
     "stray-colors", 6, "there is no component u9"},
    {"ColoursTwice",
     [](Judged& j) {
         j.input.colors.push_back({"u1", "BARS", 0, 0, {0, 0, 1, 2}, 6});
     },
     "stray-colors", 6, "the component u1 has colours already"},
    {"CellDiffers", [](Judged& j) { j.colors(1).cell = "INV"; }, "cell-differs", 4,
     "u1 (BARS) has colours of the cell INV"},
    {"NoSolution", [](Judged& j) { j.colors(1).solution = -1; }, "bad-solution", 4,
     "u1 (BARS) has solution -1 of 3, counted from 0"},
    {"SolutionTooLarge", [](Judged& j) { j.colors(1).solution = 3; }, "bad-solution", 4,
     "u1 (BARS) has solution 3 of 3, counted from 0"},
    {"MaskMissing", [](Judged& j) { j.colors(1).masks.pop_back(); }, "mask-count", 4,
     "u1 (BARS) has 3 masks for 4 shapes"},
    {"MaskTooMany", [](Judged& j) { j.colors(1).masks.push_back(0); }, "mask-count", 4,
     "u1 (BARS) has 5 masks for 4 shapes"},
    {"MaskThree",
     [](Judged& j) {
         j.input.design.cells[0].solutions[1].masks[3] = 3;
         j.colors(1).masks[3] = 3;
     },
     "bad-mask", 4, "u1 (BARS) has shape 3 on mask 3: the masks are 0, 1, 2"},
    {"MaskNegative", [](Judged& j) { j.colors(1).masks[2] = -1; }, "bad-mask masks-differ", 4,
     "u1 (BARS) has shape 2 on mask -1: the masks are 0, 1, 2"},
    {"MasksDiffer", [](Judged& j) { j.colors(1).masks[2] = 0; }, "masks-differ", 4,
     "u1 (BARS) has shape 2 on mask 0, and solution 1 has it on 2"},
    {"StitchesDiffer", [](Judged& j) { j.colors(1).stitches = 0; }, "stitches-differ", 4,
     "u1 (BARS) has 0 stitches, and solution 1 has 1"},
    {"Orientation", [](Judged& j) { j.component(1).orient = "W"; }, "orientation", 20,
     "u1 (BARS) at (1520, 0) has the orientation W: cells in rows have N, FN, S or FS"},
    {"OffRow", [](Judged& j) { j.component(2).y = 1401; }, "off-row", 30,
     "u2 (BARS) at (760, 1401) is on no row"},
    {"LeftOfTheRow", [](Judged& j) { j.component(0).x = -190; }, "outside-row", 10,
     "u0 (BARS) at (-190, 0) is not inside a row, row_0 from 0 to 2280"},
    {"RightOfTheRow", [](Judged& j) { j.component(1).x = 2090; }, "outside-row", 20,
     "u1 (BARS) at (2090, 0) is not inside a row, row_0 from 0 to 2280"},
    {"AcrossTheEndOfARow",
     [](Judged& j) {
         j.addRow(12, 0, 12);
         j.component(1).x = 2090;
     },
     "outside-row", 20,
     "u1 (BARS) at (2090, 0) is not inside a row, row_0 from 0 to 2280 or another at its height"},
    {"OffGrid", [](Judged& j) { j.component(1).x += 3; }, "off-grid", 20,
     "u1 (BARS) at (1523, 0) is 3 DBU right of a site of row_0"},
    {"OffTheGridOfItsOwnRow", [](Judged& j) { j.input.design.rows[0].x = -1; }, "off-grid off-grid", 10,
     "u0 (BARS) at (190, 0) is 1 DBU right of a site of row_0"},
    {"MacroOverlap",
     [](Judged& j) {
         j.input.design.macros.push_back({"far", 1900, 0, 380, 1400, 50});
         j.input.design.macros.push_back({"tap", 0, -700, 191, 701, 51});
     },
     "macro-overlap", 10, "u0 (BARS) at (190, 0) overlaps the macro tap"},
};

INSTANTIATE_TEST_SUITE_P(KitVerify, Spoilt, testing::ValuesIn(KIND_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KitVerify, MacroThatTouchesACellIsNoIssue)
{
    Judged judged = cleanInput();
    judged.input.design.macros.push_back({"left", 0, 0, 190, 1400, 50});
    judged.input.design.macros.push_back({"right", 570, 0, 190, 1400, 51});
    judged.input.design.macros.push_back({"below", 0, -1400, 2280, 1400, 52});
    EXPECT_EQ(kindsOf(judged.judge()), "");
}

TEST(KitVerify, RowsAtOneHeightAreAllLookedAt)
{
    Judged judged = cleanInput();
    judged.addRow(20, 0, 4);
    judged.add(0, 21, 0);
    EXPECT_EQ(kindsOf(judged.judge()), "");
}

TEST(KitVerify, ColoursMayComeInAnyOrder)
{
    Judged judged = cleanInput();
    std::swap(judged.colors(0), judged.colors(2));
    EXPECT_EQ(kindsOf(judged.judge()), "");
}

TEST(KitVerify, CellWithoutSolutionsNeedsNone)
{
    Judged judged = cleanInput();
    judged.input.design.cells.push_back(makeCell("TAP", 190, {}, {}));
    judged.add(1, 0, 0);
    judged.input.design.cells[1].solutions.clear();
    judged.colors(3).solution = -1;
    EXPECT_EQ(kindsOf(judged.judge()), "");
}

TEST(KitVerify, OverlapOfCellsOnARowIsReportedOnce)
{
    Judged judged({makeCell("EMPTY", 380, {}, {})});
    judged.add(0, 1, 0);
    judged.add(0, 2, 0);
    const Issue issue = onlyIssue(judged.judge());
    EXPECT_EQ(issue.kind, Kind::CELL_OVERLAP);
    EXPECT_EQ(issue.component, 0);
    EXPECT_EQ(issue.other, 1);
    EXPECT_EQ(issue.line, 10);
    EXPECT_EQ(issue.box.xl, 380);
    EXPECT_EQ(issue.box.xh, 570);
}

TEST(KitVerify, OverlapWithACellBetweenTheRowsIsFound)
{
    Judged judged({makeCell("EMPTY", 380, {}, {})});
    judged.add(0, 1, 0);
    judged.add(0, 1, 1);
    judged.component(1).y = 1399;
    EXPECT_EQ(kindsOf(judged.judge()), "cell-overlap off-row");
    judged.component(1).y = 1400;
    EXPECT_EQ(kindsOf(judged.judge()), "");
}

TEST(KitVerify, CellsRoundedUpToAUnitAreAsHighAsTheirRow)
{
    Judged judged({makeCell("EMPTY", 380, {}, {})},
                  /*step=*/200); // rows are 1473 DBU apart, the cell is 1473.68 high
    judged.add(0, 1, 0);
    judged.add(0, 1, 1);
    EXPECT_EQ(kindsOf(judged.judge()), "");
    judged.input.design.cells[0].height = CELL_HEIGHT + 1;
    EXPECT_EQ(kindsOf(judged.judge()), "cell-overlap");
}

TEST(KitVerify, OverlapUnderALongCellIsFoundBehindAShortOne)
{
    Judged judged({makeCell("LONG", 1900, {}, {}), makeCell("SHORT", 190, {}, {})});
    judged.add(0, 0, 0);
    judged.add(1, 1, 0);
    judged.add(1, 9, 0);
    EXPECT_EQ(kindsOf(judged.judge()), "cell-overlap cell-overlap");
}

TEST(KitVerify, SearchOfAHeapOfCellsIsGivenUp)
{
    Judged judged({makeCell("EMPTY", 380, {}, {})});
    for (int32_t i = 0; i < 10; ++i) {
        judged.add(0, 3, 0);
    }
    const kit::design::Scale scale{190};
    Issues issues;
    const auto matching = kit::design::matchColors(judged.input.design, judged.input.colors, issues);
    const kit::design::Layout layout(judged.input.design, matching, scale);
    kit::verify::checkPairs(judged.input.design, layout, scale, {.minDist = 185, .mostPairs = 7}, issues);
    ASSERT_EQ(issues.size(), 8U);
    EXPECT_EQ(issues.back().kind, Kind::TOO_MANY);
    EXPECT_EQ(issues.back().what,
              "the search for close pairs ended after 7 issues: are the cells spread over the rows at all?");
    EXPECT_EQ(judged.judge().size(), 45U);
}

TEST(KitVerify, StepThatIsNotPositiveIsAFault)
{
    Judged judged = cleanInput();
    judged.input.design.rows[0].step = 0;
    EXPECT_THROW(judged.judge(), kit::Fault);
}

TEST(KitVerify, DesignWithoutRowsHasAllCellsOffRow)
{
    Judged judged = cleanInput();
    judged.input.design.rows.clear();
    EXPECT_EQ(kindsOf(judged.judge()), "off-row off-row off-row");
}

TEST(KitVerify, KindsHaveDifferentNames)
{
    std::set<std::string> names;
    for (const kit::design::KindInfo& info : kit::design::KINDS) {
        EXPECT_TRUE(names.insert(info.name).second) << info.name;
    }
    EXPECT_EQ(names.size(), static_cast<size_t>(Kind::NO_MASKS) + 1);
}

TEST(KitVerify, ExitStatusFollowsTheWorst)
{
    Judged judged = cleanInput();
    EXPECT_EQ(kit::verify::exitStatusOf(judged.input, judged.judge()), 0);
    judged.input.design.fillers.push_back({.name = "FILLER_1", .cellName = "F", .orient = "N"});
    EXPECT_EQ(kit::verify::exitStatusOf(judged.input, judged.judge()), 0);
    judged.component(0).x += 1;
    EXPECT_EQ(kit::verify::exitStatusOf(judged.input, judged.judge()), 1);
    judged.input.faults.emplace_back();
    EXPECT_EQ(kit::verify::exitStatusOf(judged.input, judged.judge()), 2);
}

} // namespace
