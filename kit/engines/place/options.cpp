// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/options.h"

#include "kit/base/files/folder.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/text/text.h"
#include "kit/design/designFiles.h"
#include "kit/formats/placer/reader.h"

namespace kit::place {

namespace {

/// Width of the sites of the design, which is read only where the distance is given as a length.
lefdef::Length siteOf(const Options& options)
{
    if (!options.minDist || !options.minDist->hasUnit()) {
        return 0;
    }
    placer::Design design;
    Findings findings; // the placer tells what is wrong
    placer::readPlacement(options.base + ".place", design, findings);
    return design::siteLength(design);
}

} // namespace

std::vector<std::string> placerArguments(const Options& options)
{
    std::vector<std::string> arguments{"vireloce", "-inlib", options.base, "-cellPath", options.cellPath};
    const auto addGiven = [&](const char* name, const auto& value) {
        if (value.has_value()) {
            arguments.insert(arguments.end(), {name, shortText(*value)});
        }
    };
    addGiven("-algo", options.algo);
    addGiven("-mindp",
             options.minDist ? std::optional(options.minDist->unitsOn(siteOf(options))) : std::nullopt);
    addGiven("-siteW", options.siteWidth);
    addGiven("-M", options.moveRange);
    addGiven("-W", options.weight);
    return arguments;
}

void checkOutputs(const Options& options)
{
    std::vector<std::string> inputs = filesIn(options.cellPath);
    const std::vector<std::string> files = design::inputsOf(options.base);
    inputs.insert(inputs.end(), files.begin(), files.end());
    kit::checkOutputs(design::outputsOf(options.out), inputs, options.force);
    requireFolderFor(options.out + ".json");
}

} // namespace kit::place
