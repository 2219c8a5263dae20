// SPDX-License-Identifier: BSD-3-Clause
#include "kit/export/result.h"

#include <filesystem>
#include <nlohmann/json.hpp>

#include "kit/base/readFile.h"
#include "kit/fault.h"

namespace kit::exporter {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr std::string_view ENDING = ".json";

/// A result's JSON, once it is known to be one with a placement.
Json readJson(const std::string& path)
{
    Json json = Json::parse(readFile(path), nullptr, /*allow_exceptions=*/false);
    if (!json.is_object() || json.value("schema", Json()) != "vireloce-place") {
        throw Fault(path + " is no result of vireloce-kit place");
    }
    if (!json.contains("placement") || !json["placement"].is_object()) {
        throw Fault(path + " is the result of a run that ended without a placement");
    }
    return json;
}

std::string cellDirOf(const Json& json, const std::string& path)
{
    const Json& options = json.contains("options") ? json["options"] : Json::object();
    const bool known =
        options.is_object() && options.contains("cell_path") && options["cell_path"].is_string();
    if (!known) {
        throw Fault(path + " does not say where the colour files are: give --cell-path");
    }
    return options["cell_path"].get<std::string>();
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
