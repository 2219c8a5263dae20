// SPDX-License-Identifier: BSD-3-Clause
// Making runs: how they end, going on, several processes at once, and being killed.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "kit/base/fault.h"
#include "kit/base/process/childProcess.h"
#include "kit/tools/sweep/sweepCase.h"
#include "kit/tools/sweep/task.h"
#include "support/waiting.h"

namespace {

namespace fs = std::filesystem;

using kit::Json;
using test::comes;
using test::contentOf;
using test::KitOutcome;

class KitSweepRun : public test::SweepCase {
protected:
    std::string faultOf(const kit::sweep::SweepOptions& options)
    {
        try {
            kit::sweep::run(options);
        } catch (const kit::Fault& fault) {
            return fault.what();
        }
        return "no fault";
    }

    /// Lines that the programs have left, each a weight.
    int64_t linesOf(const std::string& file) const
    {
        const std::string text = contentOf(m_dir.path(file));
        return std::count(text.begin(), text.end(), '\n');
    }

    std::string tell(const std::string& file) const { return "echo $weight >>" + m_dir.path(file) + "; "; }

    /// Nothing may be left but results.
    void expectClean() const
    {
        EXPECT_TRUE(fs::is_empty(dir() + "/work"));
        EXPECT_TRUE(fs::is_empty(dir() + "/claims"));
    }
};

TEST_F(KitSweepRun, EveryTaskGetsItsResult)
{
    plan(5);
    EXPECT_EQ(run("placed"), 0);
    EXPECT_EQ(results().size(), 5U);
    for (int weight = 1; weight <= 5; ++weight) {
        const Json result = resultOf(weight);
        EXPECT_EQ(result["status"], "clean");
        EXPECT_EQ(result["exit_status"], 0);
        EXPECT_EQ(result["metrics"]["hpwl"], 1000 - weight);
        EXPECT_EQ(result["metrics"]["hpwl_before"], 7);
        EXPECT_EQ(result["metrics"]["dropped_cells"], 2) << "a list counts by its length";
        EXPECT_GT(result["peak_kib"].asInteger(), 0);
        EXPECT_GT(result["seconds"].asNumber(), 0);
    }
    expectClean();
}

struct EndingCase {
    const char* name;
    const char* commands;
    const char* status;
    int exitStatus;
    int signal;
    const char* message; ///< a part of it
    int sweepStatus;
};

constexpr EndingCase ENDINGS[] = {
    {"Clean", "placed", "clean", 0, 0, "", 0},
    {"NotClean", "placed; exit 1", "not_clean", 1, 0, "", 0},
    {"BadInput", "echo first >&2; echo 'd.place:3: bad' >&2; exit 2", "failed", 2, 0, "d.place:3: bad", 1},
    {"NoPlacement", "echo '{\"placement\": null}' >$out.json; exit 1", "failed", 1, 0, "no placement", 1},
    {"NoResult", "exit 0", "failed", 0, 0, "no placement, and no word why", 1},
    {"DamagedResult", "echo '{' >$out.json; exit 0", "failed", 0, 0, "no placement", 1},
    {"BadStatusAfterAPlacement", "placed; exit 3", "failed", 3, 0, "no placement", 1},
    {"Crash", "kill -SEGV $$", "crashed", -1, SIGSEGV, "ended by signal 11 (SIGSEGV)", 1},
    {"KilledByTheSystem", "kill -KILL $$", "crashed", -1, SIGKILL, "did the system run out of memory?", 1},
};

TEST_F(KitSweepRun, EndingsAreRecorded)
{
    plan(1);
    for (const EndingCase& ending : ENDINGS) {
        fs::remove_all(dir() + "/results");
        EXPECT_EQ(run(ending.commands), ending.sweepStatus) << ending.name;
        const Json result = resultOf(1);
        EXPECT_EQ(result["status"], ending.status) << ending.name;
        EXPECT_EQ(result["exit_status"], ending.exitStatus) << ending.name;
        EXPECT_EQ(result["signal"], ending.signal) << ending.name;
        EXPECT_NE(result["message"].asString().find(ending.message), std::string::npos)
            << ending.name << ": " << result["message"];
        EXPECT_EQ(result["metrics"].isNull(), ending.sweepStatus == 1) << ending.name;
        expectClean();
    }
}

TEST_F(KitSweepRun, TimeLimitIsRecordedAndTheRestGoesOn)
{
    plan(3);
    auto limited = options(program("if [ $weight = 2 ]; then exec sleep 60; fi; placed"));
    limited.setting.timeout = 1;
    EXPECT_EQ(kit::sweep::run(limited), 1);
    EXPECT_EQ(resultOf(1)["status"], "clean");
    EXPECT_EQ(resultOf(2)["status"], "timeout");
    EXPECT_EQ(resultOf(2)["message"], "ended at the time limit");
    EXPECT_EQ(resultOf(3)["status"], "clean");
}

TEST_F(KitSweepRun, MemoryLimitIsRecordedAndTheRestGoesOn)
{
    plan(2);
    auto limited =
        options(program("if [ $weight = 2 ]; then x=aaaaaaaa; while :; do x=$x$x; done; fi; placed"));
    limited.setting.memoryKib = 400 * 1024;
    EXPECT_EQ(kit::sweep::run(limited), 1);
    EXPECT_EQ(resultOf(1)["status"], "clean");
    EXPECT_EQ(resultOf(2)["status"], "memory");
}

TEST_F(KitSweepRun, DesignThatCannotBePlacedIsAFailureOfThePlacer)
{
    plan(1);
    EXPECT_EQ(kit::sweep::run(options(VIRELOCE_KIT_PROGRAM)), 1);
    EXPECT_EQ(resultOf(1)["status"], "failed");
    EXPECT_NE(resultOf(1)["message"], "");
}

TEST_F(KitSweepRun, ProgramThatIsNotThereIsAFault)
{
    plan(2);
    EXPECT_NE(faultOf(options(m_dir.path("none"))).find("cannot run"), std::string::npos);
    expectClean();
}

TEST_F(KitSweepRun, ArgumentsAreThoseOfPlace)
{
    test::writeDesign(m_dir.path("designs"), "d");
    test::writeFile(m_dir.path("study.json"),
                    R"({"designs": [{"name": "d", "base": "designs/d", "cell_path": "designs/lib"}], "runs": [
        {"algo": 3, "weight": -2, "move_range": 4, "mindp": 100, "site_width": 380, "rescue": true, "true_orientation": true}]})");
    ASSERT_EQ(test::runKit({"sweep", "plan", m_dir.path("study.json"), "-o", dir()}).status, 0);
    EXPECT_EQ(run("echo \"$@\" | sed 's/-o [^ ]*/-o OUT/' >" + m_dir.path("arguments") + "; placed"), 0);
    const std::string folder = fs::canonical(m_dir.path("designs")).string();
    EXPECT_EQ(contentOf(m_dir.path("arguments")),
              "place " + folder + "/d --cell-path " + folder +
                  "/lib -o OUT --quiet --algo=3 --weight=-2 --move-range=4 --mindp=100 --site-width=380 "
                  "--rescue --true-orientation\n");
}

TEST_F(KitSweepRun, ResultsThatAreThereNeedResume)
{
    plan(2);
    EXPECT_EQ(run("placed"), 0);
    EXPECT_NE(faultOf(options(program("placed"))).find("--resume"), std::string::npos);
}

TEST_F(KitSweepRun, ResumeLeavesOutWhatHasAResult)
{
    plan(4);
    EXPECT_EQ(run("if [ $weight = 2 ]; then exit 2; fi; placed"), 1);
    const auto before = results();
    EXPECT_EQ(resume(tell("again") + "placed"), 1) << "a failure that is recorded counts";
    EXPECT_EQ(results(), before);
    EXPECT_EQ(linesOf("again"), 0);
    fs::remove(dir() + "/results/" + before.begin()->first);
    resume(tell("again") + "placed");
    EXPECT_EQ(linesOf("again"), 1);
    EXPECT_EQ(results().size(), 4U);
}

TEST_F(KitSweepRun, RetryMakesFailuresAgain)
{
    plan(3);
    EXPECT_EQ(run("if [ $weight = 2 ]; then exit 2; fi; placed"), 1);
    auto retry = options(program(tell("again") + "placed"));
    retry.resume = retry.retry = true;
    EXPECT_EQ(kit::sweep::run(retry), 0);
    EXPECT_EQ(contentOf(m_dir.path("again")), "2\n");
    EXPECT_EQ(resultOf(2)["status"], "clean");
}

TEST_F(KitSweepRun, DamagedResultIsMadeAgain)
{
    plan(2);
    EXPECT_EQ(run("placed"), 0);
    const std::string damaged = results().begin()->first;
    for (const char* text : {"", "{", "{}", "[]"}) {
        test::writeFile(dir() + "/results/" + damaged, text);
        EXPECT_EQ(resume("placed"), 0);
        EXPECT_EQ(Json::parse(results().at(damaged))["status"], "clean");
    }
}

TEST_F(KitSweepRun, PlacementsAreKeptOnDemand)
{
    plan(2);
    auto keep = options(program("if [ $weight = 2 ]; then exit 2; fi; placed; echo kept >$out.place"));
    keep.setting.keepPlacements = true;
    EXPECT_EQ(kit::sweep::run(keep), 1);
    EXPECT_EQ(contentOf(dir() + "/placements/" + resultOf(1)["id"].asString() + "/placed.place"), "kept\n");
    EXPECT_FALSE(fs::exists(dir() + "/placements/" + resultOf(2)["id"].asString()));
    fs::remove_all(dir() + "/results");
    EXPECT_EQ(kit::sweep::run(keep), 1) << "they are replaced";
}

TEST_F(KitSweepRun, DesignThatHasChangedIsAFault)
{
    plan(2);
    test::writeFile(m_dir.path("designs/d.pins"), "other");
    EXPECT_NE(faultOf(options(program("placed"))).find("is not what it was"), std::string::npos);
}

TEST_F(KitSweepRun, ShardsTogetherMakeEveryRunOnce)
{
    plan(10);
    const std::string path = program(tell("made") + "placed");
    for (int index = 1; index <= 3; ++index) {
        auto shard = options(path);
        shard.shard = {index, 3};
        EXPECT_EQ(kit::sweep::run(shard), 0);
    }
    EXPECT_EQ(results().size(), 10U);
    EXPECT_EQ(linesOf("made"), 10);
}

/// What the claim of another process says.
std::string claimText(const kit::sweep::Owner& owner)
{
    return owner.text();
}

TEST_F(KitSweepRun, RunThatALivingProcessHasIsLeftToIt)
{
    plan(2);
    const std::string id = kit::sweep::readTasks(dir()).at(0).id;
    kit::sweep::Owner other = kit::sweep::Owner::self();
    test::writeFile(dir() + "/claims/" + id + ".0", claimText(other));
    EXPECT_EQ(run("placed"), 1);
    EXPECT_EQ(results().size(), 1U);
    EXPECT_TRUE(resultOf(1).isNull());
}

TEST_F(KitSweepRun, RunOfADeadProcessNeedsResumeAndIsTakenOver)
{
    plan(2);
    const std::string id = kit::sweep::readTasks(dir()).at(0).id;
    kit::sweep::Owner dead = kit::sweep::Owner::self();
    ++dead.start; // its id was given to another since
    test::writeFile(dir() + "/claims/" + id + ".0", claimText(dead));
    test::writeFile(dir() + "/claims/." + dead.name(), claimText(dead));
    test::writeFile(kit::sweep::Folder(dir()).work() + "/" + id + "." + dead.name() + "/placed/half", "half");
    EXPECT_NE(faultOf(options(program("placed"))).find("--resume"), std::string::npos);
    EXPECT_EQ(resume("placed"), 0);
    EXPECT_EQ(results().size(), 2U);
    EXPECT_EQ(resume("placed"), 0); // cleans up
    expectClean();
}

TEST_F(KitSweepRun, ClaimOfAnotherHostIsStaleWhenItsOwnerGivesNoSign)
{
    plan(2);
    const std::string id = kit::sweep::readTasks(dir()).at(0).id;
    const std::string claim = dir() + "/claims/" + id + ".0";
    test::writeFile(claim, claimText({"far", "far away", 1, 1}));
    EXPECT_EQ(resume("placed"), 1);
    EXPECT_EQ(results().size(), 1U);
    fs::last_write_time(claim, fs::file_time_type::clock::now() - std::chrono::minutes(9));
    EXPECT_EQ(resume("placed"), 1);
    fs::last_write_time(claim, fs::file_time_type::clock::now() - std::chrono::minutes(11));
    EXPECT_EQ(resume("placed"), 0);
    EXPECT_EQ(results().size(), 2U);
}

TEST_F(KitSweepRun, OwnerThatWasKilledWhileItMadeItselfKnownIsCleanedAway)
{
    plan(1);
    kit::sweep::Owner dead = kit::sweep::Owner::self();
    ++dead.start;
    kit::sweep::Owner far = dead;
    far.place = "far away";
    test::writeFile(dir() + "/claims/." + dead.name() + ".part-abcdef", "");
    test::writeFile(dir() + "/claims/." + far.name() + ".part-abcdef", "");
    test::writeFile(dir() + "/claims/.odd.part-abcdef", "");
    EXPECT_EQ(run("placed"), 0);
    const auto left = filesIn(dir() + "/claims");
    EXPECT_EQ(left.count("." + dead.name() + ".part-abcdef"), 0U);
    EXPECT_EQ(left.count("." + far.name() + ".part-abcdef"), 1U) << "that cannot be known from here";
    EXPECT_EQ(left.count(".odd.part-abcdef"), 1U);
}

TEST_F(KitSweepRun, OfSeveralTakersOneGetsAStaleClaim)
{
    plan(1);
    const kit::sweep::Folder folder(dir());
    const std::string id = kit::sweep::readTasks(dir()).at(0).id;
    kit::sweep::Owner dead = kit::sweep::Owner::self();
    ++dead.start;
    for (int round = 0; round < 20; ++round) {
        kit::sweep::Claims claims(folder);
        test::writeFile(dir() + "/claims/" + id + ".0", claimText(dead));
        std::atomic<int> taken = 0;
        {
            std::vector<std::jthread> takers;
            for (int i = 0; i < 4; ++i) {
                takers.emplace_back([&] { taken += claims.take(id).has_value() ? 1 : 0; });
            }
        }
        EXPECT_EQ(taken, 1);
        fs::remove(dir() + "/claims/" + id + ".0");
        fs::remove(dir() + "/claims/" + id + ".1");
    }
}

/// The program as a process of its own, for tests that end it.
class Child {
public:
    explicit Child(const kit::sweep::SweepOptions& options) : m_process(fork())
    {
        if (m_process == 0) {
            int status = 2;
            try {
                status = kit::sweep::run(options);
            } catch (const kit::Fault&) {
            }
            _exit(status);
        }
    }
    ~Child()
    {
        if (m_process > 0) {
            end(SIGKILL);
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Sends a signal. @return the exit status, -1 if a signal ended it
    int end(int signal)
    {
        kill(m_process, signal);
        return wait();
    }

    int wait()
    {
        int status = 0;
        waitpid(m_process, &status, 0);
        m_process = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t m_process;
};

TEST_F(KitSweepRun, WaitOutlastsAnotherProcess)
{
    plan(2);
    const std::string claim = dir() + "/claims/" + kit::sweep::readTasks(dir()).at(0).id + ".0";
    test::writeFile(claim, claimText({"far", "far away", 1, 1}));
    auto waiting = options(program(tell("made") + "placed"));
    waiting.resume = true;
    waiting.wait = true;
    Child child(waiting);
    ASSERT_TRUE(comes([&] { return linesOf("made") >= 1; }));
    // More than the pause between two looks, so that it has found the claim alive more than once.
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    EXPECT_EQ(linesOf("made"), 1);
    fs::last_write_time(claim, fs::file_time_type::clock::now() - std::chrono::minutes(11));
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(linesOf("made"), 2);
    EXPECT_EQ(results().size(), 2U);
}

TEST_F(KitSweepRun, WaitTakesTheResultOfAnotherProcess)
{
    plan(2);
    auto waiting = options(program(tell("made") + "[ $weight = 2 ] || sleep 1.5; placed"));
    waiting.resume = true;
    Child first(waiting);
    ASSERT_TRUE(comes([&] { return linesOf("made") >= 1; }));
    waiting.wait = true;
    EXPECT_EQ(kit::sweep::run(waiting), 0);
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(linesOf("made"), 2);
}

TEST_F(KitSweepRun, SignalStopsTheWait)
{
    plan(2);
    const std::string id = kit::sweep::readTasks(dir()).at(0).id;
    test::writeFile(dir() + "/claims/" + id + ".0", claimText({"far", "far away", 1, 1}));
    auto waiting = options(program(tell("made") + "placed"));
    waiting.resume = true;
    waiting.wait = true;
    Child child(waiting);
    ASSERT_TRUE(comes([&] { return linesOf("made") >= 1; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(child.end(SIGTERM), 128 + SIGTERM);
}

TEST_F(KitSweepRun, SignalStopsItWithoutResults)
{
    plan(2);
    const auto slow = options(program(tell("begun") + "exec sleep 60"));
    for (const int signal : {SIGTERM, SIGINT}) {
        fs::remove(m_dir.path("begun"));
        Child child(slow);
        ASSERT_TRUE(comes([&] { return linesOf("begun") > 0; }));
        EXPECT_EQ(child.end(signal), 128 + signal);
        EXPECT_TRUE(results().empty());
        expectClean();
    }
}

TEST_F(KitSweepRun, ProcessesAtOnceMakeEveryRunOnce)
{
    plan(30);
    auto both = options(program(tell("made") + "placed"));
    both.resume = true;
    both.jobs = 2;
    {
        Child first(both);
        Child second(both);
        Child third(both);
        for (Child* child : {&first, &second, &third}) {
            const int status = child->wait();
            EXPECT_TRUE(status == 0 || status == 1) << status; // the last runs may be in the others' hands
        }
    }
    EXPECT_EQ(results().size(), 30U);
    EXPECT_EQ(linesOf("made"), 30);
    expectClean();
}

TEST_F(KitSweepRun, NothingIsLostOrMadeTwiceWhenItIsKilled)
{
    constexpr int RUNS = 25;
    plan(RUNS);
    // The placement appears piece by piece, so that there is something to interrupt.
    auto sweep = options(program(tell("made") + "echo '{' >$out.json; sleep 0.01; placed"));
    sweep.resume = true;
    sweep.jobs = 2;
    std::mt19937 random(1);
    std::map<std::string, std::string> known;
    int kills = 0;
    for (; kills < 60 && known.size() < RUNS; ++kills) {
        Child child(sweep);
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 120));
        child.end(SIGKILL);
        auto now = results();
        for (const auto& [name, text] : known) {
            EXPECT_EQ(now[name], text) << "a result has changed";
        }
        for (const auto& [name, text] : now) {
            EXPECT_EQ(Json::parse(text)["status"], "clean");
        }
        known = std::move(now);
    }
    EXPECT_EQ(kit::sweep::run(sweep), 0);
    EXPECT_EQ(results().size(), static_cast<size_t>(RUNS));
    EXPECT_LE(linesOf("made"), RUNS + kills * 2) << "at most what was interrupted is made again";
    EXPECT_EQ(kit::sweep::run(sweep), 0);
    expectClean();
    EXPECT_FALSE(fs::exists(dir() + "/placements"));
}

TEST_F(KitSweepRun, CommandLineIsChecked)
{
    plan(2);
    const std::vector<test::Words> wrong{{"--shard", "0/2"}, {"--jobs", "0"},    {"--timeout", "0"},
                                         {"--memory", "-1"}, {"--shard", "2/1"}, {"--jobs", "x"}};
    for (const test::Words& words : wrong) {
        test::Words all{"sweep", "run", dir()};
        all.insert(all.end(), words.begin(), words.end());
        EXPECT_EQ(test::runKit(all).status, 2) << words[0] << " " << words[1];
    }
    EXPECT_EQ(test::runKit({"sweep"}).status, 2);
    EXPECT_EQ(test::runKit({"sweep", "run", m_dir.path("none")}).status, 2);
    EXPECT_FALSE(fs::exists(m_dir.path("none")));
}

TEST_F(KitSweepRun, ProgressIsToldUnlessQuiet)
{
    plan(2);
    const std::string path = program("placed");
    testing::internal::CaptureStderr();
    auto loud = options(path);
    loud.quiet = false;
    kit::sweep::run(loud);
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(told.rfind("2 runs: 2 clean, 0 not clean, 0 failed; ", 0), 0U) << told;
    testing::internal::CaptureStderr();
    resume("placed");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
