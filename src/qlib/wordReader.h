// SPDX-License-Identifier: BSD-3-Clause
// Reads a file as words between white space, as formatted stream input does, and knows the line it is on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vireloce {

/// A text file, read whole, handed out word by word.
///
/// It follows the rules of formatted stream extraction: an integer ends before the first character that
/// cannot belong to it; text where an integer should be gives 0, a value out of the 32-bit range gives the
/// nearest limit, and either puts the reader into the failed state, in which every read leaves its target as
/// it is. A read at the end of the file fails too.
class WordReader {
public:
    /// Opens and reads a file. A second open() starts anew.
    ///
    /// @return false if the file cannot be opened
    bool open(const std::string& path);

    /// Reads a decimal integer.
    ///
    /// @param value  out: the integer; see the class for what it is after a failure
    /// @return false if the reader has failed, now or before
    bool readInt(int32_t& value);

    /// Reads up to the next white space.
    ///
    /// @return the word, valid until the next open(); empty if the reader has failed, now or before
    std::string_view readWord();

    /// True once a read has failed.
    bool failed() const { return m_failed; }

    /// True if only white space is left.
    bool atEnd();

    /// The path that was opened.
    const std::string& path() const { return m_path; }

    /// Number of the line, from 1, on which the last word read, or the one that could not be read, begins.
    int64_t line() const { return m_line; }

    /// Bytes not yet read: no count of records still to come can be larger.
    int64_t bytesLeft() const { return static_cast<int64_t>(m_text.size() - m_pos); }

private:
    /// Goes to the next word and notes its line.
    ///
    /// @return false at the end of the file
    bool skipSpace();

    std::string m_path;
    std::string m_text;
    size_t m_pos = 0;   ///< first byte not yet read
    int64_t m_line = 1; ///< line of m_pos after skipSpace()
    bool m_failed = false;
};

} // namespace vireloce
