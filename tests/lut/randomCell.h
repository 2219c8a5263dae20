// SPDX-License-Identifier: BSD-3-Clause
// Random library cells for property tests.
#pragma once

#include <rapidcheck.h>

#include <memory>
#include <tuple>

#include "lut/cells.h"

namespace test {

/// A random cell. Its shapes may stick out at the top and the bottom.
///
/// @param scale     factor of all widths and x coordinates
/// @param stickOut  how far its shapes may stick out on the left and the right, before scaling: they then
///                  overlap those of a neighbour
inline std::unique_ptr<Cell> pickCell(int32_t scale, int32_t stickOut = 60)
{
    const auto width = *rc::gen::inRange(1, 400);
    const auto height = *rc::gen::inRange(100, 600);
    const rc::Gen<int32_t> x = rc::gen::inRange(-stickOut, width + stickOut + 1);
    const rc::Gen<int32_t> y = rc::gen::weightedOneOf<int32_t>(
        {{6, rc::gen::inRange(1, height)}, {1, rc::gen::inRange(-9, height + 9)}});
    const rc::Gen<Corners> rectangle = rc::gen::map(
        rc::gen::tuple(x, y, x, y), [scale](const std::tuple<int32_t, int32_t, int32_t, int32_t>& c) {
            const auto& [x1, y1, x2, y2] = c;
            return Corners{x1 * scale, y1, x2 * scale, y2};
        });
    ShapeList shapes;
    for (int k = *rc::gen::inRange(0, 4); k > 0; --k) {
        shapes.push_back(*rc::gen::container<std::vector<Corners>>(
            static_cast<size_t>(*rc::gen::inRange(0, 4)), rectangle));
    }
    const auto colors = *rc::gen::container<MaskList>(
        static_cast<size_t>(*rc::gen::inRange(1, 4)),
        rc::gen::container<std::vector<int32_t>>(
            shapes.size(),
            rc::gen::weightedOneOf<int32_t>({{1, rc::gen::inRange(-1, 5)}, {4, rc::gen::inRange(0, 3)}})));
    return makeCell(width * scale, height, shapes, colors);
}

} // namespace test
