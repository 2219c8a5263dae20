// SPDX-License-Identifier: BSD-3-Clause
// The cheapest colourings of a graph, exactly.
//
// The search is a branch and bound that goes through the parts in a fixed order, breadth first. Partial
// colourings that agree on the frontier, which is the parts that those to come still depend on, go on as one.
// A cell is long and narrow, so the frontier is short and there are few of them. Those that would cost more
// than the bound are cut off. The bound is 0 at first and rises until there is a colouring: so the first one
// found is proved cheapest.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "kit/engines/color/parts.h"

namespace kit::color {

/// Price of a conflict that is left, in stitches: more than all stitches of a cell together.
inline constexpr uint32_t CONFLICT_COST = 10'000;

/// Masks of some parts, 0 to 2 each.
using Masks = std::vector<uint8_t>;

/// A colouring that nothing cheaper has the like of at the cell's sides. Among those of equal cost it has the
/// fewest parts near rails on mask 0.
struct Colouring {
    uint32_t cost = 0; ///< stitches, and CONFLICT_COST for each conflict left
    Masks sides;       ///< masks of the parts at the cell's sides, ascending by their indices
    Masks masks;       ///< [part]
};

/// Why a search has no result.
enum class Outcome : uint8_t {
    FOUND,
    NONE,     ///< there is no colouring
    TOO_LARGE ///< more partial colourings than the limit
};

struct Colourings {
    Outcome outcome = Outcome::FOUND;
    std::vector<Colouring> all; ///< by cost, then by sides; their sides differ
};

/// How much a search may do and yield.
struct Limits {
    size_t states = 4'000'000; ///< partial colourings in memory
    size_t open = 30'000;      ///< partial colourings that differ at the sides, at one part
    size_t results = 2'000;    ///< colourings of a cell before the choice of the best
    uint32_t moreStitches = 2; ///< colourings with so many stitches more than the fewest are wanted as well
};

/// Whether some parts alone can be coloured.
///
/// @param wanted  [part] whether it is among them
/// @return nothing if the search is too large
std::optional<bool> isColourable(const Graph& graph, const std::vector<bool>& wanted, const Rules& rules,
                                 const Limits& limits);

/// Colourings of a cell for every way in which its sides may look, from the fewest stitches upwards.
///
/// If there are more than the limits allow, evenly spread ones of them are left, the cheapest among them.
Colourings colouringsOf(const Graph& graph, const Rules& rules, const Limits& limits);

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
/// order.
///
/// @param all     by cost
/// @param costOf  gives the cost of one
template <typename Item, typename CostOf>
void thinOut(std::vector<Item>& all, size_t most, CostOf costOf)
{
    if (all.size() <= most) {
        return;
    }
    size_t kept = 0; // of the costs that have room as a whole
    for (size_t i = 1; i <= most; ++i) {
        kept = costOf(all[i]) > costOf(all[i - 1]) ? i : kept;
    }
    const size_t rest = all.size() - kept;
    const size_t room = most - kept;
    for (size_t i = 0; i < room; ++i) {
        const size_t from = kept + i * rest / room;
        if (from != kept + i) {
            all[kept + i] = std::move(all[from]);
        }
    }
    all.resize(most);
}

/// As thinOut() by the costs of colourings.
inline void thinOut(std::vector<Colouring>& all, size_t most)
{
    thinOut(all, most, [](const Colouring& colouring) { return colouring.cost; });
}

} // namespace kit::color
