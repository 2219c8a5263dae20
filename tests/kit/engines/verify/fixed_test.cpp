// SPDX-License-Identifier: BSD-3-Clause
// What is said of metal that stays where it is.
#include "kit/engines/verify/judged.h"

namespace {

using namespace test;

/// A judged design with cells that stay where they are.
class WithFixed : public Judged {
public:
    /// Adds a fixed cell f0, f1, ... in a solution, -1 for none, on a macro of its own.
    void fix(int32_t cell, int32_t site, int32_t level, int32_t solution, const std::string& orient = "N")
    {
        const test::Cell& type = input.design.cells[static_cast<size_t>(cell)];
        const std::string name = "f" + std::to_string(input.design.fixed.size());
        input.design.fixed.push_back({.name = name,
                                      .cellName = type.name,
                                      .cell = cell,
                                      .x = site * 190,
                                      .y = level * CELL_HEIGHT,
                                      .orient = orient});
        input.design.macros.push_back(
            {"m" + name, site * 190, level * CELL_HEIGHT, type.width, CELL_HEIGHT, 1});
        ColorRecord& record = input.fixedColors.emplace_back();
        record.name = name;
        record.cell = type.name;
        if (solution >= 0) {
            record.solution = solution;
            record.masks = type.solutions[static_cast<size_t>(solution)].masks;
        }
    }

    /// Adds a block with some metal, DBU.
    void block(const std::vector<kit::geometry::Rect>& metal)
    {
        const auto index = static_cast<int32_t>(input.design.fixed.size());
        input.design.fixed.push_back({.name = "ram", .cellName = "RAM", .orient = "N"});
        for (const kit::geometry::Rect& rect : metal) {
            input.design.blockMetal.push_back({index, rect});
        }
    }
};

TEST(KitVerifyFixed, CellTooCloseToAPlacedOneIsAConflict)
{
    // The bars of two cells side by side are 60 and 40 from their edges.
    WithFixed design;
    design.add(0, 2, 0, 0);
    design.fix(0, 4, 0, 1); // left bar on mask 2, as the right one of its neighbour
    const Issue issue = onlyIssue(design.judge());
    EXPECT_EQ(issue.kind, Kind::CONFLICT);
    EXPECT_EQ(severityOf(issue), kit::Severity::ERROR);
    EXPECT_EQ(issue.distance, 100);
    EXPECT_EQ(issue.mask, 2);
    EXPECT_EQ(issue.line, 10) << "of the component: the other has none";
    EXPECT_EQ(kit::verify::textOf(issue, design.input.design, "185"),
              "u0 (BARS) at (380, 0) and f0 (BARS) at (760, 0) have shapes of mask 2 100.0 apart, 185 are "
              "needed; 1 pair of shapes too close");

    WithFixed clean;
    clean.add(0, 2, 0, 0);
    clean.fix(0, 4, 0, 0);
    EXPECT_EQ(kindsOf(clean.judge()), "");
}

TEST(KitVerifyFixed, CellIsJudgedAsItLies)
{
    WithFixed design;
    design.add(0, 2, 0, 0);
    design.fix(0, 4, 0, 0, "FN"); // its right bar, on mask 2, is on its left
    EXPECT_EQ(onlyIssue(design.judge()).distance, 120);
}

TEST(KitVerifyFixed, CellsTooCloseToEachOtherAreAConflict)
{
    WithFixed design;
    design.fix(0, 2, 0, 0);
    design.fix(0, 4, 0, 1);
    const Issue issue = onlyIssue(design.judge());
    EXPECT_EQ(issue.kind, Kind::CONFLICT);
    EXPECT_EQ(issue.line, 0) << "neither is in the placement";
}

TEST(KitVerifyFixed, CellStandsOnAMacroAndOverlapsNothing)
{
    WithFixed design;
    design.fix(0, 2, 0, 2);
    EXPECT_EQ(kindsOf(design.judge()), "");
    design.add(0, 3, 0, 0);
    const Issues issues = design.judge();
    EXPECT_EQ(kindsOf(issues), "macro-overlap");
}

TEST(KitVerifyFixed, CellsAcrossRowsAreANote)
{
    WithFixed design;
    design.input.design.cells.push_back(makeCell("HIGH", 190, {{40, 100, 150, 1400}}, {1}));
    design.input.design.cells.push_back(makeCell("LOW", 190, {{40, 0, 150, 800}}, {1}));
    design.add(2, 2, 1, 0);
    design.fix(1, 2, 0, 0);
    const Issue issue = onlyIssue(design.judge());
    EXPECT_EQ(issue.kind, Kind::ROW_CONFLICT);
    EXPECT_EQ(severityOf(issue), kit::Severity::NOTE);
}

TEST(KitVerifyFixed, CellsWithoutASolutionAreCountedInANote)
{
    WithFixed design;
    design.add(0, 0, 0, 0);
    design.fix(0, 2, 0, -1);
    design.fix(0, 6, 0, -1);
    const Issue issue = onlyIssue(design.judge());
    EXPECT_EQ(issue.kind, Kind::NO_MASKS);
    EXPECT_EQ(issue.what,
              "2 fixed cells have no solution, and the metal is not judged; the first: f0 (BARS)");
}

TEST(KitVerifyFixed, MetalOfABlockIsOnAllMasks)
{
    for (const int32_t solution : {0, 1, 2}) {
        WithFixed design;
        design.add(0, 2, 0, solution);
        design.block({{780, 500, 1000, 600}}); // the right bar ends at 700
        const Issue issue = onlyIssue(design.judge());
        EXPECT_EQ(issue.kind, Kind::CONFLICT);
        EXPECT_EQ(issue.distance, 80);
        EXPECT_EQ(issue.mask, (std::vector<int32_t>{2, 1, 0})[static_cast<size_t>(solution)]);
    }
    WithFixed far;
    far.add(0, 2, 0, 0);
    far.block({{885, 500, 1000, 600}});
    EXPECT_EQ(kindsOf(far.judge()), "");
}

TEST(KitVerifyFixed, MetalOfABlockIsThereInEveryRowThatItReaches)
{
    WithFixed design;
    design.add(0, 2, 0, 0);
    design.add(0, 2, 1, 0);
    design.block({{780, 0, 1000, 2800}});
    EXPECT_EQ(kindsOf(design.judge()), "conflict conflict rail-conflict");
}

TEST(KitVerifyFixed, BlockIsNotJudgedAgainstWhatStaysAsWell)
{
    WithFixed design;
    design.fix(0, 2, 0, 0);
    design.block({{780, 500, 1000, 600}});
    EXPECT_EQ(kindsOf(design.judge()), "");
}

TEST(KitVerifyFixed, CountsOfTheReportHaveThemWhereSomethingStays)
{
    const auto countsOf = [](const WithFixed& design) {
        std::ostringstream out;
        kit::verify::writeJson({}, design.input, design.judge(), out);
        return out.str();
    };
    WithFixed design;
    EXPECT_EQ(countsOf(design).find("no-masks"), std::string::npos);
    design.fix(0, 2, 0, 0);
    EXPECT_NE(countsOf(design).find("\"no-masks\":0"), std::string::npos);
}

} // namespace
