// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/outputPaths.h"

#include <filesystem>
#include <set>

#include "kit/base/files/outputTarget.h"
#include "kit/base/systemFault.h"

namespace kit {

namespace {

using Identities = std::set<FileIdentity>;

Identities identitiesOf(const std::vector<std::string>& paths)
{
    Identities identities;
    for (const std::string& path : paths) {
        if (!path.empty()) {
            identities.insert(targetOf(path).identity);
        }
    }
    return identities;
}

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
    const std::string name = std::filesystem::path(output).filename().string();
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

void checkOutputs(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs, bool force)
{
    const Identities known = identitiesOf(inputs);
    Identities others;
    for (const std::string& output : outputs) {
        check(output, known, others, force);
    }
}

} // namespace kit
