// SPDX-License-Identifier: BSD-3-Clause
#include "parser/pinParser.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "parser/reading.h"

namespace {

using test::nameOfRow;
using test::Reading;

/// The pins of a design as "name x y, name x y".
std::string pinsOf(const Design& design)
{
    std::string text;
    for (const Pin* pin : design.pins) {
        text += (text.empty() ? "" : ", ") + pin->name + " " + std::to_string(pin->x) + " " +
                std::to_string(pin->y);
    }
    return text;
}

TEST(PinParser, IsBoundToItsDesign)
{
    const Design design;
    EXPECT_EQ(design.pinParser.design, &design);
}

TEST(PinParser, MissingFileEndsTheRun)
{
    Reading r;
    EXPECT_EQ(test::reportOfEndedRun([&] { r.design.pinParser.run(r.base); }),
              "ERROR| cannot open file: " + r.base + ".pins\n");
}

TEST(PinParser, PinsKeepFileOrder)
{
    Reading r;
    EXPECT_EQ(r.pins("3\nclk 0 10\na -5 +7\nrst 190 3800\n"), "");
    EXPECT_EQ(pinsOf(r.design), "clk 0 10, a -5 7, rst 190 3800");
    const std::map<std::string, int32_t> want{{"clk", 0}, {"a", 1}, {"rst", 2}};
    EXPECT_EQ(r.design.pinIndex, want);
}

TEST(PinParser, OfTwoPinsOfOneNameTheMapHoldsTheLater)
{
    Reading r;
    r.pins("3 a 1 2 b 3 4 a 5 6");
    EXPECT_EQ(pinsOf(r.design), "a 1 2, b 3 4, a 5 6");
    const std::map<std::string, int32_t> want{{"a", 2}, {"b", 1}};
    EXPECT_EQ(r.design.pinIndex, want);
}

TEST(PinParser, FileWhoseFirstWordIsZeroYieldsNoPinsAndNetsOfComponentsOnly)
{
    Reading r;
    r.place("COMPONENTS 2\n- u C0 + P ( 0 0 ) N\n;\n- v C0 + P ( 0 0 ) N\n;\n");
    EXPECT_EQ(r.pins("0\na 1 2\n"), "");
    EXPECT_TRUE(r.design.pins.empty());
    EXPECT_EQ(r.netlist("1 2 u v"), "");
    EXPECT_EQ(r.netFault("1 2 u a"), "WARNING| invalid compID and pinID, pname = a\n");
}

TEST(PinParser, WordsAfterTheLastPinAreNotRead)
{
    Reading r;
    EXPECT_EQ(r.pins("1 a 1 2 b x y"), "");
    EXPECT_EQ(pinsOf(r.design), "a 1 2");
}

struct TextCase {
    const char* name;
    std::string text;
};

void PrintTo(const TextCase& row, std::ostream* out)
{
    *out << row.name;
}

class PinLayout : public testing::TestWithParam<TextCase> {};

TEST_P(PinLayout, DoesNotMatter)
{
    Reading r;
    EXPECT_EQ(r.pins(GetParam().text), "");
    EXPECT_EQ(pinsOf(r.design), "a 1 2, b 3 4");
}

const TextCase PIN_LAYOUTS[] = {
    {"OneLine", "2 a 1 2 b 3 4"},
    {"OneWordALine", "2\na\n1\n2\nb\n3\n4\n"},
    {"Tabs", "2\ta\t1\t2\tb\t3\t4\t"},
    {"CarriageReturns", "2\r\na 1 2\r\nb 3 4\r\n"},
    {"EmptyLines", "\n\n2\n\na 1\n\n2 b 3 4"},
    {"SplitInTheMiddle", "2 a\n1 2 b 3\n4"},
};

INSTANTIATE_TEST_SUITE_P(PinParser, PinLayout, testing::ValuesIn(PIN_LAYOUTS), nameOfRow);

class PinCount : public testing::TestWithParam<TextCase> {};

TEST_P(PinCount, MeansNoPinsUnlessItIsPositive)
{
    Reading r;
    EXPECT_EQ(r.pins(GetParam().text), "");
    EXPECT_TRUE(r.design.pins.empty());
    EXPECT_TRUE(r.design.pinIndex.empty());
}

const TextCase COUNT_CASES[] = {
    {"EmptyFile", ""},        {"OnlySpace", " \n\t\n"},
    {"Negative", "-1 a 1 2"}, {"Text", "two a 1 2"},
    {"SignAlone", "- a 1 2"}, {"MostNegative", "-2147483648 a 1 2"},
    {"Point", ".5 a 1 2"},    {"NullCharacter", std::string(1, '\0') + "1 a 1 2"},
};

INSTANTIATE_TEST_SUITE_P(PinParser, PinCount, testing::ValuesIn(COUNT_CASES), nameOfRow);

/// A pin file that is not complete.
struct ShortCase {
    const char* name;
    std::string text;
    const char* want; ///< line, and which pin of how many
};

void PrintTo(const ShortCase& row, std::ostream* out)
{
    *out << row.name;
}

class ShortPins : public testing::TestWithParam<ShortCase> {};

TEST_P(ShortPins, EndTheRun)
{
    EXPECT_EQ(Reading().pinFault(GetParam().text),
              std::string(GetParam().want) + " is not a name and two 32-bit integers");
}

const ShortCase SHORT_CASES[] = {
    {"NoPin", "1", "1: pin 1 of 1"},
    {"NoX", "1\na", "2: pin 1 of 1"},
    {"NoY", "1\na 1", "2: pin 1 of 1"},
    {"NoSecondPin", "2\na 1 2", "2: pin 2 of 2"},
    {"SecondPinWithoutY", "2\na 1 2\nb 3", "3: pin 2 of 2"},
    {"TextForX", "1\na left 2", "2: pin 1 of 1"},
    {"TextForY", "1\na 1 top", "2: pin 1 of 1"},
    {"XOutOfRange", "1\na 2147483648 0", "2: pin 1 of 1"},
    {"YOutOfRange", "1\na 0 -2147483649", "2: pin 1 of 1"},
    {"NullCharacterForX", "1\na " + std::string(1, '\0') + " 2", "2: pin 1 of 1"},
    {"HugeCount", "2147483647\na 1 2", "2: pin 2 of 2147483647"},
    {"CountOutOfRange", "99999999999\na 1 2", "1: pin 1 of 2147483647"},
};

INSTANTIATE_TEST_SUITE_P(PinParser, ShortPins, testing::ValuesIn(SHORT_CASES), nameOfRow);

TEST(PinParser, CoordinatesMayBeTheLimitsOf32Bits)
{
    Reading r;
    EXPECT_EQ(r.pins("1 a 2147483647 -2147483648"), "");
    EXPECT_EQ(pinsOf(r.design), "a 2147483647 -2147483648");
}

TEST(PinParser, PinsBeforeTheDamagedOneAreKept)
{
    Reading r;
    r.pinFault("3 a 1 2 b 3 4 c 5");
    EXPECT_EQ(pinsOf(r.design), "a 1 2, b 3 4");
}

} // namespace
