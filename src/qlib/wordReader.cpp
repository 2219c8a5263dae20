// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/wordReader.h"

#include <algorithm>
#include <limits>

namespace vireloce {

namespace {

constexpr size_t WINDOW_SIZE = 65536;

bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

bool WordReader::open(const std::string& path)
{
    m_path = path;
    m_pos = 0;
    m_end = 0;
    m_line = 1;
    m_failed = false;
    m_in = std::ifstream();
    m_in.rdbuf()->pubsetbuf(nullptr, 0); // the window is the buffer
    m_in.open(path, std::ios::binary);
    return m_in.is_open();
}

bool WordReader::readMore()
{
    std::copy(m_window.data() + m_pos, m_window.data() + m_end, m_window.data());
    m_end -= m_pos;
    m_pos = 0;
    if (m_end == m_window.size()) {
        m_window.resize(std::max(2 * m_window.size(), WINDOW_SIZE));
    }
    // A file that opens but cannot be read, a directory for one, reads as an empty one.
    m_in.read(m_window.data() + m_end, static_cast<std::streamsize>(m_window.size() - m_end));
    m_end += static_cast<size_t>(m_in.gcount());
    return m_in.gcount() > 0;
}

bool WordReader::skipSpace()
{
    do {
        for (; m_pos < m_end; ++m_pos) {
            if (!isSpace(m_window[m_pos])) {
                return true;
            }
            m_line += m_window[m_pos] == '\n' ? 1 : 0;
        }
    } while (readMore());
    return false;
}

size_t WordReader::findWordEnd()
{
    size_t length = 0;
    do {
        while (m_pos + length < m_end && !isSpace(m_window[m_pos + length])) {
            ++length;
        }
    } while (m_pos + length == m_end && readMore());
    return m_pos + length;
}

bool WordReader::atEnd()
{
    return !skipSpace();
}

int64_t WordReader::bytesLeft()
{
    while (readMore()) {
    }
    return static_cast<int64_t>(m_end - m_pos);
}

bool WordReader::readInt(int32_t& value)
{
    if (m_failed || !skipSpace()) {
        m_failed = true;
        return false;
    }
    const size_t end = findWordEnd();
    const bool negative = m_window[m_pos] == '-';
    if (negative || m_window[m_pos] == '+') {
        ++m_pos;
    }
    // One past the largest magnitude is enough to know that a value is out of range.
    constexpr int64_t LARGEST = std::numeric_limits<int32_t>::max();
    const int64_t limit = negative ? LARGEST + 1 : LARGEST;
    const size_t begin = m_pos;
    int64_t magnitude = 0;
    for (; m_pos < end && isDigit(m_window[m_pos]); ++m_pos) {
        magnitude = std::min(magnitude * 10 + (m_window[m_pos] - '0'), limit + 1);
    }
    m_failed = m_pos == begin || magnitude > limit;
    magnitude = std::min(magnitude, limit);
    value = static_cast<int32_t>(negative ? -magnitude : magnitude);
    return !m_failed;
}

std::string_view WordReader::readWord()
{
    if (m_failed || !skipSpace()) {
        m_failed = true;
        return {};
    }
    const size_t end = findWordEnd();
    const std::string_view word(m_window.data() + m_pos, end - m_pos);
    m_pos = end;
    return word;
}

} // namespace vireloce
