// SPDX-License-Identifier: BSD-3-Clause
#include "mutation/verdict.h"

#include <gtest/gtest.h>

#include <csignal>
#include <ostream>

namespace {

using mutation::ChildEnd;
using mutation::judge;
using mutation::MOST_MEMORY;
using mutation::Outcome;

const std::string SET_UP = "\n"
                           "==================================================================\n"
                           "                      Vireloce - Version 3.1                      \n"
                           "==================================================================\n"
                           "STAT | Parameters: -inlib d \n"
                           "STAT | cell type #              = 1\n"
                           "STAT | LUTable item #           = 4\n"
                           "STAT | net #                    = 0\n"
                           "STAT | row #                    = 1\n"
                           "STAT | segment #                = 1\n"
                           "STAT | component #              = 1\n"
                           "STAT | macro #                  = 0\n"
                           "STAT | max solution # for cells = 1\n"
                           "STAT | max site # on rows       = 9\n"
                           "STAT | max componnet # on rows  = 1\n"
                           "STAT | init HPWL                = 0\n"
                           "STAT | stitch # lowerB          = 0\n"
                           "\n"
                           "STAT | LUT CPU time             = 0.001 s\n"
                           "\n";

const std::string RESULT = "STAT | final HPWL               = 0\n"
                           "STAT | HPWL increases           = 0(-nan%)\n"
                           "STAT | final stitch   #         = 0\n"
                           "STAT | final conflict #         = 0\n";

const std::string LAST_LINES = "\nSTAT | Virelocer CPU time       = 12.345 s\n\n";

const std::string USAGE = "STAT | Parameters: -x \n"
                          "ERROR| can NOT parse: -x\n"
                          "\n===\n                        Vireloce Usage                             \n"
                          "===================================================================\n\n";

/// The status of a process that a signal ended.
constexpr int signalled(int signal)
{
    return signal;
}

/// The status of a process that left by itself.
constexpr int exited(int code)
{
    return code << 8;
}

struct JudgeCase {
    const char* name;
    std::string report;
    int status;
    Outcome outcome;
    const char* what = ""; ///< part of the reason
};

void PrintTo(const JudgeCase& row, std::ostream* out)
{
    *out << row.report;
}

class Judge : public testing::TestWithParam<JudgeCase> {};

TEST_P(Judge, Says)
{
    const JudgeCase& row = GetParam();
    const mutation::Verdict verdict = judge(ChildEnd{.status = row.status}, row.report, "");
    EXPECT_EQ(verdict.outcome, row.outcome) << verdict.what;
    EXPECT_NE(verdict.what.find(row.what), std::string::npos) << verdict.what;
}

const JudgeCase ROWS[] = {
    {"FinalForAWholeReport", SET_UP + RESULT + LAST_LINES, exited(0), Outcome::FINAL_REPORT},
    {"FailureForAReportWithoutItsLastLine", SET_UP + RESULT, exited(0), Outcome::FAILURE, "conflict"},
    {"FailureForTextBehindTheLastLine", SET_UP + RESULT + LAST_LINES + "x\n", exited(0), Outcome::FAILURE,
     "x"},
    {"FailureForAReportThatLacksAResult", SET_UP + LAST_LINES, exited(0), Outcome::FAILURE, "not whole"},
    {"FailureForResultsInAnotherOrder", RESULT + SET_UP + LAST_LINES, exited(0), Outcome::FAILURE,
     "not whole"},
    {"FailureForAnIncompleteLine", SET_UP + "ERROR| cannot open file x", exited(0), Outcome::FAILURE,
     "complete line"},
    {"FailureForNoReport", "", exited(0), Outcome::FAILURE, "complete line"},
    {"FailureForASetUpOnly", SET_UP, exited(0), Outcome::FAILURE, "not whole"},
    {"UsageBehindTheErrorAboutAnOption", USAGE, exited(0), Outcome::USAGE},
    {"FailureForAnUsageThatIsCut", USAGE.substr(0, USAGE.size() - 1), exited(0), Outcome::FAILURE},
    {"ErrorForALastLineThatSaysOne", SET_UP + "ERROR| can NOT solve the placement through global moving\n",
     exited(0), Outcome::ERROR_END, "no room"},
    {"ErrorOfTheFileThatTheLineNames", "ERROR| a/d.place:12: ROW ends after 3 tokens\n", exited(0),
     Outcome::ERROR_END, "placement file"},
    {"ErrorForTheWarningThatEndsARun", "WARNING| invalid compID and pinID, pname = \n", exited(0),
     Outcome::ERROR_END, "net member"},
    {"FailureForAnotherWarningAtTheEnd", "WARNING| larger id1\n", exited(0), Outcome::FAILURE, "larger id1"},
    {"FailureForAnErrorThatIsNotTheLastLine", "ERROR| cannot open file x\nSTAT | cell type #\n", exited(0),
     Outcome::FAILURE, "cell type"},
    {"FailureForAnUnknownError", "ERROR| \n", exited(0), Outcome::FAILURE},
    {"FailureForAnExitStatus", SET_UP + RESULT + LAST_LINES, exited(23), Outcome::FAILURE, "exit status 23"},
    {"FailureForASignal", SET_UP + RESULT + LAST_LINES, signalled(SIGSEGV), Outcome::FAILURE, "signal 11"},
    {"TimeOutDuringThePasses", SET_UP, signalled(SIGPROF), Outcome::TIME_OUT},
    {"TimeOutForAWaitDuringThePasses", SET_UP, signalled(SIGALRM), Outcome::TIME_OUT},
    {"FailureForAHangDuringTheSetUp", SET_UP.substr(0, SET_UP.size() - 50), signalled(SIGPROF),
     Outcome::FAILURE, "hung"},
};

INSTANTIATE_TEST_SUITE_P(Row, Judge, testing::ValuesIn(ROWS),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Judge, SaysFailureForAnythingOnStandardError)
{
    const std::string report = SET_UP + RESULT + LAST_LINES;
    EXPECT_EQ(judge({}, report, "runtime error: index 3 out of bounds").outcome, Outcome::FAILURE);
    EXPECT_EQ(judge({}, report, "").outcome, Outcome::FINAL_REPORT);
}

TEST(Judge, SaysFailureForTooMuchMemory)
{
    const std::string report = SET_UP + RESULT + LAST_LINES;
    EXPECT_EQ(judge({.peakKiB = MOST_MEMORY / 1024}, report, "").outcome, Outcome::FINAL_REPORT);
    EXPECT_EQ(judge({.peakKiB = MOST_MEMORY / 1024 + 1}, report, "").outcome, Outcome::FAILURE);
}

} // namespace
