// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/designFiles.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "kit/formats/gds/gdsNames.h"
#include "kit/formats/placer/writer.h"

namespace kit::importing {

namespace {

/// Whether some row stands just above or below another.
bool hasNeighbour(const Core& core, const Row& row)
{
    return core.rowAt(row.y + core.siteHeight) != NONE || core.rowAt(row.y - core.siteHeight) != NONE;
}

/// A name in the header or of a row, whose line holds two and less than 100 other characters.
std::string carried(std::string_view name, const char* other)
{
    constexpr size_t LONGEST_IN_ROW = 70;
    return isCarried(name) && name.size() <= LONGEST_IN_ROW ? std::string(name) : other;
}

/// The design's name, or else what a GDSII file makes of it, so that layouts and markers have the same.
std::string designName(std::string_view name)
{
    return carried(name, name.empty() ? "design" : gds::gdsName(name).c_str());
}

/// Left, bottom, right and top of the rows.
std::array<int64_t, 4> boundsOf(const Core& core)
{
    int64_t left = core.rows.front().begin();
    int64_t right = core.rows.front().end();
    for (const Row& row : core.rows) {
        left = std::min(left, row.begin());
        right = std::max(right, row.end());
    }
    return {left, core.rows[core.byHeight.front()].y, right,
            core.rows[core.byHeight.back()].y + core.siteHeight};
}

/// Order of the rows in which the placer takes the right height from them: it compares all with the first.
///
/// @return indices in Core::rows; NONE for a row without sites, one height above the first, where no two rows
/// meet
std::vector<size_t> rowOrder(const Core& core)
{
    std::vector<size_t> order(core.rows.size());
    std::iota(order.begin(), order.end(), size_t{0});
    auto first = std::ranges::find_if(order, [&](size_t row) { return hasNeighbour(core, core.rows[row]); });
    const bool noneMeet = first == order.end();
    if (noneMeet) { // above the highest there is room for a row without sites
        first = std::ranges::find(order, core.byHeight.back());
    }
    std::rotate(order.begin(), first, std::next(first));
    if (noneMeet) {
        order.push_back(NONE);
    }
    return order;
}

void writeRows(placer::PlaceWriter& out, const Core& core)
{
    const std::vector<size_t> order = rowOrder(core);
    const auto write = [&](const std::string& name, const Row& row, int64_t y, int64_t sites) {
        out.row(name, carried(row.site, "site"), row.begin(), y, nameOf(row.orient), sites, core.siteWidth);
    };
    for (const size_t index : order) {
        if (index != NONE) {
            const Row& row = core.rows[index];
            write(carried(row.name, "ROW"), row, row.y, row.numSites(core.siteWidth));
        } else {
            const Row& first = core.rows[order.front()];
            write("ROW_HEIGHT", first, first.y + core.siteHeight, 0);
        }
    }
}

void writeComponents(placer::PlaceWriter& out, const DesignFiles& files)
{
    out.beginComponents(files.cells.movable.size());
    for (size_t i = 0; i < files.cells.movable.size(); ++i) {
        const Cell& cell = files.cells.movable[i];
        out.component(files.cellNames[i], files.def.components[cell.component].macro, cell.x, cell.y,
                      cell.mirrored ? "FN" : "N");
    }
}

void writeBlocks(placer::PlaceWriter& out, const Core& core)
{
    size_t count = 0;
    for (const Row& row : core.rows) {
        count += row.blocks.size();
    }
    out.beginBlocks(count);
    size_t next = 0;
    for (const Row& row : core.rows) {
        for (const Interval& block : row.blocks) {
            out.block("BLOCK_" + std::to_string(next++), block.begin, row.y, block.end - block.begin,
                      core.siteHeight);
        }
    }
}

} // namespace

std::vector<std::string> usedMasters(const DesignFiles& files)
{
    std::vector<bool> isUsed(files.lef.macros.size());
    for (const Cell& cell : files.cells.movable) {
        isUsed[files.cells.masterOf[cell.component]] = true;
    }
    std::vector<std::string> names;
    for (size_t i = 0; i < isUsed.size(); ++i) {
        if (isUsed[i]) {
            names.push_back(files.lef.macros[i].name);
        }
    }
    std::ranges::sort(names);
    return names;
}

void writePlace(const DesignFiles& files, OutputFile& out)
{
    const lefdef::DefRect& area = files.def.dieArea;
    const std::array<int64_t, 4> die{area.xl, area.yl, area.xh, area.yh};
    placer::PlaceWriter place({.design = designName(files.def.design),
                               .dbuPerMicron = files.def.databaseMicrons,
                               .core = boundsOf(files.core),
                               .die = files.def.hasDieArea ? &die : nullptr},
                              out);
    writeRows(place, files.core);
    writeComponents(place, files);
    writeBlocks(place, files.core);
    place.end();
}

void writePins(const DesignFiles& files, OutputFile& out)
{
    out << files.terminals.size() << "\n";
    for (const Terminal& terminal : files.terminals) {
        placer::writePin(out, terminal.name, terminal.x, terminal.y);
    }
}

void writeNetlist(const DesignFiles& files, OutputFile& out)
{
    out << files.numNets() << "\n";
    for (size_t net = 0; net < files.numNets(); ++net) {
        const size_t begin = files.netBegin[net];
        placer::writeNet(out, files.netBegin[net + 1] - begin, [&](size_t i) -> const std::string& {
            return files.nameOf(files.members[begin + i]);
        });
    }
}

void writeCells(const DesignFiles& files, OutputFile& out)
{
    placer::writeCellList(out, usedMasters(files));
}

void writeOffsets(const DesignFiles& files, OutputFile& out)
{
    design::writePinOffsets(files.offsets, out);
}

} // namespace kit::importing
