// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <string>

namespace kit {

/// A file that is open for reading.
class InputFile {
public:
    /// Errors: throws Fault, with the system's reason, if it cannot be opened.
    explicit InputFile(std::string path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Reads what is next.
    ///
    /// Errors: throws Fault if it cannot be read, a folder for one.
    ///
    /// @param to    [room] where it goes
    /// @return number of bytes, 0 at the end of the file
    size_t read(char* to, size_t room) const;

    /// Its length as the system tells it, bytes; 0 if it does not, of a pipe for one.
    size_t length() const;

private:
    std::string m_path;
    int m_file;
};

/// Reads a whole file, whatever is in it. Errors: as of InputFile.
std::string readBytes(const std::string& path);

/// Reads a whole text file. Errors: as of InputFile; throws Fault for one that is compressed by gzip as well.
std::string readFile(const std::string& path);

} // namespace kit
