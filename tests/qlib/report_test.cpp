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
using vireloce::setEndHandler;
using vireloce::setReport;

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

TEST(SetReport, RedirectTakesTheWholeReport)
{
    std::ostringstream target;
    const std::string left = standardOutputOf([&target] {
        setReport(&target);
        writeMixed();
        setReport(nullptr);
    });
    EXPECT_EQ(target.str(), MIXED);
    EXPECT_EQ(left, "");
}

TEST(SetReport, TargetMayChangeBetweenTwoLines)
{
    std::ostringstream first;
    std::ostringstream second;
    setReport(&first);
    reportf("one\n");
    setReport(&second);
    report() << "two\n";
    setReport(nullptr);
    EXPECT_EQ(first.str(), "one\n");
    EXPECT_EQ(second.str(), "two\n");
    EXPECT_EQ(&report(), &std::cout);
}

TEST(SetReport, FormatOfTheTargetHoldsForStreamedTextAlone)
{
    std::ostringstream target;
    setReport(&target);
    report().width(6);
    reportf("%d\n", 7);
    report() << 8 << '\n';
    setReport(nullptr);
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

TEST(EndRun, InterceptedRunLeavesTheProcessAlive)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(test::reportOfEndedRun([] { vireloce::endRun("again"); }), "again\n");
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

TEST(EndRun, LineIsFlushedBeforeTheHandlerIsCalled)
{
    FlushedText text;
    std::ostream target(&text);
    setReport(&target);
    const test::EndIntercept intercept;
    EXPECT_THROW(vireloce::endRun("ERROR| x"), test::RunEnded);
    setReport(nullptr);
    EXPECT_EQ(text.flushed, "ERROR| x\n");
}

TEST(EndRunAt, NamesTheFileTheLineAndTheFault)
{
    EXPECT_EQ(test::reportOfEndedRun([] { vireloce::endRunAt("some/a.place", 12, "no x"); }),
              "ERROR| some/a.place:12: no x\n");
}

TEST(EndRunAt, LineNumberMayNeedMoreThan32Bits)
{
    EXPECT_EQ(test::reportOfEndedRun([] { vireloce::endRunAt("f", 5000000000, "x"); }),
              "ERROR| f:5000000000: x\n");
}

TEST(SetEndHandler, ReturnsTheHandlerThatWasInForce)
{
    const auto first = [] { throw test::RunEnded{}; };
    const auto second = [] { throw 5; };
    const vireloce::EndHandler before = setEndHandler(nullptr);
    EXPECT_EQ(setEndHandler(first), nullptr);
    EXPECT_EQ(setEndHandler(second), first);
    {
        const test::ReportCapture quiet;
        EXPECT_THROW(vireloce::endRun("x"), int);
    }
    EXPECT_EQ(setEndHandler(nullptr), second);
    EXPECT_EQ(setEndHandler(before), nullptr);
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
        setEndHandler(nullptr);
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

TEST(EndRun, RedirectedReportEndsTheProcessWithStatus0Too)
{
    const Ended ended = inChild([] {
        std::ostringstream target;
        setReport(&target);
        vireloce::endRun("ERROR| over");
    });
    EXPECT_TRUE(WIFEXITED(ended.status));
    EXPECT_EQ(WEXITSTATUS(ended.status), 0);
    EXPECT_EQ(ended.output, "");
}

TEST(SetEndHandler, NullptrMeansTheEndOfTheProcessAgain)
{
    const Ended ended = inChild([] {
        setEndHandler([] { std::_Exit(7); });
        setEndHandler(nullptr);
        vireloce::endRun("x");
    });
    EXPECT_EQ(WEXITSTATUS(ended.status), 0);
    EXPECT_EQ(ended.output, "x\n");
}

TEST(SetEndHandler, HandlerMayEndTheProcessItsOwnWay)
{
    const Ended ended = inChild([] {
        setEndHandler([] { std::_Exit(7); });
        vireloce::endRun("x");
    });
    EXPECT_EQ(WEXITSTATUS(ended.status), 7);
    EXPECT_EQ(ended.output, "x\n");
}

} // namespace
