// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/progress.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "kit/base/text/text.h"

namespace kit::sweep {

namespace {

/// A time as 5 s, 2:05 min or 1:02:05 h.
std::string timeText(double seconds)
{
    const auto whole = static_cast<long long>(std::min(seconds + 0.5, 1e12));
    std::array<char, 64> text{};
    if (whole < 60) {
        std::snprintf(text.data(), text.size(), "%lld s", whole);
    } else if (whole < 3600) {
        std::snprintf(text.data(), text.size(), "%lld:%02lld min", whole / 60, whole % 60);
    } else {
        std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld h", whole / 3600, whole / 60 % 60,
                      whole % 60);
    }
    return text.data();
}

} // namespace

Progress::Progress(int64_t tasks, double seconds, bool quiet)
    : m_quiet(quiet), m_terminal(isatty(STDERR_FILENO) == 1), m_tasks(tasks), m_left(seconds),
      m_next(m_terminal ? m_begin : m_begin + std::chrono::seconds(30))
{
}

void Progress::count(Status status)
{
    ++(status == Status::CLEAN ? m_clean : status == Status::NOT_CLEAN ? m_notClean : m_failed);
}

void Progress::known(Status status, double estimate)
{
    count(status);
    m_left -= estimate;
}

void Progress::made(Status status, double estimate)
{
    count(status);
    m_left -= estimate;
    m_made += estimate;
}

void Progress::show()
{
    const Clock::time_point now = Clock::now();
    if (m_quiet || now < m_next) {
        return;
    }
    m_next = now + (m_terminal ? std::chrono::milliseconds(200) : std::chrono::seconds(30));
    std::string text = std::to_string(m_clean + m_notClean + m_failed) + " of " + std::to_string(m_tasks);
    text += m_failed > 0 ? ", " + std::to_string(m_failed) + " failed" : "";
    if (m_made > 0) { // the rest goes as what went before
        const double elapsed = std::chrono::duration<double>(now - m_begin).count();
        text += ", " + timeText(std::max(0.0, m_left) * elapsed / m_made) + " left";
    }
    std::fprintf(stderr, m_terminal ? "\r%s\x1b[K" : "%s\n", text.c_str());
}

void Progress::end()
{
    if (m_quiet) {
        return;
    }
    const double elapsed = std::chrono::duration<double>(Clock::now() - m_begin).count();
    std::fprintf(stderr, "%s%s: %lld clean, %lld not clean, %lld failed; %s%s\n", m_terminal ? "\r" : "",
                 counted(m_tasks, "run").c_str(), static_cast<long long>(m_clean),
                 static_cast<long long>(m_notClean), static_cast<long long>(m_failed),
                 timeText(elapsed).c_str(), m_terminal ? "\x1b[K" : "");
}

} // namespace kit::sweep
