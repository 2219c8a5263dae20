// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/cells.h"

#include <algorithm>
#include <string>

#include "kit/engines/import/designFiles.h"
#include "kit/formats/lefdef/library.h"
#include "kit/formats/lefdef/nameTable.h"
#include "kit/formats/lefdef/units.h"
#include "kit/geometry/polygon.h"

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
        for (const Row& row : core.rows) {
            const geometry::Rect box{row.begin(), row.y, row.end(), row.y + core.siteHeight};
            m_rows = m_rows.hasArea() ? geometry::around(m_rows, box) : box;
        }
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
        if (!hasMetal(macro) || !isCarried(macro.name) || macro.name.find('/') != std::string::npos) {
            return; // a master's name is a file's name as well
        }
        if (standsInRows(macro) && !isOnItsSide(comp.orient) && height == m_core.siteHeight &&
            m_core.rowAt(comp.y) != NONE) {
            m_cells.fixed.cells.push_back({.name = std::string(comp.name),
                                           .master = macro.name,
                                           .x = comp.x,
                                           .y = comp.y,
                                           .orient = comp.orient});
            return;
        }
        design::FixedBlock block{
            .name = std::string(comp.name), .master = macro.name, .x = comp.x, .y = comp.y};
        addMetal(comp, macro, block);
        if (!block.metal.empty()) {
            m_cells.fixed.blocks.push_back(std::move(block));
        }
    }

    /// Adds the metal near a block's edges: within a row's height, which is more than metal needs.
    void addMetal(const DefComponent& comp, const LefMacro& macro, design::FixedBlock& block) const
    {
        const geometry::Rect rows = grown(m_rows, m_core.siteHeight);
        const geometry::Rect inside = grown(m_cells.blocks.back(), -m_core.siteHeight);
        const auto add = [&](const std::vector<lefdef::LefShape>& shapes) {
            for (const lefdef::LefShape& shape : shapes) {
                for (const geometry::Rect& rect : rectsOf(shape)) {
                    const geometry::Rect lying = placed(rect, comp, macro);
                    const bool isInside = inside.hasArea() && geometry::common(lying, inside) == lying;
                    if (lying.hasArea() && !isInside && geometry::common(lying, rows).hasArea()) {
                        block.metal.push_back(lying);
                    }
                }
            }
        };
        for (const lefdef::LefPin& pin : macro.pins) {
            const bool supply = pin.use == lefdef::PinUse::POWER || pin.use == lefdef::PinUse::GROUND;
            if (!supply || !standsInRows(macro)) {
                add(pin.shapes);
            }
        }
        add(macro.obstructions);
    }

    /// A rectangle with its sides moved outward.
    static geometry::Rect grown(const geometry::Rect& rect, int64_t by)
    {
        return {rect.xl - by, rect.yl - by, rect.xh + by, rect.yh + by};
    }

    /// A shape as rectangles, picometres: that around it if it has slanted edges.
    static std::vector<geometry::Rect> rectsOf(const lefdef::LefShape& shape)
    {
        std::vector<geometry::Rect> rects;
        if (shape.polygon) {
            rects = geometry::cutIntoRects(shape.points);
        }
        if (rects.empty() && !shape.points.empty()) {
            const lefdef::LefPoint& first = shape.points.front();
            rects.push_back({first.x, first.y, first.x, first.y});
            for (const auto& [x, y] : shape.points) {
                rects.back() = geometry::around(rects.back(), {x, y, x, y});
            }
        }
        return rects;
    }

    /// A rectangle of a master where a component has it, DBU, rounded outward.
    geometry::Rect placed(const geometry::Rect& rect, const DefComponent& comp, const LefMacro& macro) const
    {
        const geometry::Point a = transformed({rect.xl, rect.yl}, macro.width, macro.height, comp.orient);
        const geometry::Point b = transformed({rect.xh, rect.yh}, macro.width, macro.height, comp.orient);
        const geometry::Rect lying = geometry::rectBetween(a.x, a.y, b.x, b.y);
        const int32_t micron = m_def.databaseMicrons;
        return geometry::Rect{lefdef::dbuDown(lying.xl, micron), lefdef::dbuDown(lying.yl, micron),
                              lefdef::dbuUp(lying.xh, micron), lefdef::dbuUp(lying.yh, micron)}
            .shifted(comp.x, comp.y);
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
    geometry::Rect m_rows;        ///< around all rows, DBU
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
