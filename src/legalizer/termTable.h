// SPDX-License-Identifier: BSD-3-Clause
// The wirelength terms of a cost, as a table over distances.
#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vireloce {

/// What 0 to `most` sites of wirelength add to a cost, for one weight.
///
/// A cost is a sum in single precision that is truncated after every term, so that in general a term adds
/// more or less by what it is added to. Where sums stay below additiveLimit() that cannot be: then
/// addTruncated(c, d, weight) == c + rising()[d] for every c >= 0, and costs may be summed in any order.
///
/// Example: at weight 1.05 60 sites are 62.999996 in single precision. On top of 0 that is truncated to 62,
/// on top of 2 the sum 64.999996 is rounded to 65. So distances from 60 on have a limit below 65.
///
/// Proof: let t be the term and n its whole part. For whole c the exact sum c + t lies in [c + n, c + n + 1),
/// and so does its rounding, unless it is rounded up to c + n + 1. Below 2^e neighbouring floats are at most
/// 2^(e - 24) apart, so rounding adds at most 2^(e - 25), and where the fraction of t stays below
/// 1 - 2^(e - 24) the sum never gets to c + n + 1.
class TermTable {
public:
    /// Makes the table; nothing to do if it is there already.
    ///
    /// @param weight  cost of a site
    /// @param most    largest distance, sites
    void prepare(float weight, int32_t most);

    /// Least sum of a cost for which terms of up to a distance may add differently. 0 if the weight is
    /// negative, infinite or not a number, or if the term of that distance is too large for any sum.
    ///
    /// @param distance  from 0 to most(), sites
    int32_t additiveLimit(int32_t distance) const
    {
        int32_t power = MOST_POWER;
        while (power >= 0 && distance >= m_reach[static_cast<size_t>(power)]) {
            --power;
        }
        return power < 0 ? 0 : 1 << power;
    }

    /// Cost of a site.
    float weight() const { return m_weight; }

    /// Largest distance that the table has, sites; -1 without a table.
    int32_t most() const { return m_most; }

    /// [most + 1] cost of d sites at index d; meaningless for distances with an additiveLimit() of 0.
    const int32_t* rising() const { return m_rising.data(); }

    /// The same from the largest distance down: falling(d)[k] is the cost of d - k sites, for k in 0 .. d.
    const int32_t* falling(int32_t d) const
    {
        assert(0 <= d && d <= m_most);
        return m_falling.data() + (m_most - d);
    }

private:
    static constexpr int32_t MOST_POWER = 24; ///< whole numbers up to 2^24 are floats

    /// Fills the table for the weight and the largest distance.
    void fill();

    float m_weight = 0.0F;
    int32_t m_most = -1;
    std::array<int32_t, MOST_POWER + 1> m_reach{}; ///< [e] least distance whose limit is below 2^e
    std::vector<int32_t> m_rising;
    std::vector<int32_t> m_falling;
};

} // namespace vireloce
