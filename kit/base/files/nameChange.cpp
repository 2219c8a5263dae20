// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/nameChange.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string_view>
#include <utility>

#include "kit/base/systemFault.h"

namespace kit {

namespace {

constexpr std::string_view MARK = ".part-";
constexpr std::string_view LETTERS = "abcdefghijklmnopqrstuvwxyz012345";
constexpr size_t NUM_LETTERS = 6;
constexpr size_t LONGEST_NAME = 255; // of a file, on the usual file systems

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

} // namespace kit
