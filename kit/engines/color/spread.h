// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include "kit/engines/color/search.h"

namespace kit::color {

/// The colourings of a cell that its file gets.
///
/// Three quarters of the places go to colourings of the least cost, the others to ones with more stitches,
/// the cheaper first, as far as there are; what either leaves free the other gets. Among equally good ones
/// each place goes to the one whose sides differ most from the chosen ones, counted in parts, from the one
/// that is most like it: so the placer can choose. Of equals the one that comes first is taken.
///
/// @param all   by cost, then by sides
/// @param most  places, at least 1
/// @return in the order of `all`
std::vector<Colouring> chosen(const std::vector<Colouring>& all, size_t most);

/// At most so many of them: all of the cheapest that have room together, the rest evenly spread over their
/// order. @param all  by cost
void thinOut(std::vector<Colouring>& all, size_t most);

} // namespace kit::color
