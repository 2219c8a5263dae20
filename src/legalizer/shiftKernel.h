// SPDX-License-Identifier: BSD-3-Clause
// The local shift program over flat arrays, for ordinary numbers.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "legalizer/layerStore.h"
#include "legalizer/shiftProblem.h"
#include "legalizer/siteCosts.h"

namespace vireloce {

/// The cheapest shifts and solutions, as the table of all states gives them (SegLegalizer::LocalShift).
///
/// Two neighbours that fit cost what the one costs plus what the other costs. So the left one's cost is added
/// to its state first, and a state of the right one takes the least such sum over the shifts that leave it
/// room: those up to some shift, hence a running minimum. Of equals the lowest solution of the left one wins,
/// then the lowest shift, which are found again on the way back. Only shifts to sites of the segment are
/// looked at.
class ShiftKernel {
public:
    /// @param ops          operations, not owned
    /// @param mostEntries  states at a time; no value of it changes a result
    explicit ShiftKernel(const ProfileOps& ops = bestProfileOps(), int64_t mostEntries = int64_t{5} << 25)
        : m_store(mostEntries), m_leftCosts(ops), m_costs(ops)
    {
    }

    /// Finds them.
    ///
    /// @return whether it could; if not, numbers are such that costs may be negative or sums leave 32 bits,
    /// or
    ///         two neighbours' states alone take more than the memory
    bool solve(const ShiftProblem& problem);

    /// [component] the result of the last solve() that returned true; empty if nothing fits.
    std::span<const ShiftPlace> places() const { return m_places; }

private:
    /// The sites of a component's left end that its shifts lead to.
    struct Window {
        int32_t first;
        int32_t count;
    };

    /// A state of a component.
    struct State {
        int32_t site; ///< index in its window
        int32_t solution;
    };

    /// Does the work of solve().
    bool findPath(const ShiftProblem& problem);

    /// Whether the numbers are ordinary ones.
    static bool fits(const ShiftProblem& problem);

    /// Finds the sites that shifts lead to. False if there is a component without.
    bool setWindows(const ShiftProblem& problem);

    /// Makes the states of a component from those of its left neighbour. False if there is no memory for
    /// them.
    bool makeLayer(const ShiftProblem& problem, size_t comp);

    /// Makes a component's states again if they went. False if there is no memory for them.
    bool makeAgain(const ShiftProblem& problem, size_t comp);

    /// Makes the costs of a component on the sites of its window.
    void makeCosts(const ShiftProblem& problem, size_t comp, SiteCosts& costs) const;

    /// Fills m_running for the left neighbour of a component: [left solution] INFINITE_COST as often as the
    /// component has shifts, then the least sum of a state and its cost up to every shift, then the last of
    /// them as often again.
    void fillRunning(const ShiftProblem& problem, size_t comp);

    /// Fills m_least for the solutions of a gap class.
    void fillLeast(const ShiftProblem& problem, size_t comp, int32_t gapClass);

    /// Writes m_places, none if nothing fits. False if there is no memory for it.
    bool traceBack(const ShiftProblem& problem);

    /// The first of the cheapest states of the last component; no solution if none is possible.
    State bestEnd(const ShiftProblem& problem);

    /// The left neighbour's state on the way to a component's. `wanted` is what it and its cost add up to.
    State stateBefore(const ShiftProblem& problem, size_t comp, State state, int32_t wanted);

    /// Index of the last site of the left neighbour, in its window, that leaves room for a component at the
    /// first site of its own. It grows by one with every site.
    int32_t lastSiteBefore(const ShiftProblem& problem, size_t comp, int32_t gap) const
    {
        return m_windows[comp].first - m_windows[comp - 1].first - problem.segment.width[comp - 1] - gap;
    }

    LayerStore m_store; ///< [component][solution][site of its window] least costs up to a component
    std::vector<Window> m_windows;
    SiteCosts m_leftCosts;          ///< of the left neighbour
    SiteCosts m_costs;              ///< of the component in hand
    std::vector<int32_t> m_running; ///< [left solution] least sum up to a site; see fillRunning()
    std::vector<int32_t> m_least;   ///< [site] least sum that leaves room
    std::vector<ShiftPlace> m_places;
};

} // namespace vireloce
