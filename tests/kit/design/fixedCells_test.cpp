// SPDX-License-Identifier: BSD-3-Clause
// What stays where it is in an imported design, as a file.
#include "kit/design/fixedCells.h"

#include <gtest/gtest.h>

#include "kit/base/files/writeOutput.h"
#include "kit/kitRun.h"

namespace {

using kit::Findings;
using kit::design::FixedParts;
using test::TempDir;

const std::string GOOD_FIXED = "VIRELOCE FIXED 1\nCELLS 2\nTAP 380 0 FN -1 tap 1\nEND_CAP -190 1400 S 2 e\n"
                               "BLOCKS 1\nBLOCK RAM 1000 -20 2 ram\n1000 0 1010 20\n990 5 995 6\nEND\n";

FixedParts partsOf(const std::string& text, Findings& findings)
{
    const TempDir dir;
    return kit::design::readFixed(dir.write("d.fixed", text), findings);
}

TEST(KitFixedCells, HaveAllThatTheFileSays)
{
    Findings findings;
    const FixedParts parts = partsOf(GOOD_FIXED, findings);
    EXPECT_TRUE(findings.empty());
    ASSERT_EQ(parts.cells.size(), 2U);
    EXPECT_EQ(parts.cells[0].name, "tap 1");
    EXPECT_EQ(parts.cells[0].master, "TAP");
    EXPECT_EQ(parts.cells[0].x, 380);
    EXPECT_EQ(parts.cells[0].orient, kit::lefdef::Orient::FN);
    EXPECT_EQ(parts.cells[0].solution, -1);
    EXPECT_EQ(parts.cells[1].x, -190);
    EXPECT_EQ(parts.cells[1].y, 1400);
    EXPECT_EQ(parts.cells[1].solution, 2);
    ASSERT_EQ(parts.blocks.size(), 1U);
    EXPECT_EQ(parts.blocks[0].name, "ram");
    EXPECT_EQ(parts.blocks[0].y, -20);
    EXPECT_EQ(parts.blocks[0].metal,
              (std::vector<kit::geometry::Rect>{{1000, 0, 1010, 20}, {990, 5, 995, 6}}));
}

TEST(KitFixedCells, AreWrittenAsTheyAreRead)
{
    Findings findings;
    const FixedParts parts = partsOf(GOOD_FIXED, findings);
    const TempDir dir;
    test::writeOutput(dir.path("o"), [&](kit::OutputFile& out) { writeFixed(parts, out); });
    EXPECT_EQ(test::contentOf(dir.path("o")), GOOD_FIXED);
}

TEST(KitFixedCells, WithoutAFileThereAreNone)
{
    Findings findings;
    EXPECT_TRUE(kit::design::readFixed("/nowhere/d.fixed", findings).empty());
    EXPECT_TRUE(findings.empty());
}

struct FixedDamage {
    const char* name;
    const char* part; ///< of the good file
    const char* instead;
    int64_t line; ///< that is told
};

void PrintTo(const FixedDamage& damage, std::ostream* out)
{
    *out << damage.name;
}

const FixedDamage FIXED_DAMAGES[] = {
    {"other_header", "FIXED 1", "FIXED 2", 1},
    {"no_count", "CELLS 2", "CELLS", 2},
    {"cell_on_its_side", " FN ", " E ", 3},
    {"solution_below_none", "-1 tap", "-2 tap", 3},
    {"no_name", "2 e\n", "2\n", 4},
    {"place_is_no_number", "TAP 380", "TAP x", 3},
    {"too_many_cells", "CELLS 2", "CELLS 3", 5},
    {"too_few_rectangles", "-20 2 ram", "-20 3 ram", 9},
    {"rectangle_without_area", "990 5 995 6", "990 5 990 6", 8},
    {"more_behind_the_end", "END\n", "END\nx\n", 10},
    {"cut_off", "END\n", "END", 9},
};

class KitFixedDamage : public testing::TestWithParam<FixedDamage> {};

TEST_P(KitFixedDamage, IsToldWithItsLine)
{
    std::string text = GOOD_FIXED;
    const size_t at = text.find(GetParam().part);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::string(GetParam().part).size(), GetParam().instead);
    Findings findings;
    partsOf(text, findings);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].code, "fixed-line");
    EXPECT_EQ(findings[0].line, GetParam().line);
    EXPECT_EQ(findings[0].severity, kit::Severity::ERROR);
}

INSTANTIATE_TEST_SUITE_P(Each, KitFixedDamage, testing::ValuesIn(FIXED_DAMAGES),
                         [](const auto& damage) { return std::string(damage.param.name); });

} // namespace
