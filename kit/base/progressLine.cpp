// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/progressLine.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace kit {

ProgressLine::ProgressLine(bool quiet) : m_on(!quiet && isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine()
{
    if (m_shown) {
        std::fputc('\n', stderr);
    }
}

bool ProgressLine::isDue(bool last) const
{
    constexpr std::chrono::milliseconds INTERVAL{200};
    return m_on && (last || Clock::now() - m_last >= INTERVAL);
}

void ProgressLine::write(const std::string& text)
{
    m_last = Clock::now();
    m_shown = true;
    std::array<char, 32> time{};
    std::snprintf(time.data(), time.size(), ", %.1f s ",
                  std::chrono::duration<double>(m_last - m_begin).count());
    std::string line = text + time.data();
    m_width = std::max(m_width, line.size());
    line.resize(m_width, ' '); // over what is left of a longer one
    std::fprintf(stderr, "\r%s", line.c_str());
}

} // namespace kit
