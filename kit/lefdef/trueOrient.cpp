// SPDX-License-Identifier: BSD-3-Clause
#include "kit/lefdef/trueOrient.h"

#include <algorithm>
#include <filesystem>

namespace kit::lefdef {

namespace {

Orient orientNamed(const std::string& name)
{
    return orientOf(name).value_or(Orient::N);
}

} // namespace

TrueOrients::TrueOrients(const std::vector<input::Row>& rows, const NameMap& map)
    : m_flipped(map.flipped.begin(), map.flipped.end())
{
    for (const input::Row& row : rows) {
        m_rows[row.y].push_back(&row);
    }
}

std::optional<Orient> TrueOrients::of(const input::Component& comp) const
{
    const auto at = m_rows.find(comp.y);
    if (at == m_rows.end()) {
        return {};
    }
    const auto row = std::find_if(at->second.begin(), at->second.end(), [&comp](const input::Row* candidate) {
        const int64_t right = candidate->x + int64_t{candidate->numSites} * candidate->step;
        return candidate->x <= comp.x && comp.x < right;
    });
    if (row == at->second.end()) {
        return {};
    }
    const bool upsideDown = isUpsideDown(orientNamed((*row)->orient)) != m_flipped.contains(comp.name);
    return upright(isMirrored(comp), upsideDown);
}

bool isMirrored(const input::Component& comp)
{
    return isMirrored(orientNamed(comp.orient));
}

std::string mapOf(const std::string& placement)
{
    return placement.empty() ? "" : std::filesystem::path(placement).replace_extension(".map").string();
}

void restoreOrientations(const std::string& placement, input::Design& design, input::Findings& findings)
{
    const std::string path = mapOf(placement);
    if (!std::filesystem::exists(path)) {
        return;
    }
    const NameMap map = readNameMap(path, findings);
    const TrueOrients orients(design.rows, map);
    for (input::Component& comp : design.components) {
        if (comp.orient == "N" || comp.orient == "FN") {
            if (const std::optional<Orient> orient = orients.of(comp)) {
                comp.orient = std::string(nameOf(*orient));
            }
        }
    }
}

} // namespace kit::lefdef
