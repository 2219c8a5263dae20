// SPDX-License-Identifier: BSD-3-Clause
#include "kit/flow/cache.h"

#include <cstdlib>
#include <filesystem>

#include "kit/fault.h"
#include "kit/hash.h"
#include "kit/input/text.h"

namespace kit::flow {

namespace {

/// Goes up when the same input may be coloured otherwise than before.
constexpr const char* VERSION = "1";

std::string cacheRoot(const Options& options)
{
    if (!options.cache.empty()) {
        return options.cache;
    }
    const char* const xdg = std::getenv("XDG_CACHE_HOME");
    if (xdg != nullptr && *xdg != '\0') {
        return std::string(xdg) + "/vireloce";
    }
    const char* const home = std::getenv("HOME");
    if (home == nullptr || *home == '\0') {
        throw Fault("neither HOME nor XDG_CACHE_HOME is set: give --cache DIR");
    }
    return std::string(home) + "/.cache/vireloce";
}

} // namespace

std::string cachedFolder(const Options& options)
{
    Hash hash;
    hash.add(VERSION);
    for (const std::string& option : {options.layer, options.site, options.mindp, options.maxSolutions,
                                      std::string(options.allowConflicts ? "conflicts" : "")}) {
        hash.add(option);
        hash.add(std::string_view("\0", 1)); // "a" and "bc" are not "ab" and "c"
    }
    for (const std::string& path : options.lefs) {
        hash.add(input::readText(path));
        hash.add(std::string_view("\0", 1));
    }
    return (std::filesystem::path(cacheRoot(options)) / hash.text()).string();
}

} // namespace kit::flow
