// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/wordReader.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/extremes.h"
#include "support/guards.h"
#include "support/property.h"

namespace {

using test::LARGEST;
using test::SMALLEST;
using vireloce::WordReader;

/// A reader of a text, through a file.
class TextReader : public WordReader {
public:
    explicit TextReader(const std::string& text)
    {
        const test::TempDir folder;
        EXPECT_TRUE(open(folder.write("text", text)));
    }
};

struct IntCase {
    const char* name;
    std::string text;
    int32_t want;          ///< the value that a target of 77 has afterwards
    bool isGood;           ///< whether the read succeeds
    std::string_view rest; ///< the word that follows, if it does
};

void PrintTo(const IntCase& row, std::ostream* out)
{
    *out << row.name;
}

class ReadInt : public testing::TestWithParam<IntCase> {};

TEST_P(ReadInt, FollowsTheRulesOfFormattedInput)
{
    TextReader in(GetParam().text);
    int32_t value = 77;
    EXPECT_EQ(in.readInt(value), GetParam().isGood);
    EXPECT_EQ(in.failed(), !GetParam().isGood);
    EXPECT_EQ(value, GetParam().want);
    EXPECT_EQ(in.readWord(), GetParam().rest);
}

TEST_P(ReadInt, AgreesWithAStringStream)
{
    std::istringstream stream(GetParam().text);
    int32_t value = 77;
    std::string rest;
    EXPECT_EQ(static_cast<bool>(stream >> value), GetParam().isGood);
    EXPECT_EQ(value, GetParam().want);
    stream >> rest;
    EXPECT_EQ(rest, GetParam().rest);
}

const IntCase INTS[] = {
    {"number", "42 next", 42, true, "next"},
    {"leading_white_space", " \t\n\v\f\r42", 42, true, ""},
    {"negative", "-42", -42, true, ""},
    {"plus_sign", "+42", 42, true, ""},
    {"zero", "0", 0, true, ""},
    {"minus_zero", "-0", 0, true, ""},
    {"leading_zeros_are_decimal", "0010", 10, true, ""},
    {"no_hexadecimal", "0x10", 0, true, "x10"},
    {"ends_before_a_letter", "12abc", 12, true, "abc"},
    {"ends_before_a_point", "12.5", 12, true, ".5"},
    {"ends_before_a_sign", "12-5", 12, true, "-5"},
    {"ends_before_a_zero_byte", std::string("12\0", 3), 12, true, std::string_view("\0", 1)},
    {"largest", "2147483647", LARGEST, true, ""},
    {"smallest", "-2147483648", SMALLEST, true, ""},
    {"one_too_large", "2147483648", LARGEST, false, ""},
    {"one_too_small", "-2147483649", SMALLEST, false, ""},
    {"far_too_large", "99999999999999999999999999999", LARGEST, false, ""},
    {"far_too_small", "-99999999999999999999999999999", SMALLEST, false, ""},
    {"many_zeros_before_a_digit", std::string(1000, '0') + "5", 5, true, ""},
    {"text", "abc", 0, false, ""},
    {"sign_alone", "-", 0, false, ""},
    {"sign_before_a_blank", "- 5", 0, false, ""},
    {"two_signs", "+-5", 0, false, ""},
    {"empty_file_leaves_the_target", "", 77, false, ""},
    {"white_space_alone_leaves_the_target", " \n ", 77, false, ""},
};
INSTANTIATE_TEST_SUITE_P(Text, ReadInt, testing::ValuesIn(INTS),
                         [](const auto& row) { return row.param.name; });

TEST(WordReader, OpenOfAMissingFileFailsAndEveryReadAfterIt)
{
    WordReader in;
    EXPECT_FALSE(in.open("no/such/file"));
    EXPECT_EQ(in.path(), "no/such/file");
    int32_t value = 77;
    EXPECT_FALSE(in.readInt(value));
    EXPECT_EQ(value, 77);
    EXPECT_EQ(in.readWord(), "");
    EXPECT_TRUE(in.failed());
}

TEST(WordReader, FolderReadsAsAnEmptyFile)
{
    const test::TempDir folder;
    WordReader in;
    EXPECT_TRUE(in.open(folder.path("")));
    EXPECT_EQ(in.bytesLeft(), 0);
    EXPECT_TRUE(in.atEnd());
}

TEST(WordReader, SecondOpenStartsAnew)
{
    const test::TempDir folder;
    WordReader in;
    ASSERT_TRUE(in.open(folder.write("first", "\n\nx y")));
    int32_t value = 0;
    EXPECT_FALSE(in.readInt(value));
    EXPECT_EQ(in.line(), 3);
    ASSERT_TRUE(in.open(folder.write("second", "5")));
    EXPECT_FALSE(in.failed());
    EXPECT_EQ(in.line(), 1);
    EXPECT_EQ(in.path(), folder.path("second"));
    EXPECT_EQ(in.bytesLeft(), 1);
    EXPECT_TRUE(in.readInt(value));
    EXPECT_EQ(value, 5);
}

TEST(WordReader, FileLongerThanAnyBufferIsReadWhole)
{
    std::string text;
    for (int i = 0; i < 50000; ++i) {
        text += std::to_string(i) + (i % 10 == 9 ? "\n" : " ");
    }
    TextReader in(text);
    EXPECT_EQ(in.bytesLeft(), static_cast<int64_t>(text.size()));
    for (int32_t i = 0; i < 50000; ++i) {
        int32_t value = -1;
        ASSERT_TRUE(in.readInt(value));
        ASSERT_EQ(value, i);
        ASSERT_EQ(in.line(), i / 10 + 1);
    }
    EXPECT_TRUE(in.atEnd());
}

TEST(ReadWord, EndsAtWhiteSpaceAndKeepsEveryOtherByte)
{
    TextReader in(std::string("a-1\tb\0c\n\xff\x80", 10));
    EXPECT_EQ(in.readWord(), "a-1");
    EXPECT_EQ(in.readWord(), std::string_view("b\0c", 3));
    EXPECT_EQ(in.readWord(), "\xff\x80");
    EXPECT_FALSE(in.failed());
    EXPECT_EQ(in.readWord(), "");
    EXPECT_TRUE(in.failed());
}

TEST(WordReader, FileLongerThanTheWindowIsReadToItsEnd)
{
    std::string text;
    for (int i = 0; i < 50000; ++i) {
        text += std::to_string(i) + (i % 10 == 9 ? "\n" : " ");
    }
    TextReader in(text);
    for (int32_t i = 0; i < 50000; ++i) {
        if (i % 3 == 0) {
            ASSERT_EQ(in.readWord(), std::to_string(i));
        } else {
            int32_t value = -1;
            ASSERT_TRUE(in.readInt(value));
            ASSERT_EQ(value, i);
        }
        ASSERT_EQ(in.line(), i / 10 + 1);
    }
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ(in.bytesLeft(), 0);
}

TEST(WordReader, WordOrNumberMayStandAtAnyPlaceOfTheWindow)
{
    for (const size_t before : {65530U, 65535U, 65536U, 65537U, 131071U}) {
        TextReader in(std::string(before, '\n') + "word -2147483648 next");
        EXPECT_EQ(in.readWord(), "word");
        int32_t value = 0;
        EXPECT_TRUE(in.readInt(value));
        EXPECT_EQ(value, SMALLEST);
        EXPECT_EQ(in.line(), static_cast<int64_t>(before) + 1);
        EXPECT_EQ(in.bytesLeft(), 5);
        EXPECT_EQ(in.readWord(), "next");
    }
}

TEST(WordReader, WordMayBeLongerThanTheWindow)
{
    const std::string word(300000, 'x');
    TextReader in("a " + word + " " + std::string(300000, '0') + "7 b");
    EXPECT_EQ(in.readWord(), "a");
    EXPECT_EQ(in.readWord(), word);
    int32_t value = 0;
    EXPECT_TRUE(in.readInt(value));
    EXPECT_EQ(value, 7);
    EXPECT_EQ(in.readWord(), "b");
    EXPECT_TRUE(in.atEnd());
}

TEST(ReadWord, FailedReaderReadsNothingMore)
{
    TextReader in("x 5 word");
    int32_t value = 77;
    EXPECT_FALSE(in.readInt(value));
    value = 77;
    EXPECT_FALSE(in.readInt(value));
    EXPECT_EQ(value, 77);
    EXPECT_EQ(in.readWord(), "");
}

TEST(AtEnd, IsTrueWhenOnlyWhiteSpaceIsLeft)
{
    TextReader in(" 5 \n\t ");
    EXPECT_FALSE(in.atEnd());
    int32_t value = 0;
    EXPECT_TRUE(in.readInt(value));
    EXPECT_TRUE(in.atEnd());
    EXPECT_FALSE(in.failed()) << "to ask is not to read";
}

TEST(Line, IsTheOneOnWhichTheLastWordBegins)
{
    TextReader in("a b\n\n  c\r\nd\n");
    EXPECT_EQ(in.line(), 1);
    for (const int64_t line : {1, 1, 3, 4}) {
        EXPECT_NE(in.readWord(), "");
        EXPECT_EQ(in.line(), line);
    }
    EXPECT_EQ(in.readWord(), "");
    EXPECT_EQ(in.line(), 5) << "nothing is left on the line behind the last line end";
}

TEST(Line, IsTheOneOfTheWordThatIsNoNumber)
{
    for (const std::string& bad : {std::string("x"), std::string("-"), std::string("99999999999")}) {
        TextReader in("1\n2\n" + bad + "\n\n4\n");
        int32_t value = 0;
        EXPECT_TRUE(in.readInt(value));
        EXPECT_TRUE(in.readInt(value));
        EXPECT_FALSE(in.readInt(value));
        EXPECT_EQ(in.line(), 3) << bad;
    }
}

TEST(BytesLeft, CountsWhatIsNotYetRead)
{
    TextReader in("12 abc\n");
    EXPECT_EQ(in.bytesLeft(), 7);
    int32_t value = 0;
    EXPECT_TRUE(in.readInt(value));
    EXPECT_EQ(in.bytesLeft(), 5);
    EXPECT_EQ(in.readWord(), "abc");
    EXPECT_EQ(in.bytesLeft(), 1);
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ(in.bytesLeft(), 0);
}

/// Line of the first byte from a position on that is not white space.
int64_t lineOfNextWord(const std::string& text, size_t from)
{
    const size_t word = std::min(text.find_first_not_of(" \t\n\v\f\r", from), text.size());
    return 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(word), '\n');
}

PROPERTY(WordReader, ReadsAnyBytesAsAStringStreamDoes)
{
    std::string text;
    for (size_t left = test::drawCount(); left > 0; --left) {
        const size_t kind = test::drawIndex(15);
        if (kind < 8) {
            text += test::drawOne({'0', '1', '2', '4', '7', '8', '9'});
        } else if (kind < 12) {
            text += test::drawOne({' ', '\n', '\t', '\r', '\v', '\f'});
        } else {
            text += kind < 14 ? test::drawOne({'-', '+'}) : static_cast<char>(test::draw(-128, 128));
        }
    }

    std::istringstream stream(text);
    TextReader in(text);
    for (int i = 0; i < 60; ++i) {
        const bool isInt = test::drawIndex(2) == 0;
        const auto at =
            static_cast<size_t>(stream.rdbuf()->pubseekoff(0, std::ios_base::cur, std::ios_base::in));
        const bool wasGood = !in.failed();
        if (isInt) {
            int32_t want = 77;
            int32_t got = 77;
            stream >> want;
            RC_ASSERT(in.readInt(got) == !stream.fail());
            RC_ASSERT(got == want);
        } else {
            std::string want;
            stream >> want;
            RC_ASSERT(in.readWord() == want);
        }
        RC_ASSERT(in.failed() == stream.fail());
        if (wasGood) {
            RC_ASSERT(in.line() == lineOfNextWord(text, at));
        }
    }
}

PROPERTY(WordReader, ReadsNumbersWithinAndBeyondTheRangeAsAStringStreamDoes)
{
    const std::string number = std::to_string(
        test::drawIndex(2) == 0 ? test::draw<int64_t>(-3000000000, 3000000000)
                                : test::drawOne<int64_t>({LARGEST, SMALLEST}) + test::draw(-3, 4));
    std::istringstream stream(number);
    TextReader in(number);
    int32_t want = 0;
    int32_t got = 0;
    stream >> want;
    RC_ASSERT(in.readInt(got) == !stream.fail());
    RC_ASSERT(got == want);
}

} // namespace
