// SPDX-License-Identifier: BSD-3-Clause
// How far shapes of one mask stand apart.
#pragma once

#include <cstdint>
#include <limits>
#include <unordered_map>
#include <vector>

#include "kit/formats/placer/design.h"

namespace kit::design {

/// Two rectangles and how far they are apart.
struct Closest {
    placer::Rect first;
    placer::Rect second;
    int64_t squared = std::numeric_limits<int64_t>::max(); ///< square of their distance
};

/// The closest rectangles of two shapes; of equal pairs the first. The distance is the largest integer if one
/// shape has no rectangles.
Closest closestOf(const std::vector<placer::Rect>& some, const std::vector<placer::Rect>& others);

/// Whether a shape of a cell is a power rail in a solution, which never conflicts: it has mask 0, and reaches
/// the bottom or the top edge of the cell. As in the placer, the cell's bottom is that of its lowest shape.
bool isRail(const placer::Cell& cell, size_t shape, const placer::Solution& solution);

/// Spacings of neighbours, worked out when first asked for.
///
/// The spacing is the least distance, in sites of the library, at which all pairs of rectangles of one mask,
/// rails excepted, stand at least the colouring distance apart (Euclidean). It is that of the geometry; for a
/// colouring distance of up to one site the placer's table says the same, beyond that it may ask for less.
/// Cells are taken as drawn, not mirrored, as the placer looks them up whatever their orientation.
class Spacing {
public:
    /// @param cells     the library; must outlive this
    /// @param distance  colouring distance, library coordinates
    Spacing(const std::vector<placer::Cell>& cells, int32_t distance);

    /// Spacings of two neighbours, sites: [left solution * solutions of the right cell + right solution].
    ///
    /// @param left   index in the library
    /// @param right  index in the library
    const std::vector<int32_t>& between(int32_t left, int32_t right);

    /// No spacing is larger, sites.
    int32_t largest() const;

private:
    /// A rectangle near a cell's edge.
    struct Edge {
        int64_t gap = 0; ///< from the rectangle to the edge, library coordinates
        int32_t yl = 0;
        int32_t yh = 0;
        size_t shape = 0;
        bool atEdge = false; ///< the shape reaches the cell's bottom or top edge
    };

    /// What two rectangles that may be too close ask for, if they are on one mask.
    struct Need {
        int64_t least = 0;      ///< distance of the cells, library coordinates
        size_t left = 0;        ///< shape
        size_t right = 0;       ///< shape
        bool anyAtEdge = false; ///< one of them is a rail on mask 0
    };

    /// A cell with the rectangles near one of its edges.
    struct Side {
        const placer::Cell* cell = nullptr;
        std::vector<Edge> edges;
    };

    Side sideOf(const placer::Cell& cell, bool right) const;
    std::vector<Need> needsOf(const Side& left, const Side& right) const;
    static int32_t sitesOf(const std::vector<Need>& needs, const placer::Solution& left,
                           const placer::Solution& right);
    int64_t need(const Edge& left, const Edge& right) const;

    int64_t m_distance;
    std::vector<Side> m_sides; ///< [2 * cell + right]
    std::unordered_map<uint64_t, std::vector<int32_t>> m_known;
};

} // namespace kit::design
