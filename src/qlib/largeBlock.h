// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace vireloce {

/// Bytes from which on a block gets large pages, where the system has them.
inline constexpr size_t LARGE_PAGE = size_t{1} << 21;

/// Memory for much data that is read in no order: aligned to cache lines, in large pages if it is large.
///
/// Of pages of the usual size a large design needs so many that to get each, and to find it again, takes a
/// good part of the run.
///
/// Errors: std::bad_alloc.
///
/// @param bytes  at least 1
void* takeBlock(size_t bytes);

/// Gives a block back.
///
/// @param block  from takeBlock()
/// @param bytes  as given to takeBlock()
void giveBlockBack(void* block, size_t bytes);

/// Puts the elements of a standard container into such blocks.
template <class T>
struct BlockAllocator {
    using value_type = T;

    /// All are alike: none has a state.
    BlockAllocator() = default;
    /// That of another type, as containers make them for their own records.
    template <class U>
    explicit BlockAllocator(const BlockAllocator<U>& /*other*/)
    {
    }

    /// Memory for some elements. Errors: std::bad_alloc.
    T* allocate(size_t count) { return static_cast<T*>(takeBlock(count * sizeof(T))); }
    /// Gives it back; the count is the one that was given to allocate().
    void deallocate(T* elements, size_t count) { giveBlockBack(elements, count * sizeof(T)); }

    /// True: what one has taken, any other may give back.
    bool operator==(const BlockAllocator& /*other*/) const { return true; }
};

} // namespace vireloce
