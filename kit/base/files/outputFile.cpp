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
#include <filesystem>
#include <random>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/files/readFile.h"

namespace kit {

namespace {

constexpr std::string_view MARK = ".part-"; // of a temporary file, before the letters
constexpr std::string_view LETTERS = "abcdefghijklmnopqrstuvwxyz012345";
constexpr size_t NUM_LETTERS = 6;
constexpr size_t LONGEST_NAME = 255; // of a file, on the usual file systems

constexpr size_t BUFFER_SIZE = size_t{1} << 16U; // bytes
constexpr size_t LONGEST_INTEGER = 20;           // characters of a 64-bit integer with its sign
constexpr int MOST_TRIES = 100;                  // for a name that nobody has

/// The same open file once more.
int duplicate(int descriptor)
{
    std::fflush(nullptr); // what was written there before comes before
    return fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
}

/// Files that are brought to the disk one by one; of more than these the file system is as a whole, which is
/// faster then.
constexpr size_t MOST_ALONE = 8;

/// Brings a file system to the disk.
void syncAround(const std::string& folder)
{
    const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const int error = file < 0 || syncfs(file) != 0 ? errno : 0;
    if (file >= 0) {
        close(file);
    }
    if (error != 0) {
        throw systemFault("cannot write into " + folder, error);
    }
}

/// Changes all names, or none.
void change(const std::vector<NameChange*>& changes, const std::set<std::string>& folders)
{
    size_t made = 0;
    try {
        for (; made < changes.size(); ++made) {
            changes[made]->keepOld();
            changes[made]->make();
        }
        std::for_each(folders.begin(), folders.end(), syncFolder);
    } catch (...) {
        while (made > 0) {
            changes[--made]->undo();
        }
        throw;
    }
    for (NameChange* const each : changes) {
        each->settle();
    }
}

} // namespace

NameChange::NameChange(std::string target, std::string part)
    : m_target(std::move(target)), m_part(std::move(part)), m_removes(m_part.empty())
{
}

NameChange::~NameChange()
{
    if (!m_part.empty()) {
        unlink(m_part.c_str());
    }
    settle();
}

void NameChange::make()
{
    const int status = m_removes ? unlink(m_target.c_str()) : std::rename(m_part.c_str(), m_target.c_str());
    if (status != 0 && !(m_removes && errno == ENOENT)) {
        throw systemFault("cannot write " + m_target, errno);
    }
    m_part.clear();
}

void NameChange::keepOld()
{
    const std::string backup = partNameOf(m_target);
    if (link(m_target.c_str(), backup.c_str()) == 0) {
        m_backup = backup;
    } else {
        m_isNew = errno == ENOENT;
    }
}

void NameChange::undo() noexcept
{
    if (!m_backup.empty()) {
        std::rename(m_backup.c_str(), m_target.c_str());
    } else if (m_isNew) {
        unlink(m_target.c_str());
    }
    m_backup.clear();
}

void NameChange::settle() noexcept
{
    if (!m_backup.empty()) {
        unlink(m_backup.c_str());
        m_backup.clear();
    }
}

std::string partNameOf(const std::string& path)
{
    thread_local std::random_device s_device;
    std::string letters;
    for (size_t i = 0; i < NUM_LETTERS; ++i) {
        letters += LETTERS[s_device() % LETTERS.size()];
    }
    const std::filesystem::path whole(path);
    const std::string name = whole.filename().string().substr(0, LONGEST_NAME - MARK.size() - NUM_LETTERS);
    return (whole.parent_path() / name).string().append(MARK).append(letters);
}

std::string nameOfPart(const std::string& name)
{
    const size_t size = name.size() - std::min(name.size(), MARK.size() + NUM_LETTERS);
    const std::string_view letters =
        std::string_view(name).substr(name.size() - std::min(name.size(), NUM_LETTERS));
    const bool isPart = std::string_view(name).substr(size).starts_with(MARK) &&
                        letters.find_first_not_of(LETTERS) == std::string_view::npos;
    return isPart ? name.substr(0, size) : "";
}

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
    if (isPackedName(m_path)) {
        m_packer.emplace();
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
    if (m_packer) {
        throw Fault("cannot write " + m_path + ": it cannot be compressed");
    }
    return m_name->part();
}

void OutputFile::flush()
{
    const std::string_view text(m_buffer.get(), m_used);
    write(m_packer ? m_packer->pack(text, /*last=*/false) : text);
    m_used = 0;
}

void OutputFile::write(std::string_view bytes)
{
    assert(m_file >= 0);
    while (!bytes.empty()) {
        const ssize_t size = ::write(m_file, bytes.data(), bytes.size());
        if (size < 0 && errno != EINTR) {
            fail(errno);
        }
        bytes.remove_prefix(size > 0 ? static_cast<size_t>(size) : 0);
    }
}

void OutputFile::complete(bool sync)
{
    flush();
    if (m_packer) {
        write(m_packer->pack("", /*last=*/true));
    }
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

void OutputSet::complete(OutputFile& file)
{
    file.complete(/*sync=*/m_files.size() <= MOST_ALONE);
}

void OutputSet::addCopy(const std::string& path, const std::string& from)
{
    add(path, [&from](OutputFile& file) { file.appendFile(from); });
}

void OutputSet::remove(const std::string& path)
{
    m_removed.emplace_back(path);
}

const std::string& OutputSet::partPath(const std::string& path) const
{
    const auto file = std::find_if(m_files.begin(), m_files.end(),
                                   [&path](const OutputFile& other) { return other.path() == path; });
    assert(file != m_files.end());
    return file->partPath();
}

void OutputSet::commit()
{
    std::vector<NameChange*> changes;
    for (NameChange& change : m_removed) {
        changes.push_back(&change);
    }
    for (OutputFile& file : m_files) {
        if (file.m_name) {
            changes.push_back(&*file.m_name);
        }
    }
    std::set<std::string> folders;
    for (const NameChange* change : changes) {
        folders.insert(folderOf(change->target()));
    }
    if (m_files.size() > MOST_ALONE) {
        std::for_each(folders.begin(), folders.end(), syncAround);
    }
    change(changes, folders);
    m_files.clear();
    m_removed.clear();
}

} // namespace kit
