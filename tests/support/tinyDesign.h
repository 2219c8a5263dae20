// SPDX-License-Identifier: BSD-3-Clause
// A small design built in memory, without files.
#pragma once

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "db/design.h"
#include "legalizer/legalizer.h"
#include "legalizer/segLegalizer.h"
#include "support/guards.h"

namespace test {

/// A design whose library, segments, components and nets are added one by one. It resets the parameters and
/// keeps the report out of the way.
class TinyDesign {
public:
    TinyDesign() = default;

    /// Adds a cell of so many sites of SITE_WIDTH, with one solution per stitch count and no shapes; the
    /// spacing of every pair of solutions is 0 until setDist().
    ///
    /// @return its index
    int addCell(int sites, const std::vector<int>& stitches)
    {
        auto* cell = new Cell(sites * SITE_WIDTH, SITE_HEIGHT);
        cell->id = static_cast<int32_t>(design.lut.cells.size());
        cell->name = "C" + std::to_string(cell->id);
        cell->colors.assign(stitches.size(), {});
        cell->stitchNums.assign(stitches.begin(), stitches.end());
        design.lut.cellIndex[cell->name] = cell->id;
        design.lut.cells.push_back(cell);
        LDP_K = std::max(LDP_K, static_cast<int32_t>(stitches.size()));
        sizeTable();
        return cell->id;
    }

    /// Sets the table's spacing, in sites of the library, from a left cell's solution to a right cell's.
    void setDist(int left, int right, int leftSolution, int rightSolution, int dist)
    {
        entry(left, right, leftSolution, rightSolution) = dist;
    }

    /// Adds a segment.
    Segment* addSegment(int x, int y, int numSites)
    {
        auto* segment = new Segment;
        segment->id = static_cast<int32_t>(design.segments.size());
        segment->x = x;
        segment->y = y;
        segment->numSites = numSites;
        design.segments.push_back(segment);
        qLib::insertItem(design.segmentTree, segment, x, y, x + numSites * SITE_WIDTH, y + SITE_HEIGHT);
        return segment;
    }

    /// Adds a component at the end of a segment's list, or to none.
    Component* addComponent(Segment* segment, int cell, int siteX, int solution = 0)
    {
        auto* comp = new Component;
        comp->name = "u" + std::to_string(design.components.size());
        comp->cellIdx = cell;
        comp->cellName = design.lut.cells[static_cast<size_t>(cell)]->name;
        comp->solution = solution;
        comp->siteX = siteX;
        if (segment != nullptr) {
            comp->x = segment->x + siteX * SITE_WIDTH;
            comp->y = segment->y;
            segment->components.push_back(comp);
        }
        design.compIndex[comp->name] = static_cast<int32_t>(design.components.size());
        design.components.push_back(comp);
        return comp;
    }

    /// Adds a fixed pin.
    Pin* addPin(int x, int y)
    {
        auto* pin = new Pin{"p" + std::to_string(design.pins.size()), x, y};
        design.pins.push_back(pin);
        return pin;
    }

    /// Adds a net and links its components to it.
    Net* addNet(const std::vector<Component*>& comps, const std::vector<Pin*>& pins = {})
    {
        auto* net = new Net;
        net->id = static_cast<int32_t>(design.nets.size());
        net->components = comps;
        net->pins = pins;
        for (Component* comp : comps) {
            comp->nets.push_back(net);
        }
        design.nets.push_back(net);
        return net;
    }

    /// [component] what a placement changes: solution, siteX, x and y.
    std::vector<std::array<int32_t, 4>> places() const
    {
        std::vector<std::array<int32_t, 4>> all;
        for (const Component* comp : design.components) {
            all.push_back({comp->solution, comp->siteX, comp->x, comp->y});
        }
        return all;
    }

private:
    int32_t& entry(int left, int right, int leftSolution, int rightSolution)
    {
        return design.lut.distTable.at(static_cast<size_t>(left))
            .at(static_cast<size_t>(right))
            .at(static_cast<size_t>(leftSolution))
            .at(static_cast<size_t>(rightSolution));
    }

    /// Gives every pair of types a block of its solutions, keeping the unflipped entries that are there.
    void sizeTable()
    {
        const std::vector<Cell*>& cells = design.lut.cells;
        const auto before = design.lut.distTable;
        design.lut.distTable.assign(2 * cells.size(), {});
        for (size_t i = 0; i < 2 * cells.size(); ++i) {
            for (size_t j = 0; j < 2 * cells.size(); ++j) {
                const size_t rows = cells[i % cells.size()]->colors.size();
                const size_t columns = cells[j % cells.size()]->colors.size();
                design.lut.distTable[i].emplace_back(rows, std::vector<int32_t>(columns, 0));
            }
        }
        for (size_t i = 0; i + 1 < cells.size(); ++i) {
            for (size_t j = 0; j + 1 < cells.size(); ++j) {
                design.lut.distTable[i][j] = before[i][j];
            }
        }
    }

    ParameterGuard m_parameters; // first: the design below may read them

public:
    Design design;
    Legalizer legalizer{&design};
};

} // namespace test
