// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/refine/start.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <unordered_map>

#include "kit/base/fault.h"
#include "kit/base/hash.h"
#include "kit/base/text/escape.h"
#include "kit/design/rowKinds.h"
#include "kit/formats/placer/reader.h"

namespace kit::refine {

namespace fs = std::filesystem;

namespace {

/// Throws the first error.
void requireSound(const Findings& findings)
{
    if (const Findings errors = errorsOf(findings); !errors.empty()) {
        const std::string line = lineOf(errors.front());
        throw Fault(line.substr(0, line.find('\n')));
    }
}

/// [component] its name in the DEF file, which is the same in all imports of it.
std::vector<std::string> namesOf(const placer::Design& design, const std::optional<design::NameMap>& map)
{
    std::unordered_map<std::string_view, std::string_view> originals;
    if (map) {
        for (const design::Renamed& name : map->names) {
            originals.emplace(name.name, name.original);
        }
    }
    std::vector<std::string> names;
    names.reserve(design.components.size());
    for (const placer::Component& comp : design.components) {
        const auto at = originals.find(comp.name);
        names.emplace_back(at != originals.end() ? at->second : comp.name);
    }
    return names;
}

/// Nets as their components see them: by their members, as nets have no names.
class NetPrints {
public:
    /// @param offsets  nullptr if pins have no names
    NetPrints(const placer::Design& design, const std::vector<std::string>& names,
              const design::PinOffsets* offsets)
        : m_design(design), m_names(names), m_offsets(offsets), m_prints(names.size())
    {
        if (m_offsets != nullptr) {
            addByPins();
        } else {
            addByComponents();
        }
        for (std::vector<std::string>& prints : m_prints) {
            std::ranges::sort(prints);
        }
    }

    /// Those of the nets that a component is on.
    const std::vector<std::string>& of(size_t component) const { return m_prints[component]; }

private:
    void addByPins()
    {
        const placer::NameIndex masters = placer::indexNames(m_offsets->masters);
        for (size_t net = 0; net + 1 < m_offsets->netBegin.size(); ++net) {
            for (size_t k = m_offsets->netBegin[net]; k < m_offsets->netBegin[net + 1]; ++k) {
                const design::PinOffsets::Member& member = m_offsets->members[k];
                if (member.component < 0) {
                    addTerminal(member.pin);
                    continue;
                }
                const placer::Component& comp = m_design.components.at(static_cast<size_t>(member.component));
                const int32_t master = placer::findName(masters, comp.cellName);
                const auto& pins = m_offsets->masters.at(static_cast<size_t>(master)).pins;
                addMember(member.component, pins.at(static_cast<size_t>(member.pin)).name);
            }
            endNet();
        }
    }

    void addByComponents()
    {
        for (const placer::Net& net : m_design.nets) {
            for (const placer::Member& member : net.members) {
                if (member.component >= 0) {
                    addMember(member.component, "");
                } else {
                    addTerminal(member.pin);
                }
            }
            endNet();
        }
    }

    void addMember(int32_t component, const std::string& pin)
    {
        m_onNet.push_back(component);
        m_members.push_back("C" + m_names.at(static_cast<size_t>(component)) + "\n" + pin);
    }

    void addTerminal(int32_t pin)
    {
        const auto index = static_cast<size_t>(pin);
        m_members.push_back("T" + (index < m_design.pins.size() ? m_design.pins[index].name : ""));
    }

    void endNet()
    {
        std::ranges::sort(m_members);
        Hash hash;
        for (const std::string& member : m_members) {
            hash.add(member);
            hash.add("\n\n");
        }
        for (const int32_t component : m_onNet) {
            m_prints[static_cast<size_t>(component)].push_back(hash.text());
        }
        m_members.clear();
        m_onNet.clear();
    }

    const placer::Design& m_design;
    const std::vector<std::string>& m_names;
    const design::PinOffsets* m_offsets;
    std::vector<std::vector<std::string>> m_prints; ///< [component]
    std::vector<std::string> m_members;             ///< of the net at hand
    std::vector<int32_t> m_onNet;
};

/// An earlier result.
struct Earlier {
    placer::Design design; ///< orientations as in the file; without cells
    std::vector<placer::ColorRecord> colors;
    std::optional<design::NameMap> map;
    std::optional<design::PinOffsets> offsets;
    design::FixedParts fixed;
};

Earlier readEarlier(const std::string& base)
{
    const placer::Paths files{.base = base, .cellDir = ""};
    Earlier earlier;
    Findings findings;
    placer::readPlacement(files.place(), earlier.design, findings);
    earlier.colors = placer::readColors(base + ".colors", findings);
    placer::readPins(files.pins(), earlier.design, findings);
    placer::readNets(files.netlist(), earlier.design, findings);
    if (const std::string map = design::mapOf(files.place()); fs::exists(map)) {
        earlier.map = design::readNameMap(map, findings);
    }
    if (const std::string offsets = design::offsetsOf(files.place()); fs::exists(offsets)) {
        earlier.offsets = design::readPinOffsets(offsets, findings);
    }
    earlier.fixed = design::readFixed(design::fixedOf(files.place()), findings);
    requireSound(findings);
    return earlier;
}

/// Gives a component the orientation of a placement's record, and the place.
void putAt(const placer::Component& at, const std::optional<design::TrueOrients>& orients,
           placer::Component& comp)
{
    comp.x = at.x;
    comp.y = at.y;
    comp.orient = at.orient;
    const std::optional<lefdef::Orient> orient = orients ? orients->of(comp) : std::nullopt;
    if (orient) {
        comp.orient = std::string(nameOf(*orient));
    }
}

std::optional<design::TrueOrients> orientsOf(const Inputs& inputs)
{
    return inputs.map
               ? std::optional<design::TrueOrients>(std::in_place, inputs.placed.design.rows, *inputs.map)
               : std::nullopt;
}

/// One record for each component, in their order; those without colors have no solution.
void alignColors(Inputs& inputs)
{
    const placer::Design& design = inputs.placed.design;
    design::Issues issues;
    const design::Matching matching = design::matchColors(design, inputs.placed.colors, issues);
    std::vector<placer::ColorRecord> records;
    for (size_t i = 0; i < matching.size(); ++i) {
        placer::ColorRecord& record = records.emplace_back();
        if (matching[i] != nullptr) {
            record = *matching[i];
        } else {
            record.name = design.components[i].name;
            record.cell = design.components[i].cellName;
        }
    }
    inputs.placed.colors = std::move(records);
}

void choose(const placer::Cell& cell, int32_t solution, placer::ColorRecord& record)
{
    record.solution = solution;
    record.stitches = cell.solutions[static_cast<size_t>(solution)].stitches;
    record.masks = cell.solutions[static_cast<size_t>(solution)].masks;
}

/// Whether a record's solution is one of a cell.
bool isSolutionOf(const placer::Cell& cell, const placer::ColorRecord& record)
{
    return record.solution < 0
               ? cell.solutions.empty()
               : static_cast<size_t>(record.solution) < cell.solutions.size() &&
                     cell.solutions[static_cast<size_t>(record.solution)].masks == record.masks;
}

/// Solutions of what stays where it is, as far as the earlier result has them.
void chooseFixed(const design::FixedParts& earlier, Inputs& inputs)
{
    std::map<std::string_view, const design::FixedCell*> known;
    for (const design::FixedCell& cell : earlier.cells) {
        known.emplace(cell.name, &cell);
    }
    design::FixedParts parts = inputs.fixed;
    bool anyNew = false;
    for (design::FixedCell& cell : parts.cells) {
        const auto at = known.find(cell.name);
        if (cell.solution < 0 && at != known.end() && at->second->solution >= 0 &&
            at->second->master == cell.master && at->second->x == cell.x && at->second->y == cell.y &&
            at->second->orient == cell.orient) {
            cell.solution = at->second->solution;
            anyNew = true;
        }
    }
    Findings findings;
    design::checkFixedSolutions(parts, inputs.placed.design, "", findings);
    if (anyNew && !hasErrors(findings)) {
        inputs.fixed = std::move(parts);
        inputs.placed.fixedColors = design::fixedColorsOf(inputs.fixed, inputs.placed.design);
    }
}

void measureAnew(Inputs& inputs)
{
    if (inputs.offsets) {
        inputs.placed.pinLength = design::pinLength(*inputs.offsets, inputs.placed.design);
    }
}

} // namespace

Comparison startFrom(const std::string& base, Inputs& inputs)
{
    const Earlier earlier = readEarlier(base);
    placer::Design& design = inputs.placed.design;
    if (earlier.design.dbuPerMicron != design.dbuPerMicron) {
        throw Fault(base + ".place has other UNITS");
    }
    const std::vector<std::string> names = namesOf(design, inputs.map);
    const std::vector<std::string> namesBefore = namesOf(earlier.design, earlier.map);
    const bool byPins = inputs.offsets && earlier.offsets;
    const NetPrints nets(design, names, byPins ? &*inputs.offsets : nullptr);
    const NetPrints netsBefore(earlier.design, namesBefore, byPins ? &*earlier.offsets : nullptr);
    std::unordered_map<std::string_view, size_t> known;
    for (size_t i = 0; i < namesBefore.size(); ++i) {
        known.emplace(namesBefore[i], i);
    }
    design::Issues issues;
    const design::Matching colors = design::matchColors(earlier.design, earlier.colors, issues);
    const std::optional<design::TrueOrients> orients = orientsOf(inputs);
    alignColors(inputs);

    Comparison comparison;
    for (size_t i = 0; i < names.size(); ++i) {
        placer::Component& comp = design.components[i];
        const auto at = known.find(names[i]);
        if (at == known.end()) {
            ++comparison.news;
            comparison.changed.push_back(true);
            continue;
        }
        placer::Component before = earlier.design.components[at->second];
        const placer::ColorRecord* const record = colors[at->second];
        const placer::Cell* const cell = design.cellOf(comp);
        bool isKept = before.cellName == comp.cellName;
        before.orient = isKept ? before.orient : comp.orient;
        putAt(before, orients, comp);
        if (isKept && record != nullptr && cell != nullptr && isSolutionOf(*cell, *record)) {
            placer::ColorRecord& mine = inputs.placed.colors[i];
            mine = *record;
            mine.name = comp.name;
        } else {
            isKept = false;
        }
        isKept = isKept && nets.of(i) == netsBefore.of(at->second);
        ++(isKept ? comparison.kept : comparison.changes);
        comparison.changed.push_back(!isKept);
    }
    chooseFixed(earlier.fixed, inputs);
    measureAnew(inputs);
    return comparison;
}

void startBefore(const std::string& placement, Inputs& inputs)
{
    placer::Design before;
    Findings findings;
    placer::readPlacement(placement, before, findings);
    requireSound(findings);
    placer::Design& design = inputs.placed.design;
    const auto isSame = [](const placer::Component& a, const placer::Component& b) {
        return a.name == b.name && a.cellName == b.cellName;
    };
    if (!std::ranges::equal(before.components, design.components, isSame)) {
        throw Fault(placement + " is the placement of other components");
    }
    const std::optional<design::TrueOrients> orients = orientsOf(inputs);
    for (size_t i = 0; i < design.components.size(); ++i) {
        putAt(before.components[i], orients, design.components[i]);
    }
    measureAnew(inputs);
}

void settleColors(bool rowsMeet, Inputs& inputs)
{
    alignColors(inputs);
    const placer::Design& design = inputs.placed.design;
    const design::RowKinds kinds(design.rows);
    for (size_t i = 0; i < design.components.size(); ++i) {
        const placer::Component& comp = design.components[i];
        placer::ColorRecord& record = inputs.placed.colors[i];
        const placer::Cell* const cell = design.cellOf(comp);
        if (cell == nullptr || cell->solutions.empty()) {
            continue;
        }
        if (record.solution < 0) {
            choose(*cell, 0, record);
        }
        if (rowsMeet && design::isPaired(*cell) && isSolutionOf(*cell, record)) {
            const auto half = static_cast<int32_t>(cell->solutions.size() / 2);
            choose(*cell, record.solution % half + (kinds.isOther(comp.y) ? half : 0), record);
        }
    }
}

} // namespace kit::refine
