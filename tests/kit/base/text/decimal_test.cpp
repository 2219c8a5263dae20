// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/decimal.h"

#include <gtest/gtest.h>

#include "support/property.h"

namespace {

using kit::Decimal;
using kit::parseDecimal;

TEST(Decimal, Forms)
{
    struct Row {
        const char* text;
        int64_t value; ///< millionths
    };
    const Row good[] = {
        {"0", 0},
        {"-0", 0},
        {"1", 1'000'000},
        {"+1.5", 1'500'000},
        {"-.5", -500'000},
        {"5.", 5'000'000},
        {"0.0000005", 1},
        {"-0.0000005", -1},
        {"0.0000004999999999999999999999", 0},
        {"0.00000000000000000000000000001", 0},
        {"1e3", 1'000'000'000},
        {"1E+3", 1'000'000'000},
        {"12.5e-1", 1'250'000},
        {"0.1", 100'000},
        {"0.29", 290'000},
        {"123456.789012", 123'456'789'012},
        {"000000000000000000000000000000001.5", 1'500'000},
        {"1.000000000000000000000000000000000", 1'000'000},
        {"10000000000000000000000e-20", 100'000'000},
        {"0e999999999999", 0},
        {"1e-999999999999", 0},
        {"1000000000", 1'000'000'000'000'000},
    };
    for (const Row& row : good) {
        const Decimal number = parseDecimal(row.text, 6, 1'000'000'000'000'000);
        EXPECT_EQ(number.kind, Decimal::Kind::GOOD) << row.text;
        EXPECT_EQ(number.value, row.value) << row.text;
    }
    for (const char* const text : {"", "+", "-", ".", "e5", "1e", "1e+", "1e5.", "1.2.3", "1x", "x1", "--1",
                                   "+-1", "0x10", "1 ", " 1", "inf", "nan", "1e5e5"}) {
        EXPECT_EQ(parseDecimal(text, 6, 1000).kind, Decimal::Kind::NO_NUMBER) << text;
    }
    for (const char* const text :
         {"0.001001", "-1", "1e999999999999", "99999999999999999999999999", "1e18"}) {
        EXPECT_EQ(parseDecimal(text, 6, 1000).kind, Decimal::Kind::TOO_LARGE) << text;
    }
    EXPECT_EQ(parseDecimal("0.001", 6, 1000).value, 1000);
}

PROPERTY(Decimal, IsExact)
{
    const int64_t value = test::draw<int64_t>(-1'000'000'000'000, 1'000'000'000'000);
    std::string digits = std::to_string(std::abs(value));
    digits.insert(0, digits.size() < 7 ? 7 - digits.size() : 0, '0');
    digits.insert(digits.size() - 6, ".");
    const Decimal number = parseDecimal((value < 0 ? "-" : "") + digits, 6, 1'000'000'000'000);
    RC_ASSERT(number.kind == Decimal::Kind::GOOD);
    RC_ASSERT(number.value == value);
}

} // namespace
