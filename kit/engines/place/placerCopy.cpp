// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/placerCopy.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <tuple>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/base/finding.h"
#include "kit/design/fixedCells.h"
#include "kit/design/nameMap.h"
#include "kit/design/standing.h"
#include "kit/design/stretches.h"
#include "kit/formats/placer/placementText.h"
#include "kit/formats/placer/reader.h"
#include "kit/formats/placer/writer.h"

namespace kit::place {

namespace {

using design::Turn;

bool isTurned(const Turn& turn)
{
    return turn.mirrorX || turn.mirrorY;
}

/// Names for the masters of a design, each turned cell with one of its own. They are short: the lines that
/// they stand in have an end.
class Masters {
public:
    explicit Masters(const placer::Design& design) : m_taken(placer::indexNames(design.cells)) {}

    /// The name of a component's master.
    const std::string& nameOf(const placer::Component& comp)
    {
        const Turn turn = design::turnOf(comp.orient);
        const auto [at, isNew] = m_names.try_emplace({comp.cell, turn.mirrorX, turn.mirrorY});
        if (isNew) {
            at->second = isTurned(turn) ? freeName() : comp.cellName;
        }
        return at->second;
    }

    /// All names so far, by cell and turn.
    const MasterNames& names() const { return m_names; }

private:
    std::string freeName()
    {
        std::string name;
        do {
            name = "M" + std::to_string(++m_last);
        } while (placer::findName(m_taken, name) >= 0);
        return name;
    }

    placer::NameIndex m_taken;
    MasterNames m_names;
    int32_t m_last = 0;
};

/// The macros that have to be wider in a copy of the design.
std::vector<WiderMacro> widerMacrosOf(const placer::Design& design, const Options& options, int32_t minDist)
{
    const std::string placement = options.base + ".place";
    Findings findings; // of files that are judged with the result
    const design::FixedParts parts = design::readFixed(design::fixedOf(placement), findings);
    if (parts.empty()) {
        return {};
    }
    placer::Design truth;
    truth.rows = design.rows;
    truth.macros = design.macros;
    truth.components = design.components;
    truth.cells = design.cells;
    design::restoreOrientations(placement, truth, findings);
    design::addFixed(parts, options.cellPath, truth, findings);
    return hasErrors(findings) ? std::vector<WiderMacro>{} : widerMacros(truth, minDist);
}

/// Where components stand that the wider macros would hide: the placer finds no segment for them there.
class Hidden {
public:
    Hidden(const placer::Design& design, const std::vector<WiderMacro>& wider) : m_design(design)
    {
        for (const WiderMacro& macro : wider) {
            m_macros[{design.macros[static_cast<size_t>(macro.macro)].y, macro.x}] = &macro;
        }
    }

    /// The place beside the macro that hides a component, none if it is in sight.
    std::optional<geometry::Point> placeOf(const placer::Component& comp) const
    {
        auto at = m_macros.upper_bound({comp.y, comp.x});
        if (at == m_macros.begin() || (--at)->first.first != comp.y) {
            return {};
        }
        const WiderMacro& wider = *at->second;
        const int32_t width = design::widthInSites(m_design, comp) * design::siteWidth(m_design);
        const int32_t end = wider.x + wider.width;
        if (comp.x + width > end) {
            return {};
        }
        const bool isLeft = comp.x < m_design.macros[static_cast<size_t>(wider.macro)].x;
        return geometry::Point{isLeft ? wider.x - width : end, comp.y};
    }

private:
    const placer::Design& m_design;
    std::map<std::pair<int32_t, int32_t>, const WiderMacro*> m_macros; ///< by bottom and left edge
};

} // namespace

std::unique_ptr<PlacerCopy> PlacerCopy::of(const Options& options, int32_t minDist)
{
    Findings findings;
    const placer::Design design =
        placer::readDesign({.base = options.base, .cellDir = options.cellPath}, findings);
    const bool allKnown =
        std::ranges::all_of(design.components, [](const placer::Component& comp) { return comp.cell >= 0; });
    if (!allKnown || hasErrors(findings)) {
        return nullptr;
    }
    const bool turn =
        options.trueOrientation && std::ranges::any_of(design.components, [](const placer::Component& comp) {
            return isTurned(design::turnOf(comp.orient));
        });
    std::vector<WiderMacro> wider = widerMacrosOf(design, options, minDist);
    if (!turn && wider.empty()) {
        return nullptr;
    }
    std::unique_ptr<PlacerCopy> copy(new PlacerCopy);
    copy->m_wider = std::move(wider);
    copy->write(design, options, turn);
    return copy;
}

void PlacerCopy::write(const placer::Design& design, const Options& options, bool turn)
{
    const placer::Paths from{.base = options.base, .cellDir = options.cellPath};
    const placer::Paths to{.base = base(), .cellDir = m_folder.path()};
    placer::MacroChanges macros;
    for (const WiderMacro& macro : m_wider) {
        macros[design.macros[static_cast<size_t>(macro.macro)].line] = {macro.x, macro.width};
    }
    const Hidden hidden(design, m_wider);
    Masters masters(design);
    OutputFile place(to.place());
    placer::rewritePlacement(
        from.place(), design.components.size(),
        [&](size_t index, placer::RecordChanges& changes) {
            const placer::Component& comp = design.components[index];
            changes = {.name = comp.name, .at = hidden.placeOf(comp)};
            if (turn) {
                changes.cell = masters.nameOf(comp);
                changes.orient = "N";
            }
        },
        place, macros);
    place.commit();
    if (turn) {
        writeMasters(design, masters.names(), to);
    } else {
        m_cellPath = options.cellPath;
        link(from.cells(), to.cells());
        for (const placer::Cell& cell : design.cells) {
            m_cells.emplace(cell.name, cell.name);
        }
    }
    link(from.pins(), to.pins());
    link(from.netlist(), to.netlist());
}

void PlacerCopy::link(const std::string& from, const std::string& to)
{
    std::filesystem::create_symlink(std::filesystem::absolute(from), to);
}

void PlacerCopy::writeMasters(const placer::Design& design, const MasterNames& masters,
                              const placer::Paths& to)
{
    std::vector<std::string> names;
    for (const auto& [key, name] : masters) {
        const auto& [index, mirrorX, mirrorY] = key;
        const placer::Cell& cell = design.cells[static_cast<size_t>(index)];
        names.push_back(name);
        m_cells.emplace(name, cell.name);
        OutputFile file(cellPath() + "/" + name + ".color");
        placer::writeColorFile(file, design::turned(cell, {.mirrorX = mirrorX, .mirrorY = mirrorY}));
        file.commit();
    }
    OutputFile cells(to.cells());
    placer::writeCellList(cells, names);
    cells.commit();
}

const std::string& PlacerCopy::cellOf(const std::string& master) const
{
    return m_cells.at(master);
}

} // namespace kit::place
