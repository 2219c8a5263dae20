// SPDX-License-Identifier: BSD-3-Clause
// What a path means to somebody who wants to write there, and what must hold before results are written.
#pragma once

#include <sys/stat.h>

#include <compare>
#include <string>
#include <vector>

namespace kit {

/// Which file a path means, whatever its name: device and inode of one that is there, else the whole path.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    std::string path{}; ///< empty for a file that is there

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 behind <=> for a pointer
    auto operator<=>(const FileIdentity& other) const = default;
};

/// Where an output goes.
struct OutputTarget {
    std::string path;        ///< links followed: a link stays, and what it leads to is replaced
    int descriptor = -1;     ///< an open file of this process, as /dev/stdout is one; -1 for none
    bool exists = false;     ///< there is something
    int error = 0;           ///< why that cannot be told, as errno tells it
    struct stat info {};     ///< of what is there
    FileIdentity identity{}; ///< of the file that is there or would come into being

    /// Whether nothing can be written there.
    bool isFolder() const { return exists && S_ISDIR(info.st_mode); }

    /// Whether there is nothing to be replaced: a pipe, a device, a file that is open already.
    bool isThrough() const { return descriptor >= 0 || (exists && !S_ISREG(info.st_mode) && !isFolder()); }

    /// Whether writing there destroys nothing. A disk is not among these.
    bool isStream() const { return isThrough() && (descriptor >= 0 || !S_ISBLK(info.st_mode)); }
};

/// Finds out where an output goes.
OutputTarget targetOf(const std::string& path);

/// Checks that results may be written. Files are known by what they are, not by their names: through links,
/// and by all names that a file has.
///
/// Errors: throws Fault for a result that is an input, that is named twice, that is a folder or has no name,
/// or that exists, unless `force`. Pipes and devices lose nothing, and so need no `force`.
///
/// @param outputs  paths of the results
/// @param inputs   paths of the files that are read; empty ones count for nothing
void checkOutputs(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs,
                  bool force);

/// Checks that there is a folder for a result, for those who would find that out late.
///
/// Errors: throws Fault if there is none.
///
/// @param output  path of the result
void requireFolderFor(const std::string& output);

} // namespace kit
