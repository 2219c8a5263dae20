// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/scanner.h"

#include <algorithm>
#include <array>

namespace kit::lefdef {

namespace {

constexpr uint8_t SPACE = 1;
constexpr uint8_t MARK = 2; ///< may start what skipToSign() looks for, or what may hide it

constexpr std::array<uint8_t, 256> classes()
{
    std::array<uint8_t, 256> table{};
    for (const char c : std::string_view(" \t\n\v\f\r")) {
        table[static_cast<unsigned char>(c)] = SPACE;
    }
    for (const char c : std::string_view(";+-Ee\"#")) {
        table[static_cast<unsigned char>(c)] = MARK;
    }
    return table;
}

constexpr std::array<uint8_t, 256> CLASSES = classes();

bool isSpace(char c)
{
    return CLASSES[static_cast<unsigned char>(c)] == SPACE;
}

bool isMark(char c)
{
    return CLASSES[static_cast<unsigned char>(c)] == MARK;
}

bool isSign(std::string_view word)
{
    return word == ";" || word == "+" || word == "-" || word == "END";
}

bool isNumberOrKeyword(std::string_view word)
{
    const auto isDigit = [](char c) { return (c >= '0' && c <= '9') || c == '-' || c == '.'; };
    const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
    return word == ")" || std::ranges::all_of(word, isDigit) || std::ranges::all_of(word, isLetter);
}

} // namespace

std::string Word::inCapitals() const
{
    std::string capitals(text);
    for (char& c : capitals) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return capitals;
}

Scanner::Scanner(std::string_view text)
    : m_text(text), m_end(text.data() + text.size()),
      m_pos(text.data() + (text.starts_with("\xEF\xBB\xBF") ? 3 : 0))
{
    advance();
}

void Scanner::advance()
{
    const char* p = m_pos;
    while (p != m_end && (isSpace(*p) || *p == '#')) {
        p = *p == '#' ? std::find(p, m_end, '\n') : p + 1;
    }
    m_pos = p;
    if (p == m_end) {
        m_token = {m_text.substr(m_text.size()), Token::Kind::END};
        return;
    }
    if (*p == '"' && takeString()) {
        return;
    }
    while (p != m_end && !isSpace(*p)) {
        ++p;
    }
    m_token = {std::string_view(m_pos, static_cast<size_t>(p - m_pos)), Token::Kind::WORD};
    m_pos = p;
}

bool Scanner::takePair(std::string_view& first, std::string_view& second)
{
    if (m_token.text != "(" || m_token.kind != Token::Kind::WORD) {
        return false;
    }
    const char* p = m_pos;
    const auto word = [&p, this] {
        p += p != m_end && *p == ' ' ? 1 : 0;
        const char* const begin = p;
        while (p != m_end && *p > ' ') { // what is not ASCII ends it as well, and is for the others
            ++p;
        }
        return std::string_view(begin, static_cast<size_t>(p - begin));
    };
    const auto isName = [](std::string_view text) {
        constexpr std::string_view SIGNS = ";()\"#";
        return text.size() > 1 ? text[0] != '"' && text[0] != '#' && text != "END"
                               : !text.empty() && SIGNS.find(text[0]) == std::string_view::npos;
    };
    const std::string_view a = word();
    const std::string_view b = word();
    if (!isName(a) || !isName(b) || word() != ")" || (p != m_end && !isSpace(*p))) {
        return false;
    }
    first = a;
    second = b;
    m_pos = p;
    advance();
    return true;
}

bool Scanner::takeString()
{
    if (m_openQuote) {
        return false; // the search to the end has been in vain before
    }
    const char* const begin = m_pos + 1;
    for (const char* p = begin; p != m_end; ++p) {
        if (*p == '"') {
            m_token = {std::string_view(begin, static_cast<size_t>(p - begin)), Token::Kind::STRING};
            m_pos = p + 1;
            return true;
        }
        p += *p == '\\' && p + 1 != m_end ? 1 : 0;
    }
    m_openQuote = static_cast<size_t>(m_pos - m_text.data());
    return false;
}

void Scanner::rewind(size_t offset)
{
    m_pos = m_text.data() + offset;
    advance();
}

size_t Scanner::offset() const
{
    const auto at = static_cast<size_t>(m_token.text.data() - m_text.data());
    return m_token.kind == Token::Kind::STRING ? at - 1 : at;
}

void Scanner::skipToSign()
{
    while (m_token.kind != Token::Kind::END && !takeSign()) {
        m_pos = nextCandidate();
        advance();
    }
}

/// Whether the present token is a sign or ends in a `;` that counts, which is then the present one.
bool Scanner::takeSign()
{
    const std::string_view text = m_token.text;
    if (m_token.kind != Token::Kind::WORD) {
        return false;
    }
    if (isSign(text)) {
        return true;
    }
    if (isKeyword(text, "END")) {
        return endsHere();
    }
    if (text.back() != ';' || !isNumberOrKeyword(text.substr(0, text.size() - 1))) {
        return false;
    }
    cut(text.size() - 1);
    return true;
}

/// Whether the present token is the first of its line, or stands behind a `;`.
bool Scanner::endsHere() const
{
    const char* p = m_token.text.data();
    while (p != m_text.data() && (p[-1] == ' ' || p[-1] == '\t')) {
        --p;
    }
    return p == m_text.data() || p[-1] == '\n' || p[-1] == '\r' || p[-1] == ';';
}

/// Where the next token begins that takeSign() has to see, or that hides such: a comment, a string.
const char* Scanner::nextCandidate() const
{
    const char* p = m_pos;
    for (; p != m_end; ++p) {
        if (!isMark(*p)) {
            continue;
        }
        if (p == m_pos || isSpace(p[-1])) {
            return p;
        }
        if (*p == ';' && (p + 1 == m_end || isSpace(p[1]))) {
            while (p != m_pos && !isSpace(p[-1])) {
                --p;
            }
            return p;
        }
    }
    return p;
}

} // namespace kit::lefdef
