// SPDX-License-Identifier: BSD-3-Clause
// Colouring costs of neighbouring cells.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <vector>

#include "legalizer/colourKernel.h"
#include "legalizer/spacing.h"

class Design;

namespace vireloce {

/// PairCosts of the pairs of cells that were asked for, kept for the next time: what
/// SegLegalizer::getEdgeCost_TPL() says of them.
///
/// It is valid as long as the design's library, its spacing table, SITE_WIDTH and WEIGHT_WRLENG stay as they
/// are.
class PairCostCache {
public:
    /// @param design    not owned
    /// @param spacings  of the design, not owned
    PairCostCache(const Design& design, SpacingCache& spacings);

    /// Costs of two cells by their index in LUTable::cells.
    ///
    /// @return its array is valid as long as the cache
    PairCosts between(int32_t leftCell, int32_t rightCell);

private:
    const int32_t* make(int32_t leftCell, int32_t rightCell);

    const Design& m_design;
    SpacingCache& m_spacings;
    size_t m_numCells;
    std::vector<const int32_t*> m_costs;           ///< [left cell][right cell] nullptr until asked for
    std::pmr::monotonic_buffer_resource m_storage; ///< of the arrays; never moves them
};

} // namespace vireloce
