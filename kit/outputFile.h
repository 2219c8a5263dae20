// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <concepts>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace kit {

/// A text file that comes into being as a whole: it is written under its name with ".part" behind it, and
/// renamed by commit(). Without commit() nothing is left.
class OutputFile {
public:
    /// Opens the file for writing. Errors: throws Fault if it cannot be opened.
    explicit OutputFile(std::string path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Appends text.
    OutputFile& operator<<(std::string_view text);

    /// Appends a decimal integer.
    template <std::integral Integer>
    requires(!std::same_as<Integer, char>) OutputFile& operator<<(Integer value)
    {
        return append(static_cast<long long>(value));
    }

    /// Writes what is left and gives the file its name, in place of a file that had it.
    ///
    /// Errors: throws Fault if not everything could be written.
    void commit();

private:
    OutputFile& append(long long value);
    void flush();
    [[noreturn]] void fail() const;

    std::string m_path;
    std::string m_partPath;
    std::FILE* m_file;
    std::unique_ptr<char[]> m_buffer;
    size_t m_used = 0; ///< bytes in the buffer
};

} // namespace kit
