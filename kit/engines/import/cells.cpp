// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/cells.h"

#include <algorithm>
#include <string>

#include "kit/formats/lefdef/library.h"
#include "kit/formats/lefdef/nameTable.h"
#include "kit/formats/lefdef/units.h"

namespace kit::importing {

namespace {

using lefdef::Def;
using lefdef::DefComponent;
using lefdef::Lef;
using lefdef::LefMacro;
using lefdef::SourceReporter;
using lefdef::Status;

bool hasWord(const std::string& words, std::string_view word)
{
    return (" " + words + " ").find(" " + std::string(word) + " ") != std::string::npos;
}

/// Masters that a detailed placer does not move.
bool staysByClass(const LefMacro& macro)
{
    const std::string& words = macro.macroClass;
    return words.starts_with("BLOCK") || words.starts_with("PAD") || words.starts_with("RING") ||
           words.starts_with("ENDCAP") || hasWord(words, "WELLTAP");
}

bool isFixed(const DefComponent& component)
{
    return component.status == Status::FIXED || component.status == Status::COVER;
}

class CellSorter {
public:
    CellSorter(const Def& def, const Lef& lef, const Core& core, bool legalize, SourceReporter& reporter,
               Cells& cells)
        : m_def(def), m_lef(lef), m_core(core), m_legalize(legalize), m_reporter(reporter), m_cells(cells)
    {
    }

    bool sort()
    {
        m_cells.isFixed.resize(m_def.components.size());
        m_cells.movable.reserve(m_def.components.size());
        for (const LefMacro& macro : m_lef.macros) {
            m_traits.push_back(
                {.width = wholeSites(macro),
                 .stays = staysByClass(macro),
                 .isFiller = isFiller(macro),
                 .isHigh = lefdef::dbuUp(macro.height, m_def.databaseMicrons) > m_core.siteHeight});
        }
        for (size_t i = 0; i < m_def.components.size(); ++i) {
            if (m_cells.masterOf[i] != NONE) {
                take(i, m_lef.macros[m_cells.masterOf[i]], m_traits[m_cells.masterOf[i]]);
            } else {
                error("unknown-master", m_def.components[i],
                      "is of master " + std::string(m_def.components[i].macro) + ", which no LEF file has",
                      "give that file with --lef");
            }
        }
        return m_sound;
    }

private:
    /// What components of a macro have in common.
    struct Traits {
        int64_t width = 0;  ///< whole sites, DBU
        bool stays = false; ///< as staysByClass()
        bool isFiller = false;
        bool isHigh = false; ///< it is higher than a row
    };

    void take(size_t index, const LefMacro& macro, const Traits& traits)
    {
        const DefComponent& comp = m_def.components[index];
        const bool placed = comp.status == Status::PLACED;
        const bool fixed = isFixed(comp);
        if (!fixed && traits.isFiller) {
            ++m_cells.fillers;
            m_cells.fillerMasters.insert(m_cells.masterOf[index]);
        } else if (fixed || (placed && (traits.stays || !fitsOneRow(comp, traits.isHigh)))) {
            keep(index, macro);
        } else if (!placed && (traits.stays || traits.isHigh)) {
            error("unplaced", comp,
                  std::string(traits.isHigh ? "is higher than a row" : "is of class " + macro.macroClass) +
                      " and is not placed",
                  "place it: it is not moved");
        } else if (placed || m_legalize) {
            m_cells.movable.push_back({.component = index,
                                       .x = comp.x,
                                       .y = comp.y,
                                       .width = traits.width,
                                       .placed = placed,
                                       .mirrored = placed && isMirrored(comp.orient)});
        } else {
            error("unplaced", comp, "is not placed", "place it, or give --legalize");
        }
    }

    /// Whether a placed component stands upright and is one row high; a warning says so if not.
    bool fitsOneRow(const DefComponent& comp, bool isHigh)
    {
        const bool upright = !isOnItsSide(comp.orient);
        if (!upright || isHigh) {
            m_reporter.warning("kept", comp.offset,
                               "component " + std::string(comp.name) +
                                   (upright ? " is higher than a row" : " lies on its side") +
                                   " and stays where it is",
                               "");
        }
        return upright && !isHigh;
    }

    void keep(size_t index, const LefMacro& macro)
    {
        const DefComponent& comp = m_def.components[index];
        m_cells.isFixed[index] = true;
        int64_t width = lefdef::dbuUp(macro.width, m_def.databaseMicrons);
        int64_t height = lefdef::dbuUp(macro.height, m_def.databaseMicrons);
        if (isOnItsSide(comp.orient)) {
            std::swap(width, height);
        }
        m_cells.blocks.push_back({.xl = comp.x, .yl = comp.y, .xh = comp.x + width, .yh = comp.y + height});
    }

    int64_t wholeSites(const LefMacro& macro) const
    {
        const int64_t width = lefdef::dbuUp(macro.width, m_def.databaseMicrons);
        return (width + m_core.siteWidth - 1) / m_core.siteWidth * m_core.siteWidth;
    }

    void error(const char* code, const DefComponent& comp, const std::string& what, std::string advice)
    {
        m_reporter.error(code, comp.offset, "component " + std::string(comp.name) + " " + what,
                         std::move(advice));
        m_sound = false;
    }

    const Def& m_def;
    const Lef& m_lef;
    const Core& m_core;
    bool m_legalize;
    SourceReporter& m_reporter;
    Cells& m_cells;
    std::vector<Traits> m_traits; ///< [macro]
    bool m_sound = true;
};

} // namespace

std::vector<size_t> findMasters(const Def& def, const Lef& lef)
{
    lefdef::NameTable<LefMacro> macros(lef.macros);
    macros.addAll();
    std::vector<size_t> masterOf;
    masterOf.reserve(def.components.size());
    for (const DefComponent& component : def.components) {
        const int32_t master = macros.indexOf(component.macro);
        masterOf.push_back(master < 0 ? NONE : static_cast<size_t>(master));
    }
    return masterOf;
}

std::vector<int64_t> countMovable(const Def& def, const Lef& lef, const std::vector<size_t>& masterOf)
{
    std::vector<int64_t> counts(lef.macros.size());
    for (size_t i = 0; i < masterOf.size(); ++i) {
        if (masterOf[i] != NONE && !isFixed(def.components[i])) {
            ++counts[masterOf[i]];
        }
    }
    for (size_t i = 0; i < counts.size(); ++i) {
        const LefMacro& macro = lef.macros[i];
        counts[i] = standsInRows(macro) && !staysByClass(macro) && !isFiller(macro) ? counts[i] : 0;
    }
    return counts;
}

bool takeCells(const Def& def, const Lef& lef, const Core& core, bool legalize, SourceReporter& reporter,
               Cells& cells)
{
    return CellSorter(def, lef, core, legalize, reporter, cells).sort();
}

void findRows(const Def& def, const Core& core, Cells& cells)
{
    std::vector<std::vector<Interval>> stretches(core.rows.size());
    for (size_t i = 0; i < core.rows.size(); ++i) {
        stretches[i] = freeStretches(core.rows[i]);
    }
    for (Cell& cell : cells.movable) {
        const size_t row = cell.placed ? core.rowAt(cell.y) : NONE;
        if (row == NONE) {
            continue;
        }
        const std::vector<Interval>& free = stretches[row];
        const auto after =
            std::upper_bound(free.begin(), free.end(), cell.x,
                             [](int64_t x, const Interval& stretch) { return x < stretch.begin; });
        if (after != free.begin() && cell.x + cell.width <= std::prev(after)->end) {
            cell.row = row;
            cell.flipped =
                isUpsideDown(def.components[cell.component].orient) != isUpsideDown(core.rows[row].orient);
        }
    }
}

} // namespace kit::importing
