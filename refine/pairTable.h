// SPDX-License-Identifier: BSD-3-Clause
// What two neighbours need between them, by kinds: of their states only a few differ for each other.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "refine/model.h"

namespace refine {

/// Gaps of all pairs of kinds that may move. For a given kind on its right, the states of a kind fall into a
/// few classes of equal gaps, and so do those of a kind for one on its left.
class PairTable {
public:
    static constexpr int32_t NONE = 1 << 20; ///< sites: a gap that no run has

    /// Two kinds side by side.
    struct Pair {
        int32_t leftClasses = 0;                ///< of states of the left kind
        int32_t rightClasses = 0;               ///< of states of the right kind
        const uint16_t* leftClassOf = nullptr;  ///< [state of the left kind]
        const uint16_t* rightClassOf = nullptr; ///< [state of the right kind]
        const int32_t* gaps = nullptr;          ///< [left class * rightClasses + right class] sites
    };

    /// @param model  must outlive this; kinds of its fixed cells are left out
    explicit PairTable(const Model& model);

    /// The pair of two kinds that may move.
    Pair of(int32_t left, int32_t right) const;

    /// Units from the right edge of a cell to the left edge of the next one, at least. It is larger than
    /// Model::gaps says where the right cell is so narrow that the cell behind it might be too close to the
    /// left one.
    int32_t between(int32_t leftKind, int32_t leftState, int32_t rightKind, int32_t rightState) const
    {
        const int32_t gap = m_gaps[viewOf(leftKind, leftState).right * m_views +
                                   static_cast<size_t>(viewOf(rightKind, rightState).left)];
        return std::max(gap, m_leastBefore[static_cast<size_t>(rightKind)]);
    }

    /// No two cells must be further apart by Model::gaps, units.
    int32_t largest() const { return m_largest; }

private:
    struct View {
        int32_t left;
        size_t right;
    };
    View viewOf(int32_t kind, int32_t state) const
    {
        const State& one =
            m_model.states[static_cast<size_t>(m_model.kinds[static_cast<size_t>(kind)].stateBegin + state)];
        return {one.left, static_cast<size_t>(one.right)};
    }
    void addPair(int32_t left, int32_t right);

    /// A pair in the flat arrays.
    struct Entry {
        uint32_t classes = 0; ///< in m_classes: of the left kind's states, then of the right kind's
        uint32_t gaps = 0;    ///< in m_sites
        uint16_t leftClasses = 0;
        uint16_t rightClasses = 0;
    };

    const Model& m_model;
    size_t m_views;
    const int32_t* m_gaps;
    int32_t m_largest = 0;
    std::vector<int32_t> m_leastBefore; ///< [kind] gap before such a cell at least, units
    std::vector<int32_t> m_number;      ///< [kind] among those that may move, -1 for others
    size_t m_count = 0;                 ///< of those
    std::vector<Entry> m_entries;       ///< [left number * m_count + right number]
    std::vector<uint16_t> m_classes;
    std::vector<int32_t> m_sites;
};

} // namespace refine
