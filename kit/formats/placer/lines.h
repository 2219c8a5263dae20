// SPDX-License-Identifier: BSD-3-Clause
// A text as lines of tokens.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kit::placer {

/// A text without leading and closing tabs.
std::string_view withoutTabs(std::string_view text);

/// A word of a line.
struct Token {
    std::string_view text;
    int64_t column = 0; ///< from 1
};

/// Hands out the lines of a text, one after the other.
///
/// Tokens are separated by spaces, as in the placer: a tab is part of one.
class LineReader {
public:
    /// @param text  must outlive the reader
    explicit LineReader(std::string_view text) : m_text(text) {}

    /// Goes to the next line. @return false at the end of the text
    bool next();

    /// Makes next() hand out the present line once more.
    void putBack() { m_repeat = true; }

    std::string_view line() const { return m_line; }              ///< without its line end
    int64_t number() const { return m_number; }                   ///< from 1
    const std::vector<Token>& tokens() const { return m_tokens; } ///< valid until next()
    bool endsWithReturn() const { return m_return; } ///< a carriage return stands before the line end

    /// The text up to the first space or tab after leading ones, empty on a blank line.
    std::string_view firstWord() const;

    /// Cuts the present line into tokens at tabs too, as it was meant.
    void splitAtTabs() { cutTokens(" \t"); }

private:
    void cutTokens(std::string_view separators);

    std::string_view m_text;
    size_t m_pos = 0; ///< start of the next line
    std::string_view m_line;
    int64_t m_number = 0;
    std::vector<Token> m_tokens;
    bool m_return = false;
    bool m_repeat = false;
};

} // namespace kit::placer
