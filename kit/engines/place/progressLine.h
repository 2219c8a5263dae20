// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <chrono>

#include "legalizer/legalizer.h"

namespace kit::place {

/// One line on standard error that tells how far a placement has got, written over itself. It is shown on a
/// terminal only, a few times a second.
class ProgressLine {
public:
    /// @param quiet  whether to show nothing
    explicit ProgressLine(bool quiet);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Shows it, if it is time to.
    void show(const vireloce::Progress& progress);

private:
    using Clock = std::chrono::steady_clock;

    bool m_on;
    bool m_shown = false;
    Clock::time_point m_begin = Clock::now();
    Clock::time_point m_last;
};

} // namespace kit::place
