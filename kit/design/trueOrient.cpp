// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/trueOrient.h"

#include <algorithm>
#include <filesystem>

namespace kit::design {

namespace {

lefdef::Orient orientNamed(const std::string& name)
{
    return lefdef::orientOf(name).value_or(lefdef::Orient::N);
}

} // namespace

TrueOrients::TrueOrients(const std::vector<placer::Row>& rows, const NameMap& map)
    : m_flipped(map.flipped.begin(), map.flipped.end())
{
    for (const placer::Row& row : rows) {
        m_rows[row.y].push_back(&row);
    }
}

std::optional<lefdef::Orient> TrueOrients::of(const placer::Component& comp) const
{
    const auto at = m_rows.find(comp.y);
    if (at == m_rows.end()) {
        return {};
    }
    const auto row =
        std::find_if(at->second.begin(), at->second.end(), [&comp](const placer::Row* candidate) {
            const int64_t right = candidate->x + int64_t{candidate->numSites} * candidate->step;
            return candidate->x <= comp.x && comp.x < right;
        });
    if (row == at->second.end()) {
        return {};
    }
    const bool upsideDown =
        lefdef::isUpsideDown(orientNamed((*row)->orient)) != m_flipped.contains(comp.name);
    return lefdef::upright(isMirrored(comp), upsideDown);
}

bool isMirrored(const placer::Component& comp)
{
    return lefdef::isMirrored(orientNamed(comp.orient));
}

std::string mapOf(const std::string& placement)
{
    return placement.empty() ? "" : std::filesystem::path(placement).replace_extension(".map").string();
}

void restoreOrientations(const std::string& placement, placer::Design& design, Findings& findings)
{
    const std::string path = mapOf(placement);
    if (!std::filesystem::exists(path)) {
        return;
    }
    const NameMap map = readNameMap(path, findings);
    const TrueOrients orients(design.rows, map);
    for (placer::Component& comp : design.components) {
        if (comp.orient == "N" || comp.orient == "FN") {
            if (const std::optional<lefdef::Orient> orient = orients.of(comp)) {
                comp.orient = std::string(nameOf(*orient));
            }
        }
    }
}

} // namespace kit::design
