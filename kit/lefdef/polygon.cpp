// SPDX-License-Identifier: BSD-3-Clause
#include "kit/lefdef/polygon.h"

#include <algorithm>
#include <cstddef>

namespace kit::lefdef {

namespace {

/// Left and right ends, in turn, of what is inside between two heights; the band holds no corner within.
std::vector<int32_t> spansOf(const std::vector<DefPoint>& corners, int32_t yl, int32_t yh)
{
    std::vector<int32_t> ends;
    for (size_t i = 0; i < corners.size(); ++i) {
        const DefPoint& a = corners[i];
        const DefPoint& b = corners[(i + 1) % corners.size()];
        if (std::min(a.y, b.y) <= yl && std::max(a.y, b.y) >= yh) {
            ends.push_back(a.x);
        }
    }
    std::sort(ends.begin(), ends.end());
    return ends;
}

std::vector<int32_t> heightsOf(const std::vector<DefPoint>& corners)
{
    std::vector<int32_t> heights;
    heights.reserve(corners.size());
    for (const DefPoint& corner : corners) {
        heights.push_back(corner.y);
    }
    std::sort(heights.begin(), heights.end());
    heights.erase(std::unique(heights.begin(), heights.end()), heights.end());
    return heights;
}

} // namespace

bool isRectilinear(const std::vector<DefPoint>& corners)
{
    for (size_t i = 0; i < corners.size(); ++i) {
        const DefPoint& a = corners[i];
        const DefPoint& b = corners[(i + 1) % corners.size()];
        if (a.x != b.x && a.y != b.y) {
            return false;
        }
    }
    return true;
}

std::vector<DefRect> cutIntoRects(const std::vector<DefPoint>& corners)
{
    std::vector<DefRect> rects;
    std::vector<size_t> open; ///< those that end at the present height, from the left
    const std::vector<int32_t> heights = heightsOf(corners);
    for (size_t band = 1; band < heights.size(); ++band) {
        const int32_t yl = heights[band - 1];
        const int32_t yh = heights[band];
        const std::vector<int32_t> ends = spansOf(corners, yl, yh);
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

} // namespace kit::lefdef
