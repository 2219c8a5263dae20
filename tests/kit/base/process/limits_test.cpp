// SPDX-License-Identifier: BSD-3-Clause
// Programs within limits of time and memory.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <string>
#include <thread>

#include "kit/base/process/childProcess.h"
#include "kit/kitRun.h"
#include "support/guards.h"
#include "support/waiting.h"

namespace {

using kit::process::Ending;
using kit::process::Limits;
using test::comes;

/// Whether a process is there and has not ended.
bool isRunning(int process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string id;
    std::string name;
    std::string state;
    file >> id >> name >> state;
    return file && state != "Z" && state != "X";
}

class KitProcessLimits : public testing::Test {
protected:
    Ending shell(const std::string& script, const Limits& limits)
    {
        return kit::process::run({"/bin/sh", "-c", script}, m_dir.path("out"), m_dir.path("err"), limits);
    }

    int processIn(const std::string& file) const
    {
        int process = 0;
        std::ifstream(m_dir.path(file)) >> process;
        return process;
    }

    test::TempDir m_dir;
};

TEST_F(KitProcessLimits, ProgramWithinThemEndsByItself)
{
    const Ending ending = shell("exit 3", {.seconds = 60, .memoryKib = 1 << 20, .stop = {}});
    EXPECT_EQ(ending.status, 3);
    EXPECT_FALSE(ending.timedOut || ending.overMemory || ending.stopped);
}

TEST_F(KitProcessLimits, TimeLimitKills)
{
    const Ending ending = shell("sleep 60", {.seconds = 0.1, .memoryKib = 0, .stop = {}});
    EXPECT_TRUE(ending.timedOut);
    EXPECT_EQ(ending.signal, SIGKILL);
    EXPECT_GE(ending.seconds, 0.1);
    EXPECT_LT(ending.seconds, 20);
}

TEST_F(KitProcessLimits, WholeGroupIsKilled)
{
    const std::string script = "sleep 60 & echo $! >" + m_dir.path("pid") + "; wait";
    EXPECT_TRUE(shell(script, {.seconds = 0.5, .memoryKib = 0, .stop = {}}).timedOut);
    const int process = processIn("pid");
    ASSERT_GT(process, 0);
    EXPECT_TRUE(comes([&] { return !isRunning(process); }));
}

TEST_F(KitProcessLimits, WhatAProgramLeavesBehindIsKilled)
{
    EXPECT_EQ(shell("sleep 60 & echo $! >" + m_dir.path("pid"), {}).status, 0);
    const int process = processIn("pid");
    ASSERT_GT(process, 0);
    EXPECT_TRUE(comes([&] { return !isRunning(process); }));
}

TEST_F(KitProcessLimits, MemoryLimitKills)
{
    // A text that doubles until somebody stops it.
    const Ending ending =
        shell("x=aaaaaaaa; while :; do x=$x$x; done", {.seconds = 60, .memoryKib = 300'000, .stop = {}});
    EXPECT_TRUE(ending.overMemory);
    EXPECT_FALSE(ending.timedOut);
    EXPECT_GT(ending.peakKib, 250'000);
}

TEST_F(KitProcessLimits, StopKills)
{
    std::stop_source source;
    std::jthread later([&source] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        source.request_stop();
    });
    const Ending ending = shell("sleep 60", {.seconds = 0, .memoryKib = 0, .stop = source.get_token()});
    EXPECT_TRUE(ending.stopped);
    EXPECT_LT(ending.seconds, 20);
}

TEST_F(KitProcessLimits, StopThatWasAskedForBeforeKillsAtOnce)
{
    std::stop_source source;
    source.request_stop();
    const Ending ending = shell("sleep 60", {.seconds = 0, .memoryKib = 0, .stop = source.get_token()});
    EXPECT_TRUE(ending.stopped);
    EXPECT_LT(ending.seconds, 20);
}

TEST_F(KitProcessLimits, ChildDoesNotOutliveItsKilledParent)
{
    const pid_t parent = fork();
    if (parent == 0) {
        shell("echo $$ >" + m_dir.path("pid") + ".new; mv " + m_dir.path("pid") + ".new " +
                  m_dir.path("pid") + "; exec sleep 60",
              {});
        _exit(0);
    }
    ASSERT_TRUE(comes([&] { return std::filesystem::exists(m_dir.path("pid")); }));
    const int child = processIn("pid");
    ASSERT_GT(child, 0);
    EXPECT_TRUE(isRunning(child));
    kill(parent, SIGKILL);
    waitpid(parent, nullptr, 0);
    EXPECT_TRUE(comes([&] { return !isRunning(child); }));
}

} // namespace
