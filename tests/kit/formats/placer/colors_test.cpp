// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/colors.h"

#include "kit/base/fault.h"
#include "kit/base/files/writeOutput.h"
#include "kit/kitRun.h"

namespace {

using kit::Findings;
using kit::placer::ColorRecord;
using kit::placer::readColors;
using kit::placer::writeColors;
using test::contentOf;
using test::TempDir;

const char* const TEXT = "VIRELOCE COLORS 1\n"
                         "COMPONENTS 3\n"
                         "u1 INV 1 0 0 0 1 2\n"
                         "u2/a[3] NAND -1 0\n"
                         "u3 INV 0 2 2\n"
                         "END\n";

std::vector<ColorRecord> recordsOfText()
{
    return {{"u1", "INV", 1, 0, {0, 0, 1, 2}}, {"u2/a[3]", "NAND", -1, 0, {}}, {"u3", "INV", 0, 2, {2}}};
}

TEST(KitColors, AreWrittenLineByLine)
{
    const TempDir dir;
    test::writeOutput(dir.path("o.colors"), [](kit::OutputFile& out) { writeColors(recordsOfText(), out); });
    EXPECT_EQ(contentOf(dir.path("o.colors")), TEXT);
}

TEST(KitColors, AreReadAsTheyWereWritten)
{
    const TempDir dir;
    Findings findings;
    const std::vector<ColorRecord> records = readColors(dir.write("o.colors", TEXT), findings);
    EXPECT_TRUE(findings.empty());
    const std::vector<ColorRecord> expected = recordsOfText();
    ASSERT_EQ(records.size(), expected.size());
    for (size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(records[i].name, expected[i].name);
        EXPECT_EQ(records[i].cell, expected[i].cell);
        EXPECT_EQ(records[i].solution, expected[i].solution);
        EXPECT_EQ(records[i].stitches, expected[i].stitches);
        EXPECT_EQ(records[i].masks, expected[i].masks);
        EXPECT_EQ(records[i].line, static_cast<int64_t>(i) + 3);
    }
}

TEST(KitColors, FileThatCannotBeOpenedIsAFault)
{
    const TempDir dir;
    Findings findings;
    EXPECT_THROW(readColors(dir.path("none"), findings), kit::Fault);
}

struct BadText {
    const char* name;
    std::string text;
    std::string code;
    int64_t line;
    size_t records; ///< that are read all the same
};

void PrintTo(const BadText& row, std::ostream* out)
{
    *out << row.name;
}

class BadColors : public testing::TestWithParam<BadText> {};

TEST_P(BadColors, IsOneFindingWithItsLine)
{
    const TempDir dir;
    const std::string path = dir.write("o.colors", GetParam().text);
    Findings findings;
    EXPECT_EQ(readColors(path, findings).size(), GetParam().records);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].code, GetParam().code);
    EXPECT_EQ(findings[0].line, GetParam().line);
    EXPECT_EQ(findings[0].file, path);
    EXPECT_EQ(findings[0].severity, kit::Severity::ERROR);
}

const std::string HEAD = "VIRELOCE COLORS 1\n";

const BadText BAD_TEXTS[] = {
    {"Empty", "", "colors-header", 0, 0},
    {"OtherVersion", "VIRELOCE COLORS 2\nCOMPONENTS 0\nEND\n", "colors-header", 1, 0},
    {"NoCount", HEAD + "COMPONENTS\nu1 INV 0 0\nEND\n", "colors-count", 2, 1},
    {"TextForACount", HEAD + "COMPONENTS two\nEND\n", "colors-count", 2, 0},
    {"CountTooLarge", HEAD + "COMPONENTS 2\nu1 INV 0 0\nEND\n", "colors-count", 2, 1},
    {"CountTooSmall", HEAD + "COMPONENTS 0\nu1 INV 0 0\nEND\n", "colors-count", 2, 1},
    {"NoStitches", HEAD + "COMPONENTS 2\nu1 INV 0\nu2 INV 0 0\nEND\n", "colors-record", 3, 1},
    {"TextForAMask", HEAD + "COMPONENTS 1\nu1 INV 0 0 1 x\nEND\n", "colors-record", 3, 0},
    {"TwoBlanks", HEAD + "COMPONENTS 1\nu1 INV 0  0 1\nEND\n", "colors-record", 3, 0},
    {"EmptyLine", HEAD + "COMPONENTS 1\nu1 INV 0 0\n\nEND\n", "colors-record", 4, 1},
    {"NoEnd", HEAD + "COMPONENTS 1\nu1 INV 0 0\n", "colors-end", 3, 1},
    {"TextAfterTheEnd", HEAD + "COMPONENTS 1\nu1 INV 0 0\nEND\nu2 INV 0 0\n", "colors-end", 5, 1},
};

INSTANTIATE_TEST_SUITE_P(KitColors, BadColors, testing::ValuesIn(BAD_TEXTS),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
