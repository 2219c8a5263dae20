// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>

namespace kit::gen {

/// Random numbers that a seed and a stream decide, the same on every machine: integers only.
///
/// Source: SplitMix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators, OOPSLA 2014). The
/// streams keep the parts of a design apart, so that an option of one part leaves the other parts as they
/// are.
class Random {
public:
    /// @param stream  one of Stream
    Random(uint64_t seed, uint64_t stream) : m_state(mix(seed + stream * GOLDEN_GAMMA)) {}

    /// 64 random bits.
    uint64_t next()
    {
        m_state += GOLDEN_GAMMA;
        return mix(m_state);
    }

    /// A number from 0 to n - 1. The bias of the multiplication is at most n / 2^32.
    ///
    /// @param n  from 1 to 2^31 - 1
    int32_t below(int32_t n)
    {
        assert(n > 0);
        return static_cast<int32_t>(((next() >> 32U) * static_cast<uint64_t>(n)) >> 32U);
    }

    /// A number from 0 to n - 1 that leans to the low end: the lesser of two.
    int32_t lowBelow(int32_t n)
    {
        const int32_t a = below(n);
        const int32_t b = below(n);
        return a < b ? a : b;
    }

    /// True in so many of 1000 cases.
    bool perMille(int32_t cases) { return below(1000) < cases; }

    /// One of the elements of a range that has some.
    template <class Range>
    const auto& pick(const Range& range)
    {
        return range[static_cast<size_t>(below(static_cast<int32_t>(range.size())))];
    }

private:
    static constexpr uint64_t GOLDEN_GAMMA = 0x9e3779b97f4a7c15U;

    static uint64_t mix(uint64_t z)
    {
        z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9U;
        z = (z ^ (z >> 27U)) * 0x94d049bb133111ebU;
        return z ^ (z >> 31U);
    }

    uint64_t m_state;
};

/// The streams of a design.
enum Stream : uint64_t {
    CELL_STREAM,
    TYPE_STREAM,
    MACRO_STREAM,
    GAP_STREAM,
    MIRROR_STREAM,
    NET_STREAM,
    PIN_STREAM
};

} // namespace kit::gen
