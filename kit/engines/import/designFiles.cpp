// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/designFiles.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>
#include <set>

#include "kit/base/files/outputFile.h"
#include "kit/formats/gds/gdsName.h"

namespace kit::importing {

namespace {

constexpr size_t MEMBERS_A_LINE = 8; ///< of a net

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

/// A property of the core box. The placer takes 2000 DBU for a micrometre there, whatever UNITS says.
void writeEdge(OutputFile& out, const char* name, int64_t dbu)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.4f", static_cast<double>(dbu) / 2000);
    out << "  DESIGN " << name << " REAL " << text.data() << " ;\n";
}

void writeHeader(OutputFile& out, const DesignFiles& files)
{
    const Core& core = files.core;
    int64_t left = core.rows.front().begin();
    int64_t right = core.rows.front().end();
    for (const Row& row : core.rows) {
        left = std::min(left, row.begin());
        right = std::max(right, row.end());
    }
    out << "VERSION 5.6 ;\nDESIGN " << designName(files.def.design) << " ;\nUNITS DISTANCE MICRONS "
        << files.def.databaseMicrons << " ;\n\nPROPERTYDEFINITIONS\n  COMPONENTPIN designRuleWidth REAL ;\n";
    writeEdge(out, "CORE_BOX_LL_X", left);
    writeEdge(out, "CORE_BOX_UR_X", right);
    writeEdge(out, "CORE_BOX_LL_Y", core.rows[core.byHeight.front()].y);
    writeEdge(out, "CORE_BOX_UR_Y", core.rows[core.byHeight.back()].y + core.siteHeight);
    out << "END PROPERTYDEFINITIONS\n\n";
    if (files.def.hasDieArea) {
        const lefdef::DefRect& die = files.def.dieArea;
        out << "DIEAREA ( " << die.xl << " " << die.yl << " ) ( " << die.xh << " " << die.yh << " ) ;\n\n";
    }
}

void writeRow(OutputFile& out, const std::string& name, const Row& row, int64_t y, int64_t numSites,
              int64_t step)
{
    out << "ROW " << name << " " << carried(row.site, "site") << " " << row.begin() << " " << y << " "
        << nameOf(row.orient) << " DO " << numSites << " BY 1 STEP " << step << " 0 ;\n";
}

void writeRows(OutputFile& out, const DesignFiles& files)
{
    const Core& core = files.core;
    const std::vector<size_t> order = rowOrder(core);
    for (const size_t index : order) {
        if (index != NONE) {
            const Row& row = core.rows[index];
            writeRow(out, carried(row.name, "ROW"), row, row.y, row.numSites(core.siteWidth), core.siteWidth);
        } else {
            const Row& first = core.rows[order.front()];
            writeRow(out, "ROW_HEIGHT", first, first.y + core.siteHeight, 0, core.siteWidth);
        }
    }
}

void writeComponents(OutputFile& out, const DesignFiles& files)
{
    out << "\nCOMPONENTS " << files.cells.movable.size() << " ;\n";
    for (size_t i = 0; i < files.cells.movable.size(); ++i) {
        const Cell& cell = files.cells.movable[i];
        out << "- " << files.cellNames[i] << " " << files.def.components[cell.component].macro
            << " + PLACED ( " << cell.x << " " << cell.y << " ) " << (cell.mirrored ? "FN" : "N")
            << "\n  ;\n";
    }
    out << "END COMPONENTS\n";
}

void writeBlocks(OutputFile& out, const Core& core)
{
    size_t count = 0;
    for (const Row& row : core.rows) {
        count += row.blocks.size();
    }
    out << "\nBIGNODES " << count << " ;\n";
    size_t next = 0;
    for (const Row& row : core.rows) {
        for (const Interval& block : row.blocks) {
            out << "- BLOCK_" << next++ << " BLOCK + ( " << block.begin << " " << row.y << " ) ( "
                << block.end - block.begin << " " << core.siteHeight << " ) N\n  ;\n";
        }
    }
    out << "END BIGNODES\n";
}

} // namespace

std::vector<size_t> rowOrder(const Core& core)
{
    std::vector<size_t> order(core.rows.size());
    std::iota(order.begin(), order.end(), size_t{0});
    auto first = std::find_if(order.begin(), order.end(),
                              [&](size_t row) { return hasNeighbour(core, core.rows[row]); });
    const bool noneMeet = first == order.end();
    if (noneMeet) { // above the highest there is room for a row without sites
        first = std::find(order.begin(), order.end(), core.byHeight.back());
    }
    std::rotate(order.begin(), first, std::next(first));
    if (noneMeet) {
        order.push_back(NONE);
    }
    return order;
}

std::vector<std::string> usedMasters(const DesignFiles& files)
{
    std::set<std::string> names;
    for (const Cell& cell : files.cells.movable) {
        names.insert(files.lef.macros[files.cells.masterOf[cell.component]].name);
    }
    return {names.begin(), names.end()};
}

void writePlace(const DesignFiles& files, OutputFile& out)
{
    writeHeader(out, files);
    writeRows(out, files);
    writeComponents(out, files);
    writeBlocks(out, files.core);
    out << "\nEND DESIGN\n";
}

void writePins(const DesignFiles& files, OutputFile& out)
{
    out << files.terminals.size() << "\n";
    for (const Terminal& terminal : files.terminals) {
        out << terminal.name << " " << terminal.x << " " << terminal.y << "\n";
    }
}

void writeNetlist(const DesignFiles& files, OutputFile& out)
{
    out << files.numNets() << "\n";
    for (size_t net = 0; net < files.numNets(); ++net) {
        const size_t begin = files.netBegin[net];
        const size_t degree = files.netBegin[net + 1] - begin;
        out << degree;
        for (size_t i = 0; i < degree; ++i) {
            out << (i % MEMBERS_A_LINE == 0 ? "\n " : " ") << files.nameOf(files.members[begin + i]);
        }
        out << "\n";
    }
}

void writeCells(const DesignFiles& files, OutputFile& out)
{
    const std::vector<std::string> masters = usedMasters(files);
    out << masters.size() << "\n";
    for (const std::string& master : masters) {
        out << master << "\n";
    }
}

} // namespace kit::importing
