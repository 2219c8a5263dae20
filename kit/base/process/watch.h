// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "kit/base/process/childProcess.h"

namespace kit::process {

/// Looks after a process group while its leader runs, and kills it when a limit is passed.
class Watch {
public:
    /// Why the group was killed.
    enum class Reason { NONE, TIME, MEMORY, STOP };

    /// @param child  leader of the group; must not be reaped before end()
    Watch(pid_t child, const Limits& limits);

    /// Nobody is killed any more after this. @return whether and why somebody was
    Reason end();

private:
    void run();
    Reason reasonToKill() const;
    std::chrono::steady_clock::time_point nextLook() const;

    pid_t m_child;
    const Limits& m_limits;
    std::chrono::steady_clock::time_point m_deadline;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    bool m_ended = false;           ///< guarded by m_mutex
    Reason m_reason = Reason::NONE; ///< guarded by m_mutex
    std::jthread m_thread;          ///< last: it uses the others
};

} // namespace kit::process
