// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/metal.h"

#include <algorithm>
#include <cmath>

namespace kit::design {

namespace {

/// A distance along the axes.
struct Gap {
    int64_t x; ///< 0 if the two share a vertical line
    int64_t y; ///< 0 if the two share a horizontal line
};

Gap gapOf(const FineBox& a, const FineBox& b)
{
    return {std::max({int64_t{0}, b.xl - a.xh, a.xl - b.xh}),
            std::max({int64_t{0}, b.yl - a.yh, a.yl - b.yh})};
}

double squareOf(int64_t length)
{
    return static_cast<double>(length) * static_cast<double>(length);
}

} // namespace

double distanceOf(const FineBox& a, const FineBox& b)
{
    const Gap gap = gapOf(a, b);
    return std::sqrt(squareOf(gap.x) + squareOf(gap.y));
}

bool MetalGauge::tooClose(const FineBox& a, const FineBox& b) const
{
    const Gap gap = gapOf(a, b);
    // Squares of doubles are exact up to a distance of 94 million: site steps of half a million DBU.
    return gap.x < m_least && gap.y < m_least && squareOf(gap.x) + squareOf(gap.y) < squareOf(m_least);
}

void MetalGauge::collect(const Standing& cell, const FineBox& other, std::vector<Metal>& metal) const
{
    metal.clear();
    for (const Piece& piece : cell.stencil->pieces) {
        const FineBox box = piece.box.shifted(cell.x, cell.y);
        const int32_t mask = cell.maskOf(piece);
        if (mask >= 0 && tooClose(box, other)) {
            metal.push_back({box, piece.shape, mask});
        }
    }
}

void MetalGauge::take(const Metal& a, const Metal& b, Closeness& result)
{
    const double distance = distanceOf(a.box, b.box);
    if (m_shapePairs.empty() || distance < result.distance) {
        result.distance = distance;
        result.mask = a.mask;
        result.first = a.box;
        result.second = b.box;
    }
    m_shapePairs.emplace_back(a.shape, b.shape);
}

Closeness MetalGauge::measure(const Standing& first, const Standing& second)
{
    collect(first, second.extent(), m_first);
    collect(second, first.extent(), m_second);
    m_shapePairs.clear();
    Closeness result;
    for (const Metal& a : m_first) {
        for (const Metal& b : m_second) {
            if (a.mask == b.mask && tooClose(a.box, b.box)) {
                take(a, b, result);
            }
        }
    }
    std::sort(m_shapePairs.begin(), m_shapePairs.end());
    const auto end = std::unique(m_shapePairs.begin(), m_shapePairs.end());
    result.shapePairs = static_cast<int32_t>(end - m_shapePairs.begin());
    return result;
}

} // namespace kit::design
