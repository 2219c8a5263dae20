// SPDX-License-Identifier: BSD-3-Clause
// Random library cells for property tests.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "lut/cells.h"
#include "support/property.h"

namespace test {

/// A random cell. Its shapes may stick out at the top and the bottom.
///
/// @param scale     factor of all widths and x coordinates
/// @param stickOut  how far its shapes may stick out on the left and the right, before scaling: they then
///                  overlap those of a neighbour
inline std::unique_ptr<Cell> pickCell(int32_t scale, int32_t stickOut = 60)
{
    const auto width = draw(1, 400);
    const auto height = draw(100, 600);
    const auto x = [&] { return draw(-stickOut, width + stickOut + 1) * scale; };
    const auto y = [&] { return drawIndex(7) < 6 ? draw(1, height) : draw(-9, height + 9); };
    ShapeList shapes(draw<size_t>(0, 4));
    for (auto& rectangles : shapes) {
        for (int left = draw(0, 4); left > 0; --left) {
            rectangles.push_back(Corners{x(), y(), x(), y()});
        }
    }
    MaskList colors(draw<size_t>(1, 4), std::vector<int32_t>(shapes.size()));
    for (std::vector<int32_t>& masks : colors) {
        std::generate(masks.begin(), masks.end(),
                      [] { return drawIndex(5) == 0 ? draw(-1, 5) : draw(0, 3); });
    }
    return makeCell(width * scale, height, shapes, colors);
}

} // namespace test
