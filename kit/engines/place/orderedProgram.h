// SPDX-License-Identifier: BSD-3-Clause
// Cells of a row in a given order.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kit/engines/place/rowProblem.h"
#include "kit/engines/place/rowSites.h"

namespace kit::place {

/// An arrangement and what it costs.
struct OrderedAnswer {
    std::vector<Spot> spots; ///< [cell]
    int64_t cost = 0;
};

/// The arrangement of least cost of cells in an order, with the spacings of neighbours alone; none if there
/// is none.
std::optional<OrderedAnswer> cheapestInOrder(const RowProblem& problem, RowDistances& apart,
                                             const RowSites& sites, const Order& order);

/// Ranks among cells in an order that one more can have, ascending, with the spacings of neighbours alone.
std::vector<size_t> possibleRanks(const RowProblem& problem, RowDistances& apart, const RowSites& sites,
                                  const Order& order, size_t newcomer);

} // namespace kit::place
