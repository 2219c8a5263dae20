// SPDX-License-Identifier: BSD-3-Clause
// The spacing table: how far two cells must stand apart for every pair of colour solutions.
#include <algorithm>

#include "app/parameters.h"
#include "lut/facing.h"
#include "lut/lutable.h"
#include "qlib/report.h"

namespace {

/// The edges of all cells on one side.
std::vector<vireloce::Edge> edgesOf(const std::vector<Cell*>& cells, bool isLeft, int32_t minDist)
{
    std::vector<vireloce::Edge> edges;
    edges.reserve(cells.size());
    for (const Cell* cell : cells) {
        edges.emplace_back(*cell, isLeft, minDist);
    }
    return edges;
}

} // namespace

int64_t LUTable::s_maxTableSize = 500'000'000; // 2 GiB for one cell, 11 for many of one solution

void LUTable::requireTableSize() const
{
    size_t solutions = 0;
    for (const Cell* cell : cells) {
        solutions += cell->colors.size();
    }
    const auto side = static_cast<int64_t>(2 * (cells.size() + solutions)); // every cell and its mirror image
    if (side > 0 && side > s_maxTableSize / side) {
        vireloce::endRun(
            "ERROR| the library is too large for a spacing table: " + std::to_string(cells.size()) +
            " cells with " + std::to_string(solutions) + " colour solutions");
    }
}

void LUTable::genLUTable()
{
    requireTableSize();
    const size_t n = cells.size();
    const auto cellOfType = [this, n](size_t type) { return cells[type < n ? type : type - n]; };
    const int32_t minDist = MINDPLDIST;
    const std::vector<vireloce::Edge> leftEdges = edgesOf(cells, /*isLeft=*/true, minDist);
    const std::vector<vireloce::Edge> rightEdges = edgesOf(cells, /*isLeft=*/false, minDist);
    distTable.clear();
    distTable.resize(2 * n);
    for (size_t i = 0; i < 2 * n; ++i) {
        const vireloce::Edge& left = i < n ? rightEdges[i] : leftEdges[i - n]; // mirrored, its left is right
        distTable[i].reserve(2 * n);
        for (size_t j = 0; j < 2 * n; ++j) {
            const vireloce::Edge& right = j < n ? leftEdges[j] : rightEdges[j - n];
            // Rectangles that overlap are warned of once for every pair of solutions, in their order.
            distTable[i].push_back(left.isClear(right)
                                       ? blockOf(left, right, minDist)
                                       : genLUTable(cellOfType(i), i >= n, cellOfType(j), j >= n));
        }
    }
    evaluateLUT();
}

std::vector<std::vector<int32_t>> LUTable::genLUTable(Cell* left, bool leftFlip, Cell* right,
                                                      bool rightFlip) const
{
    std::vector<std::vector<int32_t>> block(left->colors.size(), std::vector<int32_t>(right->colors.size()));
    for (size_t s = 0; s < block.size(); ++s) {
        for (size_t t = 0; t < block[s].size(); ++t) {
            block[s][t] = getSafeSiteDist(left, leftFlip, static_cast<int32_t>(s), right, rightFlip,
                                          static_cast<int32_t>(t));
        }
    }
    return block;
}
