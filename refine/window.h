// SPDX-License-Identifier: BSD-3-Clause
// A few cells of a run, solved together: places, mirroring and colourings at once, all others as they are.
//
// With a fixed order the wirelength of a row is a sum of costs of single cells: of the cells of a net only
// the first and the last can stretch it.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "refine/improve.h"
#include "refine/orderedProgram.h"
#include "refine/placement.h"

namespace refine {

/// The cells of a window and what is beside it.
struct WindowFrame {
    int32_t row = 0;
    const Run* run = nullptr;
    int32_t left = -1;  ///< the cell on the left of the window, -1 for none
    int32_t right = -1; ///< the cell on the right of it, -1 for none
};

/// Solves windows. One for each thread: it only reads the placement.
class WindowSolver {
public:
    WindowSolver(const Placement& placement, const Options& options);

    /// Takes cells to be elsewhere than they are, until the next call.
    void assume(std::span<const Change> changes);

    /// What the objective falls by if cells go where they are assumed to be.
    ///
    /// @param cells  all that are assumed elsewhere
    int64_t gainOf(std::span<const int32_t> cells);

    /// Takes the cells that may move; all but one of them stand in the row.
    ///
    /// @param row  that they are to stand in
    void take(std::span<const int32_t> cells, int32_t row);

    /// Finds the best arrangement of those that were taken.
    ///
    /// @param order    which are beside each other from the left, as indices of the cells that were taken
    /// @param targets  [cell taken] x near which it is to be, units
    /// @param sites    most sites of a cell's window
    /// @param worth    gains up to this one are of no use
    /// @return what the objective falls by; IMPOSSIBLE if there is no arrangement, or if it is known early
    /// that
    ///         the gain is of no use
    int64_t solve(const WindowFrame& frame, std::span<const int32_t> order, std::span<const int32_t> targets,
                  int32_t sites, int64_t worth);

    /// The arrangement that the last solve() gave a gain for.
    void changes(std::vector<Change>& result);

    static constexpr int64_t IMPOSSIBLE = std::numeric_limits<int64_t>::min();

private:
    struct NetUse {
        int32_t net = 0;
        int32_t weight = 0;
        Box outside;        ///< of the pins that do not move
        int32_t first = -1; ///< rank of the first cell on it
        int32_t last = -1;  ///< rank of the last one
    };
    struct TermUse {
        int32_t net = 0; ///< in m_nets
        const Reach* reach = nullptr;
    };
    Box boxOf(int32_t net, bool withTaken) const;
    void addStart(int32_t index);
    int64_t displacementOf(int32_t index, const Change& place) const;
    Change placeOf(int32_t index) const;
    int32_t stitchesOf(int32_t kind, int32_t state) const { return m_at.model().state(kind, state).stitches; }
    bool closeFarPlaces(std::span<const int32_t> order, int32_t window);
    /// The windows of the cells, and what they cost.
    struct Costs {
        int64_t least = 0;      ///< of all cells, wherever they stand, in their windows
        int64_t leastPrice = 0; ///< of their stitches
        int64_t largest = 0;    ///< no arrangement costs more than the least and this
    };
    const Cell& cellAt(size_t rank) const { return m_at.cell(m_cells[static_cast<size_t>(m_order[rank])]); }
    int64_t rankNets();
    Costs addCosts(std::span<const int32_t> targets, int32_t begin, int32_t slack, int32_t window);
    std::span<const TermUse> termsAt(size_t rank) const
    {
        const auto taken = static_cast<size_t>(m_order[rank]);
        return {m_terms.data() + m_termBegin[taken], m_terms.data() + m_termBegin[taken + 1]};
    }
    void addProfile(size_t rank, bool mirrored, int32_t x, int32_t sites, int32_t reference);
    /// What is beside the window on one side.
    struct Side {
        int32_t classes = 1;               ///< of the states of the cell at that end
        int32_t kind = -1;                 ///< of the neighbour; -1 for none, or one that stays
        const uint16_t* classOf = nullptr; ///< [state]
    };
    Side sideOf(const WindowFrame& frame, bool onLeft, int32_t index);
    /// Classes of the states of a cell for its neighbours.
    struct Classes {
        const uint16_t* left;
        const uint16_t* right;
    };
    int32_t sameOr(int32_t state, int32_t index, const Classes& classes) const;
    /// Options of a kind between two others.
    struct Known {
        uint64_t key = 0; ///< of the three kinds
        uint32_t begin = 0;
        uint32_t end = 0;
    };
    void appendOptions(int32_t kind, const uint16_t* leftClassOf, int32_t leftClasses,
                       const uint16_t* rightClassOf, int32_t rightClasses,
                       std::vector<ProgramOption>& options);
    void addOptions(std::span<const int32_t> order, const Side& left, const Side& right);

    const Placement& m_at;
    const Options& m_options;
    int64_t m_stitchPrice; ///< in parts
    std::vector<Change> m_assumed;
    OrderedProgram m_program;
    std::vector<uint32_t> m_cellMark; ///< [cell] m_time if it was taken
    std::vector<uint64_t> m_netMark;  ///< [net] m_time and index in m_nets
    uint32_t m_time = 0;
    std::vector<int32_t> m_cells; ///< taken
    int32_t m_row = 0;
    std::vector<NetUse> m_nets;
    std::vector<TermUse> m_terms;    ///< of all cells taken
    std::vector<size_t> m_termBegin; ///< [cell taken]
    int64_t m_before = 0;            ///< cost of what may change
    int64_t m_fixedAfter = 0;        ///< the part of it that is known before solve()
    int64_t m_base[2] = {};          ///< of the profiles of a cell, by mirrored
    std::vector<int32_t> m_bends;
    std::vector<uint16_t> m_classes[2]; ///< [state] of a cell beside one that stays
    std::vector<uint16_t> m_oneClass;   ///< [state] 0
    struct KindFacts {
        bool lies[2] = {false, false}; ///< [mirrored] whether it may lie so
        int32_t leastPrice = 0;        ///< of its stitches
        int32_t mostPrice = 0;
        int32_t sites = 0; ///< width
    };
    std::vector<KindFacts> m_facts;   ///< [kind]
    std::vector<Classes> m_classesOf; ///< [rank]
    std::vector<Known> m_known;       ///< by a hash of the key
    std::vector<ProgramOption> m_knownOptions;
    size_t m_knownCount = 0;
    std::vector<int32_t> m_best; ///< [left class, right class, mirrored] option
    std::vector<ProgramSpot> m_spots;
    std::vector<int32_t> m_order;
    const Run* m_run = nullptr;
};

} // namespace refine
