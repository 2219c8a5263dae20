// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/unturned.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <tuple>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/base/finding.h"
#include "kit/design/standing.h"
#include "kit/engines/place/placementText.h"
#include "kit/formats/placer/reader.h"
#include "kit/formats/placer/writer.h"

namespace kit::place {

namespace {

using design::Turn;

bool isTurned(const Turn& turn)
{
    return turn.mirrorX || turn.mirrorY;
}

/// A cell as a component of that orientation has it.
placer::Cell turned(const placer::Cell& cell, const Turn& turn)
{
    placer::Cell result = cell;
    for (placer::Rect& box : result.headerBoxes) {
        box = design::turned(box, cell, turn);
    }
    for (placer::Shape& shape : result.shapes) {
        for (placer::Rect& rect : shape.rects) {
            rect = design::turned(rect, cell, turn);
        }
    }
    return result;
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
    const auto& names() const { return m_names; }

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
    std::map<std::tuple<int32_t, bool, bool>, std::string> m_names; ///< by cell, mirrorX and mirrorY
    int32_t m_last = 0;
};

} // namespace

std::unique_ptr<UnturnedDesign> UnturnedDesign::of(const Options& options)
{
    Findings findings;
    const placer::Design design =
        placer::readDesign({.base = options.base, .cellDir = options.cellPath}, findings);
    const bool anyTurned = std::ranges::any_of(design.components, [](const placer::Component& comp) {
        return isTurned(design::turnOf(comp.orient));
    });
    const bool allKnown =
        std::ranges::all_of(design.components, [](const placer::Component& comp) { return comp.cell >= 0; });
    if (!anyTurned || !allKnown || hasErrors(findings)) {
        return nullptr;
    }
    std::unique_ptr<UnturnedDesign> copy(new UnturnedDesign);
    copy->write(design, options);
    return copy;
}

void UnturnedDesign::write(const placer::Design& design, const Options& options)
{
    const placer::Paths from{.base = options.base, .cellDir = options.cellPath};
    const placer::Paths to{.base = base(), .cellDir = cellPath()};
    Masters masters(design);
    OutputFile place(to.place());
    rewritePlacement(
        from.place(), design.components.size(),
        [&](size_t index, RecordChanges& changes) {
            const placer::Component& comp = design.components[index];
            changes = {.name = comp.name, .cell = masters.nameOf(comp), .orient = "N"};
        },
        place);
    place.commit();
    std::vector<std::string> names;
    for (const auto& [key, name] : masters.names()) {
        const auto& [index, mirrorX, mirrorY] = key;
        const placer::Cell& cell = design.cells[static_cast<size_t>(index)];
        names.push_back(name);
        m_cells.emplace(name, cell.name);
        OutputFile file(cellPath() + "/" + name + ".color");
        placer::writeColorFile(file, turned(cell, {.mirrorX = mirrorX, .mirrorY = mirrorY}));
        file.commit();
    }
    OutputFile cells(to.cells());
    placer::writeCellList(cells, names);
    cells.commit();
    std::filesystem::create_symlink(std::filesystem::absolute(from.pins()), to.pins());
    std::filesystem::create_symlink(std::filesystem::absolute(from.netlist()), to.netlist());
}

const std::string& UnturnedDesign::cellOf(const std::string& master) const
{
    return m_cells.at(master);
}

} // namespace kit::place
