// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/trueDesign.h"

#include <filesystem>

#include "kit/design/nameMap.h"
#include "kit/design/standing.h"
#include "kit/formats/placer/reader.h"

namespace kit::place {

namespace {

/// Marks the records of some names.
template <typename Records>
void mark(const std::vector<std::string>& names, const Records& records, std::vector<bool>& marks)
{
    const placer::NameIndex index = placer::indexNames(records);
    for (const std::string& name : names) {
        if (const int32_t record = placer::findName(index, name); record >= 0) {
            marks[static_cast<size_t>(record)] = true;
        }
    }
}

} // namespace

TrueDesign readTrueDesign(const std::string& base, const std::string& cellDir,
                          const design::FixedParts& parts, const std::vector<WiderMacro>& wider,
                          Findings& findings)
{
    const placer::Paths paths{.base = base, .cellDir = cellDir};
    TrueDesign result;
    placer::Design& design = result.design;
    placer::readLibrary(paths, design, findings);
    placer::readPlacement(paths.place(), design, findings);
    for (const WiderMacro& macro : wider) {
        design.macros[static_cast<size_t>(macro.macro)].x = macro.x;
        design.macros[static_cast<size_t>(macro.macro)].width = macro.width;
    }
    design::addFixed(parts, cellDir, design, findings);
    for (const placer::Component& comp : design.components) {
        result.upsideDown.push_back(design::turnOf(comp.orient).mirrorY);
    }
    result.mirrorable.resize(design.cells.size());
    if (const std::string path = design::mapOf(paths.place()); std::filesystem::exists(path)) {
        const design::NameMap map = design::readNameMap(path, findings);
        mark(map.flipped, design.components, result.upsideDown);
        mark(map.mirrorable, design.cells, result.mirrorable);
        for (const placer::Row& row : design.rows) {
            if (design::turnOf(row.orient).mirrorY) {
                result.turnedRows.insert(row.y);
            }
        }
    }
    return result;
}

} // namespace kit::place
