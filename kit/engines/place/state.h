// SPDX-License-Identifier: BSD-3-Clause
// What a placement is like: the part of the result that is measured, not copied from the report.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class Design;

namespace kit::place {

/// A position, DBU.
struct Point {
    int32_t x = 0;
    int32_t y = 0;
};

/// How far the components are from where they began: |dx| + |dy| in site widths.
struct Displacement {
    double mean = 0.0;
    double largest = 0.0;
    std::string farthest; ///< name of the component of the largest, empty if none has moved
    std::vector<int64_t>
        histogram; ///< [k] components moved by less than 2^k sites, and by 2^(k - 1) at least
};

/// How full a segment is.
struct Filling {
    int32_t x = 0;        ///< left end, DBU
    int32_t y = 0;        ///< bottom edge, DBU
    int32_t numSites = 0; ///< capacity
    int32_t cells = 0;    ///< components in it
    int32_t taken = 0;    ///< sites of their cells
};

/// A placement measured.
struct State {
    int64_t hpwl = 0;      ///< DBU
    int32_t stitches = 0;  ///< of the cells in segments
    int32_t conflicts = 0; ///< neighbours too close, as the placer counts
    Displacement displacement;
    std::vector<Filling> segments;    ///< by id
    std::vector<int32_t> dropped;     ///< components in no segment, indices in Design::components
    std::vector<int32_t> beyond;      ///< components that stick out of their segment
    std::vector<int32_t> overlapping; ///< components that begin before their left neighbour's end
    std::string hash;                 ///< of all positions and solutions, 16 hexadecimal digits
};

/// Positions of all components, file order.
std::vector<Point> positionsOf(const Design& design);

/// Measures a design.
///
/// @param start  [component] positions before the placement
State measure(Design& design, const std::vector<Point>& start);

} // namespace kit::place
