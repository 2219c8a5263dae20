// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/fillers.h"

#include <algorithm>

namespace kit::exporter {

namespace {

using lefdef::DefComponent;

bool isFiller(const DefComponent& component, const MacroIndex& macros)
{
    const auto macro = macros.find(component.macro);
    if (macro != macros.end()) {
        return lefdef::isFiller(*macro->second);
    }
    return component.name.starts_with("FILL") || component.macro.starts_with("FILL");
}

/// A stretch of the x axis, DBU.
struct Stretch {
    int64_t begin;
    int64_t end;
};

/// Stretches by the height at which they lie.
using Bands = std::unordered_map<int32_t, std::vector<Stretch>>;

Bands bandsOf(const lefdef::Def& def, const Matching& matching, const WidthOf& widthOf)
{
    Bands bands;
    for (const Placed& placed : matching.placed) {
        const int64_t width = widthOf(def.components[placed.inDef].macro);
        bands[placed.y].push_back({placed.x, placed.x + width});
    }
    for (auto& [y, band] : bands) {
        std::sort(band.begin(), band.end(),
                  [](const Stretch& a, const Stretch& b) { return a.begin < b.begin; });
        // The farthest end so far, so that one look tells whether anything before reaches over a point.
        for (size_t i = 1; i < band.size(); ++i) {
            band[i].end = std::max(band[i].end, band[i - 1].end);
        }
    }
    return bands;
}

bool isCovered(const Bands& bands, int32_t y, const Stretch& filler)
{
    const auto band = bands.find(y);
    if (band == bands.end()) {
        return false;
    }
    const std::vector<Stretch>& cells = band->second;
    const auto behind = std::partition_point(
        cells.begin(), cells.end(), [&filler](const Stretch& cell) { return cell.begin < filler.end; });
    return behind != cells.begin() && std::prev(behind)->end > filler.begin;
}

} // namespace

MacroIndex indexMacros(const lefdef::Lef& lef)
{
    MacroIndex index;
    for (const lefdef::LefMacro& macro : lef.macros) {
        index.try_emplace(macro.name, &macro);
    }
    return index;
}

std::vector<bool> findFillers(const lefdef::Def& def, const Matching& matching, const MacroIndex& macros)
{
    std::vector<bool> fillers(def.components.size());
    for (const size_t index : matching.untouched) {
        fillers[index] =
            def.components[index].status == lefdef::Status::PLACED && isFiller(def.components[index], macros);
    }
    return fillers;
}

int64_t countCovered(const lefdef::Def& def, const Matching& matching, const std::vector<bool>& fillers,
                     const WidthOf& widthOf)
{
    const Bands bands = bandsOf(def, matching, widthOf);
    return std::count_if(matching.untouched.begin(), matching.untouched.end(), [&](size_t index) {
        const DefComponent& component = def.components[index];
        const int64_t width = fillers[index] ? widthOf(component.macro) : 0;
        return width > 0 && isCovered(bands, component.y, {component.x, component.x + width});
    });
}

} // namespace kit::exporter
