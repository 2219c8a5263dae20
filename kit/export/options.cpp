// SPDX-License-Identifier: BSD-3-Clause
#include "kit/export/options.h"

#include <filesystem>

#include "kit/fault.h"

namespace kit::exporter {

namespace fs = std::filesystem;

namespace {

/// Whether two paths mean one file, which need not exist.
bool isSameFile(const std::string& a, const std::string& b)
{
    std::error_code unknown; // of files that are not there
    return fs::weakly_canonical(a) == fs::weakly_canonical(b) || fs::equivalent(a, b, unknown);
}

std::vector<std::string> outputsOf(const Options& options)
{
    std::vector<std::string> outputs{options.out};
    if (!options.gds.empty()) {
        outputs.insert(outputs.end(), {options.gds, layerPropertiesOf(options.gds)});
    }
    for (const std::string& path : {options.lefMasks, options.defMasks}) {
        if (!path.empty()) {
            outputs.push_back(path);
        }
    }
    return outputs;
}

} // namespace

std::string layerPropertiesOf(const std::string& gds)
{
    return fs::path(gds).replace_extension(".lyp").string();
}

void checkOutputs(const Options& options, const std::vector<std::string>& inputs)
{
    const std::vector<std::string> outputs = outputsOf(options);
    for (size_t i = 0; i < outputs.size(); ++i) {
        for (const std::string& input : inputs) {
            if (isSameFile(outputs[i], input)) {
                throw Fault(outputs[i] + " is an input: choose another name for the result");
            }
        }
        for (size_t k = 0; k < i; ++k) {
            if (isSameFile(outputs[i], outputs[k])) {
                throw Fault(outputs[i] + " is the name of two results: choose different ones");
            }
        }
        if (!options.force && fs::exists(outputs[i])) {
            throw Fault(outputs[i] + " exists: choose another name, or --force to replace it");
        }
    }
}

} // namespace kit::exporter
