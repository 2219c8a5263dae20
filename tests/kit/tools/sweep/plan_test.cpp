// SPDX-License-Identifier: BSD-3-Clause
// From studies to tasks and shards.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "kit/base/fault.h"
#include "kit/tools/sweep/plan.h"
#include "kit/tools/sweep/shard.h"
#include "kit/tools/sweep/sweepCase.h"
#include "support/property.h"

namespace {

namespace fs = std::filesystem;

using kit::sweep::idOf;
using kit::sweep::readTasks;
using kit::sweep::RunOptions;
using kit::sweep::Shard;
using kit::sweep::Task;
using test::contentOf;
using test::KitOutcome;
using test::runKit;

constexpr const char* STUDY = R"({"designs": [{"name": "d", "base": "designs/d", "cell_path": "designs/lib"}],
    "grid": {"algo": [0, 1], "weight": [0.5, 1.4]}})";

class KitSweepPlan : public testing::Test {
protected:
    KitSweepPlan() { make("a"); }

    /// A folder with a design and a study of it.
    void make(const std::string& folder, const std::string& study = STUDY) const
    {
        test::writeDesign(m_dir.path(folder + "/designs"), "d");
        test::writeFile(m_dir.path(folder + "/study.json"), study);
    }

    std::vector<std::string> idsOf(const std::string& folder) const
    {
        const KitOutcome outcome = runKit({"sweep", "plan", m_dir.path(folder + "/study.json"), "-o",
                                           m_dir.path(folder + "/out"), "--force"});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        std::vector<std::string> ids;
        for (const Task& task : readTasks(m_dir.path(folder + "/out"))) {
            ids.push_back(task.id);
        }
        return ids;
    }

    test::TempDir m_dir;
};

TEST_F(KitSweepPlan, IdsAreTheSameAtAnotherPath)
{
    make("some/where/else");
    EXPECT_EQ(idsOf("a"), idsOf("some/where/else"));
    EXPECT_EQ(contentOf(m_dir.path("a/out/tasks.jsonl")),
              contentOf(m_dir.path("some/where/else/out/tasks.jsonl")));
}

TEST_F(KitSweepPlan, IdsAreTheSameUnderAnotherName)
{
    std::string study = STUDY;
    make("b", study.replace(study.find("\"d\""), 3, "\"other\""));
    EXPECT_EQ(idsOf("a"), idsOf("b"));
}

TEST_F(KitSweepPlan, EveryFileOfTheDesignChangesTheIds)
{
    const std::vector<std::string> before = idsOf("a");
    for (const char* file : {"d.place", "d.pins", "d.netlist", "d.cells", "lib/A.color"}) {
        const std::string path = m_dir.path("a/designs/") + file;
        const std::string text = contentOf(path);
        test::writeFile(path, text + "\n");
        const std::vector<std::string> after = idsOf("a");
        for (size_t i = 0; i < before.size(); ++i) {
            EXPECT_NE(before[i], after[i]) << file;
        }
        test::writeFile(path, text);
    }
    EXPECT_EQ(idsOf("a"), before);
}

TEST_F(KitSweepPlan, ColourFilesOfOtherCellsDoNotChangeTheIds)
{
    const std::vector<std::string> before = idsOf("a");
    test::writeFile(m_dir.path("a/designs/lib/B.color"), "other");
    EXPECT_EQ(idsOf("a"), before);
}

TEST_F(KitSweepPlan, TextThatGoesFromOneFileToTheNextChangesTheIds)
{
    test::writeFile(m_dir.path("a/designs/d.place"), "xy");
    const std::vector<std::string> before = idsOf("a");
    test::writeFile(m_dir.path("a/designs/d.place"), "x");
    test::writeFile(m_dir.path("a/designs/d.pins"), "y");
    EXPECT_NE(idsOf("a"), before);
}

TEST(KitSweepId, EveryOptionChangesIt)
{
    std::vector<RunOptions> all(10);
    all[1].algo = 0;
    all[2].algo = 1;
    all[3].weight = 1.4;
    all[4].weight = 1.5;
    all[5].moveRange = 8;
    all[6].mindp = 8;
    all[7].siteWidth = 8;
    all[8].rescue = true;
    all[9].trueOrientation = true;
    std::set<std::string> ids;
    for (const RunOptions& options : all) {
        ids.insert(idOf("content", options));
    }
    EXPECT_EQ(ids.size(), all.size());
    EXPECT_NE(idOf("content", {}), idOf("other", {}));
}

TEST(KitSweepId, IsTheSameOnEveryMachine)
{
    // FNV-1a of the text, by another program.
    EXPECT_EQ(idOf("00", {}), "137a6505d715f203");
}

TEST_F(KitSweepPlan, WholeWeightIsTheSameWithAndWithoutFraction)
{
    make("b", R"({"designs": [{"name": "d", "base": "designs/d", "cell_path": "designs/lib"}],
        "runs": [{"weight": 2}, {"weight": 2.0}]})");
    EXPECT_EQ(idsOf("b").size(), 1U);
}

TEST_F(KitSweepPlan, RunsThatAreTheSameAppearOnceAndAreTold)
{
    make("b", R"({"designs": [{"name": "d", "base": "designs/d", "cell_path": "designs/lib"},
        {"name": "copy", "base": "designs/d", "cell_path": "designs/lib"}],
        "grid": {"algo": [0, 1]}, "runs": [{"algo": 1}, {"algo": 2}]})");
    const KitOutcome outcome =
        runKit({"sweep", "plan", m_dir.path("b/study.json"), "-o", m_dir.path("b/out")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find("3 runs of 2 designs, 5 of the study left out as others are the same"),
              std::string::npos)
        << outcome.output;
    std::string order;
    for (const Task& task : readTasks(m_dir.path("b/out"))) {
        order += task.design + std::to_string(static_cast<int>(*task.options.algo)) + " ";
    }
    EXPECT_EQ(order, "d0 d1 d2 ");
}

TEST_F(KitSweepPlan, PathsHoldWhenTheTreeIsMoved)
{
    idsOf("a");
    fs::rename(m_dir.path("a"), m_dir.path("moved"));
    const std::vector<Task> tasks = readTasks(m_dir.path("moved/out"));
    EXPECT_EQ(tasks[0].base, fs::canonical(m_dir.path("moved/designs")).string() + "/d");
    EXPECT_EQ(tasks[0].cellPath, fs::canonical(m_dir.path("moved/designs/lib")).string());
}

TEST_F(KitSweepPlan, PathsThatShareNoFolderAreAbsolute)
{
    kit::sweep::Study study;
    study.designs.push_back({"d", m_dir.path("a/designs/d"), m_dir.path("a/designs/lib")});
    study.runs.push_back({0, {}});
    EXPECT_EQ(kit::sweep::tasksOf(study, "/nowhere/out").at(0).base,
              fs::canonical(m_dir.path("a/designs")).string() + "/d");
    EXPECT_EQ(kit::sweep::tasksOf(study, m_dir.path("a/out")).at(0).base, "../designs/d");
}

TEST_F(KitSweepPlan, KnowsTheSizeOfADesign)
{
    const test::GeneratedDesign design;
    kit::sweep::Study study;
    study.designs.push_back({"d", design.base(), design.lib()});
    study.runs.push_back({0, {}});
    const Task task = kit::sweep::tasksOf(study, m_dir.path("a")).at(0);
    EXPECT_EQ(task.components, 1000);
    EXPECT_GT(task.seconds, kit::sweep::estimatedSeconds(1, {}));
}

TEST_F(KitSweepPlan, TasksThatAreThereStayUnlessForced)
{
    idsOf("a");
    const auto plan = [&](test::Words more) {
        test::Words words{"sweep", "plan", m_dir.path("a/study.json"), "-o", m_dir.path("a/out")};
        words.insert(words.end(), more.begin(), more.end());
        return runKit(words);
    };
    const KitOutcome outcome = plan({});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("tasks.jsonl exists"), std::string::npos) << outcome.error;
    EXPECT_EQ(plan({"--force"}).status, 0);
}

TEST_F(KitSweepPlan, ColourFileThatIsMissingIsTold)
{
    fs::remove(m_dir.path("a/designs/lib/A.color"));
    const KitOutcome outcome =
        runKit({"sweep", "plan", m_dir.path("a/study.json"), "-o", m_dir.path("a/out")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("design d: cannot open file"), std::string::npos) << outcome.error;
    EXPECT_FALSE(fs::exists(m_dir.path("a/out/tasks.jsonl")));
}

TEST_F(KitSweepPlan, TellsHowManyShardsThereShouldBe)
{
    const auto shards = [&](const std::string& minutes) {
        return runKit({"sweep", "plan", m_dir.path("a/study.json"), "-o", m_dir.path("a/out"), "--force",
                       "--shard-minutes", minutes})
            .output;
    };
    EXPECT_NE(shards("60").find("Shards of 60 min: 1."), std::string::npos) << shards("60");
    EXPECT_NE(shards("0.001").find("Shards of 0.001 min: 4."), std::string::npos) << shards("0.001");
}

TEST(KitSweepTasks, WrongLinesAreToldWithTheirNumber)
{
    const test::TempDir dir;
    EXPECT_THROW(readTasks(dir.path("")), kit::Fault);
    const std::string good =
        kit::sweep::lineOf({"0123456789abcdef", "d", "b", "c", "h", RunOptions{}, 3, 0.5}) + "\n";
    const std::pair<std::string, std::string> cases[] = {
        {"{", ":2: this is no task"},
        {"{}", ":2: this is no task"},
        {good, ":2: this is no task: its id is that of an earlier line"},
        {std::string(good).replace(7, 3, "../"), ":2: this is no task: the id is not 16 hexadecimal digits"},
        {std::string(good).replace(good.find("0.5"), 3, "-1"),
         ":2: this is no task: \"seconds\" is no length"},
    };
    for (const auto& [line, fault] : cases) {
        test::writeFile(dir.path("tasks.jsonl"), good + line);
        try {
            readTasks(dir.path(""));
            ADD_FAILURE() << line;
        } catch (const kit::Fault& what) {
            EXPECT_NE(std::string(what.what()).find(fault), std::string::npos) << what.what();
        }
    }
}

TEST(KitSweepTasks, LineComesBackAsItWas)
{
    const test::TempDir dir;
    Task task{"0123456789abcdef", "d", "/x/b", "/x/c", "h", RunOptions{}, 3, 0.5};
    task.options.algo = 3;
    task.options.weight = 0.1;
    task.options.rescue = true;
    task.options.trueOrientation = true;
    test::writeFile(dir.path("tasks.jsonl"), lineOf(task) + "\n");
    const std::vector<Task> tasks = readTasks(dir.path(""));
    ASSERT_EQ(tasks.size(), 1U);
    EXPECT_EQ(lineOf(tasks[0]), lineOf(task));
    EXPECT_EQ(tasks[0].options, task.options);
}

TEST(KitSweepShard, IsReadAsIndexAndCount)
{
    const Shard shard = kit::sweep::parseShard("3/8");
    EXPECT_EQ(shard.index, 3);
    EXPECT_EQ(shard.count, 8);
    for (const char* wrong : {"", "3", "/", "0/8", "9/8", "1/0", "a/b", "1/2/3", "-1/2", "1/-2", "+1/2",
                              " 1/2", "1/99999999999", "1/1000001"}) {
        EXPECT_THROW(kit::sweep::parseShard(wrong), kit::Fault) << wrong;
    }
}

std::vector<Task> someTasks()
{
    std::vector<Task> tasks(test::drawCount());
    for (size_t i = 0; i < tasks.size(); ++i) {
        tasks[i].id = std::to_string(i + 1);
        tasks[i].seconds = test::draw(0, 1 << 16) / 100.0;
    }
    return tasks;
}

PROPERTY(KitSweepShard, CutCoversEveryTaskOnce)
{
    const std::vector<Task> tasks = someTasks();
    const int32_t count = test::draw(1, 40);
    std::vector<std::string> met;
    for (int32_t index = 1; index <= count; ++index) {
        size_t last = 0;
        for (const Task& task : kit::sweep::tasksIn(tasks, {index, count})) {
            met.push_back(task.id);
            RC_ASSERT(std::stoul(task.id) > last); // in their order
            last = std::stoul(task.id);
        }
    }
    RC_ASSERT(met.size() == tasks.size());
    RC_ASSERT(std::set<std::string>(met.begin(), met.end()).size() == tasks.size());
}

PROPERTY(KitSweepShard, NoShardHasMoreThanTheMeanAndOneTask)
{
    const std::vector<Task> tasks = someTasks();
    const int32_t count = test::draw(1, 40);
    double sum = 0;
    double longest = 0;
    for (const Task& task : tasks) {
        sum += task.seconds;
        longest = std::max(longest, task.seconds);
    }
    for (int32_t index = 1; index <= count; ++index) {
        double load = 0;
        for (const Task& task : kit::sweep::tasksIn(tasks, {index, count})) {
            load += task.seconds;
        }
        RC_ASSERT(load <= sum / count + longest + 1e-3);
    }
}

} // namespace
