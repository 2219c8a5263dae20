// SPDX-License-Identifier: BSD-3-Clause
#include "kit/outputPaths.h"

#include <filesystem>
#include <system_error>

#include "kit/fault.h"

namespace kit {

namespace fs = std::filesystem;

bool isSameFile(const std::string& a, const std::string& b)
{
    std::error_code unknown; // of files that are not there
    const fs::path whole = fs::weakly_canonical(a, unknown);
    return (!unknown && whole == fs::weakly_canonical(b, unknown)) || fs::equivalent(a, b, unknown);
}

void checkOutputs(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs, bool force)
{
    for (size_t i = 0; i < outputs.size(); ++i) {
        const std::string& output = outputs[i];
        for (const std::string& input : inputs) {
            if (isSameFile(output, input) || isSameFile(output + ".part", input)) {
                throw Fault(output + " is an input: choose another name for the result");
            }
        }
        for (size_t k = 0; k < i; ++k) {
            if (isSameFile(output, outputs[k])) {
                throw Fault(output + " is the name of two results: choose different ones");
            }
        }
        std::error_code error;
        const std::string name = fs::path(output).filename().string();
        if (name.empty() || name.front() == '.' || fs::is_directory(output, error)) {
            throw Fault(output + " is no name for a file");
        }
        if (!force && fs::exists(output, error)) {
            throw Fault(output + " exists: choose another name, or --force to replace it");
        }
        if (error && error != std::errc::no_such_file_or_directory) {
            throw Fault("cannot write " + output + ": " + error.message());
        }
    }
}

} // namespace kit
