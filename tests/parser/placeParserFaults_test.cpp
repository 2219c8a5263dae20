// SPDX-License-Identifier: BSD-3-Clause
// Placement files that are damaged: missing tokens, missing lines, lines that are too long, null characters.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "parser/reading.h"

namespace {

using test::Reading;

/// The first `count` words of a text, one space between them.
std::string firstWords(const std::string& text, int count)
{
    std::istringstream in(text);
    std::string words;
    std::string word;
    for (int i = 0; i < count && in >> word; ++i) {
        words += (i == 0 ? "" : " ") + word;
    }
    return words;
}

/// A text made longer by a word at its end, so that it has exactly `length` characters.
std::string padded(const std::string& text, size_t length)
{
    return text + " " + std::string(length - text.size() - 1, 'x');
}

/// A record line and where it stands.
struct RecordCase {
    const char* name;
    std::string before; ///< what comes before the line
    const char* record; ///< the line, with as many tokens as are needed
    std::string after;  ///< what comes after the line
    const char* title;  ///< what the reader calls it
    int line;           ///< number of the line in the file
};

const std::string BOX_START = "PROPERTYDEFINITIONS\n  COMPONENTPIN ;\n";
const std::string BOX_LINE = "  DESIGN X REAL 1 ;\n";

const RecordCase RECORD_CASES[] = {
    {"Row", "DESIGN d ;\n", "ROW r s 0 0 N DO 10 BY 1 STEP 190", "", "ROW", 2},
    {"ComponentsHeader", "", "COMPONENTS 1", "- u C0 + P ( 0 0 ) N ;\n;\n", "COMPONENTS", 1},
    {"FirstComponent", "COMPONENTS 1\n", "- u C0 + PLACED ( 380 0 ) N", ";\n", "component record", 2},
    {"LaterComponent", "COMPONENTS 2\n- u C0 + P ( 0 0 ) N ;\n;\n", "- v C0 + PLACED ( 380 0 ) N", ";\n",
     "component record", 4},
    {"MacrosHeader", "", "BIGNODES 1", "- m + F ( 0 0 ) N 9 9 S ;\n;\n", "BIGNODES", 1},
    {"FirstMacro", "BIGNODES 1\n", "- m + FIXED ( 0 0 ) N 190 1900 SIZE ;", ";\n", "macro record", 2},
    {"LaterMacro", "BIGNODES 2\n- m + F ( 0 0 ) N 9 9 S ;\n;\n", "- n + FIXED ( 0 0 ) N 190 1900 SIZE ;",
     ";\n", "macro record", 4},
    {"CoreBoxLeft", BOX_START, "DESIGN X REAL 1", BOX_LINE + BOX_LINE + BOX_LINE, "core box property", 3},
    {"CoreBoxRight", BOX_START + BOX_LINE, "DESIGN X REAL 1", BOX_LINE + BOX_LINE, "core box property", 4},
    {"CoreBoxBottom", BOX_START + BOX_LINE + BOX_LINE, "DESIGN X REAL 1", BOX_LINE, "core box property", 5},
    {"CoreBoxTop", BOX_START + BOX_LINE + BOX_LINE + BOX_LINE, "DESIGN X REAL 1", "", "core box property", 6},
};

/// Words that a line keeps when it is classified by the main loop: without its keyword it is no record.
int leastWords(const RecordCase& row)
{
    return std::string(row.record).rfind(row.title, 0) == 0 ? 1 : 0;
}

int wordCount(const std::string& text)
{
    std::istringstream in(text);
    std::string word;
    int count = 0;
    while (in >> word) {
        ++count;
    }
    return count;
}

void PrintTo(const RecordCase& row, std::ostream* out)
{
    *out << row.record;
}

class RecordLine : public testing::TestWithParam<RecordCase> {};

TEST_P(RecordLine, WithAllItsTokensIsRead)
{
    Reading r;
    EXPECT_EQ(r.place(GetParam().before + GetParam().record + "\n" + GetParam().after), "");
}

TEST_P(RecordLine, WithMissingTokensEndsTheRun)
{
    const RecordCase& row = GetParam();
    for (int words = leastWords(row); words < wordCount(row.record); ++words) {
        const std::string want =
            std::to_string(row.line) + ": " + row.title + " ends after " + std::to_string(words) + " tokens";
        const std::string cut = firstWords(row.record, words);
        EXPECT_EQ(Reading().placeFault(row.before + cut + "\n" + row.after), want);
        EXPECT_EQ(Reading().placeFault(row.before + cut + "  \n" + row.after), want) << "spaces are no token";
    }
}

TEST_P(RecordLine, EndsAtANullCharacter)
{
    const RecordCase& row = GetParam();
    for (int words = leastWords(row); words < wordCount(row.record); ++words) {
        const std::string cut = firstWords(row.record, words) + std::string(1, '\0') + " 1 2 3 4 5 6 7 8 9";
        EXPECT_EQ(Reading().placeFault(row.before + cut + "\n" + row.after),
                  std::to_string(row.line) + ": " + row.title + " ends after " + std::to_string(words) +
                      " tokens");
    }
}

TEST_P(RecordLine, Of255CharactersIsReadLikeAnyOther)
{
    const RecordCase& row = GetParam();
    Reading r;
    EXPECT_EQ(r.place(row.before + padded(row.record, 255) + "\n" + row.after + "ROW a s 0 0 N D 1 B 1 S 1"),
              "");
    EXPECT_EQ(r.design.rows.back()->name, "a");
}

TEST_P(RecordLine, LacksTheTokensBehindItsFirst255Characters)
{
    const RecordCase& row = GetParam();
    const int words = wordCount(row.record) - 1;
    const std::string start = firstWords(row.record, words);
    const std::string spaces(255 - start.size(), ' ');
    EXPECT_EQ(Reading().placeFault(row.before + start + spaces + "1 2 3 4\n" + row.after),
              std::to_string(row.line) + ": " + row.title + " ends after " + std::to_string(words) +
                  " tokens");
}

INSTANTIATE_TEST_SUITE_P(PlaceParser, RecordLine, testing::ValuesIn(RECORD_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

/// A file whose line number `line` is made longer than 255 characters.
struct OverlongCase {
    const char* name;
    std::vector<std::string> lines;
    size_t line;      ///< number of the overlong line, from 1
    const char* want; ///< the fault, empty if the run goes on
    const char* read; ///< rows, components, macros and 1 if the core box was read
};

const std::string COMPONENT_LINE = "- u C0 + PLACED ( 0 0 ) N ;";
const std::string MACRO_LINE = "- m + FIXED ( 0 0 ) N 190 1900 SIZE ;";
const std::string VALUE_LINE = " DESIGN X REAL 1 ;";
const std::vector<std::string> ROWS{"DESIGN d ;", "ROW a s 0 0 N D 1 B 1 S 190",
                                    "ROW b s 0 9 N D 1 B 1 S 190"};
const std::vector<std::string> COMPONENTS{
    "COMPONENTS 2", COMPONENT_LINE, ";", COMPONENT_LINE, ";", "ROW a s 0 0 N D 1 B 1 S 190"};
const std::vector<std::string> MACROS{"BIGNODES 2", MACRO_LINE, ";",
                                      MACRO_LINE,   ";",        "ROW a s 0 0 N D 1 B 1 S 190"};
const std::vector<std::string> CORE_BOX{
    "PROPERTYDEFINITIONS",        ";", VALUE_LINE, VALUE_LINE, VALUE_LINE, VALUE_LINE,
    "ROW a s 0 0 N D 1 B 1 S 190"};

const char* const IN_COMPONENTS = "a line of over 255 characters inside the COMPONENTS section";
const char* const IN_MACROS = "a line of over 255 characters inside the BIGNODES section";
const char* const IN_CORE_BOX = "a line of over 255 characters inside the PROPERTYDEFINITIONS section";

const OverlongCase OVERLONG_CASES[] = {
    {"OtherLine", ROWS, 1, "", "0 0 0 0"},
    {"FirstRow", ROWS, 2, "", "1 0 0 0"},
    {"LastRow", ROWS, 3, "", "2 0 0 0"},
    {"ComponentsHeader", COMPONENTS, 1, IN_COMPONENTS, "0 0 0 0"},
    {"FirstLineOfAComponent", COMPONENTS, 2, IN_COMPONENTS, "0 1 0 0"},
    {"SecondLineOfAComponent", COMPONENTS, 3, IN_COMPONENTS, "0 1 0 0"},
    {"FirstLineOfTheLastComponent", COMPONENTS, 4, "", "0 2 0 0"},
    {"SecondLineOfTheLastComponent", COMPONENTS, 5, "", "0 2 0 0"},
    {"MacrosHeader", MACROS, 1, IN_MACROS, "0 0 0 0"},
    {"FirstLineOfAMacro", MACROS, 2, IN_MACROS, "0 0 1 0"},
    {"SecondLineOfAMacro", MACROS, 3, IN_MACROS, "0 0 1 0"},
    {"FirstLineOfTheLastMacro", MACROS, 4, "", "0 0 2 0"},
    {"SecondLineOfTheLastMacro", MACROS, 5, "", "0 0 2 0"},
    {"CoreBoxHeader", CORE_BOX, 1, IN_CORE_BOX, "0 0 0 0"},
    {"CoreBoxSecondLine", CORE_BOX, 2, IN_CORE_BOX, "0 0 0 0"},
    {"CoreBoxLeft", CORE_BOX, 3, IN_CORE_BOX, "0 0 0 0"},
    {"CoreBoxRight", CORE_BOX, 4, IN_CORE_BOX, "0 0 0 0"},
    {"CoreBoxBottom", CORE_BOX, 5, IN_CORE_BOX, "0 0 0 0"},
    {"CoreBoxTop", CORE_BOX, 6, "", "0 0 0 1"},
};

void PrintTo(const OverlongCase& row, std::ostream* out)
{
    *out << row.lines[row.line - 1];
}

class OverlongLine : public testing::TestWithParam<OverlongCase> {};

/// The case's file with the long line padded to some length.
std::string fileWithLineOf(const OverlongCase& row, size_t length)
{
    std::string text;
    for (size_t i = 0; i < row.lines.size(); ++i) {
        text += (i + 1 == row.line ? padded(row.lines[i], length) : row.lines[i]) + "\n";
    }
    return text;
}

std::string whatWasRead(const Design& design)
{
    return std::to_string(design.rows.size()) + " " + std::to_string(design.components.size()) + " " +
           std::to_string(design.macros.size()) + " " + (design.boundYh == 2000 ? "1" : "0");
}

TEST_P(OverlongLine, IsTheLastThatIsRead)
{
    const OverlongCase& row = GetParam();
    for (const size_t length : {256U, 257U, 511U, 4000U}) {
        Reading r;
        const std::string want = row.want;
        if (want.empty()) {
            EXPECT_EQ(r.place(fileWithLineOf(row, length)), "");
        } else {
            EXPECT_EQ(r.placeFault(fileWithLineOf(row, length)), std::to_string(row.line) + ": " + want);
        }
        EXPECT_EQ(whatWasRead(r.design), row.read) << length;
    }
}

TEST_P(OverlongLine, Of255CharactersIsNone)
{
    Reading r;
    EXPECT_EQ(r.place(fileWithLineOf(GetParam(), 255)), "");
    EXPECT_FALSE(r.design.rows.empty()) << "the row at the end";
}

INSTANTIATE_TEST_SUITE_P(PlaceParser, OverlongLine, testing::ValuesIn(OVERLONG_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PlaceParser, OverlongLastLineIsHandledWithItsFirst255Characters)
{
    Reading r;
    EXPECT_EQ(r.place(padded("ROW a s 0 0 N D 1 B 1 S 190", 300)), "");
    EXPECT_EQ(r.design.rows.size(), 1U);
}

TEST(PlaceParser, LineOf255CharactersAtTheEndOfTheFileNeedsNoLineEnd)
{
    Reading r;
    EXPECT_EQ(r.place(padded("ROW a s 0 0 N D 1 B 1 S 190", 255)), "");
    EXPECT_EQ(r.design.rows.size(), 1U);
}

TEST(PlaceParser, OverlongLineDoesNotSpoilALaterRun)
{
    Reading r;
    r.place(padded("DESIGN d", 300) + "\n");
    EXPECT_EQ(r.place("ROW a s 0 0 N D 1 B 1 S 190\nROW b s 0 9 N D 1 B 1 S 190\n"), "");
    EXPECT_EQ(r.design.rows.size(), 2U);
}

TEST(PlaceParser, LinesAreCountedFromOneInEveryRun)
{
    Reading r;
    r.place("DESIGN d ;\n\n\n");
    EXPECT_EQ(r.placeFault("DESIGN d ;\nROW a\n"), "2: ROW ends after 2 tokens");
}

/// A file that ends inside a section.
struct EndCase {
    const char* name;
    std::string text;
    const char* section;
};

const EndCase END_CASES[] = {
    {"AfterTheComponentsHeader", "COMPONENTS 1 ;", "COMPONENTS"},
    {"AfterTheFirstLineOfAComponent", "COMPONENTS 1 ;\n" + COMPONENT_LINE, "COMPONENTS"},
    {"BetweenTwoComponents", "COMPONENTS 2 ;\n" + COMPONENT_LINE + "\n;", "COMPONENTS"},
    {"AfterTheFirstLineOfTheLastComponent", "COMPONENTS 2 ;\n" + COMPONENT_LINE + "\n;\n" + COMPONENT_LINE,
     "COMPONENTS"},
    {"LongBeforeTheLastComponent", "COMPONENTS 2147483647 ;\n" + COMPONENT_LINE + "\n;", "COMPONENTS"},
    {"AfterTheMacrosHeader", "BIGNODES 1 ;", "BIGNODES"},
    {"AfterTheFirstLineOfAMacro", "BIGNODES 1 ;\n" + MACRO_LINE, "BIGNODES"},
    {"BetweenTwoMacros", "BIGNODES 2 ;\n" + MACRO_LINE + "\n;", "BIGNODES"},
    {"AfterTheFirstLineOfTheLastMacro", "BIGNODES 2 ;\n" + MACRO_LINE + "\n;\n" + MACRO_LINE, "BIGNODES"},
    {"LongBeforeTheLastMacro", "BIGNODES 2147483647 ;\n" + MACRO_LINE + "\n;", "BIGNODES"},
    {"AfterTheCoreBoxHeader", "PROPERTYDEFINITIONS", "PROPERTYDEFINITIONS"},
    {"AfterTheSecondCoreBoxLine", "PROPERTYDEFINITIONS\n;", "PROPERTYDEFINITIONS"},
    {"AfterTheLeftEdge", "PROPERTYDEFINITIONS\n;\n" + VALUE_LINE, "PROPERTYDEFINITIONS"},
    {"AfterTheRightEdge", "PROPERTYDEFINITIONS\n;\n" + VALUE_LINE + "\n" + VALUE_LINE, "PROPERTYDEFINITIONS"},
    {"AfterTheBottomEdge", "PROPERTYDEFINITIONS\n;\n" + VALUE_LINE + "\n" + VALUE_LINE + "\n" + VALUE_LINE,
     "PROPERTYDEFINITIONS"},
};

void PrintTo(const EndCase& row, std::ostream* out)
{
    *out << row.name;
}

class FileEnd : public testing::TestWithParam<EndCase> {};

TEST_P(FileEnd, InsideASectionEndsTheRun)
{
    const EndCase& row = GetParam();
    const std::string lineBehind = std::to_string(std::count(row.text.begin(), row.text.end(), '\n') + 2);
    Reading r;
    EXPECT_EQ(r.placeFault(row.text + "\n"),
              lineBehind + ": the file ends inside the " + row.section + " section");
    EXPECT_EQ(r.design.boundXl, 0) << "the core box is stored whole or not at all";
}

TEST_P(FileEnd, InsideASectionEndsTheRunWithoutALastLineEndToo)
{
    const std::string fault = Reading().placeFault(GetParam().text);
    const std::string want = std::string(": the file ends inside the ") + GetParam().section + " section";
    ASSERT_GE(fault.size(), want.size());
    EXPECT_EQ(fault.substr(fault.size() - want.size()), want);
}

INSTANTIATE_TEST_SUITE_P(PlaceParser, FileEnd, testing::ValuesIn(END_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PlaceParser, EmptyLineInsideASectionIsARecordWithoutTokens)
{
    EXPECT_EQ(Reading().placeFault("COMPONENTS 1\n\n;\n"), "2: component record ends after 0 tokens");
    EXPECT_EQ(Reading().placeFault("BIGNODES 1\n\n;\n"), "2: macro record ends after 0 tokens");
    EXPECT_EQ(Reading().placeFault("PROPERTYDEFINITIONS\n\n\n"), "3: core box property ends after 0 tokens");
}

TEST(PlaceParser, SecondLineOfARecordMayBeEmpty)
{
    Reading r;
    EXPECT_EQ(r.place("COMPONENTS 1\n" + COMPONENT_LINE + "\n\nBIGNODES 1\n" + MACRO_LINE + "\n\n"), "");
    EXPECT_EQ(whatWasRead(r.design), "0 1 1 0");
}

TEST(PlaceParser, DamagedRecordLeavesTheRecordsBeforeIt)
{
    Reading r;
    r.placeFault("COMPONENTS 2\n" + COMPONENT_LINE + "\n;\n- v C0\n");
    EXPECT_EQ(whatWasRead(r.design), "0 1 0 0");
}

TEST(PlaceParser, LineThatBeginsWithANullCharacterIsEmpty)
{
    Reading r;
    const std::string null(1, '\0');
    EXPECT_EQ(r.place(null + "ROW x\n" + null + "\nROW a s 0 0 N D 1 B 1 S 190\n"), "");
    EXPECT_EQ(whatWasRead(r.design), "1 0 0 0");
}

TEST(PlaceParser, NullCharacterBehindTheLastNeededTokenDoesNotMatter)
{
    Reading r;
    const std::string null(1, '\0');
    EXPECT_EQ(r.place("ROW a s 0 0 N D 1 B 1 S 190" + null + "7 8\n"), "");
    EXPECT_EQ(whatWasRead(r.design), "1 0 0 0");
}

} // namespace
