// SPDX-License-Identifier: BSD-3-Clause
// The inner loops of the placement kernels over profiles, one set of them per instruction set.
//
// A profile is an array of 32-bit costs over neighbouring sites. All sets give the same results to the bit.
//
// Whole blocks: where an operation says so, it reads and writes up to profileSpace(count) entries, and what
// it writes from entry `count` on means nothing.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

namespace vireloce {

/// A profile that a path may come from, and what every path from it pays.
struct ProfileTerm {
    const int32_t* profile;
    int32_t cost;
};

/// Operations on profiles for one instruction set.
struct ProfileOps {
    const char* name; ///< instruction set

    /// Adds a profile to another.
    ///
    /// @param profile  [count] in and out: costs; exactly these are written
    /// @param added    [count]
    void (*add)(int32_t* profile, const int32_t* added, int32_t count);

    /// Adds a weighted distance to every cost, as addTruncated() does: single precision, truncated at once.
    /// Whole blocks.
    ///
    /// @param profile   [count] in and out: costs
    /// @param distance  at the first entry, sites; a negative one counts as 0
    /// @param step      what the distance grows by from an entry to the next, 1 or -1
    /// @param weight    cost of a site
    void (*addDistances)(int32_t* profile, int32_t distance, int32_t step, float weight, int32_t count);

    /// The least over some profiles and what each of them pays, entry by entry. Whole blocks.
    ///
    /// @param out    [count]
    /// @param terms  [numTerms] at least one
    void (*least)(int32_t* out, const ProfileTerm* terms, int32_t numTerms, int32_t count);

    /// The cheapest way to every site: from one of some profiles at that site, plus the cost of the site, or
    /// from the site before. Never more than UNREACHABLE. Whole blocks.
    ///
    /// @param out    [count] out: least over k' <= k of (least over the terms of profile[k'] + cost) +
    /// costs[k']
    /// @param terms  [numTerms] at least one
    /// @param costs  [count] what each site costs
    void (*relax)(int32_t* out, const ProfileTerm* terms, int32_t numTerms, const int32_t* costs,
                  int32_t count);

    /// Takes the sums of two profiles, modulo 2^32, where they are less than what is there.
    ///
    /// @param out    [count] in and out; exactly these are written
    /// @param from   [count]
    /// @param costs  [count]
    void (*leastSums)(int32_t* out, const int32_t* from, const int32_t* costs, int32_t count);

    /// Takes the least of every entry and those before it. Whole blocks.
    ///
    /// @param profile  [count] in and out, no entry more than UNREACHABLE
    void (*runningLeast)(int32_t* profile, int32_t count);
};

/// "Not to be reached": more than any cost that a kernel takes for one.
inline constexpr int32_t UNREACHABLE = 1 << 30;

/// Entries that an operation works on at a time, whatever the instruction set.
inline constexpr int32_t PROFILE_BLOCK = 16;

/// Entries that a profile of `count` ones takes up.
constexpr int32_t profileSpace(int32_t count)
{
    return (count + PROFILE_BLOCK - 1) / PROFILE_BLOCK * PROFILE_BLOCK;
}

/// Index of the first entry of a profile that never rises which equals the one at k.
inline int32_t firstEqual(const int32_t* profile, int32_t k)
{
    const auto* at =
        std::partition_point(profile, profile + k, [value = profile[k]](int32_t v) { return v > value; });
    return static_cast<int32_t>(at - profile);
}

/// The sets that this machine can run, the plainest first.
std::span<const ProfileOps* const> profileOpsHere();

/// The fastest set that this machine can run.
const ProfileOps& bestProfileOps();

} // namespace vireloce
