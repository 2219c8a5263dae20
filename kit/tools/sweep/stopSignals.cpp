// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/stopSignals.h"

#include <atomic>

namespace kit::sweep {

namespace {

std::atomic<int> s_received = 0; // the handler runs in any thread
static_assert(std::atomic<int>::is_always_lock_free);

void receive(int signal)
{
    s_received = signal;
}

} // namespace

StopSignals::StopSignals()
{
    s_received = 0;
    struct sigaction action {};
    action.sa_handler = receive;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, &m_interrupt);
    sigaction(SIGTERM, &action, &m_terminate);
}

StopSignals::~StopSignals()
{
    sigaction(SIGINT, &m_interrupt, nullptr);
    sigaction(SIGTERM, &m_terminate, nullptr);
}

int StopSignals::received() const
{
    return s_received;
}

} // namespace kit::sweep
