// SPDX-License-Identifier: BSD-3-Clause
// Which things along a row come near each other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace kit::geometry {

/// What something takes of a row.
struct Span {
    int64_t from = 0;
    int64_t to =
        0; ///< beyond `from`; of a span without length, pairs with a gap of `reach` may be visited too
};

/// Takes the indices of two spans. @return false to end the sweep
using VisitPair = std::function<bool(size_t, size_t)>;

/// Visits every pair of spans of a row with a gap of less than `reach`, each once, the one further left
/// first.
///
/// Pairs that are no neighbours are found as well: a long span stays in view until its end is out of reach.
///
/// @param spans  ascending `from`
/// @param reach  0 for those that overlap
/// @return false if a visit ended the sweep
/// Cost: O(spans + pairs within reach)
bool sweepRow(std::span<const Span> spans, int64_t reach, const VisitPair& visit);

/// As sweepRow() for the pairs of a span of one row with a span of another; indices in this order.
bool sweepRows(std::span<const Span> first, std::span<const Span> second, int64_t reach,
               const VisitPair& visit);

} // namespace kit::geometry
