// SPDX-License-Identifier: BSD-3-Clause
// Rows of cells with metal, as a placer might have left them, and what a rescue makes of them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "db/design.h"
#include "kit/engines/place/rescue.h"
#include "kit/engines/place/state.h"
#include "kit/engines/verify/verify.h"
#include "support/guards.h"

namespace test {

namespace placer = kit::placer;

/// Rows at 0, 1000, 2000 and so on, of sites of 190 DBU, which are library units as well.
class RescueCase {
public:
    static constexpr int32_t SITE = 190;
    static constexpr int32_t HEIGHT = 1000;

    explicit RescueCase(int32_t minDist = 185)
    {
        MINDPLDIST = minDist;
        SITE_HEIGHT = HEIGHT;
    }

    /// Adds a row from x = 0.
    void addRow(int32_t sites)
    {
        const auto y = static_cast<int32_t>(truth.design.rows.size()) * HEIGHT;
        placer::Row& row = truth.design.rows.emplace_back();
        row.name = "r" + std::to_string(y);
        row.y = y;
        row.orient = "N";
        row.numSites = sites;
        row.step = SITE;
        auto* placed = new Row;
        placed->y = y;
        placed->numSites = sites;
        placed->step = SITE;
        m_design->rows.push_back(placed);
    }

    /// Adds a block in a row.
    void addBlock(int32_t x, int32_t width, int32_t y = 0)
    {
        placer::Macro& macro = truth.design.macros.emplace_back();
        macro.x = x;
        macro.y = y;
        macro.width = width;
        macro.height = HEIGHT;
        Macro placed;
        placed.x = x;
        placed.y = y;
        placed.width = width;
        placed.height = HEIGHT;
        m_design->addMacro(placed);
    }

    /// Adds a cell, a rectangle a shape. @return its index
    int32_t addCell(int32_t sites, const std::vector<placer::Rect>& rects,
                    const std::vector<std::vector<int32_t>>& solutions, bool mirrorable = false)
    {
        const auto index = static_cast<int32_t>(truth.design.cells.size());
        placer::Cell& cell = truth.design.cells.emplace_back();
        cell.name = "C" + std::to_string(index);
        cell.width = sites * SITE;
        cell.height = HEIGHT;
        for (const placer::Rect& rect : rects) {
            cell.shapes.emplace_back().rects.push_back(rect);
        }
        for (const std::vector<int32_t>& masks : solutions) {
            cell.solutions.emplace_back().masks = masks;
        }
        truth.mirrorable.push_back(mirrorable);
        auto* placed = new Cell(sites * SITE, HEIGHT, SITE);
        placed->colors = solutions;
        placed->stitchNums.assign(solutions.size(), 0);
        m_design->lut.cells.push_back(placed);
        return index;
    }

    /// Adds a component; where no segment of the row has its left edge it is in none.
    void addComponent(int32_t cell, int32_t x, int32_t solution = 0, int32_t y = 0, bool mirrored = false,
                      bool upsideDown = false)
    {
        placer::Component& comp = truth.design.components.emplace_back();
        comp.name = "u" + std::to_string(truth.design.components.size() - 1);
        comp.cellName = truth.design.cells[static_cast<size_t>(cell)].name;
        comp.cell = cell;
        comp.x = x;
        comp.y = y;
        comp.orient = upsideDown ? (mirrored ? "S" : "FS") : (mirrored ? "FN" : "N");
        truth.upsideDown.push_back(upsideDown);
        auto* placed = new Component;
        placed->id = static_cast<int32_t>(m_design->components.size());
        placed->cellIdx = cell;
        placed->x = x;
        placed->y = y;
        placed->solution = solution;
        m_design->components.push_back(placed);
    }

    /// Adds a cell that stays where it is, of one site in the row at 0.
    void addFixed(int32_t cell, int32_t x, int32_t solution, const std::string& orient = "N")
    {
        addBlock(x, SITE);
        placer::Component& comp = truth.design.fixed.emplace_back();
        comp.cellName = truth.design.cells[static_cast<size_t>(cell)].name;
        comp.cell = cell;
        comp.x = x;
        comp.orient = orient;
        placer::ColorRecord& record = truth.fixedColors.emplace_back();
        record.cell = comp.cellName;
        record.solution = solution;
        record.masks = truth.design.cellOf(comp)->solutions[static_cast<size_t>(solution)].masks;
    }

    /// Adds metal of a block in DBU, which is on all masks; behind all fixed cells.
    void addMetal(const kit::geometry::Rect& metal)
    {
        truth.design.blockMetal.push_back({static_cast<int32_t>(truth.design.fixed.size()), metal});
        truth.design.fixed.emplace_back().orient = "N";
    }

    kit::place::Rescue rescue()
    {
        m_design->initSegments();
        sizeTable();
        for (Component* const comp : m_design->components) {
            const auto holder = std::ranges::find_if(m_design->segments, [&](const Segment* segment) {
                return segment->y == comp->y && segment->x <= comp->x && comp->x < segment->rightEnd(SITE);
            });
            if (holder != m_design->segments.end()) {
                comp->siteX = (comp->x - (*holder)->x) / SITE;
                (*holder)->components.push_back(comp);
            }
        }
        for (Segment* const segment : m_design->segments) {
            segment->components.sort(Component::bySiteX);
        }
        const std::vector<kit::place::Point> start = kit::place::positionsOf(*m_design);
        kit::place::Rescue done = kit::place::rescue(*m_design, truth, strays(), start);
        after = truth.design;
        for (size_t i = 0; i < after.components.size(); ++i) {
            after.components[i].x = component(i).x;
            after.components[i].y = component(i).y;
        }
        for (const int32_t id : done.mirrored) {
            std::string& orient = after.components[static_cast<size_t>(id)].orient;
            orient = orient == "N" ? "FN" : orient == "FN" ? "N" : orient == "S" ? "FS" : "S";
        }
        return done;
    }

    /// Components that the placer has nowhere, or not well.
    std::vector<int32_t> strays()
    {
        const kit::place::State state = kit::place::measure(*m_design, {});
        std::vector<int32_t> all = state.dropped;
        all.insert(all.end(), state.beyond.begin(), state.beyond.end());
        all.insert(all.end(), state.overlapping.begin(), state.overlapping.end());
        std::ranges::sort(all);
        return all;
    }

    /// What `verify` has against the result.
    kit::design::Issues issues() const
    {
        kit::design::ColoredPlacement placement{
            .design = after, .colors = {}, .faults = {}, .fixedColors = truth.fixedColors};
        for (size_t i = 0; i < after.components.size(); ++i) {
            const placer::Component& comp = after.components[i];
            const auto solution = static_cast<size_t>(component(i).solution);
            placer::ColorRecord& record = placement.colors.emplace_back();
            record.name = comp.name;
            record.cell = comp.cellName;
            record.solution = component(i).solution;
            record.masks = after.cellOf(comp)->solutions[solution].masks;
        }
        return kit::verify::judge(placement, {.minDist = MINDPLDIST});
    }

    /// Errors among these, but for fixed cells too close to each other: nobody can help.
    int64_t errors() const
    {
        return std::ranges::count_if(issues(), [this](const kit::design::Issue& issue) {
            const bool anyFree = !after.isFixed(issue.component) || !after.isFixed(issue.other);
            return severityOf(issue) == kit::Severity::ERROR && anyFree;
        });
    }

    /// A component after the rescue.
    const Component& component(size_t index) const { return *m_design->components[index]; }

    /// Left edges of all components in sites.
    std::vector<int32_t> sites() const
    {
        std::vector<int32_t> all;
        for (const Component* comp : m_design->components) {
            all.push_back(comp->x / SITE);
        }
        return all;
    }

    kit::place::TrueDesign truth;
    placer::Design after; ///< with the places and orientations of the result

private:
    /// The placer's own table of spacings, by which any two cells may touch.
    void sizeTable()
    {
        const std::vector<Cell*>& cells = m_design->lut.cells;
        m_design->lut.distTable.assign(cells.size(), {});
        for (size_t i = 0; i < cells.size(); ++i) {
            for (const Cell* const right : cells) {
                m_design->lut.distTable[i].emplace_back(cells[i]->colors.size(),
                                                        std::vector<int32_t>(right->colors.size()));
            }
        }
    }

    ParameterGuard m_parameters; // first: the design reads them
    std::unique_ptr<Design> m_design = std::make_unique<Design>();
};

} // namespace test
