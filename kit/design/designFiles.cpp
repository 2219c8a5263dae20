// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/designFiles.h"

#include <filesystem>

namespace kit::design {

std::vector<std::string> inputsOf(const std::string& base)
{
    std::vector<std::string> inputs{base + ".place"};
    for (const char* extension : COPIED) {
        inputs.push_back(base + extension);
    }
    for (const char* extension : COPIED_IF_THERE) {
        inputs.push_back(base + extension);
    }
    inputs.push_back(base + FIXED);
    return inputs;
}

std::vector<std::string> outputsOf(const std::string& out)
{
    std::vector<std::string> outputs = inputsOf(out);
    outputs.insert(outputs.end(), {out + ".colors", out + ".json"});
    return outputs;
}

void addCopies(const std::string& base, const std::string& out, OutputSet& files)
{
    for (const char* extension : COPIED) {
        files.addCopy(out + extension, base + extension);
    }
    // Those of an earlier result would be the wrong ones.
    for (const char* extension : COPIED_IF_THERE) {
        if (std::filesystem::exists(base + extension)) {
            files.addCopy(out + extension, base + extension);
        } else {
            files.remove(out + extension);
        }
    }
    if (!std::filesystem::exists(base + FIXED)) {
        files.remove(out + FIXED);
    }
}

} // namespace kit::design
