// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/outputSet.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <set>
#include <vector>

#include "kit/base/files/folder.h"
#include "kit/base/systemFault.h"

namespace kit {

namespace {

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
