// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <random>

namespace mutation {

/// Random numbers that a pair of numbers decides, the same with every compiler and library.
class Random {
public:
    Random(uint64_t seed, uint64_t stream)
    {
        std::seed_seq sequence{seed, seed >> 32U, stream, stream >> 32U};
        m_engine.seed(sequence);
    }

    /// A number from 0 to n - 1.
    ///
    /// @param n  at least 1
    size_t below(size_t n) { return static_cast<size_t>(m_engine() % n); }

    /// True in one of n cases.
    bool oneIn(size_t n) { return below(n) == 0; }

    /// One of the elements of an array or vector, which must have some.
    template <class Range>
    const auto& pick(const Range& range)
    {
        return range[below(std::size(range))];
    }

private:
    std::mt19937_64 m_engine;
};

} // namespace mutation
