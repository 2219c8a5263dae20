// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/process/watch.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <string>

namespace kit::process {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds MEMORY_INTERVAL{10};
constexpr double LONGEST = 1e9; // seconds, 30 years; no overflow in the clock's units

/// Memory that a process has in use, 0 if it is gone.
int64_t residentKib(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/statm");
    int64_t total = 0;
    int64_t resident = 0;
    file >> total >> resident;
    return file ? resident * (sysconf(_SC_PAGESIZE) / 1024) : 0;
}

Clock::time_point deadlineOf(const Limits& limits)
{
    const double seconds = limits.seconds > 0 ? std::min(limits.seconds, LONGEST) : LONGEST;
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

} // namespace

Watch::Watch(pid_t child, const Limits& limits)
    : m_child(child), m_limits(limits), m_deadline(deadlineOf(limits)), m_thread([this] { run(); })
{
}

Watch::Reason Watch::end()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ended = true;
    }
    m_changed.notify_all();
    m_thread.join();
    return m_reason;
}

void Watch::run()
{
    std::unique_lock lock(m_mutex);
    while (!m_ended && m_reason == Reason::NONE) {
        m_changed.wait_until(lock, m_limits.stop, nextLook(), [this] { return m_ended; });
        m_reason = m_ended ? Reason::NONE : reasonToKill();
    }
    if (!m_ended) {
        kill(-m_child, SIGKILL);
        kill(m_child, SIGKILL); // should it not yet have made its group
    }
}

Watch::Reason Watch::reasonToKill() const
{
    if (m_limits.stop.stop_requested()) {
        return Reason::STOP;
    }
    if (m_limits.memoryKib > 0 && residentKib(m_child) > m_limits.memoryKib) {
        return Reason::MEMORY;
    }
    return Clock::now() >= m_deadline ? Reason::TIME : Reason::NONE;
}

Clock::time_point Watch::nextLook() const
{
    return m_limits.memoryKib > 0 ? std::min(m_deadline, Clock::now() + MEMORY_INTERVAL) : m_deadline;
}

} // namespace kit::process
