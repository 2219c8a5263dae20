// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/progressLine.h"

#include <unistd.h>

#include <cstdio>

namespace kit::place {

ProgressLine::ProgressLine(bool quiet) : m_on(!quiet && isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine()
{
    if (m_shown) {
        std::fputc('\n', stderr);
    }
}

void ProgressLine::show(const vireloce::Progress& progress)
{
    constexpr std::chrono::milliseconds INTERVAL{200};
    const Clock::time_point now = Clock::now();
    const bool last = progress.segmentsDone == progress.numSegments;
    if (!m_on || (!last && now - m_last < INTERVAL)) {
        return;
    }
    m_last = now;
    m_shown = true;
    std::fprintf(stderr, "\rpass %d: %d of %d segments, %d cells moved out, %.1f s ", progress.pass,
                 progress.segmentsDone, progress.numSegments, progress.movedOut,
                 std::chrono::duration<double>(now - m_begin).count());
}

} // namespace kit::place
