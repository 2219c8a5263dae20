// SPDX-License-Identifier: BSD-3-Clause
// The spacing table: how far two cells must stand apart for every pair of colour solutions.
#include <algorithm>
#include <cmath>
#include <limits>

#include "app/parameters.h"
#include "lut/lutable.h"
#include "qlib/exact.h"
#include "qlib/report.h"

namespace {

/// "This pair of rectangles does not conflict."
constexpr int32_t NO_CONFLICT = std::numeric_limits<int32_t>::min();

/// A cell as it stands: which cell, whether mirrored, and in which solution.
struct Placed {
    const Cell& cell;
    bool flip;
    int32_t solution;

    int32_t mask(size_t shape) const { return cell.colors[static_cast<size_t>(solution)][shape]; }

    /// Whether a shape can conflict at all: one of the three masks, and no rail.
    bool isCritical(size_t shape) const
    {
        const int32_t m = mask(shape);
        return m >= 0 && m <= 2 && cell.isVDDGND(static_cast<int>(shape), solution) == 0;
    }

    /// Distance of a rectangle from the cell's left edge as it stands, DBU.
    int32_t fromLeft(const qBox& box) const { return flip ? cell.outlineXh - box.xh : box.xl; }

    /// Distance of a rectangle from the cell's right edge as it stands, DBU.
    int32_t fromRight(const qBox& box) const { return flip ? box.xl : cell.outlineXh - box.xh; }
};

/// A rectangle in the frame of the left cell's lower-left corner.
///
/// @param box     in the cell's own frame
/// @param offset  x of the cell's left edge, DBU
/// @param mirror  x of its right edge if the cell is mirrored, else unused, DBU
qBox stand(const qBox& box, bool flip, int32_t offset, int32_t mirror)
{
    qBox standing = box;
    standing.xl = flip ? mirror - box.xh : box.xl + offset;
    standing.xh = flip ? mirror - box.xl : box.xh + offset;
    return standing;
}

/// Where a rectangle stands to another that it overlaps in x: a code for the warning about it.
int overlapDirection(const qBox& a, const qBox& b)
{
    if (a.xl < b.xh) {
        return b.yl >= a.yh ? 0 : (a.yl < b.yh ? 8 : 3);
    }
    return b.yl >= a.yh ? 5 : (a.yl >= b.yh ? 6 : 2);
}

/// Vertical gap between two rectangles, DBU; 0 with a warning if the right one begins left of the other's
/// end.
int32_t verticalGap(const qBox& a, const qBox& b)
{
    if (b.xl < a.xh) {
        vireloce::report() << "WARNING| myBox2BoxDistY(), direction = " << overlapDirection(a, b) << '\n';
        return 0;
    }
    if (b.yl >= a.yh) {
        return b.yl - a.yh;
    }
    return b.yh <= a.yl ? a.yl - b.yh : 0;
}

/// Spacing that two rectangles of one mask need, DBU, NO_CONFLICT if they are far enough apart.
int32_t pairDist(const qBox& a, const qBox& b)
{
    const int32_t dy = verticalGap(a, b);
    if (dy >= MINDPLDIST) {
        return NO_CONFLICT;
    }
    const int32_t dx = b.xl - a.xh;
    if (dx >= MINDPLDIST || dx * dx + dy * dy > MINDPLDIST * MINDPLDIST) {
        return NO_CONFLICT;
    }
    // Required: the root is taken over the horizontal gap and the vertical one is subtracted.
    const int32_t square = MINDPLDIST * MINDPLDIST - dx * dx;
    return vireloce::toInt(std::sqrt(static_cast<double>(square)) - dy);
}

/// Largest spacing over the rectangles of two shapes of one mask, but the first that is positive.
int32_t shapeDist(const Placed& left, const std::vector<qBox*>& leftShape, const Placed& right,
                  const std::vector<qBox*>& rightShape)
{
    int32_t best = NO_CONFLICT;
    for (const qBox* leftBox : leftShape) {
        if (left.fromRight(*leftBox) >= MINDPLDIST) {
            continue;
        }
        const qBox a = stand(*leftBox, left.flip, 0, left.cell.outlineXh);
        for (const qBox* rightBox : rightShape) {
            if (right.fromLeft(*rightBox) >= MINDPLDIST) {
                continue;
            }
            const qBox b = stand(*rightBox, right.flip, left.cell.width, left.cell.width + right.cell.width);
            best = std::max(best, pairDist(a, b));
            if (best > 0) {
                return best;
            }
        }
    }
    return best;
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
    distTable.clear();
    distTable.resize(2 * n);
    for (size_t i = 0; i < 2 * n; ++i) {
        distTable[i].resize(2 * n);
        for (size_t j = 0; j < 2 * n; ++j) {
            distTable[i][j] = genLUTable(cellOfType(i), i >= n, cellOfType(j), j >= n);
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

int32_t LUTable::getSafeDist(Cell* left, bool leftFlip, int32_t leftSolution, Cell* right, bool rightFlip,
                             int32_t rightSolution) const
{
    if (leftSolution < 0 || static_cast<size_t>(leftSolution) >= left->colors.size()) {
        vireloce::report() << "WARNING| larger id1\n";
        return 0;
    }
    if (rightSolution < 0 || static_cast<size_t>(rightSolution) >= right->colors.size()) {
        vireloce::report() << "WARNING| larger id2\n";
        return 0;
    }
    const Placed a{*left, leftFlip, leftSolution};
    const Placed b{*right, rightFlip, rightSolution};
    int32_t best = NO_CONFLICT;
    for (size_t p = 0; p < left->shapes.size(); ++p) {
        if (!a.isCritical(p)) {
            continue;
        }
        for (size_t q = 0; q < right->shapes.size(); ++q) {
            if (a.mask(p) != b.mask(q) || !b.isCritical(q)) {
                continue;
            }
            best = std::max(best, shapeDist(a, left->shapes[p], b, right->shapes[q]));
            if (best > 0) {
                return best;
            }
        }
    }
    return std::max(best, 0);
}

int32_t LUTable::getSafeSiteDist(Cell* left, bool leftFlip, int32_t leftSolution, Cell* right, bool rightFlip,
                                 int32_t rightSolution) const
{
    return vireloce::ceilSites(getSafeDist(left, leftFlip, leftSolution, right, rightFlip, rightSolution),
                               LIBRARY_SITE_WIDTH); // required: not SITE_WIDTH
}
