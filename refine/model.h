// SPDX-License-Identifier: BSD-3-Clause
// A placed design as integers: all that shorter wires without mask conflicts are about, and nothing else. No
// names, no files, no polygons.
//
// Lengths are whole numbers of one unit that the caller chooses; with half a DBU the middle of a pin is
// whole. Everything is counted from 0. Flat arrays: what belongs to a record lies side by side, from its
// `begin` on to that of the next record.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace refine {

/// No x or y is further from 0, units: sums of a few fit into 32 bits.
inline constexpr int32_t FARTHEST = 1 << 29;

/// No net weighs more.
inline constexpr int32_t MOST_WEIGHT = 1000;

/// A way to lie and to be coloured.
struct State {
    int32_t left = 0;     ///< what a neighbour on the left sees: a view, the column of Model::gaps
    int32_t right = 0;    ///< what a neighbour on the right sees: a view, the row of Model::gaps
    int32_t stitches = 0; ///< that the colouring has
    int32_t solution = 0; ///< the caller's number of the colouring
    bool mirrored = false;
};

/// A pin of a kind, from the lower left corner of the cell, units.
struct KindPin {
    int32_t x = 0;
    int32_t mirroredX = 0; ///< x if the cell is mirrored left to right
    int32_t y = 0;
    int32_t turnedY = 0; ///< y in rows whose cells lie upside down
};

/// What cells of one master have in common.
struct Kind {
    int32_t width = 0;      ///< units; a number of sites but for what stays where it is
    int32_t rows = 1;       ///< height
    int32_t stateBegin = 0; ///< in Model::states
    int32_t pinBegin = 0;   ///< in Model::kindPins
};

/// Cells of one bottom edge.
struct Row {
    int32_t y = 0;       ///< bottom edge, units
    bool turned = false; ///< cells lie upside down
};

/// Free sites side by side, in a row.
struct Run {
    int32_t row = 0;
    int32_t x = 0;     ///< left edge of the first site, units
    int32_t sites = 0; ///< positive
    int32_t fence = 0; ///< cells of this fence alone may stand here
};

/// A cell where it stands. What stays where it is may stand where there are no sites.
struct Cell {
    int32_t kind = 0;
    int32_t row = 0;
    int32_t x = 0;      ///< left edge, units
    int32_t state = 0;  ///< from the first of its kind on
    int32_t fence = 0;  ///< the runs where it may stand
    bool fixed = false; ///< stays where and how it is
};

/// A pin of a cell.
struct Pin {
    int32_t cell = 0;
    int32_t kindPin = 0; ///< from the first of its kind on
};

/// A net with what does not move of it.
struct Net {
    int32_t weight = 1;                               ///< of its wirelength, positive
    int32_t pinBegin = 0;                             ///< in Model::pins
    int32_t xl = std::numeric_limits<int32_t>::max(); ///< box of the fixed pins, units; empty as it begins
    int32_t yl = std::numeric_limits<int32_t>::max();
    int32_t xh = std::numeric_limits<int32_t>::min();
    int32_t yh = std::numeric_limits<int32_t>::min();
};

/// A placed design.
struct Model {
    int32_t step = 1; ///< width of all sites, units
    int32_t views = 0;
    std::vector<Kind> kinds;       ///< with one more at the end, which has the ends of the last
    std::vector<State> states;     ///< of all kinds
    std::vector<KindPin> kindPins; ///< of all kinds
    std::vector<int32_t> gaps; ///< [right view of the left cell * views + left view of the right cell] units
                               ///< that the two outlines are apart at least; negative only with what stays
    std::vector<Row> rows;     ///< upwards
    std::vector<Run> runs;     ///< row by row, from the left
    std::vector<Cell> cells;
    std::vector<Net> nets;       ///< with one more at the end, which has the end of the last
    std::vector<Pin> pins;       ///< of all nets
    std::vector<int32_t> startX; ///< [cell] that displacement is measured from; empty for Cell::x
    std::vector<int32_t> startY; ///< [cell] the same, of the row's bottom edge

    std::vector<bool> changed; ///< [cell] it and those within its reach are to be improved, no others; empty
                               ///< for all
    /// Records by their numbers.
    ///@{
    const Kind& kind(int32_t index) const { return kinds[static_cast<size_t>(index)]; }
    const State& state(int32_t kindIndex, int32_t index) const
    {
        return states[static_cast<size_t>(kind(kindIndex).stateBegin) + static_cast<size_t>(index)];
    }
    const KindPin& kindPin(int32_t kindIndex, int32_t index) const
    {
        return kindPins[static_cast<size_t>(kind(kindIndex).pinBegin) + static_cast<size_t>(index)];
    }
    ///@}

    /// States of a kind.
    int32_t stateCount(int32_t kindIndex) const
    {
        return kind(kindIndex + 1).stateBegin - kind(kindIndex).stateBegin;
    }
};

/// What is wrong with a model: indices out of range, empty kinds, runs that overlap, lengths beyond FARTHEST.
///
/// @return empty if nothing is
std::string faultOf(const Model& model);

/// Wirelength of a model: the sum of the half perimeters of all nets' boxes, times their weights. Counted
/// anew.
int64_t wirelength(const Model& model);

/// What a placement breaks.
struct Violations {
    int64_t offSite = 0;  ///< cells off the sites, beyond their run or in one of another fence
    int64_t overlaps = 0; ///< pairs of cells, one over the other
    int64_t tooClose = 0; ///< pairs that do not overlap and are closer than their gap

    /// Of all kinds.
    int64_t sum() const { return offSite + overlaps + tooClose; }
};

/// Counts what a placement breaks, pairs that are no next neighbours included.
Violations violationsOf(const Model& model);

} // namespace refine
