// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <csignal>

namespace kit::sweep {

/// Takes SIGINT and SIGTERM while it lives, instead of ending the program. One at a time.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// The signal that came last, 0 if none did.
    int received() const;

private:
    struct sigaction m_interrupt {};
    struct sigaction m_terminate {};
};

} // namespace kit::sweep
