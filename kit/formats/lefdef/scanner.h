// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kit::lefdef {

/// Whether two characters are the same, or the first is the small letter of the second.
constexpr bool isSameLetter(char found, char capital)
{
    return found == capital || (found >= 'a' && found <= 'z' && found - 'a' + 'A' == capital);
}

/// Whether a word is one of the grammar: files may write those in any case.
///
/// @param keyword  as the grammar has it, in capitals
constexpr bool isKeyword(std::string_view word, std::string_view keyword)
{
    return std::ranges::equal(word, keyword, isSameLetter);
}

/// A word that stands where one of the grammar belongs.
struct Word {
    std::string_view text; ///< as the file has it

    /// As isKeyword().
    constexpr bool operator==(std::string_view keyword) const { return isKeyword(text, keyword); }

    /// The word in capitals, as the grammar has it.
    std::string inCapitals() const;
};

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

    /// Takes "( a b )" if that is what is next, written in the usual way: of words parted by blanks on one
    /// line, none of them a string, a comment or a sign. Else nothing is taken.
    ///
    /// @param first, second  out: the words
    bool takePair(std::string_view& first, std::string_view& second);

    /// Goes to a token that starts at a byte of the text.
    void rewind(size_t offset);

    /// Makes the present token the rest of itself, behind its first bytes.
    void cut(size_t size) { m_token.text.remove_prefix(size); }

    /// Goes on to the first token, from the present one, that is a sign of its own, one of `;`, `+` and `-`,
    /// or the word END, or to the end. A `;` right behind a number, a word of letters or a `)` counts. END in
    /// small letters counts only where a statement could begin, as it may be a name elsewhere.
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
    bool endsHere() const;
    const char* nextCandidate() const;

    std::string_view m_text;
    const char* m_end;
    const char* m_pos; ///< behind the present token
    Token m_token;
    std::optional<size_t> m_openQuote;
};

} // namespace kit::lefdef
