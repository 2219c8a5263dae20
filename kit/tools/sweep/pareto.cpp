// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/pareto.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace kit::sweep {

std::vector<size_t> frontOf(const std::vector<Costs>& points)
{
    std::vector<size_t> order(points.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return std::tie(points[a].x, points[a].y, a) < std::tie(points[b].x, points[b].y, b);
    });
    std::vector<size_t> front;
    for (const size_t i : order) {
        const bool first = front.empty();
        const Costs& best = points[first ? i : front.back()];
        if (first || points[i].y < best.y || (points[i].x == best.x && points[i].y == best.y)) {
            front.push_back(i);
        }
    }
    return front;
}

} // namespace kit::sweep
