// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/report.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "support/guards.h"

namespace {

using vireloce::report;
using vireloce::reportf;
using vireloce::ReportScope;

/// Standard output of an action, as bytes of the process.
template <class Action>
std::string standardOutputOf(Action action)
{
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

void writeMixed()
{
    report() << "a " << 1 << '\n';
    reportf("b %d %s\n", 2, "two");
    report() << "c ";
    reportf("%.2f", 3.0);
    report() << "\nd\n";
}

const char* const MIXED = "a 1\nb 2 two\nc 3.00\nd\n";

TEST(Report, GoesToStandardOutput)
{
    EXPECT_EQ(&report(), &std::cout);
    EXPECT_EQ(standardOutputOf(writeMixed), MIXED);
}

TEST(Report, StreamedAndFormattedTextComeInProgramOrder)
{
    const test::ReportCapture capture;
    writeMixed();
    EXPECT_EQ(capture.text(), MIXED);
}

TEST(Report, KeepsProgramOrderWithWhatOthersPrint)
{
    const std::string text = standardOutputOf([] {
        std::printf("1\n");
        report() << "2\n";
        reportf("3\n");
        std::printf("4\n");
        std::cout << "5\n";
        reportf("6\n");
    });
    EXPECT_EQ(text, "1\n2\n3\n4\n5\n6\n");
}

TEST(ReportScope, TakesTheWholeReport)
{
    std::ostringstream target;
    const std::string left = standardOutputOf([&target] {
        const ReportScope scope(&target);
        writeMixed();
    });
    EXPECT_EQ(target.str(), MIXED);
    EXPECT_EQ(left, "");
}

TEST(ReportScope, GivesTheReportBackToTheScopeAroundIt)
{
    std::ostringstream outer;
    std::ostringstream inner;
    {
        const ReportScope first(&outer);
        reportf("one\n");
        {
            const ReportScope second(&inner);
            report() << "two\n";
        }
        report() << "three\n";
    }
    EXPECT_EQ(outer.str(), "one\nthree\n");
    EXPECT_EQ(inner.str(), "two\n");
    EXPECT_EQ(&report(), &std::cout);
}

TEST(ReportScope, FormatOfTheTargetHoldsForStreamedTextAlone)
{
    std::ostringstream target;
    const ReportScope scope(&target);
    report().width(6);
    reportf("%d\n", 7);
    report() << 8 << '\n';
    EXPECT_EQ(target.str(), "7\n     8\n");
}

struct FormatCase {
    const char* name;
    void (*write)();
    std::string want;
};

void PrintTo(const FormatCase& row, std::ostream* out)
{
    *out << row.name;
}

class Reportf : public testing::TestWithParam<FormatCase> {};

TEST_P(Reportf, WritesWhatPrintfWrites)
{
    const test::ReportCapture capture;
    GetParam().write();
    EXPECT_EQ(capture.text(), GetParam().want);
}

const FormatCase FORMATS[] = {
    {"plain_text", [] { reportf("abc\n"); }, "abc\n"},
    {"nothing", [] { reportf("%s", ""); }, ""},
    {"percent_sign", [] { reportf("100%%"); }, "100%"},
    {"two_decimals", [] { reportf("%.2f|%.2f", 1.005, -0.001); }, "1.00|-0.00"},
    {"not_a_number", [] { reportf("%f", -std::numeric_limits<double>::quiet_NaN()); }, "-nan"},
    {"width_and_type", [] { reportf("%5d|%-5d|%05d|%lu", 42, 42, 42, 42UL); }, "   42|42   |00042|42"},
    {"zero_byte_in_the_middle", [] { reportf("a%cb", 0); }, std::string("a\0b", 3)},
    {"long_text", [] { reportf("<%s>", std::string(100000, 'x').c_str()); },
     "<" + std::string(100000, 'x') + ">"},
};
INSTANTIATE_TEST_SUITE_P(Text, Reportf, testing::ValuesIn(FORMATS),
                         [](const auto& row) { return row.param.name; });

TEST(EndRun, PrintsTheLineWithALineEndAfterAllThatCameBefore)
{
    const std::string text = test::reportOfEndedRun([] {
        report() << "STAT | before\n";
        reportf("STAT | %s\n", "formatted");
        vireloce::endRun("ERROR| the end");
    });
    EXPECT_EQ(text, "STAT | before\nSTAT | formatted\nERROR| the end\n");
}

TEST(EndRun, ThrownEndLeavesTheProcessAlive)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(test::reportOfEndedRun([] { vireloce::endRun("ERROR| again"); }), "ERROR| again\n");
    }
}

/// Text that notes how much of it was flushed.
class FlushedText : public std::stringbuf {
public:
    std::string flushed;

protected:
    int sync() override
    {
        flushed = str();
        return 0;
    }
};

TEST(EndRun, LineIsFlushedBeforeItIsThrown)
{
    FlushedText text;
    std::ostream target(&text);
    const ReportScope scope(&target);
    EXPECT_THROW(vireloce::endRun("ERROR| x"), vireloce::RunError);
    EXPECT_EQ(text.flushed, "ERROR| x\n");
}

/// The error of an action that must end the run.
template <class Action>
vireloce::RunError errorOf(Action action)
{
    const test::ReportCapture capture;
    try {
        action();
    } catch (const vireloce::RunError& error) {
        EXPECT_EQ(capture.text(), error.what() + std::string("\n"));
        return error;
    }
    ADD_FAILURE() << "the run went on";
    return vireloce::RunError("");
}

TEST(RunError, HasFileLineAndText)
{
    const vireloce::RunError error = errorOf([] { vireloce::endRunAt("some/a.place", 12, "no x"); });
    EXPECT_EQ(error.file, "some/a.place");
    EXPECT_EQ(error.line, 12);
    EXPECT_EQ(error.text, "no x");
}

TEST(RunError, FaultAtNoLineOfAFileHasItsTextWithoutTheTag)
{
    for (const char* tag : {"ERROR", "WARNING"}) {
        const vireloce::RunError error = errorOf([tag] { vireloce::endRun(std::string(tag) + "| no | x"); });
        EXPECT_EQ(error.file, "");
        EXPECT_EQ(error.line, 0);
        EXPECT_EQ(error.text, "no | x");
    }
}

TEST(EndRunAt, NamesTheFileTheLineAndTheFault)
{
    EXPECT_EQ(test::reportOfEndedRun([] { vireloce::endRunAt("some/a.place", 12, "no x"); }),
              "ERROR| some/a.place:12: no x\n");
}

TEST(EndRun, NulBytesOfANameArePrinted)
{
    const std::string name("a\0b", 3);
    EXPECT_EQ(test::reportOfEndedRun([&] { vireloce::endRun("ERROR| " + name); }), "ERROR| " + name + "\n");
    EXPECT_EQ(test::reportOfEndedRun([&] { vireloce::endRunAt(name, 1, name); }),
              "ERROR| " + name + ":1: " + name + "\n");
}

TEST(EndRunAt, LineNumberMayNeedMoreThan32Bits)
{
    EXPECT_EQ(test::reportOfEndedRun([] { vireloce::endRunAt("f", 5000000000, "x"); }),
              "ERROR| f:5000000000: x\n");
}

/// What a process printed, and how it ended.
struct Ended {
    std::string output;
    int status = -1;
};

/// Runs an action in a child process whose standard output is a pipe.
template <class Action>
Ended inChild(Action action)
{
    Ended ended;
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    std::fflush(nullptr);
    const pid_t child = fork();
    EXPECT_GE(child, 0);
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        const ReportScope program(nullptr);
        action();
        _exit(99);
    }
    close(ends[1]);
    char chunk[4096];
    for (ssize_t n = 0; (n = read(ends[0], chunk, sizeof chunk)) > 0;) {
        ended.output.append(chunk, static_cast<size_t>(n));
    }
    close(ends[0]);
    EXPECT_EQ(waitpid(child, &ended.status, 0), child);
    return ended;
}

TEST(EndRun, EndsTheProcessWithStatus0AndAWholeReport)
{
    const Ended ended = inChild([] {
        writeMixed();
        vireloce::endRun("ERROR| over");
    });
    EXPECT_TRUE(WIFEXITED(ended.status));
    EXPECT_EQ(WEXITSTATUS(ended.status), 0);
    EXPECT_EQ(ended.output, std::string(MIXED) + "ERROR| over\n");
}

} // namespace
