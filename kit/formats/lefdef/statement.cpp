// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/statement.h"

#include <algorithm>

#include "kit/formats/lefdef/scanner.h"

namespace kit::lefdef {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// Start of the line that a place is on.
size_t lineStart(std::string_view text, size_t place)
{
    const size_t lineEnd = place == 0 ? std::string_view::npos : text.rfind('\n', place - 1);
    return lineEnd == std::string_view::npos ? 0 : lineEnd + 1;
}

} // namespace

size_t endOfStatement(std::string_view text, size_t from)
{
    Scanner scanner(text.substr(from));
    while (scanner.token().kind != Token::Kind::END &&
           (scanner.token().kind != Token::Kind::WORD || scanner.token().text != ";")) {
        scanner.advance();
    }
    return scanner.token().kind == Token::Kind::END ? text.size() : from + scanner.offset();
}

std::string_view indentationOf(std::string_view text, size_t place)
{
    const std::string_view before = text.substr(0, place).substr(lineStart(text, place));
    return std::all_of(before.begin(), before.end(), isBlank) ? before : std::string_view();
}

Span wholeLinesOf(std::string_view text, size_t begin, size_t end)
{
    size_t first = begin;
    while (first > 0 && isBlank(text[first - 1])) {
        --first;
    }
    size_t last = end;
    while (last < text.size() && (isBlank(text[last]) || text[last] == '\r')) {
        ++last;
    }
    const bool fromStart = first == 0 || text[first - 1] == '\n';
    const bool toEnd = last == text.size() || text[last] == '\n';
    return fromStart && toEnd ? Span{first, std::min(last + 1, text.size())} : Span{begin, end};
}

} // namespace kit::lefdef
