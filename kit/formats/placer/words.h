// SPDX-License-Identifier: BSD-3-Clause
// A text as words between white space.
#pragma once

#include <string_view>

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

} // namespace kit::placer
