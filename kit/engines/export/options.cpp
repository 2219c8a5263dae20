// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/options.h"

#include <filesystem>

#include "kit/base/files/unpack.h"

namespace kit::exporter {

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

std::string layerPropertiesOf(const std::string& gds)
{
    std::filesystem::path path(gds);
    if (isPackedName(gds)) {
        path.replace_extension();
    }
    return path.replace_extension(".lyp").string();
}

} // namespace kit::exporter
