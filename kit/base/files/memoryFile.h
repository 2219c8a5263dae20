// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "kit/base/fault.h"

namespace kit {

/// A file that is on no disk, and so can be written when the disk is full. It goes with its object.
class MemoryFile {
public:
    /// Errors: throws Fault if there can be none.
    MemoryFile() : m_file(memfd_create("messages", MFD_CLOEXEC))
    {
        if (m_file < 0) {
            throw systemFault("cannot make a file in memory", errno);
        }
    }
    ~MemoryFile() { close(m_file); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// A path by which this process, and one that it is about to start, can open the file.
    std::string path() const { return "/proc/self/fd/" + std::to_string(m_file); }

private:
    int m_file;
};

} // namespace kit
