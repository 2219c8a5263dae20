// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "kit/base/fault.h"

namespace kit {

namespace fs = std::filesystem;

void makeFolder(const std::string& path)
{
    std::error_code error;
    fs::create_directories(path, error);
    if (error) {
        throw Fault("cannot make the folder " + path + ": " + error.message());
    }
}

std::string folderOf(const std::string& path)
{
    const std::string folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

std::vector<std::string> filesIn(const std::string& folder)
{
    std::vector<std::string> paths;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        paths.push_back(at->path().string());
    }
    return paths;
}

std::string makeTemporaryFolder()
{
    std::error_code error; // where TMPDIR names no folder
    fs::path name = fs::temp_directory_path(error);
    name = (error ? fs::path("/tmp") : name) / "vireloce-XXXXXX";
    std::string path = name.string();
    if (mkdtemp(path.data()) == nullptr) {
        throw systemFault("cannot make the folder " + path, errno);
    }
    return path;
}

FolderRemoval::~FolderRemoval()
{
    std::error_code error; // of what is not there
    fs::remove_all(m_path, error);
}

void syncFolder(const std::string& path)
{
    const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // One that can be written and not read, or a file system that knows no such thing, is no fault.
    const int error = folder >= 0 && fsync(folder) != 0 ? errno : 0;
    if (folder >= 0) {
        close(folder);
    }
    if (error != 0 && error != EINVAL) {
        throw systemFault("cannot write the folder " + path, error);
    }
}

} // namespace kit
