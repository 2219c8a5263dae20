// SPDX-License-Identifier: BSD-3-Clause
// Rectangles for the tests of the spatial index: how to make them at random, and what a search must find.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <vector>

#include "qlib/qLibRTree.h"
#include "support/property.h"

namespace test {

/// A rectangle, and an item of a tree: it is found under its own bounds.
struct Box {
    int32_t xl = 0;
    int32_t yl = 0;
    int32_t xh = 0;
    int32_t yh = 0;

    bool operator==(const Box&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Box& box)
{
    return out << '(' << box.xl << ' ' << box.yl << ' ' << box.xh << ' ' << box.yh << ')';
}

using BoxTree = qLib::PlaneTree<Box>;

/// The largest integer that a coordinate can be.
inline constexpr int32_t FAR = std::numeric_limits<int32_t>::max();

/// A query that every rectangle overlaps.
inline constexpr Box EVERYWHERE{-FAR - 1, -FAR - 1, FAR, FAR};

/// Puts every rectangle into a tree, in order. The tree refers to them.
inline void insertAll(BoxTree& tree, std::vector<Box>& boxes)
{
    for (Box& box : boxes) {
        qLib::insertItem(tree, &box, box.xl, box.yl, box.xh, box.yh);
    }
}

/// Indices of the rectangles that a search finds, in search order.
inline std::vector<int> found(BoxTree& tree, const std::vector<Box>& boxes, const Box& query)
{
    std::vector<int> indices;
    for (const Box* item : qLib::searchItems(tree, query.xl, query.yl, query.xh, query.yh)) {
        indices.push_back(static_cast<int>(item - boxes.data()));
    }
    return indices;
}

/// Indices of the rectangles that share a point with the query, ascending, by looking at each of them.
inline std::vector<int> scan(const std::vector<Box>& boxes, const Box& query)
{
    std::vector<int> indices;
    for (size_t i = 0; i < boxes.size(); ++i) {
        const Box& box = boxes[i];
        if (std::max(box.xl, query.xl) <= std::min(box.xh, query.xh) &&
            std::max(box.yl, query.yl) <= std::min(box.yh, query.yh)) {
            indices.push_back(static_cast<int>(i));
        }
    }
    return indices;
}

/// A rectangle with corners from 0 to `last`, and extents from 0 to `extent`, times `step`.
inline Box gridBox(int32_t last, int32_t extent, int32_t stepX, int32_t stepY)
{
    const int32_t x = draw(0, last + 1);
    const int32_t y = draw(0, last + 1);
    return {x * stepX, y * stepY, (x + draw(0, extent + 1)) * stepX, (y + draw(0, extent + 1)) * stepY};
}

/// A rectangle anywhere in the range of the coordinates.
inline Box anyBox()
{
    const auto coordinate = [] {
        switch (drawIndex(3)) {
        case 0:
            return draw(-FAR, FAR);
        case 1:
            return draw(-1000, 1000);
        default:
            return drawOne({-FAR - 1, -1, 0, 1, FAR});
        }
    };
    const auto [xl, xh] = std::minmax({coordinate(), coordinate()});
    const auto [yl, yh] = std::minmax({coordinate(), coordinate()});
    return {xl, yl, xh, yh};
}

/// A rectangle of a kind: crowded ones, many of them equal, touching or without extent; ones that look like
/// the segments of a design; ones anywhere.
inline Box boxOfKind(int kind)
{
    switch (kind) {
    case 0:
        return gridBox(6, 2, 1, 1);
    case 1:
        return gridBox(400, 60, 190, 1400);
    default:
        return anyBox();
    }
}

/// A design's worth of rectangles of one kind, and some queries of the same kind.
struct BoxesAndQueries {
    std::vector<Box> boxes;
    std::vector<Box> queries;
};

/// Picks them. For use inside a property.
///
/// @param most  largest number of rectangles
inline BoxesAndQueries pickBoxes(int most)
{
    const int kind = draw(0, 3);
    BoxesAndQueries picked{std::vector<Box>(draw<size_t>(0, static_cast<size_t>(most) + 1)),
                           std::vector<Box>(5)};
    for (std::vector<Box>* boxes : {&picked.boxes, &picked.queries}) {
        std::generate(boxes->begin(), boxes->end(), [kind] { return boxOfKind(kind); });
    }
    picked.queries.push_back(EVERYWHERE);
    return picked;
}

} // namespace test
