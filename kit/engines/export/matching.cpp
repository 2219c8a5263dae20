// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/matching.h"

#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "kit/base/fault.h"
#include "kit/base/finding.h"
#include "kit/design/nameMap.h"
#include "kit/formats/placer/design.h"

namespace kit::exporter {

namespace {

using lefdef::DefComponent;
using lefdef::Orient;
using lefdef::Status;

constexpr int64_t NONE = -1;

/// The names of the DEF file for those in the placement.
class Originals {
public:
    explicit Originals(const design::NameMap& map)
    {
        for (const design::Renamed& renamed : map.names) {
            m_originals.try_emplace(renamed.name, renamed.original);
        }
    }

    std::string_view of(std::string_view name) const
    {
        const auto at = m_originals.find(name);
        return at == m_originals.end() ? name : at->second;
    }

private:
    std::unordered_map<std::string_view, std::string_view> m_originals;
};

class Matcher {
public:
    Matcher(const Sides& sides, Findings& findings)
        : m_sides(sides), m_reporter(findings, sides.placementPath),
          m_orients(sides.placement.rows, sides.map), m_originals(sides.map),
          m_partners(sides.def.components.size(), NONE)
    {
        m_inDef.reserve(sides.def.components.size());
        for (size_t i = 0; i < sides.def.components.size(); ++i) {
            m_inDef.try_emplace(sides.def.components[i].name, i);
        }
    }

    Matching run()
    {
        checkFlipped();
        Matching matching;
        for (size_t i = 0; i < m_sides.placement.components.size(); ++i) {
            if (const std::optional<size_t> partner = partnerOf(i)) {
                matching.placed.push_back(placedAt(i, *partner));
            }
        }
        if (m_found == 0 && !m_sides.placement.components.empty()) {
            throw Fault("no component of " + m_sides.placementPath + " is in " + m_sides.defSource.path() +
                        ": it is another design");
        }
        addUntouched(matching);
        return matching;
    }

private:
    void checkFlipped()
    {
        const placer::NameIndex names = placer::indexNames(m_sides.placement.components);
        for (const std::string& name : m_sides.map.flipped) {
            if (placer::findName(names, name) < 0) {
                m_reporter.warning("unknown-name", {},
                                   "the map names the flipped component " + name + ", which is not here",
                                   "export with the map that the import made");
            }
        }
    }

    /// The component of the DEF file that a placed one is, if it may be moved.
    std::optional<size_t> partnerOf(size_t inPlace)
    {
        const placer::Component& comp = m_sides.placement.components[inPlace];
        const Place at{comp.line, 0};
        const std::string original(m_originals.of(comp.name));
        const auto partner = m_inDef.find(original);
        if (partner == m_inDef.end()) {
            m_reporter.warning("no-component", at,
                               "the component " + original + " is not in " + m_sides.defSource.path(),
                               "export into the file that the placement was made from");
            return {};
        }
        ++m_found;
        const DefComponent& component = m_sides.def.components[partner->second];
        if (comp.cellName != component.macro) {
            m_reporter.error("other-macro", at,
                             original + " is a " + comp.cellName + " here and a " +
                                 std::string(component.macro) + " in the DEF file",
                             "export into the file that the placement was made from");
            return {};
        }
        if (m_partners[partner->second] != NONE) {
            m_reporter.error("same-component", at,
                             "the component " + original + " of the DEF file comes a second time",
                             "lint the placement");
            return {};
        }
        m_partners[partner->second] = static_cast<int64_t>(inPlace);
        if (component.status == Status::FIXED || component.status == Status::COVER) {
            m_reporter.warning("fixed", at, original + " is fixed in the DEF file, and stays where it is",
                               "import the design anew");
            return {};
        }
        return partner->second;
    }

    Placed placedAt(size_t inPlace, size_t inDef)
    {
        const placer::Component& comp = m_sides.placement.components[inPlace];
        const DefComponent& component = m_sides.def.components[inDef];
        std::optional<Orient> orient = m_orients.of(comp);
        if (!orient) {
            orient = lefdef::upright(design::isMirrored(comp), lefdef::isUpsideDown(component.orient));
            m_reporter.warning("off-row", {comp.line, 0},
                               std::string(component.name) + " is on no row, and whether it is upside down "
                                                             "is taken from the DEF file",
                               "place with --rescue");
        }
        return {.inDef = inDef, .inPlace = inPlace, .x = comp.x, .y = comp.y, .orient = *orient};
    }

    void addUntouched(Matching& matching) const
    {
        std::vector<bool> moves(m_partners.size());
        for (const Placed& placed : matching.placed) {
            moves[placed.inDef] = true;
        }
        for (size_t i = 0; i < moves.size(); ++i) {
            const Status status = m_sides.def.components[i].status;
            if (!moves[i] && status != Status::NONE && status != Status::UNPLACED) {
                matching.untouched.push_back(i);
            }
        }
    }

    const Sides& m_sides;
    Reporter m_reporter;
    design::TrueOrients m_orients;
    Originals m_originals;
    std::unordered_map<std::string_view, size_t> m_inDef;
    std::vector<int64_t> m_partners; ///< [component of the DEF file] index in the placement, or NONE
    size_t m_found = 0;              ///< components of the placement that are in the DEF file
};

} // namespace

bool Placed::differs(const DefComponent& component) const
{
    return component.status != Status::PLACED || component.x != x || component.y != y ||
           component.orient != orient;
}

Matching matchComponents(const Sides& sides, Findings& findings)
{
    return Matcher(sides, findings).run();
}

std::vector<Kept> matchKept(const lefdef::Def& def, const Matching& matching, const placer::Design& placement,
                            const std::vector<placer::ColorRecord>& colours)
{
    std::unordered_map<std::string_view, size_t> fixed;
    for (size_t i = 0; i < colours.size(); ++i) {
        fixed.try_emplace(colours[i].name, i);
    }
    std::vector<Kept> kept;
    for (const size_t index : matching.untouched) {
        const auto at = fixed.find(def.components[index].name);
        if (at != fixed.end() && colours[at->second].solution >= 0 &&
            colours[at->second].cell == def.components[index].macro) {
            kept.push_back({index, placement.fixed[at->second].cell, colours[at->second].solution});
        }
    }
    return kept;
}

void tellLeftOut(const Sides& sides, const Matching& matching, const std::vector<bool>& fillers,
                 Findings& findings)
{
    const Originals originals(sides.map);
    std::unordered_set<std::string_view> macros;
    for (const placer::Macro& macro : sides.placement.macros) {
        macros.insert(originals.of(macro.name));
    }
    lefdef::SourceReporter reporter(findings, sides.defSource);
    for (const size_t index : matching.untouched) {
        const DefComponent& component = sides.def.components[index];
        if (component.status == Status::PLACED && !fillers[index] && macros.count(component.name) == 0) {
            reporter.warning("left-out", component.offset,
                             "the component " + std::string(component.name) +
                                 " is not in the placement, and stays where it is",
                             "export into the file that the placement was made from");
        }
    }
}

} // namespace kit::exporter
