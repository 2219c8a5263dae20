// SPDX-License-Identifier: BSD-3-Clause
#include "kit/lefdef/trueOrient.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "kit/lefdef/nameMap.h"
#include "kit/lefdef/orient.h"

namespace kit::lefdef {

namespace {

bool isUpsideDown(const std::string& orient)
{
    const std::optional<Orient> known = orientOf(orient);
    return known && isUpsideDown(*known);
}

} // namespace

void restoreOrientations(const std::string& placement, input::Design& design, input::Findings& findings)
{
    const std::string path = std::filesystem::path(placement).replace_extension(".map").string();
    if (!std::filesystem::exists(path)) {
        return;
    }
    const NameMap map = readNameMap(path, findings);
    const std::unordered_set<std::string_view> flipped(map.flipped.begin(), map.flipped.end());
    std::unordered_map<int32_t, bool> upsideDownAt;
    for (const input::Row& row : design.rows) {
        upsideDownAt[row.y] = isUpsideDown(row.orient);
    }
    for (input::Component& comp : design.components) {
        const auto row = upsideDownAt.find(comp.y);
        if (row != upsideDownAt.end() && (comp.orient == "N" || comp.orient == "FN")) {
            const bool upsideDown = row->second != (flipped.count(comp.name) > 0);
            comp.orient = std::string(nameOf(upright(comp.orient == "FN", upsideDown)));
        }
    }
}

} // namespace kit::lefdef
