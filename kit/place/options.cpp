// SPDX-License-Identifier: BSD-3-Clause
#include "kit/place/options.h"

#include <filesystem>
#include <utility>

#include "kit/fault.h"

namespace kit::place {

namespace fs = std::filesystem;

namespace {

/// Whether two paths mean one file, which need not exist.
bool isSameFile(const std::string& a, const std::string& b)
{
    return fs::weakly_canonical(a) == fs::weakly_canonical(b);
}

void checkOutput(const Options& options, const char* extension)
{
    const std::string path = options.out + extension;
    for (const char* input : {".place", ".pins", ".netlist", ".cells", MAP}) {
        if (isSameFile(path, options.base + input)) {
            throw Fault(path + " is an input: choose another -o");
        }
    }
    if (!options.force && fs::exists(path)) {
        throw Fault(path + " exists: choose another -o, or --force to replace it");
    }
}

} // namespace

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
    for (const char* extension : WRITTEN) {
        checkOutput(options, extension);
    }
    for (const char* extension : COPIED) {
        checkOutput(options, extension);
    }
    checkOutput(options, MAP);
}

} // namespace kit::place
