// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/nameTable.h"

#include <gtest/gtest.h>

#include <map>

#include "support/property.h"

namespace {

using vireloce::NameTable;

using Numbers = std::map<std::string, int32_t>;

TEST(NameTable, FindsWhatWasEntered)
{
    const Numbers numbers{{"", 5}, {"a", 0}, {"b", 7}, {std::string(1000, 'x'), 9}};
    NameTable table(numbers.size());
    table.insertAll(numbers);
    for (const auto& [name, number] : numbers) {
        EXPECT_EQ(table.find(name), number) << name;
    }
    EXPECT_EQ(table.find("c"), -1);
}

TEST(NameTable, WithoutNamesFindsNone)
{
    const NameTable table(0);
    EXPECT_EQ(table.find(""), -1);
    EXPECT_EQ(table.find("a"), -1);
}

TEST(NameTable, FirstOfANameStays)
{
    const std::string name = "a";
    const std::string again = "a";
    NameTable table(2);
    table.insert(name, 3);
    table.insert(again, 4);
    EXPECT_EQ(table.find("a"), 3);
}

TEST(NameTable, NegativeNumberIsNotEntered)
{
    const std::string name = "a";
    NameTable table(2);
    table.insert(name, -7);
    EXPECT_EQ(table.find("a"), -1);
    table.insert(name, 7);
    EXPECT_EQ(table.find("a"), 7);
}

TEST(NameTable, FindsEveryNameOfALargeTable)
{
    Numbers numbers;
    for (int32_t i = 0; i < 50000; ++i) {
        numbers["u" + std::to_string(i)] = i;
    }
    NameTable table(numbers.size());
    table.insertAll(numbers);
    for (const auto& [name, number] : numbers) {
        ASSERT_EQ(table.find(name), number);
    }
    for (int32_t i = 50000; i < 60000; ++i) {
        ASSERT_EQ(table.find("u" + std::to_string(i)), -1);
    }
}

PROPERTY(NameTable, FindsWhatAMapFinds)
{
    Numbers numbers;
    for (size_t left = test::drawCount(); left > 0; --left) {
        numbers.emplace(test::drawText(), test::drawInt());
    }
    const std::string other = test::drawText();
    NameTable table(numbers.size());
    table.insertAll(numbers);
    for (const auto& [name, number] : numbers) {
        const uint64_t hash = NameTable::hashOf(name);
        table.askForSlot(hash);
        table.askForName(hash);
        RC_ASSERT(table.find(name, hash) == (number < 0 ? -1 : number));
    }
    const auto at = numbers.find(other);
    RC_ASSERT(table.find(other) == (at == numbers.end() ? -1 : std::max(at->second, -1)));
}

} // namespace
