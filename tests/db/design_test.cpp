// SPDX-License-Identifier: BSD-3-Clause
// The design as an object, and the checks that the rest of a run relies on.
#include "db/design.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "db/memberOrder.h"
#include "support/tinyDesign.h"

namespace {

using test::TinyDesign;

TEST(Design, StartsWithItsDefaults)
{
    const Design design;
    EXPECT_EQ(design.boundXl, 0);
    EXPECT_EQ(design.boundXh, 0);
    EXPECT_EQ(design.boundYl, 0);
    EXPECT_EQ(design.boundYh, 0);
    EXPECT_EQ(design.algo, 0);
    EXPECT_EQ(design.initHPWL, 0);
    EXPECT_EQ(design.finalHPWL, 0);
    EXPECT_EQ(design.placePath, "sparc_exu_alu");
    EXPECT_EQ(design.designName, "sparc_exu_alu");
    EXPECT_EQ(design.cellPath, "../benchNangate_shifted");
}

TEST(Design, StartsEmpty)
{
    Design design;
    EXPECT_TRUE(design.rows.empty());
    EXPECT_TRUE(design.segments.empty());
    EXPECT_TRUE(design.pins.empty());
    EXPECT_TRUE(design.nets.empty());
    EXPECT_TRUE(design.components.empty());
    EXPECT_TRUE(design.macros.empty());
    EXPECT_TRUE(design.pinIndex.empty());
    EXPECT_TRUE(design.compIndex.empty());
    EXPECT_TRUE(design.rowIndexByY.empty());
    EXPECT_TRUE(design.tclFiles.empty());
    EXPECT_TRUE(design.lut.cells.empty());
    EXPECT_EQ(design.macroTree.root->count, 0);
    EXPECT_EQ(design.segmentTree.root->count, 0);
}

TEST(Design, HasItsMembersInOrder)
{
    const Design d;
    test::expectInOrder({&d.boundXl,    &d.boundXh,   &d.boundYl,     &d.boundYh,    &d.algo,
                         &d.initHPWL,   &d.finalHPWL, &d.placeParser, &d.pinParser,  &d.netParser,
                         &d.lut,        &d.placePath, &d.designName,  &d.cellPath,   &d.rows,
                         &d.segments,   &d.pins,      &d.nets,        &d.components, &d.macros,
                         &d.pinIndex,   &d.compIndex, &d.rowIndexByY, &d.tclFiles,   &d.macroTree,
                         &d.segmentTree});
}

TEST(Design, MembersHaveTheirWidth)
{
    EXPECT_TRUE((std::is_same_v<decltype(Design::algo), int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(Design::boundXl), int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(Design::initHPWL), int64_t>));
    EXPECT_TRUE((std::is_same_v<decltype(Design::finalHPWL), int64_t>));
    EXPECT_TRUE((std::is_same_v<decltype(Design::rowIndexByY), std::map<int32_t, int32_t>>));
    EXPECT_TRUE((std::is_same_v<decltype(Design::macroTree), RTree<Macro*, int, 2, float, 8, 4>>));
    EXPECT_TRUE((std::is_same_v<decltype(Design::segmentTree), RTree<Segment*, int, 2, float, 8, 4>>));
}

TEST(Design, IsNeitherCopiedNorDerivedFrom)
{
    EXPECT_FALSE(std::is_copy_constructible_v<Design>);
    EXPECT_FALSE(std::is_copy_assignable_v<Design>);
    EXPECT_FALSE(std::is_polymorphic_v<Design>);
}

TEST(CellOf, ComponentIsTheCellOfItsIndex)
{
    TinyDesign t;
    t.addCell(1, {0});
    const int cell = t.addCell(2, {0});
    const Component* comp = t.addComponent(nullptr, cell, 0);
    EXPECT_EQ(&t.design.cellOf(*comp), t.design.lut.cells[1]);
}

struct SafeSitesCase {
    const char* name;
    int siteWidth;
    int entry; ///< of the table
    int want;  ///< sites
};

void PrintTo(const SafeSitesCase& row, std::ostream* out)
{
    *out << row.entry << " at site width " << row.siteWidth;
}

class SafeSites : public testing::TestWithParam<SafeSitesCase> {};

TEST_P(SafeSites, AreTheEntryDividedBySiteWidthAndRoundedUp)
{
    TinyDesign t;
    const int cell = t.addCell(1, {0, 0});
    const Component* left = t.addComponent(nullptr, cell, 0);
    const Component* right = t.addComponent(nullptr, cell, 0);
    t.setDist(cell, cell, 1, 0, GetParam().entry);
    SITE_WIDTH = GetParam().siteWidth;
    EXPECT_EQ(t.design.safeSites(*left, 1, *right, 0), GetParam().want);
    EXPECT_EQ(t.design.safeSites(*left, 0, *right, 1), 0) << "another entry";
}

const SafeSitesCase SAFE_SITES_CASES[] = {
    {"ZeroIsNone", 190, 0, 0},     {"OneIsOneSite", 190, 1, 1}, {"SiteWidthIsOneSite", 190, 190, 1},
    {"OneMoreIsTwo", 190, 191, 2}, {"TwiceIsTwo", 190, 380, 2}, {"TwiceAndOneIsThree", 190, 381, 3},
    {"SmallSites", 1, 2, 2},
};

INSTANTIATE_TEST_SUITE_P(Design, SafeSites, testing::ValuesIn(SAFE_SITES_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Design, SafeSitesAreThoseOfLeftAndRightCellInThisOrder)
{
    TinyDesign t;
    const int a = t.addCell(1, {0});
    const int b = t.addCell(1, {0});
    const Component* left = t.addComponent(nullptr, a, 0);
    const Component* right = t.addComponent(nullptr, b, 0);
    t.setDist(a, b, 0, 0, 500);
    t.setDist(b, a, 0, 0, 1);
    EXPECT_EQ(t.design.safeSites(*left, 0, *right, 0), 3);
    EXPECT_EQ(t.design.safeSites(*right, 0, *left, 0), 1);
}

TEST(Design, SafeSitesOfASolutionThatIsNoneAreZero)
{
    TinyDesign t;
    const int cell = t.addCell(1, {0});
    const Component* comp = t.addComponent(nullptr, cell, 0);
    t.setDist(cell, cell, 0, 0, 500);
    EXPECT_EQ(t.design.safeSites(*comp, 0, *comp, 0), 3);
    EXPECT_EQ(t.design.safeSites(*comp, -1, *comp, 0), 0);
    EXPECT_EQ(t.design.safeSites(*comp, 1, *comp, 0), 0);
    EXPECT_EQ(t.design.safeSites(*comp, 0, *comp, -1), 0);
    EXPECT_EQ(t.design.safeSites(*comp, 0, *comp, 1), 0);
}

TEST(RequireCells, ComponentOfAnUnknownCellEndsTheRun)
{
    TinyDesign t;
    const int cell = t.addCell(1, {0});
    t.addComponent(nullptr, cell, 0);
    EXPECT_EQ(test::reportOf([&] { t.design.requireCells(); }), "");
    Component* comp = t.addComponent(nullptr, cell, 0);
    comp->cellIdx = -1;
    comp->cellName = "NAND9_X9";
    EXPECT_EQ(test::reportOfEndedRun([&] { t.design.requireCells(); }),
              "ERROR| component u1: its cell NAND9_X9 is not in the library\n");
}

TEST(RequireSolutions, ComponentOfACellWithoutSolutionsEndsTheRun)
{
    TinyDesign t;
    const int good = t.addCell(1, {0});
    const int bare = t.addCell(1, {});
    t.addComponent(nullptr, good, 0);
    EXPECT_EQ(test::reportOf([&] { t.design.requireSolutions(); }), "") << "no component is of the bare cell";
    t.addComponent(nullptr, bare, 0);
    EXPECT_EQ(test::reportOfEndedRun([&] { t.design.requireSolutions(); }),
              "ERROR| component u1: its cell C1 has no colour solution\n");
}

} // namespace
