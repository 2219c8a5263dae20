// SPDX-License-Identifier: BSD-3-Clause
// What a colour file must hold: every fault ends the run and names the file, the line and the fault.
#include <gtest/gtest.h>

#include <algorithm>

#include "lut/library.h"

namespace {

using test::Library;
using test::reportOf;
using test::reportOfEndedRun;

/// The report of reading a faulty file, with "FILE" for its path. The cell must not have been added.
std::string faultOf(const std::string& text)
{
    Library library;
    const std::string path = library.addFile("X", text);
    std::string report = reportOfEndedRun([&] { library.lut.readCell("X"); });
    EXPECT_TRUE(library.lut.cells.empty());
    EXPECT_EQ(library.lut.getCellIndex("X"), -1);
    if (const size_t at = report.find(path); at != std::string::npos) {
        report.replace(at, path.size(), "FILE");
    }
    return report;
}

struct Fault {
    const char* name;
    const char* text;
    const char* want; ///< what follows "ERROR| FILE:"
};

void PrintTo(const Fault& row, std::ostream* out)
{
    *out << row.name;
}

class ColorFile : public testing::TestWithParam<Fault> {};

TEST_P(ColorFile, FaultNamesFileAndLineAndEndsTheRun)
{
    EXPECT_EQ(faultOf(GetParam().text), "ERROR| FILE:" + std::string(GetParam().want) + "\n");
}

const Fault FAULTS[] = {
    {"empty_file", "", "1: the file ends before the cell width"},
    {"only_line_ends", "\n\n\n", "4: the file ends before the cell width"},
    {"no_height", "190", "1: the file ends before the cell height"},
    {"no_header_count", "190 1400\n", "2: the file ends before the number of header boxes"},
    {"no_shape_count", "190 1400\n0\n", "3: the file ends before the number of shapes"},
    {"no_rectangle_count", "190 1400\n0\n1\n\n", "5: the file ends before the number of rectangles"},
    {"no_solution_count", "190 1400\n0\n0\n", "4: the file ends before the number of solutions"},
    {"second_shape_missing", "190 1400\n0\n2\n0\n\n", "6: the file ends before the number of rectangles"},

    {"width_is_text", "wide 1400\n", "1: the cell width is not a 32-bit integer"},
    {"height_is_text", "190\nhigh\n", "2: the cell height is not a 32-bit integer"},
    {"width_has_a_fraction", "190.5 1400\n0 0 0", "1: the cell height is not a 32-bit integer"},
    {"header_count_is_text", "190 1400\nnone\n", "2: the number of header boxes is not a 32-bit integer"},
    {"mask_is_text", "190 1400\n0\n1\n0\n1\n0 red\n", "6: the mask is not a 32-bit integer"},
    {"stitch_count_is_text", "190 1400\n0\n0\n1\nx\n", "5: the stitch count is not a 32-bit integer"},
    {"rectangle_holds_text", "190 1400\n1\n0 0 5 top\n0\n0\n", "3: the rectangle is not a 32-bit integer"},
    {"width_above_32_bits", "2147483648\n1400\n0 0 0", "1: the cell width is not a 32-bit integer"},
    {"height_below_32_bits", "190\n-2147483649\n0 0 0", "2: the cell height is not a 32-bit integer"},
    {"last_number_above_32_bits", "190 1400\n0 0\n99999999999\n",
     "3: the number of solutions is not a 32-bit integer"},
    {"sign_alone_at_the_end", "190 1400\n0 0\n-\n", "3: the number of solutions is not a 32-bit integer"},

    {"negative_header_count", "190 1400\n-1\n0\n0\n",
     "2: the number of header boxes is -1, which the file cannot hold"},
    {"negative_shape_count", "190 1400\n0\n-2\n0\n",
     "3: the number of shapes is -2, which the file cannot hold"},
    {"negative_rectangle_count", "190 1400\n0\n1\n-2147483648\n0\n",
     "4: the number of rectangles is -2147483648, which the file cannot hold"},
    {"negative_solution_count", "190 1400\n0\n0\n-1\n",
     "4: the number of solutions is -1, which the file cannot hold"},
    {"header_count_beyond_the_file", "190 1400\n2147483647\n0 0 5 5\n0\n0\n",
     "2: the number of header boxes is 2147483647, which the file cannot hold"},
    {"shape_count_beyond_the_file", "190 1400\n0\n2147483647\n0\n0\n",
     "3: the number of shapes is 2147483647, which the file cannot hold"},
    {"rectangle_count_beyond_the_file", "190 1400\n0\n1\n1000000000\n0 0 5 5\n0\n",
     "4: the number of rectangles is 1000000000, which the file cannot hold"},
    {"solution_count_beyond_the_file", "190 1400\n0\n0\n1000000\n0\n",
     "4: the number of solutions is 1000000, which the file cannot hold"},
    {"solutions_need_a_mask_per_shape", "190 1400\n0\n4\n0 0 0 0\n2\n0 1 1 1 1 0\n",
     "5: the number of solutions is 2, which the file cannot hold"},
    {"one_rectangle_too_many", "190 1400\n2\n0 0 5 5\n0 0\n",
     "2: the number of header boxes is 2, which the file cannot hold"},

    {"negative_width", "-5 1400\n0\n0\n0\n", "1: the cell is -5 wide, 0 sites of 190"},
    {"negative_width_of_many_sites", "\n-500\n1400\n0\n0\n0\n", "3: the cell is -500 wide, -2 sites of 190"},
};
INSTANTIATE_TEST_SUITE_P(Fault, ColorFile, testing::ValuesIn(FAULTS),
                         [](const auto& row) { return row.param.name; });

/// A number of a colour file, and what it stands for.
struct Number {
    const char* what;
    const char* text;
    const char* after; ///< the white space behind it
};

const Number NUMBERS[] = {
    {"cell width", "380", " "},
    {"cell height", "1400", "\n"},
    {"number of header boxes", "1", "\n"},
    {"rectangle", "0", " "},
    {"rectangle", "0", " "},
    {"rectangle", "380", " "},
    {"rectangle", "1400", "\n"},
    {"number of shapes", "2", "\n"},
    {"number of rectangles", "2", " "},
    {"rectangle", "20", " "},
    {"rectangle", "30", " "},
    {"rectangle", "40", " "},
    {"rectangle", "60", "\n"},
    {"rectangle", "50", " "},
    {"rectangle", "60", " "},
    {"rectangle", "90", " "},
    {"rectangle", "100", "\n\n"},
    {"number of rectangles", "1", "\n"},
    {"rectangle", "200", " "},
    {"rectangle", "25", " "},
    {"rectangle", "210", "\n"},
    {"rectangle", "900", "\n"},
    {"number of solutions", "2", "\n"},
    {"stitch count", "3", " "},
    {"mask", "0", " "},
    {"mask", "1", "\n"},
    {"stitch count", "0", "\n"},
    {"mask", "2", " "},
    {"mask", "2", "\n"},
};

std::string textOf(const Number* begin, const Number* end)
{
    std::string text;
    for (; begin != end; ++begin) {
        text += std::string(begin->text) + begin->after;
    }
    return text;
}

/// The place that follows a text.
std::string lineAfter(const std::string& text)
{
    return std::to_string(1 + std::count(text.begin(), text.end(), '\n'));
}

/// Blanks: a file is then large enough for the counts that it holds, wherever it ends.
const std::string ROOM(1000, ' ');

TEST(ColorFile, FileThatEndsEarlyNamesTheNumberThatIsMissing)
{
    EXPECT_EQ(reportOf([] {
                  Library library;
                  library.addFile("X", textOf(std::begin(NUMBERS), std::end(NUMBERS)));
                  library.lut.readCell("X");
              }),
              "");
    for (const Number& number : NUMBERS) {
        const std::string before = textOf(std::begin(NUMBERS), &number);
        EXPECT_EQ(faultOf(before + ROOM),
                  "ERROR| FILE:" + lineAfter(before) + ": the file ends before the " + number.what + "\n")
            << before;
    }
}

TEST(ColorFile, TextInPlaceOfAnyNumberIsNamedAtItsLine)
{
    for (const std::string bad : {"x", "-", "+-1", ".5", "3000000000", "-3000000000"}) {
        for (const Number& number : NUMBERS) {
            const std::string before = textOf(std::begin(NUMBERS), &number);
            const std::string after = number.after + textOf(&number + 1, std::end(NUMBERS)) + ROOM;
            EXPECT_EQ(faultOf(before + bad + after), "ERROR| FILE:" + lineAfter(before) + ": the " +
                                                         number.what + " is not a 32-bit integer\n")
                << before << bad;
        }
    }
}

TEST(ColorFile, CutOffAnywhereBeforeItsLastNumberItEndsTheRun)
{
    const std::string whole = textOf(std::begin(NUMBERS), std::end(NUMBERS));
    const size_t lastNumber = whole.find_last_of("0123456789");
    for (size_t length = 0; length <= lastNumber; ++length) {
        const std::string report = faultOf(whole.substr(0, length));
        EXPECT_EQ(report.compare(0, 12, "ERROR| FILE:"), 0) << report;
    }
}

TEST(ColorFile, NumbersNeedNoMoreThanTheirDigitsAndABlank)
{
    std::string rectangles = "30";
    for (int i = 0; i < 30; ++i) {
        rectangles += " 0 0 5 5";
    }
    Library library;
    library.addFile("X", "5 5 1 0 0 5 5 1 1 1 1 2 2 1 0 1");
    library.addFile("Y", "5 5 " + rectangles + " 0 0");
    library.addFile("Z", "5 5 0 1 " + rectangles + " 5 0 1 0 1 0 1 0 1 0 1");
    EXPECT_EQ(reportOf([&] {
                  library.lut.readCell("X");
                  library.lut.readCell("Y");
                  library.lut.readCell("Z");
              }),
              "");
    EXPECT_EQ(library.lut.cells.size(), 3U);
}

TEST(ColorFile, SignNeedsNoBlankBeforeIt)
{
    Library library;
    library.addFile("X", "5 5 1-1-1-1-1 0 0");
    EXPECT_EQ(reportOf([&] { library.lut.readCell("X"); }), "");
    EXPECT_EQ(library.lut.cells.at(0)->headerBoxes.size(), 1U);
}

TEST(ColorFile, SiteWidth0EndsTheRunBeforeAnythingIsDividedByIt)
{
    Library library;
    library.addFile("X", "190 1400 0 0 0");
    SITE_WIDTH = 0;
    EXPECT_EQ(reportOfEndedRun([&] { library.lut.readCell("X"); }),
              "ERROR| the site width is 0: -siteW must be positive\n");
}

TEST(ColorFile, CellOfNegativeWidthInSitesEndsTheRun)
{
    Library library;
    const std::string path = library.addFile("X", "380 1400 0 0 0");
    SITE_WIDTH = -190;
    EXPECT_EQ(reportOfEndedRun([&] { library.lut.readCell("X"); }),
              "ERROR| " + path + ":1: the cell is 380 wide, -2 sites of -190\n");
}

TEST(ColorFile, CellOfWidth0IsRead)
{
    Library library;
    library.addFile("X", "0 0 0 0 0");
    EXPECT_EQ(reportOf([&] { library.lut.readCell("X"); }), "");
    EXPECT_EQ(library.lut.cells.at(0)->siteWidth, 0);
}

TEST(ColorFile, CellsReadBeforeTheFaultStay)
{
    Library library;
    library.addFile("A", "190 1400 0 0 0");
    library.addFile("B", "190 1400 0 0");
    const std::string list = library.addList("2 A B");
    const std::string report = reportOfEndedRun([&] { library.lut.readCells(list); });
    EXPECT_EQ(report,
              "ERROR| " + library.path("lib/B.color") + ":1: the file ends before the number of solutions\n");
    EXPECT_EQ(library.lut.cells.size(), 1U);
    EXPECT_EQ(library.lut.getCellIndex("A"), 0);
}

} // namespace
