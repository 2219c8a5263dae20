// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/fixedCells.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

#include "kit/base/files/readFile.h"
#include "kit/design/sideLines.h"
#include "kit/formats/placer/reader.h"

namespace kit::design {

namespace {

constexpr std::string_view FIXED_HEADER = "VIRELOCE FIXED 1";

/// Reads the text of fixed parts.
class FixedReader {
public:
    FixedReader(std::string_view text, Reporter reporter) : m_lines(text, std::move(reporter), "fixed-line")
    {
    }

    FixedParts read()
    {
        const bool whole =
            m_lines.readExactly(FIXED_HEADER) &&
            m_lines.readCounted("CELLS", "a cell", [this](LineWords words) { return readCell(words); }) &&
            m_lines.readCounted("BLOCKS", "a block with its metal",
                                [this](LineWords words) { return readBlock(words); });
        if (whole) {
            m_lines.readEnd();
        }
        return std::move(m_parts);
    }

private:
    static constexpr int32_t MOST = SideLines::MOST;

    /// Takes master and place, the same for both.
    template <typename Part>
    static bool readPlace(LineWords& words, Part& part)
    {
        part.master = words.word();
        const std::optional<geometry::Point> at = words.point(MOST);
        if (at) {
            part.x = static_cast<int32_t>(at->x);
            part.y = static_cast<int32_t>(at->y);
        }
        return at && !part.master.empty();
    }

    bool readCell(LineWords words)
    {
        FixedCell cell;
        if (!readPlace(words, cell)) {
            return false;
        }
        const std::optional<lefdef::Orient> orient = lefdef::orientOf(words.word());
        const std::optional<int32_t> solution = words.number(-1, MOST);
        cell.name = words.rest();
        if (!orient || isOnItsSide(*orient) || !solution || cell.name.empty()) {
            return false;
        }
        cell.orient = *orient;
        cell.solution = *solution;
        m_parts.cells.push_back(std::move(cell));
        return true;
    }

    bool readBlock(LineWords words)
    {
        FixedBlock block;
        if (words.word() != "BLOCK" || !readPlace(words, block)) {
            return false;
        }
        const std::optional<int32_t> count = words.number(0, MOST);
        block.name = words.rest();
        if (!count || block.name.empty()) {
            return false;
        }
        for (int32_t i = 0; i < *count; ++i) {
            LineWords rect = m_lines.nextWords();
            const std::optional<geometry::Point> low = rect.point(MOST);
            const std::optional<geometry::Point> high = low ? rect.point(MOST) : low;
            if (!high || !rect.atEnd() || low->x >= high->x || low->y >= high->y) {
                return false;
            }
            block.metal.push_back({low->x, low->y, high->x, high->y});
        }
        m_parts.blocks.push_back(std::move(block));
        return true;
    }

    SideLines m_lines;
    FixedParts m_parts;
};

std::string inOneLine(std::string name)
{
    std::ranges::replace(name, '\n', '?');
    return name;
}

/// Adds the masters that the design does not have yet and that have colour files to its cells.
void addMasters(const FixedParts& parts, const std::string& cellDir, placer::Design& design,
                Findings& findings)
{
    std::set<std::string> masters;
    for (const FixedCell& cell : parts.cells) {
        masters.insert(cell.master);
    }
    for (const placer::Cell& cell : design.cells) {
        masters.erase(cell.name);
    }
    std::erase_if(masters, [&cellDir](const std::string& name) {
        return !std::filesystem::exists(std::filesystem::path(cellDir) / (name + ".color"));
    });
    placer::Design more;
    placer::readCells({masters.begin(), masters.end()}, cellDir, more, findings);
    std::ranges::move(more.cells, std::back_inserter(design.cells));
}

} // namespace

std::string fixedOf(const std::string& placement)
{
    return placement.empty() ? "" : std::filesystem::path(placement).replace_extension(".fixed").string();
}

FixedParts readFixed(const std::string& path, Findings& findings)
{
    if (!std::filesystem::exists(path)) {
        return {};
    }
    const std::string text = readFile(path);
    return FixedReader(text, Reporter(findings, path)).read();
}

void writeFixed(const FixedParts& parts, OutputFile& out)
{
    out << FIXED_HEADER << "\nCELLS " << parts.cells.size() << "\n";
    for (const FixedCell& cell : parts.cells) {
        out << cell.master << " " << cell.x << " " << cell.y << " " << nameOf(cell.orient) << " "
            << cell.solution << " " << inOneLine(cell.name) << "\n";
    }
    out << "BLOCKS " << parts.blocks.size() << "\n";
    for (const FixedBlock& block : parts.blocks) {
        out << "BLOCK " << block.master << " " << block.x << " " << block.y << " " << block.metal.size()
            << " " << inOneLine(block.name) << "\n";
        for (const geometry::Rect& rect : block.metal) {
            out << rect.xl << " " << rect.yl << " " << rect.xh << " " << rect.yh << "\n";
        }
    }
    out << "END\n";
}

void addFixed(const FixedParts& parts, const std::string& cellDir, placer::Design& design, Findings& findings)
{
    addMasters(parts, cellDir, design, findings);
    const placer::NameIndex index = placer::indexNames(design.cells);
    for (const FixedCell& cell : parts.cells) {
        design.fixed.push_back({.name = cell.name,
                                .cellName = cell.master,
                                .cell = placer::findName(index, cell.master),
                                .x = cell.x,
                                .y = cell.y,
                                .orient = std::string(nameOf(cell.orient))});
    }
    for (const FixedBlock& block : parts.blocks) {
        const auto owner = static_cast<int32_t>(design.fixed.size());
        design.fixed.push_back(
            {.name = block.name, .cellName = block.master, .x = block.x, .y = block.y, .orient = "N"});
        for (const geometry::Rect& rect : block.metal) {
            design.blockMetal.push_back({owner, rect});
        }
    }
}

std::vector<placer::ColorRecord> fixedColorsOf(const FixedParts& parts, const placer::Design& design)
{
    std::vector<placer::ColorRecord> colors;
    colors.reserve(parts.cells.size());
    for (size_t i = 0; i < parts.cells.size(); ++i) {
        const FixedCell& part = parts.cells[i];
        placer::ColorRecord& record = colors.emplace_back();
        record.name = part.name;
        record.cell = part.master;
        const placer::Cell* const cell = design.cellOf(design.fixed[i]);
        if (cell != nullptr && part.solution >= 0 &&
            static_cast<size_t>(part.solution) < cell->solutions.size()) {
            const placer::Solution& solution = cell->solutions[static_cast<size_t>(part.solution)];
            record.solution = part.solution;
            record.stitches = solution.stitches;
            record.masks = solution.masks;
        }
    }
    return colors;
}

void checkFixedSolutions(const FixedParts& parts, const placer::Design& design, const std::string& path,
                         Findings& findings)
{
    for (size_t i = 0; i < parts.cells.size(); ++i) {
        const FixedCell& part = parts.cells[i];
        const placer::Cell* const cell = design.cellOf(design.fixed[i]);
        if (cell != nullptr && part.solution >= 0 &&
            static_cast<size_t>(part.solution) >= cell->solutions.size()) {
            Reporter(findings, path)
                .error("fixed-solution", {},
                       part.name + " (" + part.master + ") has solution " + std::to_string(part.solution) +
                           " of " + std::to_string(cell->solutions.size()) + ", counted from 0",
                       "place the design anew");
        }
    }
}

} // namespace kit::design
