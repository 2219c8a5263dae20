// SPDX-License-Identifier: BSD-3-Clause
// Cells of a row in any order.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kit/engines/place/rowProblem.h"
#include "kit/engines/place/rowSites.h"

namespace kit::place {

/// Most cells of which every order is tried.
inline constexpr size_t EVERY_ORDER = 14;

/// An order in which cells fit.
struct FoundOrder {
    std::optional<std::vector<Spot>> spots{}; ///< [cell] as far to the left as they can be; none if none fits
    Order order{};
    bool gaveUp = false; ///< too many partial arrangements: there may be an order all the same
    int64_t labels = 0;  ///< partial arrangements that were looked at
};

/// Tries orders of up to EVERY_ORDER cells, those first whose cells lose and gain the fewest ranks.
///
/// @param mostLabels  partial arrangements after which it gives up
FoundOrder findOrder(const RowProblem& problem, RowDistances& apart, const RowSites& sites,
                     int64_t mostLabels);

} // namespace kit::place
