// SPDX-License-Identifier: BSD-3-Clause
#include "lut/lutable.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "lut/cells.h"
#include "lut/library.h"
#include "support/restorer.h"

namespace {

using test::Corners;
using test::Library;
using test::makeCell;
using test::MaskList;
using test::reportOf;
using test::Restorer;
using test::ShapeList;

using Block = std::vector<std::vector<int32_t>>;

/// A table with cells made in memory.
class LUTableTest : public testing::Test {
protected:
    Cell* add(int32_t width, const ShapeList& shapes, const MaskList& colors)
    {
        lut.cells.push_back(makeCell(width, 1400, shapes, colors).release());
        return lut.cells.back();
    }

    /// A cell whose only shape keeps these distances from its left and right edges.
    Cell* addBar(int32_t fromLeft, int32_t fromRight, const MaskList& colors)
    {
        return add(600, {{{fromLeft, 500, 600 - fromRight, 900}}}, colors);
    }

    /// The block of a pair of types.
    const Block& block(size_t left, size_t right) const { return lut.distTable.at(left).at(right); }

private:
    test::ParameterGuard m_parameters;

protected:
    LUTable lut;
};

using GenLUTable = LUTableTest;

TEST_F(GenLUTable, TableHasABlockForEveryPairOfTypesAndMirroredTypes)
{
    addBar(50, 50, {{0}, {1}});
    addBar(50, 50, {{0}, {1}, {2}});
    addBar(50, 50, {});
    reportOf([this] { lut.genLUTable(); });
    const size_t solutions[] = {2, 3, 0};
    ASSERT_EQ(lut.distTable.size(), 6U);
    for (size_t i = 0; i < 6; ++i) {
        ASSERT_EQ(lut.distTable[i].size(), 6U);
        for (size_t j = 0; j < 6; ++j) {
            ASSERT_EQ(block(i, j).size(), solutions[i % 3]);
            for (const std::vector<int32_t>& row : block(i, j)) {
                EXPECT_EQ(row.size(), solutions[j % 3]);
            }
        }
    }
}

TEST_F(GenLUTable, PrintedCountIsTheSumOverBlocksOfSolutionsTimesSolutions)
{
    addBar(50, 50, {{0}, {1}});
    addBar(50, 50, {{0}, {1}, {2}});
    addBar(50, 50, {});
    // (2 (2 + 3 + 0))^2
    EXPECT_EQ(reportOf([this] { lut.genLUTable(); }), "STAT | LUTable item #           = 100\n");
}

TEST_F(GenLUTable, WithoutCellsTheTableIsEmpty)
{
    EXPECT_EQ(reportOf([this] { lut.genLUTable(); }), "STAT | LUTable item #           = 0\n");
    EXPECT_TRUE(lut.distTable.empty());
}

TEST_F(GenLUTable, SecondCallReplacesTheTable)
{
    addBar(50, 50, {{0}});
    reportOf([this] { lut.genLUTable(); });
    addBar(50, 50, {{0}});
    EXPECT_EQ(reportOf([this] { lut.genLUTable(); }), "STAT | LUTable item #           = 16\n");
    EXPECT_EQ(lut.distTable.size(), 4U);
}

TEST_F(GenLUTable, FromHalfOnTypesAreMirrored)
{
    // Near its right edge only: as it stands it conflicts with what comes right of it, mirrored with what is
    // left of it.
    addBar(400, 50, {{1}});
    reportOf([this] { lut.genLUTable(); });
    EXPECT_EQ(block(0, 0), (Block{{0}})) << "450 apart";
    EXPECT_EQ(block(0, 1), (Block{{1}})) << "as it stands, then mirrored: 100 apart";
    EXPECT_EQ(block(1, 0), (Block{{0}})) << "mirrored, then as it stands: 800 apart";
    EXPECT_EQ(block(1, 1), (Block{{0}})) << "both mirrored: 450 apart";
}

TEST_F(GenLUTable, RowIsTheLeftSolutionAndColumnTheRightOne)
{
    addBar(50, 50, {{0}, {1}});
    addBar(50, 50, {{1}, {2}, {0}});
    reportOf([this] { lut.genLUTable(); });
    EXPECT_EQ(block(0, 1), (Block{{0, 0, 1}, {1, 0, 0}}));
    EXPECT_EQ(block(1, 0), (Block{{0, 1}, {0, 0}, {1, 0}}));
}

TEST_F(GenLUTable, DifferentMasksOfFacingShapesGive0)
{
    addBar(50, 50, {{0}, {1}, {2}});
    reportOf([this] { lut.genLUTable(); });
    for (size_t i = 0; i < 2; ++i) {
        for (size_t j = 0; j < 2; ++j) {
            EXPECT_EQ(block(i, j), (Block{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
        }
    }
}

TEST_F(GenLUTable, EntryCountsSitesOf190WhateverTheSiteWidthIs)
{
    addBar(0, 0, {{1}});
    MINDPLDIST = 400; // touching cells: 400 DBU
    SITE_WIDTH = 1000;
    reportOf([this] { lut.genLUTable(); });
    EXPECT_EQ(block(0, 0), (Block{{3}}));
    SITE_WIDTH = 10;
    MINDPLDIST = 380;
    reportOf([this] { lut.genLUTable(); });
    EXPECT_EQ(block(0, 0), (Block{{2}}));
}

TEST_F(GenLUTable, PairOfCellsGivesTheBlockOfThePair)
{
    Cell* left = addBar(400, 50, {{0}, {1}});
    Cell* right = addBar(50, 400, {{1}});
    EXPECT_EQ(lut.genLUTable(left, false, right, false), (Block{{0}, {1}}));
    EXPECT_EQ(lut.genLUTable(left, true, right, false), (Block{{0}, {0}}));
    EXPECT_EQ(lut.genLUTable(left, false, right, true), (Block{{0}, {0}}));
    EXPECT_EQ(lut.genLUTable(right, true, left, true), (Block{{0, 1}}));
    EXPECT_TRUE(lut.distTable.empty()) << "the table itself is untouched";
}

TEST_F(GenLUTable, PairWithoutSolutionsGivesAnEmptyBlock)
{
    Cell* none = addBar(50, 50, {});
    Cell* two = addBar(50, 50, {{0}, {1}});
    EXPECT_TRUE(lut.genLUTable(none, false, two, false).empty());
    EXPECT_EQ(lut.genLUTable(two, false, none, false), Block(2));
}

TEST_F(GenLUTable, EveryEntryIsTheSafeDistanceOfItsPairInSites)
{
    add(600, {{{20, 500, 60, 900}, {500, 200, 590, 300}}, {{480, 100, 560, 800}}}, {{0, 1}, {1, 1}, {2, 0}});
    add(400, {{{5, 250, 45, 650}}, {{300, 0, 399, 1000}}, {}}, {{0, 1, 2}, {1, 0, 0}});
    add(190, {{{10, 400, 180, 500}}}, {{0}, {1}, {2}, {3}});
    MINDPLDIST = 300;
    reportOf([this] { lut.genLUTable(); });
    int conflicts = 0;
    for (size_t i = 0; i < 6; ++i) {
        for (size_t j = 0; j < 6; ++j) {
            for (size_t s = 0; s < block(i, j).size(); ++s) {
                for (size_t t = 0; t < block(i, j)[s].size(); ++t) {
                    const int32_t want = lut.getSafeSiteDist(lut.cells[i % 3], i >= 3, static_cast<int>(s),
                                                             lut.cells[j % 3], j >= 3, static_cast<int>(t));
                    EXPECT_EQ(block(i, j)[s][t], want);
                    conflicts += want > 0 ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(conflicts, 20);
}

TEST_F(GenLUTable, TableThatWouldBeTooLargeEndsTheRun)
{
    addBar(50, 50, {{0}, {1}});
    addBar(50, 50, {{0}, {1}, {2}});
    addBar(50, 50, {});
    {
        // 3 cells and 5 solutions, each mirrored too: 16 times 16.
        const Restorer exactly(LUTable::s_maxTableSize, 256);
        EXPECT_EQ(reportOf([this] { lut.genLUTable(); }), "STAT | LUTable item #           = 100\n");
    }
    const Restorer oneLess(LUTable::s_maxTableSize, 255);
    EXPECT_EQ(test::reportOfEndedRun([this] { lut.genLUTable(); }),
              "ERROR| the library is too large for a spacing table: 3 cells with 5 colour solutions\n");
}

TEST_F(GenLUTable, EmptyLibraryIsNeverTooLarge)
{
    const Restorer none(LUTable::s_maxTableSize, 0);
    EXPECT_EQ(reportOf([this] { lut.genLUTable(); }), "STAT | LUTable item #           = 0\n");
}

using EvaluateLUT = LUTableTest;

TEST_F(EvaluateLUT, CountsTheEntriesOfAllBlocks)
{
    EXPECT_EQ(reportOf([this] { lut.evaluateLUT(); }), "STAT | LUTable item #           = 0\n");
    lut.distTable = {{{{1, 2}, {3}}, {}}, {{{}}, {{4, 5, 6}}}};
    EXPECT_EQ(reportOf([this] { lut.evaluateLUT(); }), "STAT | LUTable item #           = 6\n");
}

struct ConnectCase {
    const char* name;
    std::vector<Corners> shape;  ///< shape 0
    std::vector<Corners> first;  ///< shape 1
    std::vector<Corners> second; ///< shape 2
    std::vector<int> shapeIDs;
    bool want;
};

void PrintTo(const ConnectCase& row, std::ostream* out)
{
    *out << row.name;
}

class IsConnectWithShapeID : public testing::TestWithParam<ConnectCase> {
    test::ParameterGuard m_parameters;
};

TEST_P(IsConnectWithShapeID, IsOneOfTheShapesOrTouchesOne)
{
    const LUTable lut;
    const ConnectCase& row = GetParam();
    const auto cell = makeCell(1000, 1000, {row.shape, row.first, row.second}, {});
    EXPECT_EQ(lut.isConnectWithShapeID(cell.get(), 0, row.shapeIDs), row.want);
}

const std::vector<Corners> SQUARE{{100, 100, 200, 200}};
const std::vector<Corners> FAR_AWAY{{800, 800, 900, 900}};

const ConnectCase CONNECTIONS[] = {
    {"empty_list", SQUARE, SQUARE, SQUARE, {}, false},
    {"itself", SQUARE, FAR_AWAY, FAR_AWAY, {0}, true},
    {"itself_among_others", SQUARE, FAR_AWAY, FAR_AWAY, {2, 0, 1}, true},
    {"itself_without_rectangles", {}, FAR_AWAY, FAR_AWAY, {0}, true},
    {"far_away", SQUARE, FAR_AWAY, FAR_AWAY, {1, 2}, false},
    {"overlapping", SQUARE, {{150, 150, 250, 250}}, FAR_AWAY, {1}, true},
    {"around", SQUARE, {{0, 0, 999, 999}}, FAR_AWAY, {1}, true},
    {"shape_that_is_not_listed", SQUARE, SQUARE, FAR_AWAY, {2}, false},
    {"second_of_the_list", SQUARE, FAR_AWAY, SQUARE, {1, 2}, true},
    {"left_edges_touch", SQUARE, {{50, 100, 100, 200}}, FAR_AWAY, {1}, true},
    {"right_edges_touch", SQUARE, {{200, 100, 250, 200}}, FAR_AWAY, {1}, true},
    {"bottom_edges_touch", SQUARE, {{100, 50, 200, 100}}, FAR_AWAY, {1}, true},
    {"top_edges_touch", SQUARE, {{100, 200, 200, 250}}, FAR_AWAY, {1}, true},
    {"corners_touch", SQUARE, {{200, 200, 250, 250}}, FAR_AWAY, {1}, true},
    {"one_apart_to_the_left", SQUARE, {{50, 100, 99, 200}}, FAR_AWAY, {1}, false},
    {"one_apart_to_the_right", SQUARE, {{201, 100, 250, 200}}, FAR_AWAY, {1}, false},
    {"one_apart_below", SQUARE, {{100, 50, 200, 99}}, FAR_AWAY, {1}, false},
    {"one_apart_above", SQUARE, {{100, 201, 200, 250}}, FAR_AWAY, {1}, false},
    {"rectangle_without_width", {{100, 100, 100, 200}}, SQUARE, FAR_AWAY, {1}, false},
    {"rectangle_without_height", {{100, 100, 200, 100}}, SQUARE, FAR_AWAY, {1}, false},
    {"listed_rectangle_without_width", SQUARE, {{150, 100, 150, 200}}, FAR_AWAY, {1}, false},
    {"listed_rectangle_without_height", SQUARE, {{100, 150, 200, 150}}, FAR_AWAY, {1}, false},
    {"second_rectangle_touches", {{0, 0, 5, 5}, {150, 150, 160, 160}}, SQUARE, FAR_AWAY, {1}, true},
    {"second_listed_rectangle_touches", SQUARE, {{0, 0, 5, 5}, {150, 150, 160, 160}}, FAR_AWAY, {1}, true},
    {"without_rectangles", {}, SQUARE, SQUARE, {1, 2}, false},
};
INSTANTIATE_TEST_SUITE_P(Shapes, IsConnectWithShapeID, testing::ValuesIn(CONNECTIONS),
                         [](const auto& row) { return row.param.name; });

/// A working folder of its own.
class WorkingFolder {
public:
    WorkingFolder() { std::filesystem::current_path(m_folder.path("")); }
    ~WorkingFolder() { std::filesystem::current_path(m_before); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    std::string textOf(const std::string& name) const
    {
        std::ifstream in(m_folder.path(name), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

private:
    std::filesystem::path m_before = std::filesystem::current_path();
    test::TempDir m_folder;
};

using DebugTwoCells = LUTableTest;

TEST_F(DebugTwoCells, WritesALayoutScriptOfBothCells)
{
    const WorkingFolder folder;
    add(600, {{{1, 2, 3, 4}, {5, 6, 7, 8}}, {{9, 10, 11, 12}}}, {{0, 1}, {2, 2}});
    add(400, {{{13, 14, 15, 16}}}, {{0}, {1}});
    lut.cells[1]->height = 1500;
    EXPECT_EQ(reportOf([this] { lut.debugTwoCells(0, 1, 0, 1); }), "");
    EXPECT_EQ(folder.textOf("debug.tcl"), "set L [layout create]\n"
                                          "$L create cell debug\n"
                                          "$L create layer 4\n"
                                          "$L create layer 99\n"
                                          "$L create layer 100\n"
                                          "$L create layer 101\n"
                                          "$L create layer 102\n"
                                          "$L create polygon debug 4 0 0 600 1400\n"
                                          "$L create polygon debug 100 1 2 3 4\n"
                                          "$L create polygon debug 100 5 6 7 8\n"
                                          "$L create polygon debug 101 9 10 11 12\n"
                                          "$L create polygon debug 4 600 0 1000 1500\n"
                                          "$L create polygon debug 101 613 14 615 16\n"
                                          "$L gdsout debug.gds\n"
                                          "\n");
}

TEST_F(DebugTwoCells, SolutionsAreThoseOfTheArgumentsInOrder)
{
    const WorkingFolder folder;
    add(600, {{{1, 2, 3, 4}}}, {{0}, {1}, {2}});
    lut.debugTwoCells(0, 0, /*s1=*/2, /*s2=*/1);
    const std::string text = folder.textOf("debug.tcl");
    EXPECT_NE(text.find("debug 102 1 2 3 4\n"), std::string::npos) << text;
    EXPECT_NE(text.find("debug 101 601 2 603 4\n"), std::string::npos) << text;
}

TEST_F(DebugTwoCells, ReplacesTheFileThatIsThere)
{
    const WorkingFolder folder;
    std::ofstream("debug.tcl") << std::string(100000, 'x');
    add(600, {}, {{}});
    lut.debugTwoCells(0, 0, 0, 0);
    const std::string text = folder.textOf("debug.tcl");
    EXPECT_EQ(text.find('x'), std::string::npos);
    EXPECT_LT(text.size(), 1000U);
}

TEST(LUTableMembers, StandInTheirOrder)
{
    const LUTable lut;
    const std::vector<const void*> members{&lut.cellPath, &lut.cells, &lut.cellIndex, &lut.distTable};
    EXPECT_TRUE(std::is_sorted(members.begin(), members.end()));
    static_assert(!std::is_polymorphic_v<LUTable> && !std::is_polymorphic_v<Cell>);
}

} // namespace
