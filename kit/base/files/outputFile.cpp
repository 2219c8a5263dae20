// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/outputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "kit/base/files/folder.h"
#include "kit/base/files/outputTarget.h"
#include "kit/base/files/readFile.h"
#include "kit/base/systemFault.h"

namespace kit {

namespace {

constexpr size_t BUFFER_SIZE = size_t{1} << 16U;
constexpr size_t LONGEST_INTEGER = 20; // characters of a 64-bit integer with its sign
constexpr int MOST_TRIES = 100;        // for a name that nobody has

/// The same open file once more.
int duplicate(int descriptor)
{
    std::fflush(nullptr); // what was written there before comes before
    return fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
}

} // namespace

OutputFile::OutputFile(std::string path)
    : m_path(std::move(path)), m_buffer(std::make_unique<char[]>(BUFFER_SIZE))
{
    const OutputTarget target = targetOf(m_path);
    if (target.isFolder()) {
        fail(EISDIR);
    }
    if (target.isThrough()) {
        m_file = target.descriptor >= 0 ? duplicate(target.descriptor)
                                        : ::open(target.path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    } else {
        m_old = target.exists ? std::optional(target.info) : std::nullopt;
        openPart(target.path);
    }
    if (m_file < 0) {
        fail(errno);
    }
}

/// What an old file may not show to all, its successor must not show while it is made.
void OutputFile::openPart(const std::string& target)
{
    const mode_t mode = m_old ? 0600 : 0666;
    for (int i = 0; i < MOST_TRIES && m_file < 0 && (i == 0 || errno == EEXIST); ++i) {
        const std::string part = partNameOf(target);
        m_file = ::open(part.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (m_file >= 0) {
            m_name.emplace(target, part);
        }
    }
}

OutputFile::~OutputFile()
{
    if (m_file >= 0) {
        close(m_file);
    }
}

OutputFile& OutputFile::operator<<(std::string_view text)
{
    while (!text.empty()) {
        if (m_used == BUFFER_SIZE) {
            flush();
        }
        const size_t size = std::min(text.size(), BUFFER_SIZE - m_used);
        std::memcpy(m_buffer.get() + m_used, text.data(), size);
        m_used += size;
        text.remove_prefix(size);
    }
    return *this;
}

OutputFile& OutputFile::append(long long value)
{
    if (BUFFER_SIZE - m_used < LONGEST_INTEGER) {
        flush();
    }
    char* const begin = m_buffer.get();
    m_used = static_cast<size_t>(std::to_chars(begin + m_used, begin + BUFFER_SIZE, value).ptr - begin);
    return *this;
}

void OutputFile::appendFile(const std::string& path)
{
    const InputFile file(path);
    flush(); // there must be room
    while (const size_t got = file.read(m_buffer.get() + m_used, BUFFER_SIZE - m_used)) {
        m_used += got;
        if (m_used == BUFFER_SIZE) {
            flush();
        }
    }
}

const std::string& OutputFile::partPath() const
{
    if (!m_name) {
        throw Fault("cannot write " + m_path + ": it is no regular file");
    }
    return m_name->part();
}

void OutputFile::flush()
{
    assert(m_file >= 0);
    for (size_t done = 0; done < m_used;) {
        const ssize_t size = write(m_file, m_buffer.get() + done, m_used - done);
        if (size < 0 && errno != EINTR) {
            fail(errno);
        }
        done += size > 0 ? static_cast<size_t>(size) : 0;
    }
    m_used = 0;
}

void OutputFile::complete(bool sync)
{
    flush();
    if (m_old) {
        const bool sameOwner = fchown(m_file, m_old->st_uid, m_old->st_gid) == 0; // not everybody may
        const mode_t mode = m_old->st_mode & (sameOwner ? 07777U : 0777U);
        if (fchmod(m_file, mode) != 0) {
            fail(errno);
        }
    }
    if (m_name && sync && fsync(m_file) != 0) {
        fail(errno);
    }
    const int file = m_file;
    m_file = -1;
    if (close(file) != 0) {
        fail(errno);
    }
    m_buffer.reset(); // a set may have many files
}

void OutputFile::commit()
{
    complete(/*sync=*/true);
    if (m_name) {
        m_name->make();
        m_name->settle();
        syncFolder(folderOf(m_name->target()));
    }
}

void OutputFile::fail(int error) const
{
    throw systemFault("cannot write " + m_path, error);
}

void writeFile(const std::string& path, std::string_view text)
{
    OutputFile file(path);
    file << text;
    file.commit();
}

} // namespace kit
