// SPDX-License-Identifier: BSD-3-Clause
// All results in one table.
#include <gtest/gtest.h>

#include <sqlite3.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "kit/tools/sweep/collect.h"
#include "kit/tools/sweep/sweepCase.h"

namespace {

namespace fs = std::filesystem;

using kit::Json;
using test::contentOf;
using test::KitOutcome;
using test::runKit;

class KitSweepCollect : public test::SweepCase {
protected:
    KitOutcome collect(test::Words more = {}) const
    {
        more.insert(more.begin(), {"sweep", "collect", dir()});
        return runKit(more);
    }

    std::string equalTable() const
    {
        const KitOutcome outcome = collect({"--no-times"});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        return outcome.output;
    }
};

TEST_F(KitSweepCollect, TableHasARowPerTaskInTheirOrder)
{
    plan(3);
    ASSERT_EQ(run("placed"), 0);
    std::istringstream lines(equalTable());
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(
        line,
        "id,design,components,algo,weight,move_range,mindp,site_width,rescue,true_orientation,status,"
        "exit_status,signal,hpwl_before,hpwl,stitches,conflicts,judged_conflicts,judged_errors,dropped_cells,"
        "cells_beyond_segment,overlapping_cells,mean_displacement,largest_displacement,passes,hash");
    for (const kit::sweep::Task& task : kit::sweep::readTasks(dir())) {
        std::getline(lines, line);
        const int weight = static_cast<int>(*task.options.weight);
        EXPECT_EQ(line, task.id + ",d,0,," + std::to_string(weight) + ",,,,0,0,clean,0,0,7," +
                            std::to_string(1000 - weight) + "," + std::to_string(weight) + ",,0,0,2,,,,,,x");
    }
    EXPECT_FALSE(std::getline(lines, line));
}

TEST_F(KitSweepCollect, TimesAreThereUnlessLeftOut)
{
    plan(1);
    ASSERT_EQ(run("placed"), 0);
    const std::string table = collect().output;
    EXPECT_NE(table.find("hash,seconds,cpu_seconds,peak_kib,host,message\n"), std::string::npos) << table;
}

TEST_F(KitSweepCollect, TablesOfEqualStudiesAreEqualHoweverTheyWereMade)
{
    plan(12);
    const std::string path = program("if [ $((weight % 3)) = 0 ]; then placed; exit 1; fi; placed");
    std::vector<std::string> tables;
    const auto make = [&](int jobs, int shards) {
        fs::remove_all(dir() + "/results");
        for (int index = 1; index <= shards; ++index) {
            auto part = options(path);
            part.jobs = jobs;
            part.shard = {index, shards};
            EXPECT_EQ(kit::sweep::run(part), 0);
        }
        tables.push_back(equalTable());
    };
    make(1, 1);
    make(2, 1);
    make(1, 5);
    EXPECT_EQ(tables[0], tables[1]);
    EXPECT_EQ(tables[0], tables[2]);
    EXPECT_NE(tables[0].find(",not_clean,1,"), std::string::npos);
}

TEST_F(KitSweepCollect, MissingAndFailedRunsAreToldAndInTheTable)
{
    plan(3);
    EXPECT_EQ(run("if [ $weight = 2 ]; then echo 'no room, \"really\"' >&2; exit 2; fi; placed"), 1);
    const auto tasks = kit::sweep::readTasks(dir());
    fs::remove(dir() + "/results/" + tasks[2].id + ".json");
    const KitOutcome outcome = collect();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, tasks[1].id + " (d --weight=2) failed: no room, \"really\"\n" + tasks[2].id +
                                 " (d --weight=3) missing\n");
    EXPECT_NE(outcome.output.find(",failed,2,0,"), std::string::npos);
    EXPECT_NE(outcome.output.find(",\"no room, \"\"really\"\"\"\n"), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.output.find(tasks[2].id + ",d,0,,3,,,,0,0,missing,,,"), std::string::npos);
}

TEST_F(KitSweepCollect, JsonLinesHaveTheSame)
{
    plan(2);
    EXPECT_EQ(run("if [ $weight = 2 ]; then exit 2; fi; placed"), 1);
    EXPECT_EQ(collect({"--jsonl", m_dir.path("t.jsonl")}).output, "");
    std::istringstream lines(contentOf(m_dir.path("t.jsonl")));
    std::string line;
    std::getline(lines, line);
    const Json first = Json::parse(line);
    EXPECT_EQ(first["hpwl"], 999);
    EXPECT_EQ(first["weight"], 1);
    EXPECT_TRUE(first["algo"].isNull());
    std::getline(lines, line);
    EXPECT_TRUE(Json::parse(line)["hpwl"].isNull());
    EXPECT_EQ(Json::parse(line)["status"], "failed");
}

/// The rows of a query, values by commas.
std::string queried(const std::string& path, const std::string& sql)
{
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    std::string text;
    const auto row = [](void* target, int count, char** values, char** /*names*/) {
        for (int i = 0; i < count; ++i) {
            *static_cast<std::string*>(target) +=
                std::string(i == 0 ? "" : ",") + (values[i] ? values[i] : "NULL");
        }
        *static_cast<std::string*>(target) += "\n";
        return 0;
    };
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), row, &text, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
    return text;
}

TEST_F(KitSweepCollect, DatabaseHasTheSame)
{
    plan(3);
    EXPECT_EQ(run("if [ $weight = 2 ]; then exit 2; fi; placed"), 1);
    const std::string path = m_dir.path("t.sqlite");
    EXPECT_EQ(collect({"--sqlite", path}).status, 1);
    EXPECT_EQ(
        queried(path,
                "SELECT weight, status, hpwl, typeof(hpwl), typeof(weight), algo FROM runs ORDER BY rowid"),
        "1.0,clean,999,integer,real,NULL\n2.0,failed,NULL,null,real,NULL\n3.0,clean,997,integer,real,NULL\n");
    EXPECT_EQ(queried(path, "SELECT count(*) FROM runs WHERE seconds > 0 AND peak_kib > 0 AND host <> ''"),
              "3\n");
}

TEST_F(KitSweepCollect, FilesThatAreThereStayUnlessForced)
{
    plan(1);
    ASSERT_EQ(run("placed"), 0);
    for (const char* option : {"-o", "--jsonl", "--sqlite"}) {
        const std::string path = m_dir.path("old");
        test::writeFile(path, "old");
        const KitOutcome outcome = collect({option, path});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.error.find("exists"), std::string::npos);
        EXPECT_EQ(contentOf(path), "old");
        EXPECT_EQ(collect({option, path, "--force"}).status, 0);
        EXPECT_NE(contentOf(path), "old");
    }
}

TEST_F(KitSweepCollect, WhatATableIsMadeFromIsNeverReplaced)
{
    plan(1);
    ASSERT_EQ(run("placed"), 0);
    const std::string result = fs::directory_iterator(dir() + "/results")->path().string();
    for (const std::string& input : {dir() + "/tasks.jsonl", result}) {
        const std::string before = contentOf(input);
        for (const char* option : {"-o", "--jsonl", "--sqlite"}) {
            const KitOutcome outcome = collect({option, input, "--force"});
            EXPECT_EQ(outcome.status, 2);
            EXPECT_NE(outcome.error.find("is an input"), std::string::npos) << outcome.error;
            EXPECT_EQ(contentOf(input), before);
        }
    }
}

TEST_F(KitSweepCollect, TablesHaveDifferentNamesAndAppearTogether)
{
    plan(1);
    ASSERT_EQ(run("placed"), 0);
    EXPECT_NE(collect({"-o", m_dir.path("t"), "--sqlite", m_dir.path("t")}).error.find("name of two results"),
              std::string::npos);
    EXPECT_EQ(collect({"-o", m_dir.path("t"), "--sqlite", m_dir.path("none/t")}).status, 2);
    EXPECT_FALSE(fs::exists(m_dir.path("t")));
}

TEST_F(KitSweepCollect, FileThatCannotBeWrittenIsAFault)
{
    plan(1);
    ASSERT_EQ(run("placed"), 0);
    for (const char* option : {"-o", "--jsonl", "--sqlite"}) {
        const KitOutcome outcome = collect({option, m_dir.path("none/t")});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.error.find("cannot write"), std::string::npos) << outcome.error;
    }
}

TEST(KitSweep, GoesFromAStudyToTablesAndPictures)
{
    const test::TempDir dir;
    const std::string out = dir.path("out");
    const auto kit = [&](test::Words words) {
        words.insert(words.begin(), {VIRELOCE_KIT_PROGRAM, "sweep"});
        return kit::process::run(words, dir.path("stdout"), dir.path("stderr")).status;
    };
    EXPECT_EQ(kit({"plan", VIRELOCE_KIT_EXAMPLES "/sweep/study.json", "-o", out}), 0);
    EXPECT_EQ(kit({"run", out, "--shard", "1/4", "--jobs", "2"}), 0) << contentOf(dir.path("stderr"));
    EXPECT_EQ(kit({"collect", out}), 1);
    EXPECT_EQ(kit({"run", out, "--resume", "--jobs", "2", "--timeout", "60", "--memory", "4000"}), 0)
        << contentOf(dir.path("stderr"));
    EXPECT_EQ(kit({"collect", out, "-o", dir.path("t.csv")}), 0);
    EXPECT_EQ(kit({"plot", out, "-o", dir.path("pictures")}), 0);
    const kit::sweep::Table table = kit::sweep::tableOf(out, false);
    ASSERT_EQ(table.rows.size(), 32U);
    for (size_t i = 0; i < table.columns.size(); ++i) {
        for (const auto& row : table.rows) {
            const std::string& name = table.columns[i].name;
            const bool given = name != "move_range" && name != "mindp" && name != "site_width";
            EXPECT_EQ(row[i].isNull(), !given) << name;
        }
    }
    for (const char* name : {"tradeoff-gcd.svg", "time.svg"}) {
        EXPECT_NE(contentOf(dir.path("pictures/") + name).find("</svg>"), std::string::npos);
    }
}

} // namespace
