// SPDX-License-Identifier: BSD-3-Clause
// A text as words between white space, or as lines of tokens.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "kit/base/finding.h"

namespace kit::placer {

/// A word and where it stands.
struct Word {
    std::string_view text;   ///< empty at the end of the text
    Place at;                ///< at the end of the text: its last line, without a column
    bool startsLine = false; ///< no word stands before it on its line
};

/// Hands out the words of a text, one after the other.
class Words {
public:
    /// @param text  must outlive the words
    explicit Words(std::string_view text) : m_text(text) {}

    /// The next word; it stays the next one.
    const Word& peek();

    /// Takes the next word.
    Word next();

    /// Whether no words are left.
    bool atEnd() { return peek().text.empty(); }

    /// Bytes after the words taken.
    size_t bytesLeft() const { return m_text.size() - m_taken; }

private:
    void advance();

    std::string_view m_text;
    size_t m_taken = 0;     ///< end of the last word taken
    size_t m_pos = 0;       ///< end of m_next
    size_t m_lineStart = 0; ///< first byte of the line of m_next
    int64_t m_line = 1;     ///< line of m_next
    Word m_next;
    bool m_known = false; ///< m_next holds the next word
};

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
