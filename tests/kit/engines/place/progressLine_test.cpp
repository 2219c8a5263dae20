// SPDX-License-Identifier: BSD-3-Clause
// The progress line of `place`, on a terminal of the test's own.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>

#include "kit/kitRun.h"
#include "support/guards.h"
#include "support/pattern.h"

namespace {

using test::contentOf;
using test::Words;

/// Replaces the process by the program, with its standard output in a file. The terminal stays standard
/// error.
[[noreturn]] void become(const Words& words, const std::string& outputPath)
{
    const int output = open(outputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (output >= 0 && dup2(output, STDOUT_FILENO) >= 0) {
        std::vector<char*> argv{const_cast<char*>(VIRELOCE_KIT_PROGRAM)};
        for (const std::string& word : words) {
            argv.push_back(const_cast<char*>(word.c_str()));
        }
        argv.push_back(nullptr);
        execv(VIRELOCE_KIT_PROGRAM, argv.data());
    }
    _exit(127);
}

/// What comes from a terminal until its last user closes it.
std::string readAll(int terminal)
{
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t got = 0; (got = read(terminal, buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<size_t>(got));
    }
    return text;
}

/// What the program writes to a terminal as its standard error.
std::string onTerminal(const Words& words, const std::string& outputPath)
{
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        become(words, outputPath);
    }
    EXPECT_GT(child, 0);
    std::string text = readAll(terminal);
    close(terminal);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << text;
    return text;
}

class KitProgressLine : public testing::Test {
protected:
    std::string run(const Words& more = {}) const
    {
        Words words{"place", m_design.base(), "--cell-path", m_design.lib(), "-o", m_dir.path("out")};
        words.insert(words.end(), more.begin(), more.end());
        return onTerminal(words, m_dir.path("report"));
    }

    test::GeneratedDesign m_design{{"--mirrored", "0"}};
    test::TempDir m_dir;
};

TEST_F(KitProgressLine, TellsPassSegmentsCellsMovedOutAndTimeOnATerminal)
{
    const std::string shown = run();
    std::string pass;
    for (const test::Match& match : test::matchesOf(
             shown,
             "pass ([0-9]+): ([0-9]+) of ([0-9]+) segments, [0-9]+ cells moved out, [0-9]+\\.[0-9] s ")) {
        pass = match[2] == match[3] ? match[1] : pass;
    }
    EXPECT_NE(pass, "") << shown;
    EXPECT_EQ(shown.front(), '\r');
    EXPECT_EQ(shown.back(), '\n');
    EXPECT_EQ(contentOf(m_dir.path("report")).find("pass 1"), std::string::npos);
}

TEST_F(KitProgressLine, IsLeftOutWhenQuiet)
{
    EXPECT_EQ(run({"--quiet"}), "");
    EXPECT_NE(contentOf(m_dir.path("report")), "");
}

} // namespace
