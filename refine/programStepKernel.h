// SPDX-License-Identifier: BSD-3-Clause
// The loops of programStep.h. Included by one source per instruction set, which is compiled with that set
// allowed.
//
// Nothing here may call an inline function from elsewhere: the linker might keep this source's copy of it for
// the whole program, and that copy would not run everywhere.
#pragma once

#include "refine/programStep.h"

namespace refine {
namespace { // not shared between the sources that include this

#ifdef __AVX2__
constexpr int32_t LANES = 8;
#else
constexpr int32_t LANES = 4;
#endif
using Vector [[gnu::vector_size(4 * LANES)]] = int32_t;
using Anywhere [[gnu::vector_size(4 * LANES), gnu::aligned(4), gnu::may_alias]] = int32_t;

/// Numbers that need not be aligned, from and to memory; the lesser ones of two vectors.
///@{
Vector load(const int32_t* from)
{
    return *reinterpret_cast<const Anywhere*>(from);
}

void store(int32_t* to, Vector value)
{
    *reinterpret_cast<Anywhere*>(to) = value;
}

Vector lesser(Vector a, Vector b)
{
    return a < b ? a : b;
}
///@}

template <int32_t WIDTH>
void stepOfWidth(const ProgramStep& step)
{
    constexpr int32_t STRIDE = 3 * WIDTH;
    constexpr int32_t NEVER = OrderedProgram::NEVER;
    for (int32_t c = 0; c < step.leftClasses && step.before != nullptr; ++c) {
        for (int32_t p = 0; p < WIDTH; p += LANES) {
            Vector arrival = Vector{} + NEVER;
            for (int32_t r = 0; r < step.classesBefore; ++r) {
                const int32_t shift = step.shifts[r * step.leftClasses + c];
                arrival = lesser(arrival, load(step.before + r * STRIDE + WIDTH + shift + p));
            }
            store(step.arrivals + c * WIDTH + p, arrival);
        }
    }
    for (int32_t r = 0; r < step.rightClasses; ++r) {
        for (int32_t p = 0; p < 2 * WIDTH; p += LANES) {
            store(step.profiles + r * STRIDE + p, Vector{} + NEVER);
        }
    }
    for (int32_t o = 0; o < step.optionCount; ++o) {
        const ProgramOption& option = step.options[o];
        const int32_t* const arrival = step.arrivals + option.leftClass * WIDTH;
        const int32_t* const costs = step.costs[option.mirrored ? 1 : 0];
        int32_t* const profile = step.profiles + option.rightClass * STRIDE + WIDTH;
        for (int32_t p = 0; p < WIDTH; p += LANES) {
            const Vector cost = load(arrival + p) + load(costs + p) + option.price;
            store(profile + p, lesser(load(profile + p), cost));
        }
    }
    for (int32_t r = 0; r < step.rightClasses; ++r) {
        int32_t* const profile = step.profiles + r * STRIDE + WIDTH;
        int32_t least = NEVER;
        for (int32_t p = 0; p < step.sites; ++p) {
            least = profile[p] < least ? profile[p] : least;
            profile[p] = least;
        }
        for (int32_t p = step.sites; p < WIDTH; ++p) {
            profile[p] = least;
        }
        for (int32_t p = WIDTH; p < 2 * WIDTH; p += LANES) {
            store(profile + p, Vector{} + least);
        }
    }
}

void stepOf(const ProgramStep& step)
{
    switch (step.width) {
    case 8:
        stepOfWidth<8>(step);
        break;
    case 16:
        stepOfWidth<16>(step);
        break;
    case 32:
        stepOfWidth<32>(step);
        break;
    default:
        stepOfWidth<64>(step);
        break;
    }
}

} // namespace
} // namespace refine
