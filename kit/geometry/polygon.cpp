// SPDX-License-Identifier: BSD-3-Clause
#include "kit/geometry/polygon.h"

#include <algorithm>
#include <cstddef>

namespace kit::geometry {

namespace {

/// Left and right ends, in turn, of what is inside between two heights; the band holds no corner within.
std::vector<int64_t> spansOf(const std::vector<Point>& corners, int64_t yl, int64_t yh)
{
    std::vector<int64_t> ends;
    for (size_t i = 0; i < corners.size(); ++i) {
        const Point& a = corners[i];
        const Point& b = corners[(i + 1) % corners.size()];
        if (std::min(a.y, b.y) <= yl && std::max(a.y, b.y) >= yh) {
            ends.push_back(a.x);
        }
    }
    std::ranges::sort(ends);
    return ends;
}

std::vector<int64_t> heightsOf(const std::vector<Point>& corners)
{
    std::vector<int64_t> heights;
    heights.reserve(corners.size());
    for (const Point& corner : corners) {
        heights.push_back(corner.y);
    }
    std::ranges::sort(heights);
    heights.erase(std::unique(heights.begin(), heights.end()), heights.end());
    return heights;
}

} // namespace

bool isRectilinear(const std::vector<Point>& corners)
{
    for (size_t i = 0; i < corners.size(); ++i) {
        const Point& a = corners[i];
        const Point& b = corners[(i + 1) % corners.size()];
        if (a.x != b.x && a.y != b.y) {
            return false;
        }
    }
    return true;
}

bool hasArea(const std::vector<Point>& corners)
{
    uint64_t doubled = 0; // wraps around, as terms may; a polygon's area is far from doing so
    for (size_t i = 0; i < corners.size(); ++i) {
        const Point& a = corners[i];
        const Point& b = corners[(i + 1) % corners.size()];
        doubled += static_cast<uint64_t>(a.x) * static_cast<uint64_t>(b.y) -
                   static_cast<uint64_t>(b.x) * static_cast<uint64_t>(a.y);
    }
    return doubled != 0;
}

std::vector<Rect> cutIntoRects(const std::vector<Point>& corners)
{
    if (!isRectilinear(corners)) {
        return {};
    }
    std::vector<Rect> rects;
    std::vector<size_t> open; ///< those that end at the present height, from the left
    const std::vector<int64_t> heights = heightsOf(corners);
    for (size_t band = 1; band < heights.size(); ++band) {
        const int64_t yl = heights[band - 1];
        const int64_t yh = heights[band];
        const std::vector<int64_t> ends = spansOf(corners, yl, yh);
        std::vector<size_t> present;
        auto below = open.begin();
        for (size_t i = 0; i + 1 < ends.size(); i += 2) {
            if (ends[i] == ends[i + 1]) {
                continue;
            }
            while (below != open.end() && rects[*below].xl < ends[i]) {
                ++below;
            }
            if (below != open.end() && rects[*below].xl == ends[i] && rects[*below].xh == ends[i + 1]) {
                rects[*below].yh = yh;
                present.push_back(*below);
            } else {
                rects.push_back({ends[i], yl, ends[i + 1], yh});
                present.push_back(rects.size() - 1);
            }
        }
        open = std::move(present);
    }
    return rects;
}

} // namespace kit::geometry
