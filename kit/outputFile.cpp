// SPDX-License-Identifier: BSD-3-Clause
#include "kit/outputFile.h"

#include <cerrno>
#include <charconv>
#include <cstring>

#include "kit/fault.h"

namespace kit {

namespace {

constexpr size_t BUFFER_SIZE = size_t{1} << 16U;
constexpr size_t LONGEST_INTEGER = 20; // characters of a 64-bit integer with its sign

} // namespace

OutputFile::OutputFile(std::string path)
    : m_path(std::move(path)), m_partPath(m_path + ".part"), m_file(std::fopen(m_partPath.c_str(), "wb")),
      m_buffer(std::make_unique<char[]>(BUFFER_SIZE))
{
    if (m_file == nullptr) {
        fail();
    }
    std::setvbuf(m_file, nullptr, _IONBF, 0); // one buffer is enough
}

OutputFile::~OutputFile()
{
    if (m_file != nullptr) {
        std::fclose(m_file);
        std::remove(m_partPath.c_str());
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

void OutputFile::flush()
{
    if (std::fwrite(m_buffer.get(), 1, m_used, m_file) != m_used) {
        fail();
    }
    m_used = 0;
}

void OutputFile::commit()
{
    flush();
    std::FILE* const file = m_file;
    m_file = nullptr;
    if (std::fclose(file) != 0 || std::rename(m_partPath.c_str(), m_path.c_str()) != 0) {
        const int why = errno;
        std::remove(m_partPath.c_str());
        errno = why;
        fail();
    }
}

void OutputFile::fail() const
{
    throw Fault("cannot write " + m_path + ": " + std::strerror(errno));
}

} // namespace kit
