// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/spacing.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kit::design {

namespace {

int64_t square(int64_t length)
{
    return length * length;
}

/// No distance counts as larger: two squares of it still have 64 bits.
constexpr int64_t FARTHEST = int64_t{1} << 30;

/// Distance of two ranges, 0 if they touch or overlap.
int64_t gapOf(int64_t aBegin, int64_t aEnd, int64_t bBegin, int64_t bEnd)
{
    return std::min(geometry::gapOf(aBegin, aEnd, bBegin, bEnd), FARTHEST);
}

int32_t bottomOf(const placer::Cell& cell)
{
    int32_t bottom = std::numeric_limits<int32_t>::max();
    for (const placer::Shape& shape : cell.shapes) {
        for (const placer::Rect& rect : shape.rects) {
            bottom = std::min(bottom, rect.yl);
        }
    }
    return bottom;
}

/// Whether a shape reaches the bottom or top edge of a cell.
bool reachesEdge(const placer::Shape& shape, int64_t bottom, int32_t height)
{
    return std::ranges::any_of(shape.rects, [&](const placer::Rect& rect) {
        return rect.yl <= bottom || rect.yh >= bottom + height;
    });
}

bool isMask(int32_t mask)
{
    return mask >= 0 && mask <= 2;
}

} // namespace

Closest closestOf(const std::vector<placer::Rect>& some, const std::vector<placer::Rect>& others)
{
    Closest closest;
    for (const placer::Rect& rect : some) {
        for (const placer::Rect& other : others) {
            const int64_t squared = square(gapOf(rect.xl, rect.xh, other.xl, other.xh)) +
                                    square(gapOf(rect.yl, rect.yh, other.yl, other.yh));
            if (squared < closest.squared) {
                closest = {rect, other, squared};
            }
        }
    }
    return closest;
}

bool isRail(const placer::Cell& cell, size_t shape, const placer::Solution& solution)
{
    return solution.masks[shape] == 0 && reachesEdge(cell.shapes[shape], bottomOf(cell), cell.height);
}

Spacing::Spacing(const std::vector<placer::Cell>& cells, int32_t distance) : m_distance(distance)
{
    for (const placer::Cell& cell : cells) {
        m_sides.push_back(sideOf(cell, false));
        m_sides.push_back(sideOf(cell, true));
    }
}

int32_t Spacing::largest() const
{
    return static_cast<int32_t>((m_distance + placer::LIBRARY_SITE - 1) / placer::LIBRARY_SITE);
}

Spacing::Side Spacing::sideOf(const placer::Cell& cell, bool right) const
{
    Side side{&cell, {}};
    const int64_t bottom = bottomOf(cell);
    for (size_t i = 0; i < cell.shapes.size(); ++i) {
        const bool atEdge = reachesEdge(cell.shapes[i], bottom, cell.height);
        for (const placer::Rect& rect : cell.shapes[i].rects) {
            const int64_t gap = right ? int64_t{cell.width} - rect.xh : rect.xl;
            if (gap < m_distance) {
                side.edges.push_back({gap, rect.yl, rect.yh, i, atEdge});
            }
        }
    }
    return side;
}

const std::vector<int32_t>& Spacing::between(int32_t left, int32_t right)
{
    const auto leftCell = static_cast<uint64_t>(left);
    const auto rightCell = static_cast<uint64_t>(right);
    std::vector<int32_t>& sites = m_known[leftCell << 32 | rightCell];
    const Side& a = m_sides[2 * leftCell + 1];
    const Side& b = m_sides[2 * rightCell];
    if (sites.empty()) {
        const std::vector<Need> needs = needsOf(a, b);
        sites.reserve(a.cell->solutions.size() * b.cell->solutions.size());
        for (const placer::Solution& some : a.cell->solutions) {
            for (const placer::Solution& others : b.cell->solutions) {
                sites.push_back(sitesOf(needs, some, others));
            }
        }
    }
    return sites;
}

std::vector<Spacing::Need> Spacing::needsOf(const Side& left, const Side& right) const
{
    std::vector<Need> needs;
    for (const Edge& edge : left.edges) {
        for (const Edge& other : right.edges) {
            if (const int64_t least = need(edge, other); least > 0) {
                needs.push_back({least, edge.shape, other.shape, edge.atEdge || other.atEdge});
            }
        }
    }
    return needs;
}

int32_t Spacing::sitesOf(const std::vector<Need>& needs, const placer::Solution& left,
                         const placer::Solution& right)
{
    int64_t most = 0;
    for (const Need& need : needs) {
        const int32_t mask = left.masks[need.left];
        const bool isRail = mask == 0 && need.anyAtEdge;
        if (mask == right.masks[need.right] && isMask(mask) && !isRail) {
            most = std::max(most, need.least);
        }
    }
    return static_cast<int32_t>((most + placer::LIBRARY_SITE - 1) / placer::LIBRARY_SITE);
}

int64_t Spacing::need(const Edge& left, const Edge& right) const
{
    const int64_t dy = gapOf(left.yl, left.yh, right.yl, right.yh);
    if (dy >= m_distance) {
        return 0;
    }
    const auto dx =
        static_cast<int64_t>(std::ceil(std::sqrt(static_cast<double>(square(m_distance) - square(dy)))));
    return std::max(dx - left.gap - right.gap, int64_t{0});
}

} // namespace kit::design
