// SPDX-License-Identifier: BSD-3-Clause
// JSON as a value.
#include "kit/base/text/json.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "kit/base/fault.h"

namespace {

using kit::Fault;
using kit::Json;

/// What a call throws.
template <typename Call>
std::string faultOf(const Call& call)
{
    try {
        call();
    } catch (const Fault& fault) {
        return fault.what();
    }
    return "no fault";
}

TEST(KitJson, MembersKeepTheOrderInWhichTheyWereAdded)
{
    Json json{{"b", 1}, {"a", {{"z", true}, {"y", nullptr}}}};
    json["c"] = "text";
    json["b"] = Json::array({2, "two"});
    EXPECT_EQ(json.dump(), R"({"b":[2,"two"],"a":{"z":true,"y":null},"c":"text"})");
}

TEST(KitJson, IndentPutsEveryValueOnALine)
{
    const Json json{
        {"none", Json::object()}, {"empty", Json::array()}, {"two", Json::array({1, Json{{"a", 2}}})}};
    EXPECT_EQ(json.dump(1),
              "{\n \"none\": {},\n \"empty\": [],\n \"two\": [\n  1,\n  {\n   \"a\": 2\n  }\n ]\n}");
    EXPECT_EQ(json.dump(0), "{\n\"none\": {},\n\"empty\": [],\n\"two\": [\n1,\n{\n\"a\": 2\n}\n]\n}");
}

TEST(KitJson, NumbersAreWrittenShortAndComeBackAsTheyWere)
{
    const std::pair<Json, const char*> cases[] = {
        {0, "0"},
        {-7, "-7"},
        {std::numeric_limits<int64_t>::min(), "-9223372036854775808"},
        {std::numeric_limits<int64_t>::max(), "9223372036854775807"},
        {size_t{3}, "3"},
        {0.0, "0.0"},
        {-0.0, "-0.0"},
        {1.0, "1.0"},
        {0.1, "0.1"},
        {0.30000000000000004, "0.30000000000000004"},
        {0.0001, "0.0001"},
        {0.00001, "1e-05"},
        {1e14, "100000000000000.0"},
        {1e15, "1e+15"},
        {-1.25e-300, "-1.25e-300"},
        {5e-324, "5e-324"},
    };
    for (const auto& [json, text] : cases) {
        EXPECT_EQ(json.dump(), text);
        const Json read = Json::parse(text);
        EXPECT_EQ(read, json);
        EXPECT_EQ(read.isInteger(), json.isInteger()) << text;
    }
}

TEST(KitJson, NumbersThatAreNotFiniteBecomeNull)
{
    EXPECT_EQ(Json(std::nan("")).dump(), "null");
    EXPECT_EQ(Json(-HUGE_VAL).dump(), "null");
}

TEST(KitJson, WholeNumbersBeyond64BitsAreReadAsOthers)
{
    EXPECT_EQ(Json::parse("18446744073709551615"), Json(18446744073709551615.0));
    EXPECT_EQ(Json::parse("1" + std::string(30, '0')), Json(1e30));
}

TEST(KitJson, TextsAreEscapedAndComeBackAsTheyWere)
{
    const std::pair<std::string, const char*> cases[] = {
        {"", R"("")"},
        {"a/b ~", R"("a/b ~")"},
        {"\"\\", R"("\"\\")"},
        {std::string("\0\x01\b\t\n\f\r\x1f", 8), R"("\u0000\u0001\b\t\n\f\r\u001f")"},
        {"\x7f\xc3\xa9\xf0\x9f\x98\x80", "\"\x7f\xc3\xa9\xf0\x9f\x98\x80\""},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(Json(text).dump(), expected);
        EXPECT_EQ(Json::parse(expected).asString(), text);
    }
}

TEST(KitJson, BytesThatAreNoUtf8AreReplaced)
{
    EXPECT_EQ((Json{{"\xff", "a\xc3"}, {"b", "\xed\xa0\x80."}}).dump(),
              "{\"\xef\xbf\xbd\":\"a\xef\xbf\xbd\",\"b\":\"\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd.\"}");
}

TEST(KitJson, TextThatIsReadIsWrittenAgain)
{
    const std::string text = R"([{"z":[],"a":{"b":{}}},null,true,false,"x",-1,2.5])";
    EXPECT_EQ(Json::parse(" [ {\"z\" :[ ], \"a\":{\"b\":{}}},null,true,false,\"x\",-1,2.5]\n").dump(), text);
    EXPECT_EQ(Json::parse("3").dump(), "3");
}

TEST(KitJson, TextThatIsNotSoundIsToldWithItsPlace)
{
    const std::pair<std::string, const char*> cases[] = {
        {"", "line 1, column 1: syntax error"},
        {"{\n \"a\": }", "line 2, column 7: syntax error"},
        {"[1] 2", "line 1, column 5: syntax error"},
        {"[\"\xff\"]", "line 1, column 3: syntax error"},
        {"[1e999]", "a number is too large"},
        {R"({"a": 1, "b": {"c": 1, "d": 2, "c": 3}})", R"(an object has the member "c" twice)"},
        {std::string(65, '[') + std::string(65, ']'), "lists and objects are nested deeper than 64"},
    };
    for (const auto& [text, expected] : cases) {
        const std::string fault = faultOf([&, &wrong = text] { Json::parse(wrong); });
        EXPECT_EQ(fault.substr(0, std::string(expected).size()), expected) << fault;
        EXPECT_FALSE(Json::tryParse(text).has_value()) << text;
    }
    EXPECT_TRUE(Json::tryParse(std::string(64, '[') + std::string(64, ']')).has_value());
}

TEST(KitJson, ObjectOfVeryManyMembersIsRefusedBeforeItTakesLong)
{
    std::string members;
    for (int i = 1; i <= 10'000; ++i) {
        members += "\"" + std::to_string(i) + "\":0,";
    }
    EXPECT_EQ(Json::parse("{" + members.substr(0, members.size() - 1) + "}").members().size(), 10'000U);
    EXPECT_EQ(faultOf([&] { Json::parse("{" + members + "\"a\":0}"); }),
              "an object has more than 10000 members");
}

TEST(KitJson, ReadingAsAnotherTypeSaysWhatTheValueIs)
{
    const Json list = Json::array({1, 2});
    EXPECT_EQ(faultOf([&] { list.asBool(); }), "[1,2] is no flag");
    EXPECT_EQ(faultOf([&] { Json(2.0).asInteger(); }), "2.0 is no whole number");
    EXPECT_EQ(faultOf([&] { Json("2").asNumber(); }), "\"2\" is no number");
    EXPECT_EQ(faultOf([&] { Json(2).asString(); }), "2 is no text");
    EXPECT_EQ(faultOf([&] { Json().items(); }), "null is no list");
    EXPECT_EQ(faultOf([&] { list.members(); }), "[1,2] is no object");
    EXPECT_EQ(faultOf([&] { Json(std::string(70, 'x')).asBool(); }),
              "\"" + std::string(59, 'x') + "... is no flag");
    EXPECT_EQ(Json(2).asNumber(), 2.0);
}

TEST(KitJson, WhatIsAbsentReadsAsNullOrIsAFault)
{
    const Json json{{"a", Json::array({5})}, {"b", {{"c", 7}}}};
    EXPECT_TRUE(json["x"]["y"].isNull());
    EXPECT_TRUE(json["a"]["y"].isNull());
    EXPECT_FALSE(json.contains("x"));
    EXPECT_FALSE(json["a"].contains("x"));
    EXPECT_EQ(faultOf([&] { json.at("x"); }), "there is no member \"x\"");
    EXPECT_EQ(faultOf([&] { json["a"][1]; }), "there is no entry 1 in [5]");
    EXPECT_EQ(json.at("b").at("c"), 7);
    EXPECT_EQ(json["a"][0], 5);
}

TEST(KitJson, PointerGoesThroughObjects)
{
    const Json json{{"a", {{"b c", {{"d", 7}}}}}};
    EXPECT_EQ(json.atPointer("/a/b c/d"), 7);
    EXPECT_EQ(json.atPointer(""), json);
    EXPECT_TRUE(json.atPointer("/a/x/d").isNull());
    EXPECT_TRUE(json.atPointer("/a/b c/d/e").isNull());
}

TEST(KitJson, NullBecomesWhatIsAddedToIt)
{
    Json json;
    json["list"].push_back(1);
    json["list"].push_back("b");
    json["object"]["a"] = 2;
    EXPECT_EQ(json.dump(), R"({"list":[1,"b"],"object":{"a":2}})");
    EXPECT_EQ(faultOf([&] { json.push_back(1); }).substr(0, 8), R"({"list":)");
    EXPECT_EQ(faultOf([&] { json["list"]["a"] = 1; }), R"([1,"b"] is no object)");
}

TEST(KitJson, UpdateReplacesInPlaceAndAddsAtTheEnd)
{
    Json json{{"b", 1}, {"a", 2}};
    json.update({{"c", 3}, {"b", 4}});
    EXPECT_EQ(json.dump(), R"({"b":4,"a":2,"c":3})");
}

TEST(KitJson, SortingReachesEveryObject)
{
    Json json{{"b", Json::array({Json{{"d", 1}, {"c", 2}}})}, {"B", {{"f", 1}, {"e", 2}}}};
    json.sortMembers();
    EXPECT_EQ(json.dump(), R"({"B":{"e":2,"f":1},"b":[{"c":2,"d":1}]})");
}

TEST(KitJson, EqualityIsOfValuesNotOfOrder)
{
    EXPECT_EQ((Json{{"a", 1}, {"b", 2}}), (Json{{"b", 2.0}, {"a", 1}}));
    EXPECT_NE((Json{{"a", 1}, {"b", 2}}), (Json{{"a", 1}, {"c", 2}}));
    EXPECT_NE((Json{{"a", 1}}), (Json{{"a", 1}, {"b", 2}}));
    EXPECT_NE(Json::array({1, 2}), Json::array({2, 1}));
    EXPECT_NE(Json(1), Json("1"));
    EXPECT_NE(Json(1), Json(true));
    EXPECT_NE(Json::array(), Json::object());
    EXPECT_EQ(Json("a"), "a");
}

} // namespace
