// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/words.h"

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

} // namespace kit::placer
