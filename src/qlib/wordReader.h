// SPDX-License-Identifier: BSD-3-Clause
// Reads a file as words between white space, as formatted stream input does, and knows the line it is on.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace vireloce {

/// A text file, handed out word by word. No more of it is in memory than a stretch around the next word.
///
/// It follows the rules of formatted stream extraction: an integer ends before the first character that
/// cannot belong to it; text where an integer should be gives 0, a value out of the 32-bit range gives the
/// nearest limit, and either puts the reader into the failed state, in which every read leaves its target as
/// it is. A read at the end of the file fails too.
class WordReader {
public:
    /// Opens a file. A second open() starts anew.
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
    /// @return the word, valid until the next call; empty if the reader has failed, now or before
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
    ///
    /// It reads the rest of the file into memory, for only then is it known: a file may be a pipe.
    int64_t bytesLeft();

private:
    /// Goes to the next word and notes its line.
    ///
    /// @return false at the end of the file
    bool skipSpace();

    /// End of the word at m_pos, which is then in the window as a whole.
    size_t findWordEnd();

    /// Reads more of the file behind what the window holds; moves that to its front.
    ///
    /// @return false at the end of the file
    bool readMore();

    std::string m_path;
    std::ifstream m_in;
    std::vector<char> m_window; ///< [m_pos .. m_end - 1] the bytes read from the file and not yet handed out
    size_t m_pos = 0;
    size_t m_end = 0;
    int64_t m_line = 1; ///< line of m_pos after skipSpace()
    bool m_failed = false;
};

} // namespace vireloce
