// SPDX-License-Identifier: BSD-3-Clause
// The moves: each looks at the placement, and proposes changes that make the objective smaller.
#pragma once

#include <cstdint>
#include <vector>

#include "refine/improve.h"
#include "refine/placement.h"
#include "refine/window.h"

namespace refine {

/// The cells of a row between two that stay.
struct Stretch {
    int32_t row = 0;
    int32_t left = -1;  ///< cell, -1 for the end of the row
    int32_t right = -1; ///< cell, -1 for the end of the row
    size_t count = 0;   ///< cells between them
};

/// Changes that belong together.
struct Proposal {
    int64_t gain = 0; ///< what the objective falls by; none is proposed if it is not positive
    std::vector<Change> changes{};
    std::vector<Stretch> stretches{}; ///< where the changed cells stand then
};

/// How far a search goes.
struct Limits {
    int32_t rows = 5;   ///< rows that a cell is tried in, on each side of its best ones
    int32_t slots = 3;  ///< places in a row
    int32_t beside = 3; ///< cells on each side of a place that make room
    int32_t sites = 32; ///< of a cell's window
};

/// Searches for moves. One for each thread: it only reads the placement.
class Mover {
public:
    Mover(const Placement& placement, const Options& options) : m_at(placement), m_window(placement, options)
    {
    }

    /// Cells side by side in their order, by ranks in a row. All are in one run.
    void arrange(int32_t row, size_t first, size_t last, int32_t sites, Proposal& result);

    /// Some neighbours in the best of all orders.
    void reorder(int32_t row, size_t first, size_t last, Proposal& result);

    /// A cell to where its nets want it, and its neighbours there make room.
    void insert(int32_t index, const Limits& limits, Proposal& result);

    /// A cell that is in no row into one, near an x, whatever it costs.
    void settle(int32_t index, int32_t row, int32_t x, const Limits& limits, Proposal& result);

    /// Whether a proposal that was made before other changes can be carried out still.
    ///
    /// @param since  when it was made
    bool isPossible(const Proposal& proposal, uint32_t since) const;

    /// What the objective falls by if a proposal is carried out now.
    int64_t gainOf(const Proposal& proposal);

    /// A cell and one near where its nets want it change places; neighbours make room on both sides.
    void swap(int32_t index, const Limits& limits, Proposal& result);

private:
    struct Pull {
        Box outside;
        int32_t weight;
        const Reach* reach;
    };
    using Pulls = std::vector<Pull>;
    /// The nets of a cell without it.
    ///
    /// @param without  nets of this cell are left out, too; -1 for none
    void gather(int32_t index, int32_t without, Pulls& pulls);
    void gather(int32_t index) { gather(index, -1, m_pulls); }
    int64_t heightCost(const Pulls& pulls, int32_t row) const;
    int64_t heightCost(int32_t row) const { return heightCost(m_pulls, row); }
    int64_t lengthCost(const Pulls& pulls, int32_t x, bool mirrored) const;
    int64_t lengthCost(int32_t x, bool mirrored) const { return lengthCost(m_pulls, x, mirrored); }
    WindowFrame takeRanks(int32_t row, size_t first, size_t last);
    void solve(const WindowFrame& frame, int32_t sites, Proposal& result);
    Range bestY(int32_t row);
    Range middleOfBends(int32_t none);
    void trySwap(int32_t index, int32_t otherIndex, const Limits& limits, Proposal& result);
    bool takeBeside(int32_t row, size_t rank, int32_t instead, const Limits& limits, WindowFrame& frame);
    /// What a cell costs at least with its left edge from one x to another, in either way to lie.
    int64_t leastBetween(int32_t low, int32_t high) const;
    /// The x that cost least.
    Range bestX(bool mirrored);
    void insertInRow(int32_t index, int32_t row, int64_t budget, const Limits& limits, Proposal& result);
    void tryPlace(int32_t index, int32_t row, size_t rank, int32_t target, int64_t budget,
                  const Limits& limits, Proposal& result);
    const Run* runNear(int32_t row, int32_t x, int32_t fence) const;
    /// Where the cells of a window may be at most, units.
    Range roomOf(const WindowFrame& frame) const;
    WindowFrame frameOf(int32_t row, const Run& run, size_t first, size_t last, int32_t without) const;
    Stretch stretchOf(const WindowFrame& frame) const;

    const Placement& m_at;
    WindowSolver m_window;
    Pulls m_pulls;
    Range m_best[2]; ///< [mirrored] x that cost least
    Pulls m_otherPulls;
    std::vector<Change> m_assumed;
    std::vector<std::pair<int32_t, int32_t>> m_bends;
    std::vector<int32_t> m_cells;
    std::vector<int32_t> m_order;
    std::vector<int32_t> m_targets;
};

} // namespace refine
