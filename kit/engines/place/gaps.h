// SPDX-License-Identifier: BSD-3-Clause
// How far apart the cells of a row must be.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kit/design/standing.h"
#include "kit/formats/placer/design.h"

namespace kit::place {

/// How a cell lies in its row, and its colors.
struct Lie {
    int32_t cell = 0;        ///< index in placer::Design::cells; obstacles come behind
    int32_t solution = 0;    ///< index in placer::Cell::solutions
    bool mirrored = false;   ///< left and right change places
    bool upsideDown = false; ///< bottom and top change places

    /// Whether both are the same.
    bool operator==(const Lie&) const = default;
};

/// The two sides of a cell, by numbers.
struct Sides {
    int32_t left = 0;
    int32_t right = 0;
};

/// What neighbours in a row need, by the rule of `verify`: rectangles of one mask stand apart as far as the
/// colors ask for, rails excepted, each cell as it truly lies. Obstacles are metal that stays where it is.
class Gaps {
public:
    /// @param design   its cells and rows; must outlive this
    /// @param minDist  distance that shapes of one mask need, library coordinates
    Gaps(const placer::Design& design, int32_t minDist);

    /// Adds metal that stays where it is.
    ///
    /// @param turned  whether cells in its row are upside down, but for those whose lie says so
    /// @return its left edge, DBU, and the obstacle as it lies
    std::pair<int64_t, Lie> addObstacle(const design::Standing& standing, bool turned);

    /// Sites that a cell takes, in DBU; what an obstacle takes.
    int64_t widthOf(int32_t cell) const { return m_widths[static_cast<size_t>(cell)]; }

    /// Least distance of the left edges of two cells, DBU: the first one's width at least. With an obstacle
    /// it is what metal asks for alone: sites under it are not free anyway.
    int64_t between(const Lie& left, const Lie& right);

    /// No cell needs more to its right, from left edge to left edge, DBU.
    int64_t farthestOf(int32_t cell) const { return widthOf(cell) + m_reach; }

    /// No two cells need more from left edge to left edge, DBU.
    int64_t farthest() const { return m_widest + m_reach; }

    /// What neighbours see of a cell. For them cells with equal numbers are one.
    Sides sidesOf(const Lie& lie);

private:
    /// Shapes of two neighbours that need some distance if they have one mask.
    struct Need {
        int64_t apart;  ///< of the cells' left edges, DBU
        size_t left;    ///< shape of the left cell
        size_t right;   ///< shape of the right cell
        bool leftRail;  ///< the shape is a rail on mask 0
        bool rightRail; ///< the shape is a rail on mask 0
    };

    /// Two neighbours, each in one turn.
    struct Pair {
        std::vector<Need> needs;    ///< the largest first
        std::vector<int64_t> apart; ///< [left solution * right solutions + right solution] DBU, -1 unknown
    };

    const design::Stencil& stencilOf(Lie lie, bool turned = false);
    int64_t leastBetween(const Lie& left, const Lie& right) const;
    bool isNear(const design::Piece& piece, const design::Stencil& stencil, bool onRight) const;
    std::vector<int32_t> sideNumbers(const Lie& lie, bool onRight);
    std::vector<Need> needsOf(const Lie& left, const Lie& right);
    static size_t turnIndex(const Lie& lie);
    bool isObstacle(int32_t cell) const { return static_cast<size_t>(cell) >= m_design.cells.size(); }
    const std::vector<placer::Solution>& solutionsOf(int32_t cell) const;

    const placer::Design& m_design;
    design::Scale m_scale;
    int64_t m_least;               ///< distance of metal, fine units
    int64_t m_overhang = 0;        ///< farthest that metal sticks out of a cell's side, fine units
    int64_t m_reach = 0;           ///< no two outlines must be farther apart, DBU
    int64_t m_widest = 0;          ///< cell, DBU
    std::vector<int64_t> m_widths; ///< [cell] DBU
    std::vector<std::vector<design::Stencil>> m_stencils; ///< [4 * cell + turn] none or one
    std::vector<std::vector<placer::Solution>> m_masks;   ///< [obstacle] one
    std::vector<std::vector<Sides>> m_sides; ///< [4 * cell + turn][solution] empty until it is asked for
    int32_t m_sideCount = 0;
    std::unordered_map<uint64_t, Pair> m_known; ///< by two cells in their turns
    uint64_t m_lastKey = 0;                     ///< most questions are about the same cells as the one before
    Pair* m_last = nullptr;
};

} // namespace kit::place
