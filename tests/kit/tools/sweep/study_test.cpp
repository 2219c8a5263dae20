// SPDX-License-Identifier: BSD-3-Clause
// Studies as users write them.
#include <gtest/gtest.h>

#include <string>

#include "kit/base/fault.h"
#include "kit/base/text/json.h"
#include "kit/engines/place/schema.h"
#include "kit/tools/sweep/study.h"
#include "kit/tools/sweep/sweepCase.h"
#include "support/guards.h"

namespace {

using kit::Json;
using kit::sweep::readStudy;
using kit::sweep::RunOptions;
using kit::sweep::Study;
using test::contentOf;

constexpr const char* DESIGN = R"({"name": "d", "base": "designs/d", "cell_path": "designs/lib"})";

class KitSweepStudy : public testing::Test {
protected:
    KitSweepStudy() { test::writeDesign(m_dir.path("designs"), "d"); }

    Study read(const std::string& text)
    {
        test::writeFile(path(), text);
        return readStudy(path());
    }

    /// A study of design d with some members more.
    Study readWith(const std::string& members)
    {
        return read(R"({"designs": [)" + std::string(DESIGN) + "], " + members + "}");
    }

    /// What is said of a study, without the path in front.
    std::string faultOf(const std::string& text)
    {
        try {
            read(text);
        } catch (const kit::Fault& fault) {
            const std::string what = fault.what();
            EXPECT_EQ(what.rfind(path() + ": ", 0), 0U) << what;
            return what.substr(std::min(what.size(), path().size() + 2));
        }
        return "no fault";
    }

    std::string path() const { return m_dir.path("study.json"); }

    test::TempDir m_dir;
};

struct WrongStudy {
    const char* name;
    const char* text;  ///< "@" stands for the design d
    const char* fault; ///< what it begins with
};

constexpr WrongStudy WRONG[] = {
    {"NoJson", "{", "line 1, column 2: "},
    {"LineOfTheMistake", "{\n\n  \"designs\" 3}", "line 3, column 13: "},
    {"EmptyFile", "", "line 1, column 1: "},
    {"MemberTwice", R"({"grid": {}, "grid": {}})", "an object has the member \"grid\" twice"},
    {"LargeNumber", R"({"designs": 1e999})", "a number is too large"},
    {"NoObject", "[]", "the file is no object"},
    {"UnknownMember", R"({"desings": []})",
     "/desings is not known here; known are $schema, designs, grid, runs"},
    {"UnknownMemberOfGrid", R"({"designs": [@], "grid": {"w/t": [1]}})", "/grid/w~1t is not known here"},
    {"UnknownMemberOfRun", R"({"designs": [@], "runs": [{"m": 1}]})", "/runs/0/m is not known here"},
    {"UnknownMemberOfDesign", R"({"designs": [{"cells": 1}]})", "/designs/0/cells is not known here"},
    {"NoDesigns", R"({"grid": {}})", "the file has no member \"designs\""},
    {"DesignsAreNoList", R"({"designs": {}})", "/designs is no list"},
    {"EmptyDesigns", R"({"designs": []})", "/designs is an empty list"},
    {"DesignIsNoObject", R"({"designs": [3]})", "/designs/0 is no object"},
    {"DesignWithoutName", R"({"designs": [{"base": "b"}]})", "/designs/0 has no member \"name\""},
    {"DesignWithoutBase", R"({"designs": [{"name": "b"}]})", "/designs/0 has no member \"base\""},
    {"NameIsNoText", R"({"designs": [{"name": 3}]})", "/designs/0/name is no text"},
    {"EmptyName", R"({"designs": [{"name": ""}]})", "/designs/0/name is an empty text"},
    {"NameWithSlash", R"({"designs": [{"name": "a/b"}]})", "/designs/0/name is no name"},
    {"NameWithDotFirst", R"({"designs": [{"name": ".."}]})", "/designs/0/name is no name"},
    {"NameWithZero", R"({"designs": [{"name": "a\u0000b"}]})", "/designs/0/name has a character of code 0"},
    {"DoubleName", R"({"designs": [@, @], "grid": {}})", "/designs/1/name is the name of two designs: d"},
    {"MissingFile", R"({"designs": [{"name": "e", "base": "designs/e", "cell_path": "designs/lib"}]})",
     "/designs/0/base has no file "},
    {"MissingFolder", R"({"designs": [{"name": "d", "base": "designs/d", "cell_path": "designs/no"}]})",
     "/designs/0/cell_path is no folder: "},
    {"NoRuns", R"({"designs": [@]})", "the file has neither \"grid\" nor \"runs\""},
    {"GridIsNoObject", R"({"designs": [@], "grid": []})", "/grid is no object"},
    {"GridValueIsNoList", R"({"designs": [@], "grid": {"algo": 1}})", "/grid/algo is no list"},
    {"EmptyGridList", R"({"designs": [@], "grid": {"algo": []}})", "/grid/algo is an empty list"},
    {"GridValueTwice", R"({"designs": [@], "grid": {"weight": [1, 2, 1.0]}})",
     "/grid/weight/2 is there twice"},
    {"AlgoIsNoNumber", R"({"designs": [@], "grid": {"algo": ["1"]}})",
     "/grid/algo/0 is no whole number; 0 to 4"},
    {"AlgoWithFraction", R"({"designs": [@], "grid": {"algo": [1.5]}})",
     "/grid/algo/0 is no whole number; 0 to 4"},
    {"AlgoOutOfBounds", R"({"designs": [@], "grid": {"algo": [0, 5]}})",
     "/grid/algo/1 is out of bounds; 0 to 4"},
    {"HugeInteger", R"({"designs": [@], "grid": {"algo": [18446744073709551615]}})",
     "/grid/algo/0 is out of bounds"},
    {"WeightIsNoNumber", R"({"designs": [@], "grid": {"weight": [null]}})", "/grid/weight/0 is no number"},
    {"LargeWeight", R"({"designs": [@], "grid": {"weight": [1e10]}})",
     "/grid/weight/0 is too large a number"},
    {"MoveRange", R"({"designs": [@], "runs": [{"move_range": -1}]})", "/runs/0/move_range is out of bounds"},
    {"Mindp", R"({"designs": [@], "runs": [{"mindp": 10001}]})",
     "/runs/0/mindp is out of bounds; 0 to 10000"},
    {"SiteWidth", R"({"designs": [@], "runs": [{"site_width": 0}]})", "/runs/0/site_width is out of bounds"},
    {"RescueIsNoFlag", R"({"designs": [@], "grid": {"rescue": [1]}})",
     "/grid/rescue/0 is neither true nor false"},
    {"RunsAreNoList", R"({"designs": [@], "runs": {}})", "/runs is no list"},
    {"EmptyRuns", R"({"designs": [@], "runs": []})", "/runs is an empty list"},
    {"RunIsNoObject", R"({"designs": [@], "runs": [3]})", "/runs/0 is no object"},
    {"UnknownDesign", R"({"designs": [@], "runs": [{"design": "e"}]})",
     "/runs/0/design is the name of no design: e"},
};

std::string withDesign(std::string text)
{
    for (size_t at = text.find('@'); at != std::string::npos; at = text.find('@')) {
        text.replace(at, 1, DESIGN);
    }
    return text;
}

TEST_F(KitSweepStudy, WrongStudiesAreToldWithTheirPlace)
{
    for (const WrongStudy& wrong : WRONG) {
        const std::string fault = faultOf(withDesign(wrong.text));
        EXPECT_EQ(fault.substr(0, std::string(wrong.fault).size()), wrong.fault)
            << wrong.name << ": " << fault;
    }
}

TEST_F(KitSweepStudy, FileThatIsNotThereIsAFault)
{
    EXPECT_THROW(readStudy(m_dir.path("none.json")), kit::Fault);
    EXPECT_THROW(readStudy(m_dir.path("")), kit::Fault);
}

TEST_F(KitSweepStudy, DepthIsBounded)
{
    const std::string deep = std::string(100'000, '[');
    EXPECT_EQ(faultOf(deep), "lists and objects are nested deeper than 64");
}

TEST_F(KitSweepStudy, NumberOfRunsIsBounded)
{
    std::string many = "0";
    for (int i = 1; i <= 1000; ++i) {
        many += "," + std::to_string(i);
    }
    const std::string lists = R"("weight": [)" + many + R"(], "move_range": [)" + many + "]";
    EXPECT_EQ(faultOf(withDesign(R"({"designs": [@], "grid": {)") + lists + "}}"),
              "/grid has more than 1000000 runs");
}

TEST_F(KitSweepStudy, GridTakesEveryWay)
{
    const Study study = readWith(
        R"("grid": {"true_orientation": [false, true], "weight": [2, 0.5], "algo": [3, 0], "rescue": [true, false]})");
    std::vector<RunOptions> expected;
    for (int i = 0; i < 16; ++i) {
        RunOptions options;
        options.algo = i / 8 == 0 ? 3 : 0;
        options.weight = i / 4 % 2 == 0 ? 2 : 0.5;
        options.rescue = i / 2 % 2 == 0;
        options.trueOrientation = i % 2 == 1;
        expected.push_back(options);
    }
    ASSERT_EQ(study.runs.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(study.runs[i].options, expected[i]) << i;
    }
}

TEST_F(KitSweepStudy, EmptyGridIsOneRunByDefaults)
{
    const Study study = readWith(R"("grid": {})");
    ASSERT_EQ(study.runs.size(), 1U);
    EXPECT_EQ(study.runs[0].options, RunOptions{});
}

TEST_F(KitSweepStudy, ListedRunsComeBehindTheGridOfTheirDesign)
{
    const Study study = read(R"({"designs": [)" + std::string(DESIGN) +
                             R"(, {"name": "e", "base": "designs/d", "cell_path": "designs/lib"}],
        "grid": {"algo": [1]}, "runs": [{"algo": 2, "design": "e"}, {"mindp": 100, "site_width": 5, "move_range": 9}]})");
    std::string text;
    for (const auto& run : study.runs) {
        text += std::to_string(run.design) + ":" +
                (run.options.algo ? std::to_string(static_cast<int>(*run.options.algo)) : "-") + " ";
    }
    EXPECT_EQ(text, "0:1 0:- 1:1 1:2 1:- ");
    EXPECT_EQ(study.runs[1].options.mindp, 100);
    EXPECT_EQ(study.runs[1].options.siteWidth, 5);
    EXPECT_EQ(study.runs[1].options.moveRange, 9);
}

TEST_F(KitSweepStudy, SchemaHasTheSameMembers)
{
    const Json schema = Json::parse(contentOf(VIRELOCE_STUDY_SCHEMA));
    const Json example = Json::parse(contentOf(VIRELOCE_KIT_EXAMPLES "/sweep/study.json"));
    test::SchemaCheck check(schema);
    check.check(example, schema, "");
    EXPECT_TRUE(check.faults.empty()) << check.faults.front();
    for (const char* list : {"/properties/grid/properties", "/properties/runs/items/properties"}) {
        const Json& members = schema.atPointer(list);
        for (const char* name :
             {"algo", "weight", "move_range", "mindp", "site_width", "rescue", "true_orientation"}) {
            EXPECT_TRUE(members.contains(name)) << list << " " << name;
        }
    }
    EXPECT_EQ(readStudy(VIRELOCE_KIT_EXAMPLES "/sweep/study.json").runs.size(), 32U);
}

} // namespace
