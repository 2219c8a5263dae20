// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace kit {

/// A file that is on no disk, and so can be written when the disk is full. It goes with its object.
class MemoryFile {
public:
    /// Errors: throws Fault if there can be none.
    MemoryFile();
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// A path by which this process, and one that it is about to start, can open the file.
    std::string path() const { return "/proc/self/fd/" + std::to_string(m_file); }

private:
    int m_file;
};

} // namespace kit
