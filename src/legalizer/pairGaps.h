// SPDX-License-Identifier: BSD-3-Clause
// Gaps between neighbouring cells, as the segment solver's kernels read them.
#pragma once

#include <cstdint>

#include "legalizer/cellPairCache.h"

class LUTable;

namespace vireloce {

/// The sites that must be free between two neighbours, for every pair of their solutions. Views into a
/// GapCache or into arrays of the caller.
///
/// Solutions of the right cell that need the same gaps to all solutions of the left one form a gap class.
struct PairGaps {
    int32_t least = 0;                ///< least of all gaps, sites
    int32_t most = 0;                 ///< most of all gaps, sites
    int32_t numClasses = 0;           ///< gap classes
    const int32_t* classOf = nullptr; ///< [right solution] its gap class
    const int32_t* gaps = nullptr;    ///< [left solution][gap class] sites

    /// Gap for a pair of solutions, sites.
    int32_t between(int32_t left, int32_t right) const { return gaps[left * numClasses + classOf[right]]; }
};

/// PairGaps of the pairs of cells that were asked for, kept for the next time.
///
/// It is valid as long as the library and its spacing table stay as they are.
class GapCache {
public:
    /// @param library    not owned
    /// @param siteWidth  DBU
    GapCache(const LUTable& library, int32_t siteWidth);

    /// Gaps of two cells by their index in LUTable::cells.
    ///
    /// @return valid as long as the cache
    const PairGaps& between(int32_t leftCell, int32_t rightCell);

private:
    /// Works out the gaps of two cells.
    const PairGaps* make(int32_t leftCell, int32_t rightCell);

    const LUTable& m_library;
    int32_t m_siteWidth;
    CellPairCache<PairGaps> m_pairs;
};

} // namespace vireloce
