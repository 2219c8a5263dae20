// SPDX-License-Identifier: BSD-3-Clause
// The inner loops of the placement kernels over rows of costs, one set of them per instruction set.
#pragma once

#include <cstdint>
#include <span>

namespace vireloce {

/// A row of costs that a path may come from, and what every path from it pays.
struct RowTerm {
    const int32_t* row;
    int32_t cost;
};

/// Loops over rows of 32-bit costs. All sets give the same results to the bit.
///
struct RowOps {
    const char* name; ///< instruction set

    /// Adds a row to another.
    ///
    /// @param row    [count] in and out: costs; exactly these are written
    /// @param added  [count]
    void (*add)(int32_t* row, const int32_t* added, int32_t count);

    /// The cheapest way to every site: from one of some rows at that site, plus the cost of the site, or from
    /// the site before. Never more than UNREACHABLE.
    ///
    /// It works on whole blocks of ROW_BLOCK entries: it reads and writes up to rowSpace(count) entries of
    /// all rows, and what it writes behind `count` means nothing.
    ///
    /// @param out    [count] out: least over k' <= k of (least over the terms of row[k'] + cost) + costs[k']
    /// @param terms  [numTerms] at least one
    /// @param costs  [count] what each site costs
    void (*fall)(int32_t* out, const RowTerm* terms, int32_t numTerms, const int32_t* costs, int32_t count);
};

/// "Not to be reached": more than any cost that a kernel takes for one.
inline constexpr int32_t UNREACHABLE = 1 << 30;

/// Entries that a row operation works on at a time, whatever the instruction set.
inline constexpr int32_t ROW_BLOCK = 16;

/// Entries that a row of `count` ones takes up.
constexpr int32_t rowSpace(int32_t count)
{
    return (count + ROW_BLOCK - 1) / ROW_BLOCK * ROW_BLOCK;
}

/// The sets that this machine can run, the plainest first.
std::span<const RowOps* const> rowOpsHere();

/// The fastest set that this machine can run.
const RowOps& bestRowOps();

} // namespace vireloce
