// SPDX-License-Identifier: BSD-3-Clause
// The segment programs without their graphs: a segment's records are gathered into flat arrays, a kernel
// solves it, and the caller writes the result.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "legalizer/colourKernel.h"
#include "legalizer/fullGridKernel.h"
#include "legalizer/fullShiftKernel.h"
#include "legalizer/gridKernel.h"
#include "legalizer/pairCosts.h"
#include "legalizer/pairGaps.h"
#include "legalizer/placementMirror.h"
#include "legalizer/segmentData.h"
#include "legalizer/shiftKernel.h"
#include "legalizer/termTable.h"

class Cell;
class Design;
struct Component;
struct Segment;

namespace vireloce {

/// The kernels with what they share, and arrays that are filled anew for every segment. Once they have grown,
/// a segment is solved without taking memory.
///
/// It belongs to one placement of one design, in which nothing but positions and solutions changes; whoever
/// moves a component says so by moved(). It takes the parameters as they are when it is made.
class FastRoad {
public:
    /// What a placement program found for every component of a segment, valid until the next one; nothing if
    /// there is no memory for two neighbours at a time.
    using GridPlaces = std::optional<std::span<const GridPlace>>;

    /// As GridPlaces; no component at all if nothing fits.
    using ShiftPlaces = std::optional<std::span<const ShiftPlace>>;

    /// @param design  set up, not owned; its components are numbered (Component::id)
    explicit FastRoad(Design& design);

    /// Takes over the position of a component.
    void moved(const Component& comp) { m_mirror.moved(comp); }

    /// The solutions of a segment's components, -1 for those that keep theirs. Valid until the next call.
    std::span<const int32_t> colour(const Segment& segment);

    /// Sites for the components of a segment in the solutions that they have.
    ///
    /// @param segment  at least one component, sites of 0 or more
    GridPlaces placeOrdered(const Segment& segment);

    /// Sites and solutions for the components of a segment.
    ///
    /// @param segment  at least one component, sites of 0 or more
    GridPlaces placeJoint(const Segment& segment);

    /// Shifts and solutions for the components of a segment.
    ///
    /// @param segment     at least one component
    /// @param firstShift  leftmost shift, sites
    /// @param numShifts   shifts from there
    /// @param prune       leave out states that are dearer than one of the same solution further left
    ShiftPlaces shift(const Segment& segment, int32_t firstShift, int64_t numShifts, bool prune);

    /// Segments that each kernel has taken so far.
    struct Taken {
        int64_t grid = 0;
        int64_t fullGrid = 0;
        int64_t shift = 0;
        int64_t fullShift = 0;
    };

    /// Of this object.
    const Taken& taken() const { return m_taken; }

private:
    /// The last segment that touched a net.
    struct Mark {
        int32_t segment = 0; ///< its number, counted in m_gathered
        int32_t touched = 0; ///< index of the net in m_touched
    };

    /// A net that the segment in hand touches.
    struct Touched {
        int32_t rightmost = -1; ///< index of its rightmost component in the segment, -1 once it is entered
        int32_t rightEnd = -1;  ///< right end of its fixed range, -1 if it has none
    };

    /// The solution that a component has, as the only one of its cell.
    struct Chosen {
        int32_t stitches = 0;
        int32_t gap = 0; ///< to its left neighbour, sites
        PairGaps gaps;
    };

    /// The library cell of a component.
    const Cell& cellOf(const Component& comp) const;

    /// Fills m_segment: the segment's components and what their nets pull them to.
    void gather(const Segment& segment);

    /// Fills m_gapsToLeft and m_stitches for all solutions of the cells.
    void gatherSolutions();

    /// Fills m_gapsToLeft and m_stitches for the solution that each component has.
    void gatherChosen();

    /// Fills the left ends of m_segment, and m_touched.
    void gatherLeftEnds(const Segment& segment);

    /// Fills the right ends of m_segment from m_touched.
    void gatherRightEnds();

    /// Solves what was gathered, by the kernel that takes its numbers.
    GridPlaces solveGrid(int32_t unreached, bool placesWaiting);

    const Design& m_design;
    int32_t m_siteWidth; ///< DBU
    float m_weight;
    int32_t m_numSolutions; ///< most of any cell
    PlacementMirror m_mirror;
    GapCache m_gaps;
    PairCostCache m_pairCosts;
    TermTable m_terms;
    GridKernel m_grid;
    FullGridKernel m_fullGrid;
    ColourKernel m_colouring;
    ShiftKernel m_shifts;
    FullShiftKernel m_fullShifts;
    Taken m_taken;

    int32_t m_gathered = 0;    ///< segments gathered so far
    std::vector<Mark> m_marks; ///< [net]
    std::vector<Touched> m_touched;
    SegmentData m_segment;
    std::vector<const PairGaps*> m_gapsToLeft;        ///< [component]
    std::vector<std::span<const int32_t>> m_stitches; ///< [component][solution]
    std::vector<PairCosts> m_costs;                   ///< [component - 1]
    std::vector<Chosen> m_chosen;                     ///< [component]
    std::vector<int32_t> m_leftEnds;                  ///< [component] sites
};

} // namespace vireloce
