// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/timer.h"

#include <sys/resource.h>

namespace qLib {

namespace {

/// @param who  RUSAGE_SELF or RUSAGE_CHILDREN
double userSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec) + static_cast<double>(usage.ru_utime.tv_usec) / 1e6;
}

} // namespace

double timer()
{
    return userSeconds(RUSAGE_SELF) + userSeconds(RUSAGE_CHILDREN);
}

} // namespace qLib
