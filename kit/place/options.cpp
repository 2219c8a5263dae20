// SPDX-License-Identifier: BSD-3-Clause
#include "kit/place/options.h"

#include <utility>

#include "kit/base/folder.h"
#include "kit/base/outputPaths.h"

namespace kit::place {

std::vector<std::string> placerArguments(const Options& options)
{
    std::vector<std::string> arguments{"vireloce", "-inlib", options.base, "-cellPath", options.cellPath};
    const std::pair<const char*, const std::string&> given[] = {{"-algo", options.algo},
                                                                {"-mindp", options.mindp},
                                                                {"-siteW", options.siteWidth},
                                                                {"-M", options.moveRange},
                                                                {"-W", options.weight}};
    for (const auto& [name, value] : given) {
        if (!value.empty()) {
            arguments.insert(arguments.end(), {name, value});
        }
    }
    return arguments;
}

void checkOutputs(const Options& options)
{
    std::vector<std::string> inputs = filesIn(options.cellPath);
    for (const char* extension : {".place", ".pins", ".netlist", ".cells", MAP}) {
        inputs.push_back(options.base + extension);
    }
    std::vector<std::string> outputs;
    for (const char* extension : WRITTEN) {
        outputs.push_back(options.out + extension);
    }
    for (const char* extension : COPIED) {
        outputs.push_back(options.out + extension);
    }
    outputs.push_back(options.out + MAP);
    kit::checkOutputs(outputs, inputs, options.force);
}

} // namespace kit::place
