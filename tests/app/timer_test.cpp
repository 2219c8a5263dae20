// SPDX-License-Identifier: BSD-3-Clause
// The clock of the two CPU-time lines against the system's own figures.
#include "qlib/timer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

rusage usageOf(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return usage;
}

double userSeconds()
{
    return seconds(usageOf(RUSAGE_SELF).ru_utime) + seconds(usageOf(RUSAGE_CHILDREN).ru_utime);
}

double systemSeconds()
{
    return seconds(usageOf(RUSAGE_SELF).ru_stime);
}

TEST(CpuTime, IsUserTimeWithoutSystemTime)
{
    constexpr double SYSTEM_TIME = 0.03;
    const int zeros = open("/dev/zero", O_RDONLY);
    static char buffer[1 << 16];
    while (systemSeconds() < SYSTEM_TIME) {
        ASSERT_GT(read(zeros, buffer, sizeof buffer), 0);
    }
    close(zeros);
    const double before = userSeconds();
    const double now = qLib::timer();
    const double after = userSeconds();
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
    EXPECT_LT(after - before, SYSTEM_TIME) << "too far apart to tell";
}

} // namespace
