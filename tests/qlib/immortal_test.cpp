// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/immortal.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

struct Record {
    Record(int n, std::string s) : number(n), text(std::move(s)) {}
    int number;
    std::string text;
};

TEST(MakeImmortal, PassesItsArgumentsToTheRecord)
{
    const auto* record = vireloce::makeImmortal<Record>(7, "seven");
    EXPECT_EQ(record->number, 7);
    EXPECT_EQ(record->text, "seven");
}

TEST(MakeImmortal, RecordsStayWhereTheyAreHoweverManyFollow)
{
    std::vector<Record*> records;
    for (int i = 0; i < 5000; ++i) {
        records.push_back(vireloce::makeImmortal<Record>(i, std::to_string(i)));
    }
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(records[static_cast<size_t>(i)]->number, i);
        ASSERT_EQ(records[static_cast<size_t>(i)]->text, std::to_string(i));
    }
    EXPECT_EQ(std::set<Record*>(records.begin(), records.end()).size(), records.size());
}

TEST(MakeImmortal, RecordsMayBeChanged)
{
    auto* record = vireloce::makeImmortal<Record>(1, "one");
    record->number = 2;
    vireloce::makeImmortal<Record>(3, "three");
    EXPECT_EQ(record->number, 2);
}

} // namespace
