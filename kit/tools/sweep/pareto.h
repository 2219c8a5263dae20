// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <vector>

namespace kit::sweep {

/// Two costs.
struct Costs {
    double x = 0;
    double y = 0;
};

/// The points that no other beats: none is as good in both costs and better in one. Of equal ones all.
///
/// @return their indices, by x, then by y, then by index
std::vector<size_t> frontOf(const std::vector<Costs>& points);

} // namespace kit::sweep
