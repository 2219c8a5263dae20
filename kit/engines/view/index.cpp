// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/index.h"

#include <algorithm>
#include <numeric>

namespace kit::view {

namespace {

const Place& placeOf(const Cell& cell, bool before)
{
    return before ? cell.before : cell.place;
}

/// Stripes that the cells are dealt to: a damaged placement may lie billions apart, and then they are less
/// exact.
constexpr int64_t MOST_STRIPES = 1'000'000;

} // namespace

RowIndex indexRows(const Scene& scene, bool before)
{
    const Box bounds = boundsOf(scene);
    const int64_t height = std::max(scene.rowHeight, 1);
    const int64_t stripes = std::min((int64_t{bounds.yh} - bounds.yl) / height + 1, MOST_STRIPES);
    const auto stripeOf = [&](int32_t cell) {
        const int64_t y = placeOf(scene.cells[static_cast<size_t>(cell)], before).y;
        return static_cast<size_t>(std::min((y - bounds.yl) / height, stripes - 1));
    };
    RowIndex index;
    index.y = bounds.yl;
    index.begin.assign(static_cast<size_t>(stripes) + 1, 0);
    index.order.resize(scene.cells.size());
    std::iota(index.order.begin(), index.order.end(), 0);
    for (const int32_t cell : index.order) {
        ++index.begin[stripeOf(cell) + 1];
    }
    std::partial_sum(index.begin.begin(), index.begin.end(), index.begin.begin());
    std::stable_sort(index.order.begin(), index.order.end(), [&](int32_t a, int32_t b) {
        const auto keyOf = [&](int32_t cell) {
            return std::pair(stripeOf(cell), placeOf(scene.cells[static_cast<size_t>(cell)], before).x);
        };
        return keyOf(a) < keyOf(b);
    });
    return index;
}

} // namespace kit::view
