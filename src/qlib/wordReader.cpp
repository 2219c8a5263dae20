// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/wordReader.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <limits>

namespace vireloce {

namespace {

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
    m_text.clear();
    m_pos = 0;
    m_line = 1;
    m_failed = false;
    std::ifstream in(path, std::ios::binary);
    if (!in.is_open()) {
        return false;
    }
    // A file that opens but cannot be read, a directory for one, reads as an empty one.
    std::array<char, 65536> chunk;
    while (in.read(chunk.data(), chunk.size()) || in.gcount() > 0) {
        m_text.append(chunk.data(), static_cast<size_t>(in.gcount()));
    }
    return true;
}

bool WordReader::skipSpace()
{
    while (m_pos < m_text.size() && isSpace(m_text[m_pos])) {
        m_line += m_text[m_pos] == '\n' ? 1 : 0;
        ++m_pos;
    }
    return m_pos < m_text.size();
}

bool WordReader::atEnd()
{
    return !skipSpace();
}

bool WordReader::readInt(int32_t& value)
{
    if (m_failed || !skipSpace()) {
        m_failed = true;
        return false;
    }
    const bool negative = m_text[m_pos] == '-';
    if (negative || m_text[m_pos] == '+') {
        ++m_pos;
    }
    // One past the largest magnitude is enough to know that a value is out of range.
    constexpr int64_t LARGEST = std::numeric_limits<int32_t>::max();
    const int64_t limit = negative ? LARGEST + 1 : LARGEST;
    const size_t begin = m_pos;
    int64_t magnitude = 0;
    for (; m_pos < m_text.size() && isDigit(m_text[m_pos]); ++m_pos) {
        magnitude = std::min(magnitude * 10 + (m_text[m_pos] - '0'), limit + 1);
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
    const size_t begin = m_pos;
    while (m_pos < m_text.size() && !isSpace(m_text[m_pos])) {
        ++m_pos;
    }
    return std::string_view(m_text).substr(begin, m_pos - begin);
}

} // namespace vireloce
