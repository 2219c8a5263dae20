// SPDX-License-Identifier: BSD-3-Clause
// The program where its output does not get through.
#include <sys/wait.h>

#include <cstdlib>

#include "kit/kitRun.h"

namespace {

namespace fs = std::filesystem;
using test::contentOf;
using test::Words;

/// A placed design, and the program run by a shell.
class KitProgram : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_dir = new test::TempDir;
        s_design = new test::GeneratedDesign;
        const test::KitOutcome placed =
            test::runKit({"place", s_design->base(), "--cell-path", s_design->lib(), "-o", s_dir->path("o")});
        ASSERT_LE(placed.status, 1) << placed.error;
        const std::string study = R"({"designs": [{"name": "d", "base": ")" + s_design->base() +
                                  R"(", "cell_path": ")" + s_design->lib() + R"("}], "grid": {"algo": [0]}})";
        const test::KitOutcome planned =
            test::runKit({"sweep", "plan", s_dir->write("study.json", study), "-o", s_dir->path("sweep")});
        ASSERT_EQ(planned.status, 0) << planned.error;
    }
    static void TearDownTestSuite()
    {
        delete s_design;
        delete s_dir;
    }

    /// Runs a line with $KIT, $D for the folder of results, $B for the design and $L for its library.
    /// Standard error goes to m_error. @return exit status, negative for a signal
    int shell(const std::string& line)
    {
        const std::string script = "KIT='" VIRELOCE_KIT_PROGRAM "' D='" + s_dir->path("") + "' B='" +
                                   s_design->base() + "' L='" + s_design->lib() + "'; cd '" + m_dir.path("") +
                                   "' && { " + line + "; } 2>" + s_dir->path("err");
        const int status = std::system(script.c_str());
        m_error = contentOf(s_dir->path("err"));
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(m_dir.path(""))) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    static test::TempDir* s_dir;
    static test::GeneratedDesign* s_design;
    test::TempDir m_dir;
    std::string m_error;
};

test::TempDir* KitProgram::s_dir = nullptr;
test::GeneratedDesign* KitProgram::s_design = nullptr;

constexpr const char* PRINTING[] = {
    "compare $D/o.json",
    "verify $D/o.place --colors $D/o.colors --cell-path $L",
    "lint $B --cell-path $L",
    "sweep collect $D/sweep",
    "sweep plan $D/study.json -o plan",
    "gen g --components 1000",
    "--help",
};

TEST_F(KitProgram, OutputThatCannotBeWrittenIsStatus2)
{
    for (const std::string command : PRINTING) {
        EXPECT_EQ(shell("$KIT " + command + " >/dev/full"), 2) << command;
        EXPECT_NE(m_error.find("vireloce-kit: cannot write standard output: No space left on device\n"),
                  std::string::npos)
            << command << ": " << m_error;
    }
}

TEST_F(KitProgram, OutputThatIsClosedIsStatus2)
{
    for (const std::string command : PRINTING) {
        const std::string forced = command.starts_with("sweep plan") ? " --force" : "";
        EXPECT_EQ(shell("$KIT " + command + forced + " >&-"), 2) << command;
        EXPECT_NE(m_error.find("vireloce-kit: cannot write standard output: Bad file descriptor\n"),
                  std::string::npos)
            << command << ": " << m_error;
    }
}

TEST_F(KitProgram, NoFileIsTakenForAClosedStream)
{
    EXPECT_EQ(shell("$KIT view $D/o.place -o v.svg --cell-path $L <&- >&-"), 0) << m_error;
    EXPECT_EQ(contentOf(m_dir.path("v.svg")).substr(0, 5), "<?xml")
        << contentOf(m_dir.path("v.svg")).substr(0, 80);
}

TEST_F(KitProgram, AReaderWhoGoesIsNoFault)
{
    const std::string judge = "$KIT verify $D/o.place --colors $D/o.colors --cell-path $L";
    const int status = shell(judge + " >all");
    EXPECT_EQ(shell("{ while [ ! -e gone ]; do :; done; " + judge +
                    "; echo $? >status; } | { exec <&-; touch gone; }"),
              0);
    EXPECT_EQ(m_error, "");
    EXPECT_EQ(contentOf(m_dir.path("status")), std::to_string(status) + "\n") << "the work is done";
}

TEST_F(KitProgram, WhatATerminalWouldObeyIsEscaped)
{
    EXPECT_EQ(shell("$KIT compare \"$(printf 'a\\033[2Jb\\377')\""), 2);
    EXPECT_EQ(m_error, "vireloce-kit: cannot open file a\\x1b[2Jb\\xff: No such file or directory\n");
}

TEST_F(KitProgram, CompressedFilesAreCalledThat)
{
    m_dir.write("r.gz", "\x1f\x8b\x08");
    EXPECT_EQ(shell("$KIT compare r.gz"), 2);
    EXPECT_EQ(m_error, "vireloce-kit: r.gz is gzip-compressed: unpack it first\n");
}

TEST_F(KitProgram, AFullFileSystemKeepsNothing)
{
    const auto onDiskOf = [this](const std::string& size) {
        return shell("unshare -rm sh -c 'mount -t tmpfs -o size=" + size +
                     " none . || exit 77; cd .; cd \"$1\"; $2 gen o --components 1000 --cell-dir . "
                     ">/dev/null; echo $? >$3; ls >>$3' sh \"$PWD\" $KIT $D/left");
    };
    if (onDiskOf("64k") != 0) {
        GTEST_SKIP() << "no small disk can be had here: " << m_error;
    }
    EXPECT_EQ(contentOf(s_dir->path("left")), "2\n");
    EXPECT_NE(m_error.find(": No space left on device\n"), std::string::npos) << m_error;
    EXPECT_EQ(onDiskOf("64m"), 0) << m_error;
    EXPECT_EQ(contentOf(s_dir->path("left")).substr(0, 2), "0\n");
}

/// A subcommand that writes a set of files.
struct Writer {
    const char* name;
    const char* command;
};

constexpr Writer WRITERS[] = {
    {"Gen", "$KIT gen o --components 1000 --cell-types 4 --cell-dir . --lef-def"},
    {"Place", "$KIT place $B --cell-path $L -o o"},
    {"View", "$KIT view $D/o.place --cell-path $L -o o.html"},
    {"Color", "$KIT color --lef '" VIRELOCE_KIT_EXAMPLES "/raw/Nangate45_stdcell.lef' -o . --svg"},
};

class KitFullDisk : public KitProgram, public testing::WithParamInterface<Writer> {};

/// With each limit, a set is there as a whole or not at all, and no other file is.
TEST_P(KitFullDisk, ASetIsThereWholeOrNotAtAll)
{
    ASSERT_LE(shell(std::string(GetParam().command) + " >/dev/null"), 1) << m_error;
    const std::set<std::string> all = files();
    int failures = 0;
    for (int blocks = 1; blocks < 1'000'000; blocks *= 2) {
        for (const std::string& name : all) {
            fs::remove(m_dir.path(name));
        }
        const int status =
            shell("(ulimit -f " + std::to_string(blocks) + "; exec " + GetParam().command + " >/dev/null)");
        if (files() == all) {
            EXPECT_LE(status, 1) << m_error;
            break;
        }
        EXPECT_EQ(status, 2);
        ++failures;
        EXPECT_TRUE(files().empty()) << "with files of " << blocks << " blocks there is " << *files().begin();
        EXPECT_NE(m_error.find(": File too large\n"), std::string::npos) << m_error;
    }
    EXPECT_GT(failures, 0) << "the limits must matter";
    EXPECT_EQ(files(), all);
}

INSTANTIATE_TEST_SUITE_P(Each, KitFullDisk, testing::ValuesIn(WRITERS),
                         [](const auto& writer) { return writer.param.name; });

} // namespace
