// SPDX-License-Identifier: BSD-3-Clause
// Numbers at the edge.
#pragma once

#include <cstdint>
#include <limits>

namespace test {

constexpr int32_t SMALLEST = std::numeric_limits<int32_t>::min();
constexpr int32_t LARGEST = std::numeric_limits<int32_t>::max();
constexpr float INF = std::numeric_limits<float>::infinity();

} // namespace test
