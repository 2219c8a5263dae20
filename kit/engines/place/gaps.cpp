// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/gaps.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "app/parameters.h"
#include "db/design.h"

namespace kit::place {

namespace {

/// A rectangle that may conflict, as its cell stands, in library coordinates from the cell's left edge.
struct Patch {
    int64_t xl;
    int64_t xh;
    int64_t yl;
    int64_t yh;
    int32_t mask;
};

std::vector<Patch> patchesOf(const Cell& cell, const Component& comp)
{
    std::vector<Patch> patches;
    const auto solution = static_cast<size_t>(comp.solution);
    if (solution >= cell.colors.size()) {
        return patches;
    }
    for (size_t k = 0; k < cell.shapes.size(); ++k) {
        const int32_t mask = cell.colors[solution][k];
        if (mask < 0 || mask > 2 || cell.isVDDGND(static_cast<int>(k), comp.solution) != 0) {
            continue; // on no mask, or a rail
        }
        for (const qBox* box : cell.shapes[k]) {
            const bool flip = comp.orient == Component::FN;
            patches.push_back({.xl = flip ? cell.outlineXh - box->xh : box->xl,
                               .xh = flip ? cell.outlineXh - box->xl : box->xh,
                               .yl = box->yl,
                               .yh = box->yh,
                               .mask = mask});
        }
    }
    return patches;
}

/// Horizontal distance, library coordinates, from which on two patches of one mask are far enough apart.
int64_t neededDistance(const Patch& a, const Patch& b)
{
    const int64_t least = MINDPLDIST;
    const int64_t dy = std::max({b.yl - a.yh, a.yl - b.yh, int64_t{0}});
    if (least <= 0 || dy >= least) {
        return 0;
    }
    auto dx = static_cast<int64_t>(std::sqrt(static_cast<double>(least * least - dy * dy)));
    while (dx * dx + dy * dy < least * least) {
        ++dx;
    }
    return dx;
}

} // namespace

int32_t Gaps::between(const Component& left, const Component& right)
{
    const Key key{left.cellIdx, left.orient, left.solution, right.cellIdx, right.orient, right.solution};
    const auto [at, isNew] = m_known.try_emplace(key, 0);
    if (isNew) {
        at->second =
            std::max(m_design.safeSites(left, left.solution, right, right.solution), byShapes(left, right));
    }
    return at->second;
}

int32_t Gaps::byShapes(const Component& left, const Component& right) const
{
    const Cell& leftCell = m_design.cellOf(left);
    const std::vector<Patch> rightPatches = patchesOf(m_design.cellOf(right), right);
    const int64_t end = int64_t{leftCell.siteWidth} * LIBRARY_SITE_WIDTH;
    int64_t sites = 0;
    for (const Patch& a : patchesOf(leftCell, left)) {
        for (const Patch& b : rightPatches) {
            if (a.mask == b.mask) {
                const int64_t lacking = neededDistance(a, b) - (end + b.xl - a.xh);
                sites = std::max(sites, (lacking + LIBRARY_SITE_WIDTH - 1) / LIBRARY_SITE_WIDTH);
            }
        }
    }
    return static_cast<int32_t>(sites);
}

} // namespace kit::place
