// SPDX-License-Identifier: BSD-3-Clause
// The numbers that the set-up reports, as values.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vireloce {

/// What the set-up counts.
struct SetUpFigures {
    size_t cellTypes = 0;
    size_t tableEntries = 0; ///< of the spacing table
    size_t nets = 0;         ///< of two members and more
    size_t rows = 0;
    size_t segments = 0;
    size_t components = 0;
    size_t macros = 0;
    int32_t maxSolutions = 0;     ///< of a cell, -1 without cells
    int32_t maxSites = 0;         ///< of a segment, the smallest integer without segments
    int32_t maxComponents = 0;    ///< in a segment, the smallest integer without segments
    int64_t hpwl = 0;             ///< wirelength before the placement, DBU
    int32_t stitchLowerBound = 0; ///< sum over the components of the fewest stitches of their cells

    /// Whether all figures are equal.
    bool operator==(const SetUpFigures&) const = default;
};

} // namespace vireloce
