// SPDX-License-Identifier: BSD-3-Clause
// The local shift program over flat arrays.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "legalizer/segmentData.h"
#include "legalizer/spacing.h"
#include "legalizer/termTable.h"

namespace vireloce {

/// What a local shift is to choose from, beside the segment. Not owned.
struct ShiftProblem {
    const SegmentData& segment;
    std::span<const PairSpacing* const> behind; ///< [component] spacings to the left one, the first unused
    std::span<const std::span<const int32_t>> stitches; ///< [component][solution]
    std::span<const int32_t> sites;                     ///< [component] left end before the shift, sites
    const TermTable& terms;                             ///< up to the segment's number of sites at least
    int32_t firstShift;                                 ///< leftmost shift of a component, sites
    int32_t numShifts; ///< shifts from there, each a site further to the right
    bool prune;        ///< leave out states that are dearer than one of the same colour further left
};

/// A component's shift, as an index from the leftmost, and its solution.
struct ShiftPlace {
    int32_t shift = -1;
    int32_t solution = -1;
};

/// The cheapest shifts and solutions, as the table of all states gives them (SegLegalizer::LocalShift).
///
/// Two neighbours that fit cost what the one costs plus what the other costs. So the left one's cost is added
/// to its state first, and a state of the right one takes the least such sum over the shifts that leave it
/// room: those up to some shift, hence a running minimum. Of equals the lowest solution of the left one wins,
/// then the lowest shift, which are found again on the way back.
class ShiftKernel {
public:
    /// Finds them.
    ///
    /// @return whether it could; if not, numbers are such that costs may be negative, or sums may leave 32
    ///         bits or depend on their order
    bool solve(const ShiftProblem& problem);

    /// [component] the result of the last solve() that returned true; empty if nothing fits.
    std::span<const ShiftPlace> places() const { return m_places; }

private:
    static bool isSane(const ShiftProblem& problem);
    void extend(const ShiftProblem& problem, size_t comp);
    void fillSiteCosts(const ShiftProblem& problem, size_t comp, std::vector<int32_t>& costs) const;
    void fillSums(const ShiftProblem& problem, size_t left);
    void fillLeast(const ShiftProblem& problem, size_t comp, int32_t column);
    ShiftPlace bestEnd(const ShiftProblem& problem) const;
    ShiftPlace stepBefore(const ShiftProblem& problem, size_t comp, ShiftPlace place);

    /// Index of the last shift of the left neighbour that leaves room for a component at its shift 0; the
    /// same number more for every shift more.
    static int32_t lastShiftBefore(const ShiftProblem& problem, size_t comp, int32_t sites)
    {
        return problem.sites[comp] - problem.sites[comp - 1] - problem.segment.width[comp - 1] - sites;
    }

    const int32_t* statesOf(size_t comp) const { return m_states.data() + m_begins[comp]; }

    std::vector<size_t> m_begins;   ///< [component] first of its states
    std::vector<int32_t> m_states;  ///< least costs up to a component, by solution, then shift
    std::vector<int32_t> m_left;    ///< [shift] as m_costs, of the left neighbour
    std::vector<int32_t> m_costs;   ///< [shift] cost without stitches, INFINITE_COST outside of the segment
    std::vector<int32_t> m_sums;    ///< [left solution][shift] state and cost of the left neighbour
    std::vector<int32_t> m_running; ///< [left solution][3 * shifts] least sum up to a shift; see fillSums()
    std::vector<int32_t> m_least;   ///< [shift] least sum that leaves room
    std::vector<ShiftPlace> m_places;
};

} // namespace vireloce
