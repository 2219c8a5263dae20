// SPDX-License-Identifier: BSD-3-Clause
// The local shift program over flat arrays, for any numbers.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "legalizer/layerStore.h"
#include "legalizer/shiftProblem.h"
#include "legalizer/siteCosts.h"
#include "qlib/exact.h"

namespace vireloce {

/// The cheapest shifts and solutions, as the table of all states gives them (SegLegalizer::LocalShift).
///
/// Every state is gone on from to every other, with sums modulo 2^32. A step that does not fit costs
/// INFINITE_COST: on top of a negative cost it may win all the same. Of equals the lowest solution of the
/// left one wins, then the lowest shift, which are found again on the way back.
class FullShiftKernel {
public:
    /// @param ops          operations, not owned
    /// @param mostEntries  states at a time; no value of it changes a result
    explicit FullShiftKernel(const ProfileOps& ops = bestProfileOps(), int64_t mostEntries = int64_t{5} << 25)
        : m_store(mostEntries), m_leftCosts(ops), m_costs(ops)
    {
    }

    /// Finds them.
    ///
    /// @pre  at least one component (assert)
    /// @return whether two neighbours' states fit into the memory
    bool solve(const ShiftProblem& problem);

    /// [component] the result of the last solve() that returned true; empty if nothing fits.
    std::span<const ShiftPlace> places() const { return m_places; }

private:
    /// A state of a component.
    struct State {
        int32_t shift; ///< index from the leftmost
        int32_t solution;
    };

    /// Steps from a state of the left neighbour to those of a component in a solution.
    struct Step {
        int32_t leftSite;  ///< of the neighbour's left end
        int32_t leftWidth; ///< sites
        int32_t leftCost;
        int32_t gap;          ///< sites
        int32_t site;         ///< of the component's left end at the first shift
        int32_t width;        ///< sites
        int32_t numSites;     ///< of the segment
        const int32_t* costs; ///< [shift] of the component

        /// Cost of the step to a shift, as SegLegalizer::getLdpCost() has it, modulo 2^32.
        int32_t cost(int32_t to) const
        {
            const bool fits = (leftSite >= 0) & (site + to + width <= numSites) &
                              (site + to - leftSite - leftWidth >= gap); // no branches, for vectors
            return fits ? leftCost + costs[to] : INFINITE_COST;
        }
    };

    /// Does the work of solve().
    bool findPath(const ShiftProblem& problem);

    /// Makes the states of a component from those of its left neighbour. False if there is no memory for
    /// them.
    bool makeLayer(const ShiftProblem& problem, size_t comp);

    /// Makes a component's states again if they went. False if there is no memory for them.
    bool makeAgain(const ShiftProblem& problem, size_t comp);

    /// Makes the costs of a component at all shifts.
    void makeCosts(const ShiftProblem& problem, size_t comp, SiteCosts& costs) const;

    /// Goes on from the left neighbour's states in a solution to those of a component.
    void extend(const ShiftProblem& problem, size_t comp, size_t left, size_t right, int32_t* out);

    /// The first solution of a component that needs the same gaps and costs the same as one: their states are
    /// equal.
    size_t firstLike(const ShiftProblem& problem, size_t comp, size_t solution) const;

    /// The steps from a state of the left neighbour to those of a component.
    Step stepFrom(const ShiftProblem& problem, size_t comp, size_t left, size_t right, int32_t from) const;

    /// Writes m_places, none if nothing fits. False if there is no memory for it.
    bool traceBack(const ShiftProblem& problem);

    /// The left neighbour's state on the way to a component's of a value.
    State stateBefore(const ShiftProblem& problem, size_t comp, State state, int32_t value);

    /// [shift] states of a component in a solution, which are there.
    const int32_t* states(size_t comp, size_t solution)
    {
        return m_store.at(comp) + solution * static_cast<size_t>(m_numShifts);
    }

    int32_t m_numShifts = 0;
    LayerStore m_store;    ///< [component][solution][shift] least costs up to a component
    SiteCosts m_leftCosts; ///< of the left neighbour
    SiteCosts m_costs;     ///< of the component in hand
    std::vector<ShiftPlace> m_places;
};

} // namespace vireloce
