// SPDX-License-Identifier: BSD-3-Clause
// Programs run to their end.
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>

#include "kit/base/fault.h"
#include "kit/base/process/childProcess.h"
#include "kit/kitRun.h"
#include "support/guards.h"

namespace {

using kit::process::Ending;
using test::contentOf;

class KitProcess : public testing::Test {
protected:
    Ending shell(const std::string& script)
    {
        return kit::process::run({"/bin/sh", "-c", script}, m_dir.path("out"), m_dir.path("err"));
    }

    test::TempDir m_dir;
};

TEST_F(KitProcess, TellsTheExitStatus)
{
    EXPECT_EQ(shell("exit 0").status, 0);
    const Ending ending = shell("exit 7");
    EXPECT_EQ(ending.status, 7);
    EXPECT_EQ(ending.signal, 0);
}

TEST_F(KitProcess, TellsTheSignal)
{
    const Ending ending = shell("kill -TERM $$");
    EXPECT_EQ(ending.status, -1);
    EXPECT_EQ(ending.signal, SIGTERM);
}

TEST_F(KitProcess, StreamsGoToTheirFiles)
{
    shell("echo one; echo two >&2");
    EXPECT_EQ(contentOf(m_dir.path("out")), "one\n");
    EXPECT_EQ(contentOf(m_dir.path("err")), "two\n");
    kit::process::run({"/bin/sh", "-c", "echo one; echo two >&2"}, m_dir.path("both"), m_dir.path("both"));
    EXPECT_EQ(contentOf(m_dir.path("both")), "one\ntwo\n");
}

TEST_F(KitProcess, HasNothingToRead)
{
    EXPECT_EQ(shell("read line").status, 1);
}

TEST_F(KitProcess, TellsTimeAndMemory)
{
    const Ending idle = shell("sleep 0.2");
    EXPECT_GE(idle.seconds, 0.2);
    EXPECT_LT(idle.cpuSeconds, idle.seconds);
    EXPECT_GT(idle.peakKib, 0);
}

TEST_F(KitProcess, ProgramThatIsNotThereIsAFault)
{
    EXPECT_THROW(kit::process::run({m_dir.path("none")}, m_dir.path("out"), m_dir.path("err")), kit::Fault);
}

TEST_F(KitProcess, EndingsAreKnownWhereTheParentIgnoredThem)
{
    std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(shell("exit 7").status, 7);
    std::signal(SIGCHLD, SIG_IGN);
    const Ending limited = kit::process::run({"/bin/sh", "-c", "exit 7"}, m_dir.path("out"),
                                             m_dir.path("err"), {.seconds = 60, .stop = {}});
    EXPECT_EQ(limited.status, 7);
}

TEST_F(KitProcess, EndingThatCannotBeKnownIsAFault)
{
    std::jthread thief([this] {
        while (!std::filesystem::exists(m_dir.path("begun"))) {
            std::this_thread::yield();
        }
        std::signal(SIGCHLD, SIG_IGN); // the system throws the ending away
        m_dir.write("go", "");
    });
    const std::string begun = m_dir.path("begun");
    EXPECT_THROW(
        shell("touch '" + begun + "'; while [ ! -e '" + m_dir.path("go") + "' ]; do sleep 0.01; done"),
        kit::Fault);
    std::signal(SIGCHLD, SIG_DFL);
}

TEST_F(KitProcess, OwnPathIsThisProgram)
{
    EXPECT_EQ(std::filesystem::path(kit::process::ownPath()).filename(), "test_kit");
}

TEST_F(KitProcess, ShellTextIsWhatAShellReadsBack)
{
    const std::vector<std::string> words{"/bin/echo", "plain", "two words", "it's", "", "a$b;c"};
    EXPECT_EQ(kit::process::shellText(words), "/bin/echo plain 'two words' 'it'\\''s' '' 'a$b;c'");
    shell(kit::process::shellText(words));
    EXPECT_EQ(contentOf(m_dir.path("out")), "plain two words it's  a$b;c\n");
}

} // namespace
