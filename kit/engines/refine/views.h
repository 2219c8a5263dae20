// SPDX-License-Identifier: BSD-3-Clause
// What neighbours see of cells, and how far apart they must be for it: by the rule of `verify`, rectangles of
// one mask stand apart as far as the colors ask for, rails excepted. Sides that look alike are one, whatever
// cells have them.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "kit/design/standing.h"

namespace kit::refine {

/// A rectangle near a side of a cell, fine units.
struct Edge {
    int64_t inset = 0;  ///< from the side to the rectangle; negative if it sticks out
    int64_t yl = 0;     ///< from the bottom of the row
    int64_t yh = 0;     ///< from the bottom of the row
    bool stays = false; ///< of what stays where it is

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 behind <=> for a pointer
    auto operator<=>(const Edge&) const = default;
};

/// A side by its rectangles, [mask]: of a cell as it lies in rows that are not turned, and, where it is asked
/// for, as it lies upside down against that. What stays where it is has those of its own row alone.
struct Side {
    static constexpr size_t GROUPS = 2 * size_t{design::MASKS};

    std::array<std::vector<Edge>, GROUPS> groups{};
    bool stays = false; ///< of what stays where it is
};

/// Rectangles near the left or the right side.
///
/// @param width  from left side to right side, fine units
/// @param masks  [shape]
/// @param reach  no rectangle farther in counts, fine units
/// @return [mask]
std::array<std::vector<Edge>, design::MASKS> edgesOf(const design::Stencil& stencil, int64_t width,
                                                     std::span<const int32_t> masks, int64_t reach,
                                                     bool onRight);

/// Numbers sides, and works out how far apart they must be.
class Views {
public:
    /// The least distances, and which side is which view.
    struct Table {
        int32_t views = 0;
        std::vector<int32_t> viewOf{}; ///< [number of add()]
        std::vector<int32_t> gaps;     ///< [view * views + view] DBU, the same both ways; 0 at least but for
                                       ///< what stays where it is
    };

    /// @param least  distance that shapes of one mask need, fine units
    /// @param floor  distance with what stays where it is if metal does not ask for more, DBU
    Views(int64_t least, int32_t floor) : m_least(least), m_floor(floor) {}

    /// Adds a side. @return its number; that of one like it if there is one
    int32_t add(const Side& side);

    /// The views of all sides. Sides that are as far apart from all others are one.
    Table table() const;

private:
    using Groups = std::array<int32_t, Side::GROUPS>;

    /// Numbers made fewer: those that ask for the same are one class.
    struct Classes {
        std::vector<int32_t> classOf;
        std::vector<size_t> first; ///< [class] a member
    };

    /// What rectangles, groups of them on one mask, or sides ask for beside one another.
    struct Square {
        Classes classes;
        std::vector<int32_t> needs; ///< [class * classes + class] DBU
    };

    int32_t numberOf(std::vector<Edge> edges);
    int32_t needOf(const Edge& a, const Edge& b) const;
    static Classes classesOf(const std::vector<int32_t>& square, size_t size);
    static std::vector<int32_t> condensed(std::vector<int32_t> square, size_t size, const Classes& classes);
    Square edgeSquare() const;
    Square groupSquare(const Square& edges) const;
    Square sideSquare(const Square& groups) const;

    int64_t m_least;
    int32_t m_floor;
    std::map<Edge, int32_t> m_edgeNumbers;
    std::vector<Edge> m_edges;
    std::map<std::vector<int32_t>, int32_t> m_groupNumbers; ///< by their edges, ascending
    std::vector<std::vector<int32_t>> m_groups;
    std::map<std::pair<Groups, bool>, int32_t> m_sideNumbers;
    std::vector<std::pair<Groups, bool>> m_sides;
};

} // namespace kit::refine
