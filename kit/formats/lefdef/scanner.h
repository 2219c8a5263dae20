// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kit::lefdef {

/// Whether a word is one of the grammar: files may write those in any case.
///
/// @param keyword  as the grammar has it, in capitals
constexpr bool isKeyword(std::string_view word, std::string_view keyword)
{
    if (word.size() != keyword.size()) {
        return false;
    }
    for (size_t i = 0; i < word.size(); ++i) {
        const bool small = word[i] >= 'a' && word[i] <= 'z';
        if (word[i] != keyword[i] && !(small && word[i] - 'a' + 'A' == keyword[i])) {
            return false;
        }
    }
    return true;
}

/// A word of a LEF or DEF file, or a string in quotation marks.
struct Token {
    enum class Kind : uint8_t { WORD, STRING, END };

    std::string_view text; ///< in the file; of a string, what is between the marks
    Kind kind = Kind::END; ///< END: there are no more
};

/// Cuts a text into tokens: they are parted by white space, a `#` where one could begin starts a comment, and
/// a backslash takes away the meaning of a quotation mark in a string. Nothing is copied.
class Scanner {
public:
    /// @param text  must outlive the scanner and its tokens
    explicit Scanner(std::string_view text);

    /// The present token.
    const Token& token() const { return m_token; }

    /// Goes to the next token.
    void advance();

    /// Goes to a token that starts at a byte of the text.
    void rewind(size_t offset);

    /// Makes the present token the rest of itself, behind its first bytes.
    void cut(size_t size) { m_token.text.remove_prefix(size); }

    /// Goes on to the first token, from the present one, that is a sign of its own, one of `;`, `+` and `-`,
    /// or the word END, or to the end. A `;` right behind a number, a word in capitals or a `)` counts.
    void skipToSign();

    /// Byte of the text at which the present token starts.
    size_t offset() const;

    /// Byte behind the present token.
    size_t end() const { return static_cast<size_t>(m_pos - m_text.data()); }

    /// Byte of the quotation mark that is not followed by a second one, if there is such. It is then part of
    /// a word.
    std::optional<size_t> openQuote() const { return m_openQuote; }

private:
    bool takeString();
    bool takeSign();
    const char* nextCandidate() const;

    std::string_view m_text;
    const char* m_end;
    const char* m_pos; ///< behind the present token
    Token m_token;
    std::optional<size_t> m_openQuote;
};

} // namespace kit::lefdef
