// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/stat.h>

#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kit/base/files/nameChange.h"

namespace kit {

/// A file that comes into being as a whole: it is written under a name of its own beside the one it is to
/// have, and renamed by commit(), once all of it is on the disk. Without commit() nothing is left.
///
/// A file that it replaces hands down its owner and permissions; of a link, what it leads to is replaced.
/// What is no regular file, as a pipe or a device, is written as it is.
class OutputFile {
public:
    /// Opens the file for writing. Errors: throws Fault if it cannot be opened.
    explicit OutputFile(std::string path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// The name that it is to have, as it was given.
    const std::string& path() const { return m_path; }

    /// Appends text.
    OutputFile& operator<<(std::string_view text);

    /// Appends a decimal integer.
    template <std::integral Integer>
    requires(!std::same_as<Integer, char>) OutputFile& operator<<(Integer value)
    {
        return append(static_cast<long long>(value));
    }

    /// Appends the content of a file. Errors: throws Fault if it cannot be read.
    void appendFile(const std::string& path);

    /// Where the file is until it gets its name, for those who write by a name.
    ///
    /// Errors: throws Fault if it is no regular file that is written.
    const std::string& partPath() const;

    /// Writes what is left and gives the file its name, in place of a file that had it.
    ///
    /// Errors: throws Fault if not everything could be written.
    void commit();

private:
    friend class OutputSet;

    void openPart(const std::string& target);
    OutputFile& append(long long value);
    void flush();
    void complete(bool sync);
    [[noreturn]] void fail(int error) const;

    std::string m_path;
    std::optional<struct stat> m_old; ///< of the regular file that is replaced
    int m_file = -1;                  ///< -1 once it is complete
    std::unique_ptr<char[]> m_buffer;
    size_t m_used = 0;                ///< bytes in the buffer
    std::optional<NameChange> m_name; ///< none if the file is written as it is
};

/// Writes a small file. Errors: as of OutputFile.
void writeFile(const std::string& path, std::string_view text);

} // namespace kit
