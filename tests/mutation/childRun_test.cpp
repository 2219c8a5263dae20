// SPDX-License-Identifier: BSD-3-Clause
#include "mutation/childRun.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <fstream>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>

#include "mutation/inputs.h"
#include "support/guards.h"

namespace {

using mutation::ChildEnd;

/// A child and the files that it leaves.
class ChildRun : public testing::Test {
protected:
    ChildEnd run(const std::function<void()>& body, unsigned seconds = 20)
    {
        return mutation::runChild({m_dir.path("."), m_dir.path("report"), m_dir.path("errors")}, seconds,
                                  body);
    }

    std::string read(const std::string& name) const { return mutation::readFile(m_dir.path(name)); }

    test::TempDir m_dir;
};

TEST_F(ChildRun, LeavesWithStatusZeroAndItsOutputInFiles)
{
    const ChildEnd end = run([] {
        std::cout << "to the report\n";
        std::cerr << "to the errors\n";
    });
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(read("report"), "to the report\n");
    EXPECT_EQ(read("errors"), "to the errors\n");
    EXPECT_GT(end.peakKiB, 0);
}

TEST_F(ChildRun, WorksInItsFolder)
{
    run([] { std::ofstream("made") << "here"; });
    EXPECT_EQ(read("made"), "here");
}

TEST_F(ChildRun, ShowsItsExitStatus)
{
    const ChildEnd end = run([] { std::_Exit(7); });
    ASSERT_TRUE(WIFEXITED(end.status));
    EXPECT_EQ(WEXITSTATUS(end.status), 7);
}

TEST_F(ChildRun, EndsByASignalWhenAnExceptionLeavesIt)
{
    const ChildEnd end = run([] { throw std::bad_alloc(); });
    ASSERT_TRUE(WIFSIGNALED(end.status));
    EXPECT_EQ(WTERMSIG(end.status), SIGABRT);
}

TEST_F(ChildRun, IsStoppedAfterItsCpuTime)
{
    const ChildEnd end = run(
        [] {
            while (std::clock() >= 0) {
            }
        },
        1);
    ASSERT_TRUE(WIFSIGNALED(end.status));
    EXPECT_EQ(WTERMSIG(end.status), SIGPROF);
    EXPECT_GT(end.seconds, 0.5);
}

/// Where memory goes that nothing points to any more.
volatile uintptr_t s_lost = 0;

TEST_F(ChildRun, ShowsALeakWhereTheBuildLooksForOne)
{
    const ChildEnd end = run([] { s_lost = ~reinterpret_cast<uintptr_t>(new int(1)); });
    if (mutation::findsLeaks()) {
        EXPECT_TRUE(WIFEXITED(end.status) && WEXITSTATUS(end.status) != 0) << end.status;
        EXPECT_NE(read("errors").find("detected memory leaks"), std::string::npos);
    } else {
        EXPECT_EQ(end.status, 0);
    }
}

} // namespace
