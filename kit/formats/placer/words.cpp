// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/words.h"

#include <algorithm>

namespace kit::placer {

namespace {

bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace

const Word& Words::peek()
{
    if (!m_known) {
        advance();
        m_known = true;
    }
    return m_next;
}

Word Words::next()
{
    const Word word = peek();
    m_taken = m_pos;
    m_known = false;
    return word;
}

void Words::advance()
{
    m_next.startsLine = m_pos == 0;
    for (; m_pos < m_text.size() && isSpace(m_text[m_pos]); ++m_pos) {
        // A line end in the last byte opens no line.
        if (m_text[m_pos] == '\n' && m_pos + 1 < m_text.size()) {
            ++m_line;
            m_lineStart = m_pos + 1;
            m_next.startsLine = true;
        }
    }
    const size_t begin = m_pos;
    while (m_pos < m_text.size() && !isSpace(m_text[m_pos])) {
        ++m_pos;
    }
    m_next.text = m_text.substr(begin, m_pos - begin);
    m_next.at.line = m_line;
    m_next.at.column = m_next.text.empty() ? 0 : static_cast<int64_t>(begin - m_lineStart) + 1;
}

std::string_view withoutTabs(std::string_view text)
{
    const size_t begin = std::min(text.find_first_not_of('\t'), text.size());
    return text.substr(begin, text.find_last_not_of('\t') + 1 - begin);
}

bool LineReader::next()
{
    if (m_repeat) {
        m_repeat = false;
        return true;
    }
    if (m_pos >= m_text.size()) {
        m_line = {};
        m_tokens.clear();
        return false;
    }
    const size_t end = std::min(m_text.find('\n', m_pos), m_text.size());
    m_line = m_text.substr(m_pos, end - m_pos);
    m_pos = end + 1;
    ++m_number;
    m_return = !m_line.empty() && m_line.back() == '\r';
    if (m_return) {
        m_line.remove_suffix(1);
    }
    cutTokens(" ");
    return true;
}

void LineReader::cutTokens(std::string_view separators)
{
    m_tokens.clear();
    size_t begin = m_line.find_first_not_of(separators);
    while (begin != std::string_view::npos) {
        const size_t end = std::min(m_line.find_first_of(separators, begin), m_line.size());
        m_tokens.push_back({m_line.substr(begin, end - begin), static_cast<int64_t>(begin) + 1});
        begin = m_line.find_first_not_of(separators, end);
    }
}

std::string_view LineReader::firstWord() const
{
    const std::string_view line = withoutTabs(m_tokens.empty() ? std::string_view() : m_tokens[0].text);
    return line.substr(0, line.find('\t'));
}

} // namespace kit::placer
