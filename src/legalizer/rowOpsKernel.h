// SPDX-License-Identifier: BSD-3-Clause
// The loops of rowOps.h, written once over vectors of a length that each instruction set chooses.
//
// Included by one source file per instruction set, which is compiled with that set allowed. Nothing here may
// call an inline function from elsewhere: the linker might keep this file's copy of it for the whole program,
// and that copy would not run everywhere.
#pragma once

#include <cstdint>
#include <utility>

#include "legalizer/rowOps.h"

namespace vireloce {
namespace { // not shared between the files that include this

// clang-format off
/// LANES 32-bit numbers, and the same where they need not be aligned.
template <int LANES>
struct VectorOf;
template <> struct VectorOf<4> {
    using Type [[gnu::vector_size(16)]] = int32_t;
    using Anywhere [[gnu::vector_size(16), gnu::aligned(4), gnu::may_alias]] = int32_t;
};
template <> struct VectorOf<8> {
    using Type [[gnu::vector_size(32)]] = int32_t;
    using Anywhere [[gnu::vector_size(32), gnu::aligned(4), gnu::may_alias]] = int32_t;
};
template <> struct VectorOf<16> {
    using Type [[gnu::vector_size(64)]] = int32_t;
    using Anywhere [[gnu::vector_size(64), gnu::aligned(4), gnu::may_alias]] = int32_t;
};
// clang-format on

template <int LANES>
struct VectorLoops {
    using Vector = typename VectorOf<LANES>::Type;
    using Anywhere = typename VectorOf<LANES>::Anywhere;
    using Lanes = std::make_integer_sequence<int, LANES>;

    static Vector load(const int32_t* from) { return *reinterpret_cast<const Anywhere*>(from); }
    static void store(int32_t* to, Vector value) { *reinterpret_cast<Anywhere*>(to) = value; }
    static Vector all(int32_t value) { return Vector{} + value; }
    static Vector least(Vector a, Vector b) { return a < b ? a : b; }

    /// The lanes moved up by COUNT, the lowest filled from `fill`.
    template <int COUNT, int... LANE>
    static Vector movedUp(Vector value, Vector fill, std::integer_sequence<int, LANE...>)
    {
        return __builtin_shufflevector(fill, value, (LANES - COUNT + LANE)...);
    }

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

    static void add(int32_t* row, const int32_t* added, int32_t count)
    {
        int32_t k = 0;
        for (; k + LANES <= count; k += LANES) {
            store(row + k, load(row + k) + load(added + k));
        }
        for (; k < count; ++k) {
            row[k] += added[k];
        }
    }

    /// fall() for a number of terms that is known, or 0 for any.
    template <int TERMS>
    static void fallFrom(int32_t* out, const RowTerm* terms, int32_t numTerms, const int32_t* costs,
                         int32_t count)
    {
        const Vector fill = all(UNREACHABLE);
        Vector before = fill; // least so far, in every lane: one step per vector depends on the last
        for (int32_t k = 0; k < count; k += LANES) {
            Vector value = load(terms[0].row + k) + terms[0].cost;
            for (int32_t t = 1; t < (TERMS > 0 ? TERMS : numTerms); ++t) {
                value = least(value, load(terms[t].row + k) + terms[t].cost);
            }
            value = leastSoFar(value + load(costs + k), fill);
            store(out + k, least(value, before));
            before = least(before, lastOf(value, Lanes{}));
        }
    }

    static void fall(int32_t* out, const RowTerm* terms, int32_t numTerms, const int32_t* costs,
                     int32_t count)
    {
        switch (numTerms) {
        case 1:
            return fallFrom<1>(out, terms, numTerms, costs, count);
        case 2:
            return fallFrom<2>(out, terms, numTerms, costs, count);
        case 3:
            return fallFrom<3>(out, terms, numTerms, costs, count);
        case 4:
            return fallFrom<4>(out, terms, numTerms, costs, count);
        default:
            return fallFrom<0>(out, terms, numTerms, costs, count);
        }
    }
};

} // namespace
} // namespace vireloce
