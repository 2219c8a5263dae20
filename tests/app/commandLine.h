// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

#include "support/pattern.h"

namespace test {

/// The arguments of a program as main() gets them.
class CommandLine {
public:
    explicit CommandLine(std::vector<std::string> options) : m_words(std::move(options))
    {
        m_words.insert(m_words.begin(), "vireloce");
        for (std::string& word : m_words) {
            m_argv.push_back(word.data());
        }
        m_argv.push_back(nullptr);
    }
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    int argc() const { return static_cast<int>(m_words.size()); }
    char** argv() { return m_argv.data(); }

private:
    std::vector<std::string> m_words;
    std::vector<char*> m_argv;
};

/// A report with stars for the CPU times, of which only the form is certain.
inline std::string withoutTimes(const std::string& report)
{
    return replaced(report, "(CPU time +=) [0-9]+\\.[0-9]{3} s\n", "$1 * s\n");
}

} // namespace test
