// SPDX-License-Identifier: BSD-3-Clause
// Results side by side.
#include "kit/base/text/json.h"
#include "kit/tools/compare/table.h"

#include <gtest/gtest.h>

#include <string>

#include "kit/kitRun.h"

namespace {

using kit::Json;

const Json FAST =
    Json::parse(R"({"schema": "vireloce-place", "version": 1, "passes": [{}, {}], "seconds": 0.25,
    "placement": {"hpwl": 120, "stitches": 4, "dropped_cells": [], "conflicts": 0}, "rescue": null})");
const Json GOOD = Json::parse(R"({"schema": "vireloce-place", "version": 1, "passes": [{}], "seconds": 2,
    "placement": {"hpwl": 100, "stitches": 4, "dropped_cells": ["u1"], "conflicts": 0},
    "rescue": {"placement": {"hpwl": 105, "dropped_cells": []}}})");
const Json ENDED =
    Json::parse(R"({"schema": "vireloce-place", "version": 1, "passes": [{}, {}, {}], "seconds": 1,
    "placement": null, "rescue": null})");

TEST(KitCompare, MarksTheBestOfEachLineInMarkdown)
{
    const std::vector<kit::compare::Run> runs{{"a|b", FAST}, {"good", GOOD}, {"ended", ENDED}};
    EXPECT_EQ(kit::compare::toMarkdown(runs, kit::compare::linesOf(runs)),
              "| | a\\|b | good | ended |\n"
              "|---|---:|---:|---:|\n"
              "| HPWL, DBU | 120 | **100** | - |\n"
              "| HPWL after rescue, DBU | - | 105 | - |\n"
              "| stitches | 4 | 4 | - |\n"
              "| conflicts, as the placer counts | 0 | 0 | - |\n"
              "| dropped cells | **0** | 1 | - |\n"
              "| cells not rescued | - | 0 | - |\n"
              "| passes | 2 | **1** | 3 |\n"
              "| seconds | **0.250** | 2 | 1 |\n");
}

TEST(KitCompare, QuotesForCsvAndNamesTheBest)
{
    const std::vector<kit::compare::Run> runs{{"a,\"b\"", FAST}, {"good", GOOD}};
    const std::string csv = kit::compare::toCsv(runs, kit::compare::linesOf(runs));
    EXPECT_EQ(csv.substr(0, csv.find("stitches")), "figure,\"a,\"\"b\"\"\",good,best\n"
                                                   "\"HPWL, DBU\",120,100,good\n"
                                                   "\"HPWL after rescue, DBU\",,105,\n");
}

TEST(KitCompare, RefusesWhatIsNoResult)
{
    test::TempDir dir;
    dir.write("bad.json", "{\"schema\": \"other\"}");
    dir.write("broken.json", "{");
    for (const char* name : {"bad.json", "broken.json"}) {
        const test::KitOutcome outcome = test::runKit({"compare", dir.path(name)});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.error,
                  "vireloce-kit: " + dir.path(name) + " is no result of vireloce-kit place, version 1\n");
    }
    EXPECT_EQ(test::runKit({"compare", dir.path("none.json")}).error,
              "vireloce-kit: cannot open file " + dir.path("none.json") + ": No such file or directory\n");
}

TEST(KitCompare, ReadsWhatPlaceWrites)
{
    const test::GeneratedDesign design{{"--mirrored", "0"}};
    test::TempDir dir;
    for (const char* algo : {"0", "1"}) {
        const test::KitOutcome placed =
            test::runKit({"place", design.base(), "--cell-path", design.lib(), "-o",
                          dir.path(std::string("a") + algo), "--algo", algo});
        ASSERT_EQ(placed.status, 0) << placed.error;
    }
    const test::KitOutcome outcome = test::runKit({"compare", dir.path("a0.json"), dir.path("a1.json")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find("| mean displacement, sites | "), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.output.find("| conflicts, by geometry | 0 | 0 |"), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.output.find("| passes | 1 | 1 |"), std::string::npos) << outcome.output;
}

} // namespace
