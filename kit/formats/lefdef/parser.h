// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "kit/formats/lefdef/scanner.h"
#include "kit/formats/lefdef/source.h"

namespace kit::lefdef {

/// A part of a file that ends with END and a name.
struct Part {
    const char* kind;       ///< for the texts: "macro"
    std::string_view name;  ///< behind its END
    std::string_view outer; ///< name behind the END of what is around
    size_t begin;           ///< byte where it starts
};

/// Takes a LEF or DEF file apart, statement by statement.
///
/// After the first problem in a statement, which is told, the operations up to finish() take nothing, give
/// empty values, and see no more words; so a statement's rule can be written down without a look at every
/// step.
class Parser {
public:
    /// @param source, findings  must outlive the parser
    Parser(const Source& source, Findings& findings);

    /// Where problems are told.
    SourceReporter& reporter() { return m_reporter; }
    /// The file.
    const Source& source() const { return m_source; }

    /// Byte of the next token.
    size_t offset() const { return m_scanner.offset(); }

    /// Whether there was a quotation mark without a second one.
    bool hasOpenQuote() const { return m_scanner.openQuote().has_value(); }

    /// Goes to the token at a byte, between two statements.
    void moveTo(size_t offset) { m_scanner.rewind(offset); }

    /// Byte behind the token taken last.
    size_t takenEnd() const { return m_takenEnd; }

    /// Whether all tokens are taken.
    bool atFileEnd() const { return m_scanner.token().kind == Token::Kind::END; }

    /// Whether the next token is a word of the grammar.
    bool is(std::string_view word) const { return !m_failed && matches(word); }

    /// Whether the statement goes on: it is sound so far, and what is next does not end it: a `;`, or the
    /// file's end; or END or a `-`, if the `;` is missing.
    bool more() const { return !m_failed && !atFileEnd() && !endsStatement(); }

    /// Takes the first word of a statement, whatever it is.
    Word start();

    /// Takes a word of the grammar if it is next.
    bool take(std::string_view word);

    /// Takes a word of the grammar. Errors: "syntax" if another is next.
    void expect(std::string_view word);

    /// Takes any word of the grammar. Errors: "syntax" at the end of the statement.
    ///
    /// @param what  what is read, for the texts: "status"
    Word keyword(const char* what);

    /// Takes a name. Errors: "syntax" at the end of the statement, or at a parenthesis.
    std::string_view name(const char* what);

    /// Takes a whole number. Errors: "number"; "range" if it has more than 32 bits.
    int32_t integer(const char* what);

    /// As integer(). Errors: "range" also if it is below 1; the value is then 1, which can be divided by.
    int32_t count(const char* what);

    /// Takes a number of micrometres as picometres, at most 1'000'000'000 micrometres. Errors: "number",
    /// "range".
    int64_t length(const char* what);

    /// Takes the rest of a statement "SIZE width BY height". Errors: as length(); "range" if one is negative.
    ///
    /// @param of      name of what has the size, for the texts
    /// @param width   out: in picometres, as height; both stay as they are if the statement is not sound
    void size(std::string_view of, int64_t& width, int64_t& height);

    /// Takes "( a b )", as Scanner::takePair() does.
    bool takePair(std::string_view& first, std::string_view& second);

    /// Takes "( x y )" of two whole numbers of 32 bits. If anything else is next, nothing is taken.
    bool takePoint(int32_t& x, int32_t& y);

    /// Passes over the words up to the next `+`, or the end of the statement.
    void skipOption();

    /// Passes over the words up to the end of the statement.
    void skipWords();

    /// Tells an error about the next token, or the given byte; the rest of the statement is skipped.
    void fail(const char* code, std::string what, std::string advice)
    {
        failAt(offset(), code, std::move(what), std::move(advice));
    }
    /// As fail(), about the byte at an offset.
    void failAt(size_t offset, const char* code, std::string what, std::string advice);

    /// Ends a statement with its `;`, without one at a word END or a `-`.
    ///
    /// @return whether the statement was sound. Errors: "no-semicolon" if something else stands there.
    bool finish();

    /// From here on, what the grammar does not have is passed over without a word: the file is of a later
    /// one.
    void allowUnknown() { m_allowsUnknown = true; }
    /// Whether that is so.
    bool allowsUnknown() const { return m_allowsUnknown; }

    /// Passes over a word, whatever it is.
    void skipWord() { advance(); }

    /// Whether the next token is END, and a name stands behind it.
    bool endsWith(std::string_view name);

    /// Passes over the words of a statement and its end.
    void skipStatement()
    {
        skipWords();
        finish();
    }

    /// Takes END and the name behind it.
    ///
    /// An error, "wrong-end", if it is another name; if that is the name of what is around, nothing is taken.
    ///
    /// @param kind   what ends, for the texts: "section"
    /// @param outer  name that ends what is around, empty if nothing is
    /// @return whether it is the name
    bool takeEnd(const char* kind, std::string_view name, std::string_view outer);

    /// Whether a part of the file goes on; empty statements are taken. Its END is taken, and the name behind
    /// it.
    ///
    /// @param outside  words that belong outside of it: where one stands, the END before it is missing, an
    /// error
    bool goesOn(const Part& part, std::initializer_list<std::string_view> outside);

    /// Tells that the end of something is missing: "no-end".
    ///
    /// @param name   empty if it has none
    /// @param begin  byte where it starts
    void missingEnd(const char* kind, std::string_view name, size_t begin);

    /// Passes over everything up to END and a name, and takes them, or up to the file's end.
    ///
    /// @param startsStatement  tells whether a statement of the file is next. If it is given, there are parts
    ///                         inside, with ENDs and names of their own, and an END alone on its line before
    ///                         such a statement ends the whole
    void skipToEnd(const char* kind, std::string_view name, std::string_view outer,
                   const std::function<bool()>& startsStatement = nullptr);

    /// Passes over any text up to a `;`, which is taken.
    void skipText();

    /// Passes over everything up to a word, which is taken.
    ///
    /// @param kind  what is skipped, for the texts: "extension"
    void skipPast(const char* kind, std::string_view last);

    /// Tells that another record has the name of one: "name-twice".
    ///
    /// @param severity  an error if the second cannot be done without
    /// @param what      kind and name of the record
    /// @param where     the other one stands: "line 3"
    void nameTwice(Severity severity, size_t offset, const std::string& what, const std::string& where);

    /// Line of a byte, for texts.
    std::string lineOf(size_t offset) const;

    /// Tells of what belongs to the file as a whole; after its last statement.
    void finishFile();

private:
    bool matches(std::string_view word) const;
    bool endsStatement() const { return matches(";") || matches("END") || matches("-"); }
    bool standsFor(const char* what, Token::Kind kind);
    template <typename Read>
    int64_t number(const char* what, const char* limits, Read read);
    std::string nextText() const;
    bool isOnOneLine(size_t from) const;
    void takeFirst(size_t size);
    void advance();

    const Source& m_source;
    SourceReporter m_reporter;
    Scanner m_scanner;
    size_t m_takenEnd = 0;
    bool m_failed = false;
    bool m_allowsUnknown = false;
};

inline bool Parser::matches(std::string_view word) const
{
    const Token& token = m_scanner.token();
    // Most tokens differ from most words here: what is asked of millions of them is asked without a call.
    if (token.text.size() < word.size() || token.kind != Token::Kind::WORD ||
        !isSameLetter(token.text[0], word[0])) {
        return false;
    }
    const bool glued = token.text.size() == word.size() + 1 && token.text.back() == ';';
    return (glued || token.text.size() == word.size()) &&
           (word.size() == 1 || isKeyword(token.text.substr(0, word.size()), word));
}

} // namespace kit::lefdef
