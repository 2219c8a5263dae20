// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/timer.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace {

/// Works until the timer has moved by so many seconds; gives up after ten seconds on the clock.
void workFor(double seconds)
{
    const double begin = qLib::timer();
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (qLib::timer() - begin < seconds && std::chrono::steady_clock::now() < giveUp) {
        for (volatile int i = 0; i < 1000000;) {
            i = i + 1;
        }
    }
}

TEST(Timer, NeverGoesBack)
{
    double last = qLib::timer();
    EXPECT_GE(last, 0.0);
    for (int i = 0; i < 1000; ++i) {
        const double now = qLib::timer();
        ASSERT_GE(now, last);
        last = now;
    }
}

TEST(Timer, CountsTheWorkOfTheProcess)
{
    const double begin = qLib::timer();
    workFor(0.05);
    EXPECT_GE(qLib::timer() - begin, 0.05);
}

/// User time of the process and of its children by the system's account, seconds.
double accountedUserTime()
{
    double sum = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        EXPECT_EQ(getrusage(who, &usage), 0);
        sum += static_cast<double>(usage.ru_utime.tv_sec) + static_cast<double>(usage.ru_utime.tv_usec) / 1e6;
    }
    return sum;
}

TEST(Timer, IsTheUserTimeThatTheSystemAccountsFor)
{
    for (int i = 0; i < 20; ++i) {
        workFor(0.002);
        const double before = accountedUserTime();
        const double now = qLib::timer();
        EXPECT_GE(now, before);
        EXPECT_LE(now, accountedUserTime());
    }
}

TEST(Timer, DoesNotCountWaiting)
{
    const double begin = qLib::timer();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_LT(qLib::timer() - begin, 0.1);
}

TEST(Timer, CountsTheWorkOfAChildOnceItWasWaitedFor)
{
    const double begin = qLib::timer();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        workFor(0.2);
        _exit(0);
    }
    // Until the child is waited for, its work is not counted, finished or not.
    siginfo_t info{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_LT(qLib::timer() - begin, 0.1);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_GE(qLib::timer() - begin, 0.19);
}

} // namespace
