// SPDX-License-Identifier: BSD-3-Clause
// How close the metal of two cells comes.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "kit/design/standing.h"

namespace kit::design {

/// Metal of one mask in two cells that is too close.
struct Closeness {
    int32_t shapePairs = 0; ///< pairs of shapes that are too close; 0: there is nothing to say
    double distance = 0;    ///< least of all, fine units
    int32_t mask = -1;      ///< of the two closest rectangles
    FineBox first;          ///< of the first cell, the closest one
    FineBox second;         ///< of the second cell, the closest one
};

/// Distance of two rectangles: 0 if they touch or overlap, else that of their closest points, fine units.
double distanceOf(const FineBox& a, const FineBox& b);

/// Compares the metal of cells.
class MetalGauge {
public:
    /// @param least  distance that shapes of one mask need, fine units
    explicit MetalGauge(int64_t least) : m_least(least) {}

    /// What is closer than it may be, over all pairs of shapes of one mask.
    Closeness measure(const Standing& first, const Standing& second);

private:
    /// A rectangle that may be too close to the other cell's.
    struct Metal {
        FineBox box;
        int32_t shape;
        int32_t mask;
    };

    bool tooClose(const FineBox& a, const FineBox& b) const;
    void collect(const Standing& cell, const FineBox& other, std::vector<Metal>& metal) const;
    void take(const Metal& a, const Metal& b, Closeness& result);

    int64_t m_least;
    std::vector<Metal> m_first;
    std::vector<Metal> m_second;
    std::vector<std::pair<int32_t, int32_t>> m_shapePairs; ///< too close, once per pair of rectangles
};

} // namespace kit::design
