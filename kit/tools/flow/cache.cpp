// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/flow/cache.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/files/unpack.h"
#include "kit/base/hash.h"
#include "kit/base/text/text.h"

namespace kit::flow {

namespace fs = std::filesystem;

namespace {

constexpr const char* PART = ".part";

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

std::string cachedFolder(const Options& options, const std::string& site,
                         const std::vector<std::string>& cells, const std::string& version)
{
    Hash hash;
    const auto numberText = [](const auto& number) { return number ? shortText(*number) : ""; };
    for (const std::string& option :
         {version, options.layer, site, options.minDist ? options.minDist->given() : "",
          numberText(options.maxSolutions), std::string(options.allowConflicts ? "conflicts" : ""),
          std::string(options.railsConflict ? "rails" : ""), std::string(options.rowsMeet ? "rows" : "")}) {
        hash.add(option);
        hash.add(std::string_view("\0", 1)); // "a" and "bc" are not "ab" and "c"
    }
    for (const std::string& cell : cells) {
        hash.add(cell);
        hash.add(std::string_view("\0", 1));
    }
    for (const std::string& path : options.lefs) {
        hash.add(std::string_view("\0", 1)); // no name of a cell is empty
        hash.add(readUnpacked(path));
        hash.add(std::string_view("\0", 1));
    }
    return (fs::path(cacheRoot(options)) / hash.text()).string();
}

std::string makePart(const std::string& folder)
{
    std::string part = folder + PART + std::to_string(getpid());
    makeFolder(part);
    writeFile(part + "/" + MARK, "");
    return part;
}

void removeOldParts(const std::string& folder)
{
    const fs::path path(folder);
    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(24);
    std::error_code error; // another run may remove the same
    for (const fs::directory_entry& entry : fs::directory_iterator(path.parent_path(), error)) {
        const fs::path& name = entry.path();
        const bool isPart = name.extension().string().starts_with(PART) && fs::exists(name / MARK, error);
        if (isPart && entry.last_write_time(error) < old && !error) {
            fs::remove_all(name, error);
        }
    }
}

} // namespace kit::flow
