// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/placeResult.h"

#include <filesystem>
#include <optional>
#include <string_view>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/design/distance.h"

namespace kit::design {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view ENDING = ".json";

std::string cellDirOf(const Json& json, const std::string& path)
{
    const Json& cellPath = json["options"]["cell_path"];
    if (!cellPath.isString()) {
        throw Fault(path + " does not say where the colour files are: give --cell-path");
    }
    return (fs::path(path).parent_path() / cellPath.asString()).string(); // which may be absolute
}

} // namespace

Json readPlaceResult(const std::string& path)
{
    const std::optional<Json> result = Json::tryParse(readFile(path));
    if (!result || (*result)["schema"] != "vireloce-place" || (*result)["version"] != 1) {
        throw Fault(path + " is no result of vireloce-kit place, version 1");
    }
    return *result;
}

ResultFiles findResult(const std::string& json, const std::string& cellDir)
{
    if (!json.ends_with(ENDING)) {
        throw Fault(json + " does not end in .json: give the OUT.json that vireloce-kit place wrote");
    }
    const Json result = readPlaceResult(json);
    if (!result["placement"].isObject() && !result["refine"].isObject()) {
        throw Fault(json + " is the result of a run that ended without a placement");
    }
    const std::string base = json.substr(0, json.size() - ENDING.size());
    ResultFiles files{.json = json, .place = base + ".place", .colors = base + ".colors"};
    if (!fs::exists(files.place)) {
        throw Fault("there is no " + files.place + " beside " + json);
    }
    files.map = fs::exists(base + ".map") ? base + ".map" : "";
    const Json& minDist = result["options"]["mindp"];
    files.minDist = minDist.isInteger() ? static_cast<int32_t>(minDist.asInteger()) : Distance::USUAL;
    files.rowsMeet = result["options"]["rows_meet"] == true;
    files.cellDir = cellDir.empty() ? cellDirOf(result, json) : cellDir;
    const Json& errors = result.atPointer("/judge/errors");
    files.errors = errors.isNull() ? 0 : errors.asInteger();
    return files;
}

} // namespace kit::design
