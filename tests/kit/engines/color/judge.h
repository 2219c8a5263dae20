// SPDX-License-Identifier: BSD-3-Clause
// A slow and literal judge of coloured metal, which shares nothing with what it judges.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "kit/formats/placer/design.h"

namespace test {

using kit::placer::Rect;
using Rects = std::vector<Rect>;

inline int64_t gapSquared(const Rect& a, const Rect& b)
{
    const int64_t dx = std::max({int64_t{0}, int64_t{a.xl} - b.xh, int64_t{b.xl} - a.xh});
    const int64_t dy = std::max({int64_t{0}, int64_t{a.yl} - b.yh, int64_t{b.yl} - a.yh});
    return dx * dx + dy * dy;
}

inline int64_t gapSquared(const Rects& a, const Rects& b)
{
    int64_t least = std::numeric_limits<int64_t>::max();
    for (const Rect& rect : a) {
        for (const Rect& other : b) {
            least = std::min(least, gapSquared(rect, other));
        }
    }
    return least;
}

/// Conflicts of a colouring.
struct Judgement {
    int32_t conflicts = 0;
    int64_t closest = std::numeric_limits<int64_t>::max(); ///< square of the least distance in conflict
};

/// Judges shapes by their masks: two of one mask must be `distance` apart unless a chain of touching shapes
/// of that mask joins them.
///
/// @param shapes  rails left out
/// @param masks   [shape]
template <class Masks>
Judgement judge(const std::vector<Rects>& shapes, const Masks& masks, int32_t distance)
{
    std::vector<size_t> group(shapes.size());
    for (size_t i = 0; i < shapes.size(); ++i) {
        group[i] = i;
    }
    for (bool changed = true; changed;) {
        changed = false;
        for (size_t i = 0; i < shapes.size(); ++i) {
            for (size_t j = 0; j < shapes.size(); ++j) {
                if (masks[i] == masks[j] && group[i] < group[j] && gapSquared(shapes[i], shapes[j]) == 0) {
                    group[j] = group[i];
                    changed = true;
                }
            }
        }
    }
    Judgement judgement;
    for (size_t i = 0; i < shapes.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            const int64_t squared = gapSquared(shapes[i], shapes[j]);
            if (masks[i] == masks[j] && group[i] != group[j] && squared < int64_t{distance} * distance) {
                ++judgement.conflicts;
                judgement.closest = std::min(judgement.closest, squared);
            }
        }
    }
    return judgement;
}

/// How much of a line or a box two rectangles both cover: half the girth, negative if they do not meet.
inline int32_t contact(const Rect& a, const Rect& b)
{
    const int32_t width = std::min(a.xh, b.xh) - std::max(a.xl, b.xl);
    const int32_t height = std::min(a.yh, b.yh) - std::max(a.yl, b.yl);
    return width < 0 || height < 0 ? -1 : width + height;
}

/// Whether two shapes touch in more than a corner.
inline bool meet(const Rects& a, const Rects& b)
{
    return std::any_of(a.begin(), a.end(), [&](const Rect& rect) {
        return std::any_of(b.begin(), b.end(), [&](const Rect& other) { return contact(rect, other) > 0; });
    });
}

/// Area that rectangles cover, counted field by field of the grid of their edges.
inline int64_t areaOf(const Rects& rects)
{
    std::vector<int32_t> xs;
    for (const Rect& rect : rects) {
        xs.insert(xs.end(), {rect.xl, rect.xh});
    }
    std::sort(xs.begin(), xs.end());
    int64_t area = 0;
    for (size_t i = 1; i < xs.size(); ++i) {
        std::vector<std::pair<int32_t, int32_t>> ranges;
        for (const Rect& rect : rects) {
            if (rect.xl <= xs[i - 1] && rect.xh >= xs[i]) {
                ranges.emplace_back(rect.yl, rect.yh);
            }
        }
        std::sort(ranges.begin(), ranges.end());
        int32_t reached = std::numeric_limits<int32_t>::min();
        for (const auto& [low, high] : ranges) {
            area += int64_t{xs[i] - xs[i - 1]} * std::max(0, high - std::max(low, reached));
            reached = std::max(reached, high);
        }
    }
    return area;
}

/// Whether a shape is a rail for the placer: on mask 0, and at the bottom or the top of the cell after its
/// lowest metal has been moved to 0.
inline bool isRail(const kit::placer::Cell& cell, size_t shape, const kit::placer::Solution& solution)
{
    int32_t bottom = std::numeric_limits<int32_t>::max();
    for (const kit::placer::Shape& other : cell.shapes) {
        for (const Rect& rect : other.rects) {
            bottom = std::min(bottom, rect.yl);
        }
    }
    return solution.masks[shape] == 0 &&
           std::any_of(
               cell.shapes[shape].rects.begin(), cell.shapes[shape].rects.end(),
               [&](const Rect& rect) { return rect.yl - bottom <= 0 || rect.yh - bottom >= cell.height; });
}

/// Judges a solution of a colour file, and expects its stitches to be what the header says.
///
/// @param rails  the first so many shapes must be rails, and no others
inline Judgement judgeSolution(const kit::placer::Cell& cell, size_t index, size_t rails, int32_t distance)
{
    const kit::placer::Solution& solution = cell.solutions[index];
    const std::string where = cell.name + ", solution " + std::to_string(index);
    std::vector<Rects> shapes;
    std::vector<int32_t> masks;
    for (size_t i = 0; i < cell.shapes.size(); ++i) {
        EXPECT_EQ(isRail(cell, i, solution), i < rails) << where << ", shape " << i;
        EXPECT_GE(solution.masks[i], 0) << where;
        EXPECT_LE(solution.masks[i], 2) << where;
        if (i >= rails) {
            shapes.push_back(cell.shapes[i].rects);
            masks.push_back(solution.masks[i]);
        }
    }
    int32_t stitches = 0;
    for (size_t box = 1; box < cell.headerBoxes.size(); ++box) {
        std::vector<size_t> here;
        for (size_t i = 0; i < shapes.size(); ++i) {
            const bool covers = std::any_of(shapes[i].begin(), shapes[i].end(), [&](const Rect& rect) {
                return contact(rect, cell.headerBoxes[box]) > 0;
            });
            if (covers) {
                here.push_back(i);
            }
        }
        EXPECT_EQ(here.size(), 2U) << where << ", box " << box;
        stitches += here.size() == 2 && masks[here[0]] != masks[here[1]] ? 1 : 0;
    }
    EXPECT_EQ(solution.stitches, stitches) << where;
    for (size_t i = 0; i < shapes.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            const bool boxed =
                std::any_of(cell.headerBoxes.begin() + 1, cell.headerBoxes.end(), [&](const Rect& box) {
                    return meet(shapes[i], {box}) && meet(shapes[j], {box});
                });
            EXPECT_TRUE(!meet(shapes[i], shapes[j]) || boxed) << where << ", shapes " << i << " and " << j;
        }
    }
    return judge(shapes, masks, distance);
}

} // namespace test
