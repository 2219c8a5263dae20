// SPDX-License-Identifier: BSD-3-Clause
// What the segment solver keeps from one segment to the next.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "legalizer/colourKernel.h"
#include "legalizer/gridKernel.h"
#include "legalizer/pairCosts.h"
#include "legalizer/placementMirror.h"
#include "legalizer/segmentData.h"
#include "legalizer/shiftKernel.h"
#include "legalizer/spacing.h"
#include "legalizer/termTable.h"

namespace vireloce {

/// The kernels, the tables that they share, and arrays that are filled anew for every segment: once they have
/// grown, a segment is solved without taking memory.
///
/// It belongs to one placement of one design, in which nothing but positions and solutions changes.
struct SolverMemory {
    explicit SolverMemory(Design& design)
        : mirror(design), spacings(design), pairCosts(design, spacings), marks(mirror.numNets())
    {
    }

    /// The last segment that touched a net.
    struct Mark {
        int32_t segment = 0; ///< its number, counted in `solved`
        int32_t touched = 0; ///< index of the net in `touched`
    };

    /// A net that the segment in hand touches.
    struct Touched {
        int32_t rightmost = -1; ///< index of its rightmost component in the segment, -1 once it is entered
        int32_t rightEnd = -1;  ///< right end of its fixed range, -1 if it has none
    };

    /// The solution that a component has, as the only one of its cell.
    struct Chosen {
        int32_t stitches = 0;
        int32_t sites = 0; ///< between it and its left neighbour
        PairSpacing spacing;
    };

    PlacementMirror mirror;
    SpacingCache spacings;
    PairCostCache pairCosts;
    TermTable terms;
    GridKernel grid;
    ColourKernel colouring;
    ShiftKernel shifts;

    int32_t solved = 0;      ///< segments gathered so far
    std::vector<Mark> marks; ///< [net]
    std::vector<Touched> touched;
    SegmentData segment;
    std::vector<const PairSpacing*> behind;         ///< [component]
    std::vector<std::span<const int32_t>> stitches; ///< [component]
    std::vector<PairCosts> costs;                   ///< [component - 1]
    std::vector<Chosen> chosen;                     ///< [component]
    std::vector<int32_t> sites;                     ///< [component]
};

} // namespace vireloce
