// SPDX-License-Identifier: BSD-3-Clause
#include "lut/lutable.h"

#include <algorithm>
#include <fstream>

#include "qlib/report.h"

LUTable::~LUTable()
{
    for (Cell* cell : cells) {
        delete cell;
    }
}

void LUTable::setCellPath(std::string path)
{
    while (!path.empty() && path.back() == '/') {
        path.pop_back();
    }
    cellPath = path;
}

int32_t LUTable::getCellIndex(std::string name) const
{
    const auto at = cellIndex.find(name);
    return at != cellIndex.end() ? at->second : -1;
}

size_t LUTable::countEntries() const
{
    size_t count = 0;
    for (const auto& row : distTable) {
        for (const auto& block : row) {
            for (const auto& entries : block) {
                count += entries.size();
            }
        }
    }
    return count;
}

void LUTable::evaluateLUT() const
{
    vireloce::report() << "STAT | LUTable item #           = " << countEntries() << '\n';
}

bool LUTable::isConnectWithShapeID(Cell* cell, int32_t shape, const std::vector<int>& shapeIDs) const
{
    if (shapeIDs.empty()) {
        return false;
    }
    if (std::find(shapeIDs.begin(), shapeIDs.end(), shape) != shapeIDs.end()) {
        return true;
    }
    const auto isSolid = [](const qBox* box) { return box->xl < box->xh && box->yl < box->yh; };
    const auto touches = [](const qBox* a, const qBox* b) {
        return a->xl <= b->xh && b->xl <= a->xh && a->yl <= b->yh && b->yl <= a->yh;
    };
    for (const qBox* box : cell->shapes[static_cast<size_t>(shape)]) {
        for (const int id : shapeIDs) {
            for (const qBox* other : cell->shapes[static_cast<size_t>(id)]) {
                if (isSolid(box) && isSolid(other) && touches(box, other)) {
                    return true;
                }
            }
        }
    }
    return false;
}

void LUTable::debugTwoCells(int id1, int id2, int s1, int s2) const
{
    constexpr int OUTLINE_LAYER = 4;
    constexpr int MASK_LAYER = 100; // of mask 0; the masks are drawn from here on
    std::ofstream out("debug.tcl");
    out << "set L [layout create]\n"
           "$L create cell debug\n";
    for (const int layer : {OUTLINE_LAYER, MASK_LAYER - 1, MASK_LAYER, MASK_LAYER + 1, MASK_LAYER + 2}) {
        out << "$L create layer " << layer << '\n';
    }
    int32_t shift = 0; // left edge of the cell that is drawn
    const auto draw = [&](const Cell& cell, int solution) {
        out << "$L create polygon debug " << OUTLINE_LAYER << ' ' << shift << " 0 " << shift + cell.width
            << ' ' << cell.height << '\n';
        const std::vector<int32_t>& masks = cell.colors[static_cast<size_t>(solution)];
        for (size_t k = 0; k < cell.shapes.size(); ++k) {
            for (const qBox* box : cell.shapes[k]) {
                out << "$L create polygon debug " << MASK_LAYER + masks[k] << ' ' << box->xl + shift << ' '
                    << box->yl << ' ' << box->xh + shift << ' ' << box->yh << '\n';
            }
        }
    };
    draw(*cells[static_cast<size_t>(id1)], s1);
    shift = cells[static_cast<size_t>(id1)]->width;
    draw(*cells[static_cast<size_t>(id2)], s2);
    out << "$L gdsout debug.gds\n\n";
}
