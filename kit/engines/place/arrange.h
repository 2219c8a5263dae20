// SPDX-License-Identifier: BSD-3-Clause
// Cells of a row on its sites, none too close to another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "kit/engines/place/orderSearch.h"
#include "kit/engines/place/rowProblem.h"

namespace kit::place {

/// What came out.
struct RowAnswer {
    std::optional<std::vector<Spot>> spots{}; ///< [cell] none if there is no arrangement, or none was found
    bool gaveUp = false;                      ///< a limit ended the search: there may be one all the same
    int64_t labels = 0;                       ///< partial arrangements that were looked at
};

/// Puts all cells on free sites.
///
/// In the given order an arrangement of least cost is found if there is one, by a dynamic program over places
/// and ways. A newcomer gets the best of the ranks nearest to its own that are possible. If that fails,
/// orders are tried from the nearest to the given one on, by the sum of the ranks that cells lose or gain,
/// with whatever cannot succeed left out. That is done for at most EVERY_ORDER cells; with more it is given
/// up.
///
/// Only if cells further apart than neighbours come into each other's way, which takes distances beyond the
/// narrowest cell's width, the cost may be more than the least, and more than EVERY_ORDER cells may be given
/// up though their order has an arrangement.
///
/// @param mostLabels  partial arrangements that are looked at in search of an order; 0: the given one alone
RowAnswer arrange(const RowProblem& problem, int64_t mostLabels);

} // namespace kit::place
