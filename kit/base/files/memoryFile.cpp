// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/memoryFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>

#include "kit/base/systemFault.h"

namespace kit {

MemoryFile::MemoryFile() : m_file(memfd_create("messages", MFD_CLOEXEC))
{
    if (m_file < 0) {
        throw systemFault("cannot make a file in memory", errno);
    }
}

MemoryFile::~MemoryFile()
{
    close(m_file);
}

} // namespace kit
