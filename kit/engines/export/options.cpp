// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/options.h"

#include <filesystem>

#include "kit/base/files/outputPaths.h"

namespace kit::exporter {

namespace fs = std::filesystem;

namespace {

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
    kit::checkOutputs(outputsOf(options), inputs, options.force);
}

} // namespace kit::exporter
