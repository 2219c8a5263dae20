// SPDX-License-Identifier: BSD-3-Clause
// Spacings of neighbouring cells, as the segment solver's kernels read them.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <vector>

class Design;

namespace vireloce {

/// The sites that must be between two neighbours, for every pair of their solutions. Views into a
/// SpacingCache or into arrays of the caller.
///
/// Solutions of the right cell that every solution of the left one sees alike share a column.
struct PairSpacing {
    int32_t least = 0;                 ///< least of all sites
    int32_t most = 0;                  ///< most of all sites
    int32_t numColumns = 0;            ///< distinct columns
    const int32_t* columnOf = nullptr; ///< [right solution] its column
    const int32_t* sites = nullptr;    ///< [left solution][column] sites

    /// Sites for a pair of solutions.
    int32_t between(int32_t left, int32_t right) const { return sites[left * numColumns + columnOf[right]]; }
};

/// PairSpacing of the pairs of cells that were asked for, kept for the next time.
///
/// It is valid as long as the design's library, its spacing table and SITE_WIDTH stay as they are.
class SpacingCache {
public:
    /// @param design  not owned
    explicit SpacingCache(const Design& design);

    /// Spacings of two cells by their index in LUTable::cells.
    ///
    /// @return valid as long as the cache
    const PairSpacing& between(int32_t leftCell, int32_t rightCell);

private:
    const PairSpacing* make(int32_t leftCell, int32_t rightCell);

    const Design& m_design;
    size_t m_numCells;
    std::vector<const PairSpacing*> m_pairs;       ///< [left cell][right cell] nullptr until asked for
    std::pmr::monotonic_buffer_resource m_storage; ///< of the pairs and their arrays; never moves them
};

} // namespace vireloce
