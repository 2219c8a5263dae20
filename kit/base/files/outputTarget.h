// SPDX-License-Identifier: BSD-3-Clause
// What a path means to somebody who wants to write there.
#pragma once

#include <sys/stat.h>

#include <string>
#include <tuple>

namespace kit {

/// Which file a path means, whatever its name: device and inode of one that is there, else the whole path.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    std::string path{}; ///< empty for a file that is there

    bool operator<(const FileIdentity& other) const
    {
        return std::tie(device, inode, path) < std::tie(other.device, other.inode, other.path);
    }
};

/// Where an output goes.
struct OutputTarget {
    std::string path;        ///< links followed: a link stays, and what it leads to is replaced
    int descriptor = -1;     ///< an open file of this process, as /dev/stdout is one; -1 for none
    bool exists = false;     ///< there is something
    int error = 0;           ///< why that cannot be told, as errno tells it
    struct stat info {};     ///< of what is there
    FileIdentity identity{}; ///< of the file that is there or would come into being

    bool isFolder() const { return exists && S_ISDIR(info.st_mode); }

    /// Whether there is nothing to be replaced: a pipe, a device, a file that is open already.
    bool isThrough() const { return descriptor >= 0 || (exists && !S_ISREG(info.st_mode) && !isFolder()); }

    /// Whether writing there destroys nothing. A disk is not among these.
    bool isStream() const { return isThrough() && (descriptor >= 0 || !S_ISBLK(info.st_mode)); }
};

/// Finds out where an output goes.
OutputTarget targetOf(const std::string& path);

} // namespace kit
