// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/readFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "kit/base/fault.h"

namespace kit {

namespace {

constexpr size_t LEAST_ROOM = size_t{1} << 16U;
constexpr size_t MOST_ROOM = size_t{1} << 30U; // no more is taken on the word of a file's length alone

} // namespace

InputFile::InputFile(std::string path)
    : m_path(std::move(path)), m_file(::open(m_path.c_str(), O_RDONLY | O_CLOEXEC))
{
    if (m_file < 0) {
        throw systemFault("cannot open file " + m_path, errno);
    }
}

InputFile::~InputFile()
{
    close(m_file);
}

size_t InputFile::read(char* to, size_t room) const
{
    ssize_t got = 0;
    do {
        got = ::read(m_file, to, room);
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        throw systemFault("cannot read file " + m_path, errno);
    }
    return static_cast<size_t>(got);
}

size_t InputFile::length() const
{
    struct stat info {};
    return fstat(m_file, &info) == 0 && info.st_size > 0 ? static_cast<size_t>(info.st_size) : 0;
}

std::string readBytes(const std::string& path)
{
    const InputFile file(path);
    // One byte more than the file is long: then its end is met without more room.
    std::string text(std::clamp(file.length() + 1, LEAST_ROOM, MOST_ROOM), '\0');
    size_t used = 0;
    while (const size_t got = file.read(text.data() + used, text.size() - used)) {
        used += got;
        if (used == text.size()) {
            text.resize(2 * used);
        }
    }
    text.resize(used);
    return text;
}

std::string readFile(const std::string& path)
{
    std::string text = readBytes(path);
    if (text.starts_with("\x1f\x8b")) {
        throw Fault(path + " is gzip-compressed: unpack it first");
    }
    return text;
}

} // namespace kit
