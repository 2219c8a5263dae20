// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/constraints.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "kit/base/text/text.h"
#include "kit/formats/lefdef/units.h"

namespace kit::importing {

namespace {

using lefdef::Def;
using lefdef::DefGroup;
using lefdef::DefRegion;

/// Whether a name fits a pattern, in which `*` stands for any text.
bool fits(std::string_view name, std::string_view pattern)
{
    const size_t star = pattern.find('*');
    if (star == std::string_view::npos) {
        return name == pattern;
    }
    if (!name.starts_with(pattern.substr(0, star))) {
        return false;
    }
    std::string_view rest = name.substr(star);
    std::string_view wanted = pattern.substr(star + 1);
    for (size_t next = wanted.find('*'); next != std::string_view::npos; next = wanted.find('*')) {
        const size_t at = rest.find(wanted.substr(0, next)); // the first place leaves most for what follows
        if (at == std::string_view::npos) {
            return false;
        }
        rest.remove_prefix(at + next);
        wanted.remove_prefix(next + 1);
    }
    return rest.ends_with(wanted);
}

/// What belongs to a region.
struct Members {
    std::set<std::string_view> groups;
    std::set<size_t> movable; ///< indices in Def::components
    size_t offset = 0;        ///< of the record that named it last
};

class RegionKeeper {
public:
    RegionKeeper(const Def& def, const Names& names, const Cells& cells, lefdef::SourceReporter& reporter)
        : m_def(def), m_names(names), m_reporter(reporter), m_isMovable(def.components.size())
    {
        for (const Cell& cell : cells.movable) {
            m_isMovable[cell.component] = true;
        }
    }

    std::vector<lefdef::DefRect> run()
    {
        collectMembers();
        std::vector<lefdef::DefRect> blocked;
        for (const DefRegion& region : m_def.regions) {
            if (keep(region) && region.type == lefdef::RegionType::FENCE) {
                blocked.insert(blocked.end(), region.rects.begin(), region.rects.end());
            }
        }
        return blocked;
    }

private:
    void collectMembers()
    {
        for (const DefGroup& group : m_def.groups) {
            if (group.region.empty()) {
                note("group", group.offset,
                     "group " + std::string(group.name) + " has no region, and is not followed");
                continue;
            }
            Members& members = m_members[group.region];
            members.groups.insert(group.name);
            members.offset = group.offset;
            for (const std::string_view pattern : group.patterns) {
                addMembers(pattern, members.movable);
            }
        }
        for (size_t i = 0; i < m_def.components.size(); ++i) {
            if (!m_def.components[i].region.empty() && m_isMovable[i]) {
                Members& members = m_members[m_def.components[i].region];
                members.movable.insert(members.movable.end(), i);
                members.offset = m_def.components[i].offset;
            }
        }
        for (const auto& [name, members] : m_members) {
            if (std::ranges::find(m_def.regions, name, &DefRegion::name) == m_def.regions.end()) {
                m_reporter.warning("unknown-region", members.offset,
                                   "region " + std::string(name) + ", which " + membersText(members) +
                                       " should be in, is in no section",
                                   "correct the name, or add it to REGIONS");
            }
        }
    }

    void addMembers(std::string_view pattern, std::set<size_t>& movable) const
    {
        if (pattern.find('*') == std::string_view::npos) {
            const int32_t index = m_names.components.indexOf(pattern);
            if (index >= 0 && m_isMovable[static_cast<size_t>(index)]) {
                movable.insert(static_cast<size_t>(index));
            }
            return;
        }
        for (size_t i = 0; i < m_def.components.size(); ++i) {
            if (m_isMovable[i] && fits(m_def.components[i].name, pattern)) {
                movable.insert(movable.end(), i);
            }
        }
    }

    /// @return whether the region is kept
    bool keep(const DefRegion& region)
    {
        const Members& members = m_members[region.name];
        const std::string name = "region " + std::string(region.name);
        if (region.type == lefdef::RegionType::GUIDE) {
            note("guide", region.offset,
                 name + " is a guide for " + membersText(members) + ", and is not followed");
            return false;
        }
        const bool isFence = region.type == lefdef::RegionType::FENCE;
        if (!members.movable.empty()) {
            m_reporter.error("region", region.offset,
                             name + (isFence ? " is a fence around " : " must hold ") + membersText(members) +
                                 ", and the placer cannot keep cells inside a region",
                             "fix them, make it a GUIDE, or take it out");
            return false;
        }
        if (isFence) {
            note("fence", region.offset,
                 name + " is a fence without movable members, and its rows are blocked");
        }
        return true;
    }

    /// "3 movable components of group a, b"
    static std::string membersText(const Members& members)
    {
        std::string text = counted(static_cast<int64_t>(members.movable.size()), "movable component");
        const char* separator = " of group ";
        for (const std::string_view group : members.groups) {
            text.append(separator).append(group);
            separator = ", ";
        }
        return text;
    }

    void note(const char* code, size_t offset, std::string what)
    {
        m_reporter.add(Severity::NOTE, code, offset, std::move(what), "");
    }

    const Def& m_def;
    const Names& m_names;
    lefdef::SourceReporter& m_reporter;
    std::vector<bool> m_isMovable;                 ///< [component]
    std::map<std::string_view, Members> m_members; ///< by the name of the region
};

/// The movable cells with a place, from the lowest.
class PlacedCells {
public:
    PlacedCells(const Def& def, const lefdef::Lef& lef, const Cells& cells)
    {
        for (const Cell& cell : cells.movable) {
            if (cell.placed) {
                const lefdef::LefMacro& macro = lef.macros[cells.masterOf[cell.component]];
                m_outlines.push_back({.xl = cell.x,
                                      .yl = cell.y,
                                      .xh = cell.x + lefdef::dbuDown(macro.width, def.databaseMicrons),
                                      .yh = cell.y + lefdef::dbuDown(macro.height, def.databaseMicrons)});
                m_highest = std::max(m_highest, m_outlines.back().yh - cell.y);
            }
        }
        std::ranges::sort(m_outlines, {}, &lefdef::DefRect::yl);
    }

    bool anyIn(const lefdef::DefRect& area) const
    {
        for (auto cell = std::ranges::upper_bound(m_outlines, area.yl - m_highest, {}, &lefdef::DefRect::yl);
             cell != m_outlines.end() && cell->yl < area.yh; ++cell) {
            if (cell->yh > area.yl && cell->xl < area.xh && cell->xh > area.xl) {
                return true;
            }
        }
        return false;
    }

private:
    std::vector<lefdef::DefRect> m_outlines; ///< DBU
    int64_t m_highest = 0;                   ///< height of the highest
};

/// A component's outline with its halo, DBU.
lefdef::DefRect outlineWithHalo(const Def& def, const lefdef::LefMacro& macro,
                                const lefdef::DefComponent& component, const lefdef::DefRect& widths)
{
    const int64_t width = lefdef::dbuUp(macro.width, def.databaseMicrons);
    const int64_t height = lefdef::dbuUp(macro.height, def.databaseMicrons);
    const auto place = [&](int64_t x, int64_t y) {
        return transformed({.x = x, .y = y}, width, height, component.orient);
    };
    const geometry::Point a = place(-widths.xl, -widths.yl);
    const geometry::Point b = place(width + widths.xh, height + widths.yh);
    return geometry::rectBetween(component.x + a.x, component.y + a.y, component.x + b.x, component.y + b.y);
}

} // namespace

std::vector<lefdef::DefRect> keepRegions(const Def& def, const Names& names, const Cells& cells,
                                         lefdef::SourceReporter& reporter)
{
    return RegionKeeper(def, names, cells, reporter).run();
}

std::vector<lefdef::DefRect> keepHalos(const Def& def, const lefdef::Lef& lef, const Names& names,
                                       const Cells& cells, lefdef::SourceReporter& reporter)
{
    std::vector<lefdef::DefRect> blocked;
    if (def.halos.empty()) {
        return blocked;
    }
    const PlacedCells placed(def, lef, cells);
    for (const lefdef::DefHalo& halo : def.halos) {
        const int32_t found = names.components.indexOf(halo.component);
        const size_t index = found < 0 ? NONE : static_cast<size_t>(found);
        const char* why = nullptr;
        if (index == NONE || halo.soft) {
            why = "it is soft";
        } else if (!cells.isFixed[index]) {
            why = "the component is not fixed";
        } else {
            const lefdef::DefRect area =
                outlineWithHalo(def, lef.macros[cells.masterOf[index]], def.components[index], halo.widths);
            if (placed.anyIn(area)) {
                why = "movable cells stand in it";
            } else {
                blocked.push_back(area);
            }
        }
        if (why != nullptr) {
            reporter.add(Severity::NOTE, "halo", halo.offset,
                         "the halo of component " + std::string(halo.component) + " is not kept: " + why, "");
        }
    }
    return blocked;
}

std::vector<lefdef::DefRect> keepBlockages(const Def& def, lefdef::SourceReporter& reporter)
{
    std::vector<lefdef::DefRect> blocked;
    for (const lefdef::DefBlockage& blockage : def.blockages) {
        if (blockage.soft) {
            reporter.add(Severity::NOTE, "soft-blockage", blockage.offset,
                         "a blockage that is SOFT or PARTIAL is not kept: cells may stand there", "");
        } else {
            blocked.insert(blocked.end(), blockage.rects.begin(), blockage.rects.end());
        }
    }
    return blocked;
}

} // namespace kit::importing
