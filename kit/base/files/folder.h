// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kit {

/// Makes a folder and those above it, where they are not there yet. Errors: throws Fault if it cannot.
void makeFolder(const std::string& path);

/// Makes a folder of a new name where temporary files belong. Errors: throws Fault if it cannot.
///
/// @return its path
std::string makeTemporaryFolder();

/// The folder that a file lies in: "." for a name alone.
std::string folderOf(const std::string& path);

/// Paths of the files in a folder, in any order; none if it cannot be read.
std::vector<std::string> filesIn(const std::string& folder);

/// Removes a folder with all that is in it when it goes itself.
class FolderRemoval {
public:
    /// @param path  of the folder, which need not be there
    explicit FolderRemoval(std::string path) : m_path(std::move(path)) {}
    ~FolderRemoval();
    /// The path.
    const std::string& path() const { return m_path; }

    FolderRemoval(const FolderRemoval&) = delete;
    FolderRemoval& operator=(const FolderRemoval&) = delete;

private:
    std::string m_path;
};

/// Waits until the names in a folder are on the disk. Errors: throws Fault if they do not get there.
void syncFolder(const std::string& path);

} // namespace kit
