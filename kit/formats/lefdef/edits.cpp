// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/edits.h"

#include <algorithm>
#include <cassert>

#include "kit/base/files/outputFile.h"
#include "kit/formats/lefdef/scanner.h"

namespace kit::lefdef {

namespace {

/// Hands over the pieces of the changed text one by one.
template <typename SortedEdits, typename Take>
void forEachPiece(const SortedEdits& edits, std::string_view text, size_t begin, size_t end, Take take)
{
    size_t done = begin;
    for (const auto& edit : edits) {
        assert(done <= edit.begin && edit.begin <= edit.end && edit.end <= end);
        take(text.substr(done, edit.begin - done));
        take(edit.text);
        done = edit.end;
    }
    take(text.substr(done, end - done));
}

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

void Edits::replace(size_t begin, size_t end, std::string text)
{
    m_edits.push_back({begin, end, std::move(text)});
}

void Edits::sort()
{
    std::ranges::sort(m_edits, {}, &Edit::begin);
}

std::string Edits::apply(std::string_view text, size_t begin, size_t end)
{
    sort();
    std::string result;
    forEachPiece(m_edits, text, begin, end, [&result](std::string_view piece) { result += piece; });
    return result;
}

void Edits::write(std::string_view text, OutputFile& out)
{
    sort();
    forEachPiece(m_edits, text, 0, text.size(), [&out](std::string_view piece) { out << piece; });
}

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
    return std::ranges::all_of(before, isBlank) ? before : std::string_view();
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
