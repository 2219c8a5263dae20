// SPDX-License-Identifier: BSD-3-Clause
// Colouring costs of neighbouring cells.
#pragma once

#include <cstdint>

#include "legalizer/cellPairCache.h"
#include "legalizer/colourKernel.h"
#include "legalizer/pairGaps.h"

namespace vireloce {

/// PairCosts of the pairs of cells that were asked for, kept for the next time: what
/// SegLegalizer::getEdgeCost_TPL() says of them.
///
/// It is valid as long as the library and its spacing table stay as they are.
class PairCostCache {
public:
    /// @param library  not owned
    /// @param gaps     of the library, not owned
    /// @param weight   cost of a site
    PairCostCache(const LUTable& library, GapCache& gaps, float weight);

    /// Costs of two cells by their index in LUTable::cells.
    ///
    /// @return its array is valid as long as the cache
    PairCosts between(int32_t leftCell, int32_t rightCell);

private:
    /// Works out the costs of two cells.
    const int32_t* make(int32_t leftCell, int32_t rightCell);

    const LUTable& m_library;
    GapCache& m_gaps;
    float m_weight;
    CellPairCache<int32_t> m_costs; ///< the arrays alone: one look into memory less
};

} // namespace vireloce
