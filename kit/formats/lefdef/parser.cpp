// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/parser.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

#include "kit/base/text/decimal.h"
#include "kit/base/text/text.h"

namespace kit::lefdef {

namespace {

constexpr int32_t LENGTH_DIGITS = 6; ///< of a micrometre in picometres
constexpr int64_t LONGEST_LENGTH = 1'000'000'000 * int64_t{1'000'000};
constexpr int64_t LARGEST_INTEGER = std::numeric_limits<int32_t>::max();

/// A whole number; a fraction of zeros is let pass.
Decimal parseInteger(std::string_view text)
{
    constexpr int64_t ONE = 1'000'000;
    int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && stop == end) {
        const bool fits = value >= -LARGEST_INTEGER - 1 && value <= LARGEST_INTEGER;
        return {fits ? Decimal::Kind::GOOD : Decimal::Kind::TOO_LARGE, value};
    }
    Decimal number = parseDecimal(text, LENGTH_DIGITS, LARGEST_INTEGER * ONE);
    if (number.value % ONE != 0) {
        return {};
    }
    number.value /= ONE;
    return number;
}

std::string_view withoutSemicolon(std::string_view text)
{
    return text.size() > 1 && text.back() == ';' ? text.substr(0, text.size() - 1) : text;
}

} // namespace

Parser::Parser(const Source& source, Findings& findings)
    : m_source(source), m_reporter(findings, source), m_scanner(source.text())
{
    const size_t zero = source.text().find('\0');
    if (source.text().starts_with("\x1f\x8b")) {
        m_reporter.error("not-text", 0, "the file is compressed", "unpack it first");
    } else if (zero != std::string_view::npos) {
        m_reporter.error("not-text", zero, "a zero byte stands here, and the file is no text",
                         "give a text file, or remove the byte");
    }
}

void Parser::advance()
{
    m_takenEnd = m_scanner.end();
    m_scanner.advance();
}

Word Parser::start()
{
    const Token& token = m_scanner.token();
    const std::string_view word = withoutSemicolon(token.text);
    if (token.kind == Token::Kind::WORD && !m_failed) {
        takeFirst(word.size());
    } else {
        advance();
    }
    return {word};
}

bool Parser::take(std::string_view word)
{
    if (!is(word)) {
        return false;
    }
    takeFirst(word.size());
    return true;
}

/// Takes so many bytes of the next token.
void Parser::takeFirst(size_t size)
{
    if (m_scanner.token().text.size() == size) {
        advance();
    } else {
        m_takenEnd = m_scanner.offset() + size;
        m_scanner.cut(size);
    }
}

void Parser::expect(std::string_view word)
{
    if (!m_failed && !take(word)) {
        fail("syntax", nextText() + " stands where " + inQuotes(word) + " belongs", "correct the statement");
    }
}

Word Parser::keyword(const char* what)
{
    if (!standsFor(what, Token::Kind::WORD)) {
        return {};
    }
    const std::string_view word = withoutSemicolon(m_scanner.token().text);
    takeFirst(word.size());
    return {word};
}

std::string_view Parser::name(const char* what)
{
    if (!standsFor(what, m_scanner.token().kind)) {
        return {};
    }
    const std::string_view text = m_scanner.token().text;
    advance();
    return text;
}

bool Parser::standsFor(const char* what, Token::Kind kind)
{
    if (m_failed) {
        return false;
    }
    const Token& token = m_scanner.token();
    const char first = token.text.empty() ? '\0' : token.text[0];
    const bool isSign = token.kind == Token::Kind::WORD &&
                        (token.text.size() == 1 ? first == ';' || first == '(' || first == ')'
                                                : first == 'E' && token.text == "END");
    if (atFileEnd() || isSign || token.kind != kind || token.text.empty()) {
        fail("syntax", nextText() + " stands where the " + what + " belongs", "correct the statement");
        return false;
    }
    return true;
}

template <typename Read>
int64_t Parser::number(const char* what, const char* limits, Read read)
{
    if (!standsFor(what, Token::Kind::WORD)) {
        return 0;
    }
    const std::string_view text = withoutSemicolon(m_scanner.token().text);
    const Decimal number = read(text);
    const std::string given = std::string("the ").append(what);
    if (number.kind == Decimal::Kind::NO_NUMBER) {
        fail("number", given + " is " + inQuotes(text) + ", and a number belongs here", "correct it");
    } else if (number.kind == Decimal::Kind::TOO_LARGE) {
        fail("range", given + ", " + inQuotes(text) + ", is out of range",
             std::string("give a number between ").append(limits));
    } else {
        takeFirst(text.size());
        return number.value;
    }
    return 0;
}

int32_t Parser::integer(const char* what)
{
    return static_cast<int32_t>(number(what, "-2147483648 and 2147483647", parseInteger));
}

int32_t Parser::count(const char* what)
{
    const size_t at = offset();
    const int32_t value = integer(what);
    if (!m_failed && value < 1) {
        failAt(at, "range", "the " + std::string(what) + " is " + std::to_string(value),
               "give a number from 1 on");
    }
    return std::max(value, 1);
}

int64_t Parser::length(const char* what)
{
    return number(what, "-1000000000 and 1000000000 micrometres",
                  [](std::string_view text) { return parseDecimal(text, LENGTH_DIGITS, LONGEST_LENGTH); });
}

void Parser::size(std::string_view of, int64_t& width, int64_t& height)
{
    const size_t at = offset();
    const int64_t wide = length("width");
    expect("BY");
    const int64_t high = length("height");
    if (wide < 0 || high < 0) {
        failAt(at, "range", "the size of " + inQuotes(of) + " is negative", "correct it");
    }
    if (finish()) {
        width = wide;
        height = high;
    }
}

bool Parser::takePair(std::string_view& first, std::string_view& second)
{
    if (m_failed || !m_scanner.takePair(first, second)) {
        return false;
    }
    m_takenEnd = m_source.offsetOf(second) + second.size();
    return true;
}

bool Parser::takePoint(int32_t& x, int32_t& y)
{
    const size_t at = offset();
    std::string_view xText;
    std::string_view yText;
    if (!takePair(xText, yText)) {
        return false;
    }
    const auto read = [](std::string_view text, int32_t& number) {
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, number);
        return error == std::errc() && stop == end;
    };
    if (read(xText, x) && read(yText, y)) {
        return true;
    }
    m_scanner.rewind(at);
    return false;
}

void Parser::skipOption()
{
    if (!m_failed) {
        m_scanner.skipToSign();
    }
}

void Parser::skipWords()
{
    for (skipOption(); is("+"); skipOption()) {
        advance();
    }
}

void Parser::failAt(size_t offset, const char* code, std::string what, std::string advice)
{
    if (!m_failed) {
        m_reporter.error(code, offset, std::move(what), std::move(advice));
        m_failed = true;
    }
}

bool Parser::finish()
{
    if (m_allowsUnknown) {
        skipWords();
    }
    if (!m_failed && !take(";")) {
        fail("no-semicolon", nextText() + " stands where a \";\" ends the statement",
             "end it with a \";\" that has a blank before it");
    }
    const bool sound = !m_failed;
    m_failed = false;
    if (!sound) {
        skipWords();
        take(";");
    }
    return sound;
}

bool Parser::endsWith(std::string_view name)
{
    const size_t at = offset();
    bool ends = matches("END");
    if (ends) {
        m_scanner.advance();
        ends = isKeyword(m_scanner.token().text, name);
        m_scanner.rewind(at);
    }
    return ends;
}

bool Parser::takeEnd(const char* kind, std::string_view name, std::string_view outer)
{
    const size_t at = offset();
    advance();
    const std::string_view found = m_scanner.token().text;
    const bool isOuter = found == outer && found != name;
    if (!isOuter && !atFileEnd() && Word{found}.inCapitals() == Word{name}.inCapitals()) {
        advance();
        return true;
    }
    const bool bare = atFileEnd() || !isOnOneLine(at); // a word on another line belongs to what follows
    m_reporter.error("wrong-end", at,
                     (bare ? "END" : "END " + inQuotes(found)) + " stands where the " + kind + " " +
                         inQuotes(name) + " ends",
                     "write END " + std::string(name));
    if (!bare && !outer.empty() && found == outer) {
        m_scanner.rewind(at);
    } else if (!bare) {
        advance();
    }
    return false;
}

bool Parser::goesOn(const Part& part, std::initializer_list<std::string_view> outside)
{
    while (take(";")) {
    }
    if (is("END")) {
        takeEnd(part.kind, part.name, part.outer);
        return false;
    }
    if (atFileEnd() || std::ranges::any_of(outside, [this](std::string_view word) { return is(word); })) {
        missingEnd(part.kind, part.name, part.begin);
        return false;
    }
    return true;
}

void Parser::missingEnd(const char* kind, std::string_view name, size_t begin)
{
    const std::string named = name.empty() ? "" : " " + inQuotes(name);
    const std::string end = name.empty() ? "END" : "END " + std::string(name);
    m_reporter.error("no-end", begin, "the " + std::string(kind) + named + " has no end",
                     "write " + end + " behind it");
}

/// Whether no line ends between a byte and the next token.
bool Parser::isOnOneLine(size_t from) const
{
    return m_source.text().substr(from, offset() - from).find('\n') == std::string_view::npos;
}

void Parser::skipToEnd(const char* kind, std::string_view name, std::string_view outer,
                       const std::function<bool()>& startsStatement)
{
    const size_t begin = offset();
    while (!atFileEnd()) {
        m_scanner.skipToSign();
        if (!matches("END")) {
            m_scanner.advance();
            continue;
        }
        const size_t at = offset();
        m_scanner.advance();
        const std::string_view found = m_scanner.token().text;
        if (startsStatement && found != name && found != outer) {
            if (!isOnOneLine(at) && startsStatement()) {
                return;
            }
            continue;
        }
        m_scanner.rewind(at);
        takeEnd(kind, name, outer);
        return;
    }
    missingEnd(kind, name, begin);
}

void Parser::skipText()
{
    m_scanner.skipToSign();
    while (!atFileEnd() && !matches(";")) {
        m_scanner.advance();
        m_scanner.skipToSign();
    }
    finish();
}

void Parser::skipPast(const char* kind, std::string_view last)
{
    const size_t begin = offset();
    while (!atFileEnd() && !matches(last)) {
        m_scanner.advance();
    }
    if (!take(last)) {
        m_reporter.error("no-end", begin, "the " + std::string(kind) + " has no end",
                         "write " + std::string(last) + " behind it");
    }
}

std::string Parser::nextText() const
{
    return atFileEnd() ? "the end of the file" : inQuotes(m_scanner.token().text);
}

void Parser::nameTwice(Severity severity, size_t offset, const std::string& what, const std::string& where)
{
    m_reporter.add(severity, "name-twice", offset,
                   what + " stands in " + where + " already, and that one stays", "give each its own name");
}

std::string Parser::lineOf(size_t offset) const
{
    return std::to_string(m_source.placeOf(offset).line);
}

void Parser::finishFile()
{
    if (!atFileEnd()) {
        m_reporter.warning("after-end", offset(), "what stands behind the end is not read",
                           "make a file of its own of it, or remove it");
    }
    if (m_scanner.openQuote()) {
        m_reporter.error("open-quote", *m_scanner.openQuote(), "a quotation mark has no second one",
                         "close the string");
    }
}

} // namespace kit::lefdef
