// SPDX-License-Identifier: BSD-3-Clause
// Library cells for tests, made without files.
#pragma once

#include <array>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "lut/cell.h"

namespace test {

/// x1 y1 x2 y2, as in a colour file.
using Corners = std::array<int32_t, 4>;

/// The corners of each rectangle of each shape.
using ShapeList = std::vector<std::vector<Corners>>;

/// The masks of the shapes, per solution.
using MaskList = std::vector<std::vector<int32_t>>;

/// Rectangles that last until the test program ends.
inline std::vector<qBox*> boxesOf(const std::vector<Corners>& corners)
{
    static std::deque<qBox> s_boxes;
    std::vector<qBox*> boxes;
    for (const auto& [x1, y1, x2, y2] : corners) {
        boxes.push_back(&s_boxes.emplace_back(x1, y1, x2, y2));
    }
    return boxes;
}

/// A cell as it is after reading: its outline is (0, 0) to (width, height), its shapes stand where they are
/// said to.
inline std::unique_ptr<Cell> makeCell(int32_t width, int32_t height, const ShapeList& shapes,
                                      const MaskList& colors)
{
    auto cell = std::make_unique<Cell>(width, height);
    cell->outlineXl = 0;
    cell->outlineXh = width;
    cell->outlineYl = 0;
    cell->outlineYh = height;
    for (const std::vector<Corners>& shape : shapes) {
        cell->shapes.push_back(boxesOf(shape));
    }
    cell->colors = colors;
    cell->stitchNums.assign(colors.size(), 0);
    return cell;
}

/// xl yl xh yh.
inline Corners cornersOf(const qBox& box)
{
    return {box.xl, box.yl, box.xh, box.yh};
}

inline std::vector<Corners> cornersOf(const std::vector<qBox*>& boxes)
{
    std::vector<Corners> corners;
    for (const qBox* box : boxes) {
        corners.push_back(cornersOf(*box));
    }
    return corners;
}

inline ShapeList cornersOf(const std::vector<std::vector<qBox*>>& shapes)
{
    ShapeList corners;
    for (const std::vector<qBox*>& shape : shapes) {
        corners.push_back(cornersOf(shape));
    }
    return corners;
}

} // namespace test
