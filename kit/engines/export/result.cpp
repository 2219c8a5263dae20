// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/result.h"

#include <filesystem>
#include <optional>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/text/json.h"

namespace kit::exporter {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view ENDING = ".json";

/// A result's JSON, once it is known to be one with a placement.
Json readJson(const std::string& path)
{
    const std::optional<Json> json = Json::tryParse(readFile(path));
    if (!json || (*json)["schema"] != "vireloce-place") {
        throw Fault(path + " is no result of vireloce-kit place");
    }
    if (!(*json)["placement"].isObject()) {
        throw Fault(path + " is the result of a run that ended without a placement");
    }
    return *json;
}

std::string cellDirOf(const Json& json, const std::string& path)
{
    const Json& cellPath = json["options"]["cell_path"];
    if (!cellPath.isString()) {
        throw Fault(path + " does not say where the colour files are: give --cell-path");
    }
    return (fs::path(path).parent_path() / cellPath.asString()).string(); // which may be absolute
}

} // namespace

ResultFiles findResult(const std::string& json, const std::string& cellDir)
{
    if (!json.ends_with(ENDING)) {
        throw Fault(json + " does not end in .json: give the OUT.json that vireloce-kit place wrote");
    }
    const Json result = readJson(json);
    const std::string base = json.substr(0, json.size() - ENDING.size());
    ResultFiles files{.json = json, .place = base + ".place", .colors = base + ".colors"};
    if (!fs::exists(files.place)) {
        throw Fault("there is no " + files.place + " beside " + json);
    }
    files.map = fs::exists(base + ".map") ? base + ".map" : "";
    files.cellDir = cellDir.empty() ? cellDirOf(result, json) : cellDir;
    return files;
}

} // namespace kit::exporter
