// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <chrono>
#include <string>

namespace kit {

/// One line on standard error that tells how far some work has got, written over itself. It is shown on a
/// terminal only, a few times a second.
class ProgressLine {
public:
    /// @param quiet  whether to show nothing
    explicit ProgressLine(bool quiet);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Shows a text and the time since the beginning, if it is time to.
    ///
    /// @param last  shown at once
    /// @param text  gives the text
    template <typename Text>
    void show(bool last, const Text& text)
    {
        if (isDue(last)) {
            write(text());
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    bool isDue(bool last) const;
    void write(const std::string& text);

    bool m_on;
    bool m_shown = false;
    size_t m_width = 0; ///< characters of the longest line so far
    Clock::time_point m_begin = Clock::now();
    Clock::time_point m_last;
};

} // namespace kit
