// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/outputPaths.h"

#include <cerrno>
#include <charconv>
#include <filesystem>
#include <set>
#include <system_error>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"

namespace kit {

namespace fs = std::filesystem;

namespace {

constexpr int MOST_LINKS = 40; // as the system's own limit

/// The number of an open file of this process that a path names, -1 if it names none.
int descriptorNamed(const fs::path& path)
{
    const std::string name = path.filename().string();
    int number = -1;
    const auto [stop, failure] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (failure != std::errc() || stop != name.data() + name.size()) {
        return -1;
    }
    std::error_code error;
    const fs::path folder = fs::canonical(path.parent_path(), error);
    return !error && folder == fs::canonical("/proc/self/fd", error) && !error ? number : -1;
}

/// Follows the links of a path to where it leads, or to an open file.
void follow(OutputTarget& target)
{
    fs::path path = target.path;
    std::error_code error;
    for (int i = 0; i < MOST_LINKS && fs::is_symlink(path, error); ++i) {
        target.descriptor = descriptorNamed(path);
        if (target.descriptor >= 0) {
            break;
        }
        path = path.parent_path() / fs::read_symlink(path, error); // an absolute one stands for itself
    }
    target.path = path.string();
}

using Identities = std::set<FileIdentity>;

/// Checks one result. @param others  in and out: those that were checked before
void check(const std::string& output, const Identities& inputs, Identities& others, bool force)
{
    const OutputTarget target = targetOf(output);
    const bool device = target.exists && S_ISCHR(target.info.st_mode); // may well be all of these
    if (!device && inputs.contains(target.identity)) {
        throw Fault(output + " is an input: choose another name for the result");
    }
    if (!device && !others.insert(target.identity).second) {
        throw Fault(output + " is the name of two results: choose different ones");
    }
    const std::string name = fs::path(output).filename().string();
    if (name.empty() || name.front() == '.' || target.isFolder()) {
        throw Fault(output + " is no name for a file");
    }
    if (!force && target.exists && !target.isStream()) {
        throw Fault(output + " exists: choose another name, or --force to replace it");
    }
    if (target.error != 0) {
        throw systemFault("cannot write " + output, target.error);
    }
}

} // namespace

OutputTarget targetOf(const std::string& path)
{
    OutputTarget target{.path = path};
    follow(target);
    target.exists = stat(path.c_str(), &target.info) == 0;
    if (target.exists) {
        target.identity = {.device = target.info.st_dev, .inode = target.info.st_ino};
        return target;
    }
    target.error = errno == ENOENT || errno == ENOTDIR ? 0 : errno;
    std::error_code unknown;
    const fs::path whole = fs::weakly_canonical(target.path, unknown);
    target.identity.path = unknown ? target.path : whole.string();
    return target;
}

void checkOutputs(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs, bool force)
{
    Identities known;
    for (const std::string& input : inputs) {
        if (!input.empty()) {
            known.insert(targetOf(input).identity);
        }
    }
    Identities others;
    for (const std::string& output : outputs) {
        check(output, known, others, force);
    }
}

void requireFolderFor(const std::string& output)
{
    std::error_code error;
    if (!fs::is_directory(folderOf(output), error)) {
        throw Fault("cannot write " + output + ": there is no folder " + folderOf(output));
    }
}

} // namespace kit
