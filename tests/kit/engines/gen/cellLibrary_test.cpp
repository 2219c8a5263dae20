// SPDX-License-Identifier: BSD-3-Clause
// The cell library: what its colour files hold, and what the placer makes of them.
#include "kit/engines/gen/cellLibrary.h"

#include <map>
#include <set>

#include "kit/kitRun.h"

namespace {

using kit::gen::LibraryCell;
using kit::gen::Options;
using test::GeneratedDesign;
using test::ReadDesign;
using test::Words;

/// The default library, read by the placer.
class DefaultLibrary : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_files = new GeneratedDesign({"--cell-types", "104"});
        s_read = new ReadDesign(*s_files);
    }
    static void TearDownTestSuite()
    {
        delete s_read;
        delete s_files;
    }
    static const LUTable& table() { return s_read->design.lut; }

    inline static GeneratedDesign* s_files = nullptr;
    inline static ReadDesign* s_read = nullptr;
};

int gap(int lowA, int highA, int lowB, int highB)
{
    return std::max({0, lowA - highB, lowB - highA});
}

/// Square of the distance of two rectangles, DBU.
int squareDist(const qBox& a, const qBox& b)
{
    const int dx = gap(a.xl, a.xh, b.xl, b.xh);
    const int dy = gap(a.yl, a.yh, b.yl, b.yh);
    return dx * dx + dy * dy;
}

TEST_F(DefaultLibrary, HasNoConflictInsideACell)
{
    for (const Cell* cell : table().cells) {
        for (size_t s = 0; s < cell->colors.size(); ++s) {
            for (size_t i = 0; i < cell->shapes.size(); ++i) {
                for (size_t j = 0; j < i; ++j) {
                    const int dist = squareDist(*cell->shapes[i][0], *cell->shapes[j][0]);
                    const bool sameMask = cell->colors[s][i] == cell->colors[s][j];
                    EXPECT_FALSE(sameMask && dist > 0 && dist < 185 * 185)
                        << cell->name << " solution " << s << " shapes " << i << ' ' << j;
                }
            }
        }
    }
}

TEST_F(DefaultLibrary, CountsAStitchWhereTouchingShapesDifferInMask)
{
    int stitched = 0;
    for (const Cell* cell : table().cells) {
        for (size_t s = 0; s < cell->colors.size(); ++s) {
            int stitches = 0;
            for (size_t i = 0; i < cell->shapes.size(); ++i) {
                for (size_t j = 0; j < i; ++j) {
                    const bool touch = squareDist(*cell->shapes[i][0], *cell->shapes[j][0]) == 0;
                    stitches += touch && cell->colors[s][i] != cell->colors[s][j] ? 1 : 0;
                }
            }
            EXPECT_EQ(cell->stitchNums[s], stitches) << cell->name << " solution " << s;
            EXPECT_LE(stitches, 3);
            stitched += stitches > 0 ? 1 : 0;
        }
    }
    EXPECT_GT(stitched, 100);
}

TEST_F(DefaultLibrary, KeepsAllShapesInsideTheOutline)
{
    for (const Cell* cell : table().cells) {
        for (const auto& shape : cell->shapes) {
            EXPECT_GE(shape[0]->xl, 0) << cell->name;
            EXPECT_LE(shape[0]->xh, cell->outlineXh) << cell->name;
            EXPECT_GE(shape[0]->yl, 0) << cell->name;
            EXPECT_LE(shape[0]->yh, cell->outlineYh) << cell->name;
        }
    }
    EXPECT_EQ(s_read->report.find("WARNING"), std::string::npos);
}

TEST_F(DefaultLibrary, BeginsEveryCellWithTwoRails)
{
    for (const Cell* cell : table().cells) {
        for (size_t s = 0; s < cell->colors.size(); ++s) {
            for (size_t i = 0; i < cell->shapes.size(); ++i) {
                EXPECT_EQ(cell->isVDDGND(static_cast<int>(i), static_cast<int>(s)), i < 2 ? 1 : 0)
                    << cell->name << " solution " << s << " shape " << i;
            }
        }
    }
}

TEST_F(DefaultLibrary, HasDifferentSolutionsTheFirstWithoutStitch)
{
    size_t most = 0;
    for (const Cell* cell : table().cells) {
        const std::set<std::vector<int32_t>> different(cell->colors.begin(), cell->colors.end());
        EXPECT_EQ(different.size(), cell->colors.size()) << cell->name;
        EXPECT_EQ(cell->stitchNums.at(0), 0) << cell->name;
        EXPECT_TRUE(std::is_sorted(cell->stitchNums.begin(), cell->stitchNums.end())) << cell->name;
        most = std::max(most, cell->colors.size());
    }
    EXPECT_EQ(most, 12U);
}

TEST_F(DefaultLibrary, HasWidthsOfARealLibrary)
{
    double sum = 0;
    for (const Cell* cell : table().cells) {
        EXPECT_GE(cell->siteWidth, 2) << cell->name;
        EXPECT_LE(cell->siteWidth, 20) << cell->name;
        EXPECT_EQ(cell->outlineXh, cell->siteWidth * 190) << cell->name;
        sum += cell->siteWidth;
    }
    EXPECT_NEAR(sum / 104, 5.3, 0.3);
}

TEST_F(DefaultLibrary, NeedsASpacingForAboutHalfOfAllNeighbours)
{
    std::map<int, int> count; // by entry of the table
    int total = 0;
    for (const auto& row : table().distTable) {
        for (const auto& block : row) {
            for (const auto& entries : block) {
                for (const int entry : entries) {
                    ++count[entry];
                    ++total;
                }
            }
        }
    }
    EXPECT_EQ(count[0] + count[1], total);
    EXPECT_NEAR(100.0 * count[1] / total, 50.0, 10.0);
}

TEST_F(DefaultLibrary, NoSpacingIsTakenForLessThanTheTableSays)
{
    const std::vector<LibraryCell> library = kit::gen::makeLibrary(Options());
    int more = 0;
    int total = 0;
    for (size_t a = 0; a < library.size(); ++a) {
        for (size_t b = 0; b < library.size(); ++b) {
            for (size_t s = 0; s < library[a].plainSides.size(); ++s) {
                for (size_t t = 0; t < library[b].plainSides.size(); ++t) {
                    const int entry = table().distTable[a][b][s][t];
                    const int taken = kit::gen::spacing(library[a].plainSides[s], library[b].plainSides[t]);
                    ASSERT_GE(taken, entry) << a << ' ' << b << ' ' << s << ' ' << t;
                    more += taken - entry;
                    ++total;
                }
            }
        }
    }
    EXPECT_LT(more, total / 20);
}

TEST(KitCellLibrary, HoldsTheCellsAskedFor)
{
    const GeneratedDesign files({"--cell-types", "7", "--solutions", "3"});
    const ReadDesign read(files);
    EXPECT_EQ(read.design.lut.cells.size(), 7U);
    size_t most = 0;
    for (const Cell* cell : read.design.lut.cells) {
        most = std::max(most, cell->colors.size());
    }
    EXPECT_EQ(most, 3U);
}

TEST(KitCellLibrary, AllCellsAreUsed)
{
    Options options;
    options.cellTypes = 9; // the last family has one member
    std::map<int, int> count;
    for (const uint16_t type : kit::gen::chooseTypes(options)) {
        ++count[type];
    }
    EXPECT_EQ(count.size(), 9U);
    EXPECT_GT(count[0], count[3]);
    EXPECT_NEAR(count[8], options.components / 9.0, 300.0);
}

} // namespace
