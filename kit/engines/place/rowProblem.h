// SPDX-License-Identifier: BSD-3-Clause
// Cells that are to stand on the sites of a row. Lengths in DBU, cells, and their ways to lie, by number: the
// arithmetic knows nothing else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

namespace kit::place {

/// Sites side by side.
struct SiteRun {
    int64_t x = 0;    ///< left edge of the first
    int64_t end = 0;  ///< nothing may reach beyond
    int64_t step = 1; ///< of two sites
};

/// How a cell may lie. Cells on its left and on its right see a side of it each; equal numbers look alike.
struct RowWay {
    int64_t width = 0;
    int32_t left = 0;  ///< what cells on its left see
    int32_t right = 0; ///< what cells on its right see
};

/// A cell somewhere, in one of its ways to lie.
struct Spot {
    int64_t x = 0;   ///< left edge
    int32_t way = 0; ///< index in RowProblem::ways

    /// Whether both are the same.
    bool operator==(const Spot&) const = default;
};

/// A cell that wants a spot.
struct RowCell {
    std::vector<int32_t> ways;  ///< in which it may lie, ascending, at least one
    std::vector<int64_t> costs; ///< of each
};

/// Cells that are to stand in a row, and what is there already.
struct RowProblem {
    std::vector<SiteRun> runs;      ///< from the left, none overlaps another
    std::vector<RowCell> cells;     ///< in the order that they should keep if they can
    std::optional<size_t> newcomer; ///< the cell that may stand anywhere among the others
    std::vector<Spot> fixed;        ///< metal that stays where it is
    std::vector<RowWay> ways;
    int32_t sides = 0; ///< numbers of what is seen of ways are below
    /// Least distance of the left edges of two cells: of the right side of the first one and the left side of
    /// the second. It is asked once for each pair.
    std::function<int64_t(int32_t right, int32_t left)> apart;
    std::function<int64_t(size_t cell, int64_t x)> cost; ///< of a cell's left edge at x
};

/// The left edges of all sites, and of all stretches of the axis.
inline constexpr int64_t LEFTMOST = std::numeric_limits<int64_t>::min() / 4;
inline constexpr int64_t RIGHTMOST = std::numeric_limits<int64_t>::max() / 4;

using Order = std::vector<size_t>; ///< cells from the left

} // namespace kit::place
