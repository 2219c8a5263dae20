// SPDX-License-Identifier: BSD-3-Clause
// The safe distance of one pair of cells: the rules to the letter, with their warnings.
#include <algorithm>
#include <limits>

#include "app/parameters.h"
#include "lut/gapSpacing.h"
#include "lut/lutable.h"
#include "qlib/exact.h"
#include "qlib/report.h"

using vireloce::NO_CONFLICT;

namespace {

/// A cell as it stands: which cell, whether mirrored, and in which solution.
struct Placed {
    const Cell& cell;
    bool flip;
    int32_t solution;

    int32_t mask(size_t shape) const { return cell.colors[static_cast<size_t>(solution)][shape]; }

    bool isCritical(size_t shape) const { return cell.isCritical(shape, static_cast<size_t>(solution)); }

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

/// Spacing that two rectangles of one mask need, DBU, NO_CONFLICT if they are far enough apart.
///
/// If the right one begins left of the other's end, the vertical gap counts as 0, with a warning.
int32_t pairDist(const qBox& a, const qBox& b, int32_t minDist)
{
    int32_t dy = 0;
    if (b.xl < a.xh) {
        vireloce::report() << "WARNING| myBox2BoxDistY(), direction = " << overlapDirection(a, b) << '\n';
    } else {
        dy = vireloce::verticalGap(a.yl, a.yh, b.yl, b.yh);
    }
    return vireloce::gapSpacing(b.xl - a.xh, dy, minDist);
}

/// Largest spacing over the rectangles of two shapes of one mask, but the first that is positive.
int32_t shapeDist(const Placed& left, const std::vector<qBox*>& leftShape, const Placed& right,
                  const std::vector<qBox*>& rightShape, int32_t minDist)
{
    int32_t best = NO_CONFLICT;
    for (const qBox* leftBox : leftShape) {
        if (left.fromRight(*leftBox) >= minDist) {
            continue;
        }
        const qBox a = stand(*leftBox, left.flip, 0, left.cell.outlineXh);
        for (const qBox* rightBox : rightShape) {
            if (right.fromLeft(*rightBox) >= minDist) {
                continue;
            }
            const qBox b = stand(*rightBox, right.flip, left.cell.width, left.cell.width + right.cell.width);
            best = std::max(best, pairDist(a, b, minDist));
            if (best > 0) {
                return best;
            }
        }
    }
    return best;
}

} // namespace

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
    const int32_t minDist = MINDPLDIST;
    int32_t best = NO_CONFLICT;
    for (size_t p = 0; p < left->shapes.size(); ++p) {
        if (!a.isCritical(p)) {
            continue;
        }
        for (size_t q = 0; q < right->shapes.size(); ++q) {
            if (a.mask(p) != b.mask(q) || !b.isCritical(q)) {
                continue;
            }
            best = std::max(best, shapeDist(a, left->shapes[p], b, right->shapes[q], minDist));
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
