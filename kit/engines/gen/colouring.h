// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

#include "kit/engines/gen/geometry.h"
#include "kit/engines/gen/random.h"

namespace kit::gen {

inline constexpr int32_t MASKS = 3;

/// One way to print a cell without a conflict inside it.
struct Solution {
    int32_t stitches = 0;
    std::vector<int32_t> masks; ///< [shape] 0, 1 or 2

    bool operator==(const Solution&) const = default;
};

/// Different colour solutions of a cell, at random, those of fewer stitches first.
///
/// @param shapes  metal of the cell
/// @param most    solutions wanted, at least 1
/// @param random  source of choices
/// @return at most so many; the first without a stitch; none if no such solution was found
std::vector<Solution> findSolutions(const std::vector<Shape>& shapes, int32_t most, Random& random);

} // namespace kit::gen
