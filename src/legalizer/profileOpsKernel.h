// SPDX-License-Identifier: BSD-3-Clause
// The loops of profileOps.h, written once over vectors of a length that each instruction set chooses.
//
// Included by one source file per instruction set, which is compiled with that set allowed. Nothing here may
// call an inline function from elsewhere: the linker might keep this file's copy of it for the whole program,
// and that copy would not run everywhere.
#pragma once

#include <cstdint>
#include <utility>

#include "legalizer/profileOps.h"

namespace vireloce {
namespace { // not shared between the files that include this

// clang-format off
/// LANES 32-bit numbers, as many floats, and the numbers where they need not be aligned.
template <int LANES>
struct VectorOf;
template <> struct VectorOf<4> {
    using Type [[gnu::vector_size(16)]] = int32_t;
    using Floats [[gnu::vector_size(16)]] = float;
    using Anywhere [[gnu::vector_size(16), gnu::aligned(4), gnu::may_alias]] = int32_t;
};
template <> struct VectorOf<8> {
    using Type [[gnu::vector_size(32)]] = int32_t;
    using Floats [[gnu::vector_size(32)]] = float;
    using Anywhere [[gnu::vector_size(32), gnu::aligned(4), gnu::may_alias]] = int32_t;
};
template <> struct VectorOf<16> {
    using Type [[gnu::vector_size(64)]] = int32_t;
    using Floats [[gnu::vector_size(64)]] = float;
    using Anywhere [[gnu::vector_size(64), gnu::aligned(4), gnu::may_alias]] = int32_t;
};
// clang-format on

constexpr int32_t SMALLEST = -2147483647 - 1;

template <int LANES>
struct VectorLoops {
    using Vector = typename VectorOf<LANES>::Type;
    using Floats = typename VectorOf<LANES>::Floats;
    using Anywhere = typename VectorOf<LANES>::Anywhere;
    using Lanes = std::make_integer_sequence<int, LANES>;

    /// Numbers that need not be aligned, from and to memory; one number in all lanes; the lesser ones.
    ///@{
    static Vector load(const int32_t* from) { return *reinterpret_cast<const Anywhere*>(from); }
    static void store(int32_t* to, Vector value) { *reinterpret_cast<Anywhere*>(to) = value; }
    static Vector all(int32_t value) { return Vector{} + value; }
    static Vector least(Vector a, Vector b) { return a < b ? a : b; }
    ///@}

    /// The lanes moved up by COUNT, the lowest filled from `fill`.
    template <int COUNT, int... LANE>
    static Vector movedUp(Vector value, Vector fill, std::integer_sequence<int, LANE...>)
    {
        return __builtin_shufflevector(fill, value, (LANES - COUNT + LANE)...);
    }

    /// The last lane in all lanes.
    template <int... LANE>
    static Vector lastOf(Vector value, std::integer_sequence<int, LANE...>)
    {
        return __builtin_shufflevector(value, value, (LANE * 0 + LANES - 1)...);
    }

    /// Every lane the least of itself and those before it: log2(LANES) steps that double the reach.
    template <int REACH = 1>
    static Vector leastSoFar(Vector value, Vector fill)
    {
        if constexpr (REACH < LANES) {
            return leastSoFar<2 * REACH>(least(value, movedUp<REACH>(value, fill, Lanes{})), fill);
        } else {
            return value;
        }
    }

    /// 0, 1, 2, ...
    template <int... LANE>
    static Vector numbered(std::integer_sequence<int, LANE...>)
    {
        return Vector{LANE...};
    }

    /// Truncation toward zero as toInt() has it: what is beyond 32 bits, or no number, gives the smallest
    /// integer.
    static Vector truncated(Floats value)
    {
        constexpr float LIMIT = 2147483648.0F;
        const Vector fits = (value >= Floats{} - LIMIT) & (value < Floats{} + LIMIT);
        const Vector whole = __builtin_convertvector(fits ? value : Floats{}, Vector);
        return fits ? whole : all(SMALLEST);
    }

    /// ProfileOps::add().
    static void add(int32_t* profile, const int32_t* added, int32_t count)
    {
        int32_t k = 0;
        for (; k + LANES <= count; k += LANES) {
            store(profile + k, load(profile + k) + load(added + k));
        }
        for (; k < count; ++k) {
            profile[k] += added[k];
        }
    }

    /// ProfileOps::addDistances().
    static void addDistances(int32_t* profile, int32_t distance, int32_t step, float weight, int32_t count)
    {
        Vector sites = numbered(Lanes{}) * step + distance;
        for (int32_t k = 0; k < count; k += LANES) {
            const Vector counted = sites > 0 ? sites : Vector{};
            const Floats term =
                __builtin_convertvector(counted, Floats) * weight; // rounded before it is added
            store(profile + k, truncated(__builtin_convertvector(load(profile + k), Floats) + term));
            sites += LANES * step;
        }
    }

    /// The least over the terms at some entries, for a number of terms that is known, or 0 for any.
    template <int TERMS>
    static Vector leastAt(const ProfileTerm* terms, int32_t numTerms, int32_t k)
    {
        Vector value = load(terms[0].profile + k) + terms[0].cost;
        for (int32_t t = 1; t < (TERMS > 0 ? TERMS : numTerms); ++t) {
            value = least(value, load(terms[t].profile + k) + terms[t].cost);
        }
        return value;
    }

    /// ProfileOps::least().
    static void leastOfTerms(int32_t* out, const ProfileTerm* terms, int32_t numTerms, int32_t count)
    {
        for (int32_t k = 0; k < count; k += LANES) {
            store(out + k, leastAt<0>(terms, numTerms, k));
        }
    }

    /// relax() for a number of terms that is known, or 0 for any.
    template <int TERMS>
    static void relaxFrom(int32_t* out, const ProfileTerm* terms, int32_t numTerms, const int32_t* costs,
                          int32_t count)
    {
        const Vector fill = all(UNREACHABLE);
        Vector before = fill; // least so far, in every lane: one step per vector depends on the last
        for (int32_t k = 0; k < count; k += LANES) {
            const Vector value = leastSoFar(leastAt<TERMS>(terms, numTerms, k) + load(costs + k), fill);
            store(out + k, least(value, before));
            before = least(before, lastOf(value, Lanes{}));
        }
    }

    /// ProfileOps::relax().
    static void relax(int32_t* out, const ProfileTerm* terms, int32_t numTerms, const int32_t* costs,
                      int32_t count)
    {
        switch (numTerms) {
        case 1:
            return relaxFrom<1>(out, terms, numTerms, costs, count);
        case 2:
            return relaxFrom<2>(out, terms, numTerms, costs, count);
        case 3:
            return relaxFrom<3>(out, terms, numTerms, costs, count);
        case 4:
            return relaxFrom<4>(out, terms, numTerms, costs, count);
        default:
            return relaxFrom<0>(out, terms, numTerms, costs, count);
        }
    }

    /// ProfileOps::leastSums().
    static void leastSums(int32_t* out, const int32_t* from, const int32_t* costs, int32_t count)
    {
        int32_t k = 0;
        for (; k + LANES <= count; k += LANES) {
            store(out + k, least(load(out + k), load(from + k) + load(costs + k)));
        }
        for (; k < count; ++k) {
            const int32_t sum = from[k] + costs[k];
            out[k] = sum < out[k] ? sum : out[k];
        }
    }

    /// ProfileOps::runningLeast().
    static void runningLeast(int32_t* profile, int32_t count)
    {
        const Vector fill = all(UNREACHABLE);
        Vector before = fill;
        for (int32_t k = 0; k < count; k += LANES) {
            const Vector value = leastSoFar(load(profile + k), fill);
            store(profile + k, least(value, before));
            before = least(before, lastOf(value, Lanes{}));
        }
    }
};

/// The operations in vectors of some length.
template <int LANES>
constexpr ProfileOps opsOf(const char* name)
{
    using Loops = VectorLoops<LANES>;
    return {name,         Loops::add,       Loops::addDistances, Loops::leastOfTerms,
            Loops::relax, Loops::leastSums, Loops::runningLeast};
}

} // namespace
} // namespace vireloce
