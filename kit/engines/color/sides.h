// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include "kit/engines/color/frontier.h"

namespace kit::color {

/// The cheapest colouring for every way in which the parts at a cell's sides may look, as far as it is within
/// a cost.
///
/// @param problem    of the parts
/// @param frontiers  after a search that reached `bound`
/// @param bound      no colouring may cost more; at least the least cost
/// @return by cost, then by sides; the masks of a colouring are by steps of the problem, its sides too
std::vector<Colouring> colouringsBySides(const Graph& graph, const Problem& problem,
                                         const Frontiers& frontiers, uint32_t bound, const Limits& limits);

} // namespace kit::color
