// SPDX-License-Identifier: BSD-3-Clause
// The wirelength terms of a cost, as a table over distances.
#pragma once

#include <cstdint>
#include <vector>

namespace vireloce {

/// What 0 to `most` sites of wirelength add to a cost, for one weight.
///
/// A cost is a sum in single precision that is truncated after every term, so that in general a term adds
/// more or less by what it is added to. Where sums stay below additiveLimit() that cannot be: then
/// addTruncated(c, d, weight) == c + rising()[d] for every c >= 0, and costs may be summed in any order.
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

    /// Least sum of a cost for which terms may add differently; 0 if the weight is negative, infinite or
    /// not a number, if some term is too large for any sum, or if the largest distance is negative or so
    /// large that no table is made.
    int32_t additiveLimit() const { return m_limit; }

    /// [most + 1] cost of d sites at index d; meaningless with an additiveLimit() of 0.
    const int32_t* rising() const { return m_rising.data(); }

    /// The same from the largest distance down: falling(d)[k] is the cost of d - k sites, for k in 0 .. d.
    const int32_t* falling(int32_t d) const { return m_falling.data() + (m_most - d); }

private:
    void fill();

    float m_weight = 0.0F;
    int32_t m_most = -1;
    int32_t m_limit = 0;
    std::vector<int32_t> m_rising;
    std::vector<int32_t> m_falling;
};

} // namespace vireloce
