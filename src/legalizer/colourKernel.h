// SPDX-License-Identifier: BSD-3-Clause
// The colouring program over flat arrays.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vireloce {

/// Costs of two neighbours for every pair of their solutions.
struct PairCosts {
    const int32_t* costs = nullptr; ///< [left solution][right solution]
    int32_t numLeft = 0;            ///< solutions of the left one
    int32_t numRight = 0;           ///< solutions of the right one
};

/// The cheapest solutions of a row of components, as SegLegalizer::solveTPL_DP() finds them in its graph.
///
/// Values are enough. A solution can be reached from those of the left neighbour in their order, and of
/// equals the last wins. So its predecessor is the highest index whose value and cost add up to its own. The
/// start value is an upper bound: a way that costs more is dropped, and a solution to which no other way
/// leads has no predecessor. This holds for all costs, with sums that wrap around.
class ColourKernel {
public:
    /// Finds them.
    ///
    /// @param first  solutions of the first component
    /// @param pairs  [component - 1] costs of the components and their left neighbours
    /// @return [component] solution, -1 where the way does not lead: everywhere, or left of some component.
    ///         Valid until the next call.
    std::span<const int32_t> solve(int32_t first, std::span<const PairCosts> pairs);

private:
    /// Values of a component's solutions from those of its left neighbour.
    void relax(const PairCosts& pair, const int32_t* before, int32_t* out) const;

    /// The solution of the left neighbour that leads to a value, -1 if there is none.
    int32_t stepBefore(const PairCosts& pair, const int32_t* before, int32_t value, int32_t right) const;

    std::vector<int32_t> m_values; ///< of the solutions of all components, one after the other
    std::vector<int32_t> m_solutions;
};

} // namespace vireloce
