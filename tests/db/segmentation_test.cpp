// SPDX-License-Identifier: BSD-3-Clause
// Rows cut into segments at the edges of macros.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "app/parameters.h"
#include "db/design.h"
#include "qlib/qLibRTree.h"
#include "support/guards.h"
#include "support/property.h"

namespace {

/// A stretch of a row: x (DBU) and sites.
using Piece = std::pair<int32_t, int32_t>;
using Pieces = std::vector<Piece>;

/// A design of rows and macros alone, with its own site size. The macros go with it.
class Floor {
public:
    Floor(int siteWidth, int siteHeight)
    {
        SITE_WIDTH = siteWidth;
        SITE_HEIGHT = siteHeight;
    }

    Row* addRow(int x, int y, int numSites)
    {
        auto* row = new Row;
        row->name = "r" + std::to_string(design.rows.size());
        row->x = x;
        row->y = y;
        row->numSites = numSites;
        design.rows.push_back(row);
        return row;
    }

    void addMacro(int x, int y, int width, int height)
    {
        m_macros.push_back(std::make_unique<Macro>(Macro{x, y, width, height, "m"}));
        Macro* macro = m_macros.back().get();
        design.macros.push_back(macro);
        qLib::insertItem(design.macroTree, macro, x, y, x + width, y + height);
    }

private:
    test::ParameterGuard m_parameters;
    std::vector<std::unique_ptr<Macro>> m_macros;

public:
    Design design;
};

Pieces piecesOf(const std::vector<Segment*>& segments)
{
    Pieces pieces;
    for (const Segment* segment : segments) {
        pieces.emplace_back(segment->x, segment->numSites);
    }
    return pieces;
}

/// Macros on a row from 0 to 1900, 10 sites of 190, and what is left of it.
struct CutCase {
    const char* name;
    Pieces macros; ///< x and width, DBU
    Pieces want;   ///< x (DBU) and sites
};

void PrintTo(const CutCase& row, std::ostream* out)
{
    *out << testing::PrintToString(row.macros);
}

class RowCut : public testing::TestWithParam<CutCase> {};

TEST_P(RowCut, PairsTheSortedEdges)
{
    Floor floor(190, 1900);
    const Row* row = floor.addRow(0, 0, 10);
    for (const auto& [x, width] : GetParam().macros) {
        floor.addMacro(x, 0, width, 1900);
    }
    floor.design.initSegments();
    EXPECT_EQ(piecesOf(row->segments), GetParam().want);
}

const CutCase CUT_CASES[] = {
    {"NoMacro", {}, {{0, 10}}},
    {"OneInsideLeavesTwo", {{570, 380}}, {{0, 3}, {950, 5}}},
    {"TwoInsideLeaveThree", {{1330, 190}, {190, 190}}, {{0, 1}, {380, 5}, {1520, 2}}},
    {"TwoSideBySideLeaveTwo", {{570, 190}, {760, 190}}, {{0, 3}, {950, 5}}},
    {"AtTheLeftEnd", {{0, 380}}, {{380, 8}}},
    {"AtTheRightEnd", {{1520, 380}}, {{0, 8}}},
    {"WholeRowLeavesNothing", {{0, 1900}}, {}},
    {"OneUnitLeftOfTheMacroIsASegmentWithoutSites", {{1, 189}}, {{0, 0}, {190, 9}}},
    {"NarrowStretchIsASegmentWithoutSites", {{190, 190}, {400, 170}}, {{0, 1}, {380, 0}, {570, 7}}},
    {"SitesAreTruncated", {{569, 382}}, {{0, 2}, {951, 4}}},
    {"OfWidthZeroCutsAllTheSame", {{570, 0}}, {{0, 3}, {570, 7}}},
    {"SticksOutOnBothSidesLeavesTwoOutsideAndNoneInside", {{-380, 2660}}, {{-380, 2}, {1900, 2}}},
    {"SticksOutOnTheRightLeavesOneBeyondTheEnd", {{1520, 760}}, {{0, 8}, {1900, 2}}},
    {"SticksOutOnTheLeftLeavesOneBeforeTheStart", {{-380, 760}}, {{-380, 2}, {380, 8}}},
    {"TouchingTheRightEndFromOutsideIsIncluded", {{1900, 380}}, {{0, 10}, {1900, 2}}},
    {"TouchingTheLeftEndFromOutsideIsIncluded", {{-380, 380}}, {{-380, 2}, {0, 10}}},
    {"OneUnitOutsideIsNot", {{1901, 380}, {-381, 380}}, {{0, 10}}},
    {"TwoThatOverlapLeaveAStretchInsideTheOverlap", {{190, 760}, {570, 760}}, {{0, 1}, {570, 2}, {1330, 3}}},
    {"TwoAtOnePlaceLeaveWhatTheyCover", {{570, 380}, {570, 380}}, {{0, 3}, {570, 2}, {950, 5}}},
    {"OneInsideAnotherLeavesWhatIsBetweenTheirEdges",
     {{190, 1330}, {570, 380}},
     {{0, 1}, {570, 2}, {1520, 2}}},
};

INSTANTIATE_TEST_SUITE_P(InitSegments, RowCut, testing::ValuesIn(CUT_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

/// A macro from x 570 to 950 at some height, on a row from y 1900 to 3800.
struct MacroCase {
    const char* name;
    int y;
    int height;
    bool cuts;
};

void PrintTo(const MacroCase& row, std::ostream* out)
{
    *out << "y " << row.y << " to " << row.y + row.height;
}

class MacroHeight : public testing::TestWithParam<MacroCase> {};

TEST_P(MacroHeight, CutsTheRowOnlyIfItReachesInside)
{
    Floor floor(190, 1900);
    const Row* row = floor.addRow(0, 1900, 10);
    floor.addMacro(570, GetParam().y, 380, GetParam().height);
    floor.design.initSegments();
    EXPECT_EQ(row->segments.size(), GetParam().cuts ? 2U : 1U);
}

const MacroCase MACRO_CASES[] = {
    {"TouchesTheTopEdge", 3800, 1900, false},
    {"TouchesTheBottomEdge", 0, 1900, false},
    {"OneUnitInsideTheTop", 3799, 1900, true},
    {"OneUnitInsideTheBottom", 0, 1901, true},
    {"AcrossTheRow", 0, 9500, true},
    {"SmallInside", 2500, 10, true},
    {"Above", 5700, 100, false},
    {"Below", -100, 100, false},
};

INSTANTIATE_TEST_SUITE_P(InitSegments, MacroHeight, testing::ValuesIn(MACRO_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(InitSegments, RowOfNoSitesHasNoSegment)
{
    Floor floor(190, 1900);
    floor.addRow(0, 0, 0);
    floor.design.initSegments();
    EXPECT_TRUE(floor.design.segments.empty());
}

TEST(InitSegments, RowOfNegativeSiteCountIsTheStretchLeftOfIt)
{
    Floor floor(190, 1900);
    const Row* row = floor.addRow(1900, 0, -4);
    floor.design.initSegments();
    EXPECT_EQ(piecesOf(row->segments), (Pieces{{1140, 4}}));
}

TEST(InitSegments, SegmentsAreNumberedRowByRowFromLeftToRight)
{
    Floor floor(190, 1900);
    floor.addRow(0, 3800, 10);
    floor.addRow(190, 0, 5);
    floor.addMacro(570, 3800, 380, 1900);
    floor.design.initSegments();
    const std::vector<Segment*>& segments = floor.design.segments;
    EXPECT_EQ(piecesOf(segments), (Pieces{{0, 3}, {950, 5}, {190, 5}}));
    for (size_t i = 0; i < segments.size(); ++i) {
        EXPECT_EQ(segments[i]->id, static_cast<int32_t>(i));
        EXPECT_TRUE(segments[i]->components.empty());
    }
    EXPECT_EQ(segments[0]->y, 3800);
    EXPECT_EQ(segments[2]->y, 0);
    EXPECT_EQ(floor.design.rows[0]->segments, (std::vector<Segment*>{segments[0], segments[1]}));
    EXPECT_EQ(floor.design.rows[1]->segments, (std::vector<Segment*>{segments[2]}));
}

TEST(InitSegments, SegmentEntersTheTreeWithItsWholeSitesAndTheRowHeight)
{
    Floor floor(190, 1900);
    floor.addRow(0, 1900, 10);
    floor.addMacro(571, 1900, 1329, 1900); // leaves 571, of which 570 are sites
    floor.design.initSegments();
    const auto hits = [&](int x, int y) {
        return qLib::searchItems(floor.design.segmentTree, x, y, x, y).size();
    };
    EXPECT_EQ(hits(0, 1900), 1U);
    EXPECT_EQ(hits(570, 3800), 1U);
    EXPECT_EQ(hits(571, 2000), 0U);
    EXPECT_EQ(hits(570, 3801), 0U);
    EXPECT_EQ(hits(0, 1899), 0U);
    EXPECT_EQ(hits(-1, 1900), 0U);
}

TEST(InitSegments, RowHeightZeroLetsMacrosReachAcross)
{
    // Two rows at one y: the search is turned inside out and finds what covers both its ends.
    Floor floor(190, 0);
    const Row* row = floor.addRow(0, 100, 10);
    floor.addMacro(570, 0, 380, 1900);
    floor.addMacro(1140, 100, 190, 0);
    floor.design.initSegments();
    EXPECT_EQ(piecesOf(row->segments), (Pieces{{0, 3}, {950, 5}}));
}

TEST(InitSegments, StretchOfOver32BitsEndsTheRun)
{
    Floor floor(190, 1900);
    floor.addRow(-2'000'000'000, 0, 20'000'000);
    EXPECT_EQ(
        test::reportOfEndedRun([&] { floor.design.initSegments(); }),
        "ERROR| row r0: the stretch from -2000000000 to 1800000000 is too long for 32-bit coordinates\n");
    EXPECT_TRUE(floor.design.segments.empty());
}

// Against a second implementation.

bool touches(const Macro& macro, int xl, int yl, int xh, int yh)
{
    return macro.x <= xh && xl <= macro.x + macro.width && macro.y <= yh && yl <= macro.y + macro.height;
}

/// The rule word by word, with a linear scan.
Pieces cutLiterally(const Row& row, const std::vector<Macro*>& macros)
{
    const int end = row.x + row.numSites * SITE_WIDTH;
    std::vector<int> cuts{row.x, end};
    for (const Macro* macro : macros) {
        if (touches(*macro, row.x, row.y + 1, end, row.y + SITE_HEIGHT - 1)) {
            cuts.insert(cuts.end(), {macro->x, macro->x + macro->width});
        }
    }
    std::sort(cuts.begin(), cuts.end());
    Pieces pieces;
    for (size_t pair = 0; pair < cuts.size() / 2; ++pair) {
        const int a = cuts[2 * pair];
        const int b = cuts[2 * pair + 1];
        if (a < b) {
            pieces.emplace_back(a, (b - a) / SITE_WIDTH);
        }
    }
    return pieces;
}

PROPERTY(InitSegments, CutsAnyRowsAndMacrosAsTheRuleSays)
{
    Floor floor(test::draw(1, 9), test::draw(0, 30));
    const int rowCount = test::draw(0, 8);
    for (int i = 0; i < rowCount; ++i) {
        floor.addRow(test::draw(-50, 50), test::draw(-60, 60), test::draw(-3, 40));
    }
    const int macroCount = test::draw(0, 40);
    for (int i = 0; i < macroCount; ++i) {
        floor.addMacro(test::draw(-80, 200), test::draw(-80, 80), test::draw(-4, 60), test::draw(-4, 60));
    }
    floor.design.initSegments();

    std::vector<Segment*> rowByRow;
    for (const Row* row : floor.design.rows) {
        RC_ASSERT(piecesOf(row->segments) == cutLiterally(*row, floor.design.macros));
        for (Segment* segment : row->segments) {
            RC_ASSERT(segment->y == row->y);
            RC_ASSERT(segment->id == static_cast<int32_t>(rowByRow.size()));
            rowByRow.push_back(segment);
        }
    }
    RC_ASSERT(floor.design.segments == rowByRow);
    std::vector<Segment*> inTree = qLib::searchItems(floor.design.segmentTree, -9999, -9999, 9999, 9999);
    std::sort(inTree.begin(), inTree.end(), [](auto* a, auto* b) { return a->id < b->id; });
    RC_ASSERT(inTree == rowByRow);
}

PROPERTY(InitSegments, SegmentsAreTheFreeStretchesIfMacrosAreInsideAndApart)
{
    constexpr int HEIGHT = 10;
    Floor floor(test::draw(1, 8), HEIGHT);
    const int length = test::draw(1, 60) * SITE_WIDTH;
    const int left = test::draw(-100, 100);
    const int rowCount = test::draw(1, 5);
    for (int i = 0; i < rowCount; ++i) {
        floor.addRow(left, i * HEIGHT, length / SITE_WIDTH);
    }
    // Macros side by side, each over some whole rows and parts of others.
    for (int x = test::draw(0, 10); x < length;) {
        const int width = test::draw(1, 25);
        if (x + width > length) {
            break;
        }
        const int y = test::draw(0, rowCount * HEIGHT);
        floor.addMacro(left + x, y, width, test::draw(0, 3 * HEIGHT));
        x += width + test::draw(0, 20);
    }
    floor.design.initSegments();

    for (const Row* row : floor.design.rows) {
        std::vector<bool> covered(static_cast<size_t>(length) + 1, false);
        covered.back() = true; // the end of the row ends the last stretch
        for (const Macro* macro : floor.design.macros) {
            if (macro->y < row->y + HEIGHT && macro->y + macro->height > row->y) {
                std::fill_n(covered.begin() + (macro->x - left), macro->width, true);
            }
        }
        Pieces free;
        int begin = 0;
        for (int x = 0; x <= length; ++x) {
            if (covered[static_cast<size_t>(x)]) {
                if (x > begin) {
                    free.emplace_back(left + begin, (x - begin) / SITE_WIDTH);
                }
                begin = x + 1;
            }
        }
        RC_ASSERT(piecesOf(row->segments) == free);
    }
}

} // namespace
