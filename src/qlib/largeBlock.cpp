// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/largeBlock.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>

namespace vireloce {

namespace {

constexpr std::align_val_t CACHE_LINE{64};

/// The bytes up to a multiple of large pages.
size_t inLargePages(size_t bytes)
{
    return (bytes + LARGE_PAGE - 1) / LARGE_PAGE * LARGE_PAGE;
}

/// Maps memory that begins with a large page.
///
/// @param bytes  a multiple of LARGE_PAGE
void* mapLargePages(size_t bytes)
{
    // One page more, so that the block can be cut out where a page begins.
    void* const mapped =
        mmap(nullptr, bytes + LARGE_PAGE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        throw std::bad_alloc();
    }
    auto* const begin = static_cast<char*>(mapped);
    const size_t head = (LARGE_PAGE - reinterpret_cast<uintptr_t>(begin) % LARGE_PAGE) % LARGE_PAGE;
    if (head > 0) {
        munmap(begin, head);
    }
    munmap(begin + head + bytes, LARGE_PAGE - head);
#ifdef MADV_HUGEPAGE
    madvise(begin + head, bytes, MADV_HUGEPAGE); // a wish: without such pages the usual ones do
#endif
    return begin + head;
}

} // namespace

void* takeBlock(size_t bytes)
{
    return bytes < LARGE_PAGE ? ::operator new(bytes, CACHE_LINE) : mapLargePages(inLargePages(bytes));
}

void giveBlockBack(void* block, size_t bytes)
{
    if (bytes < LARGE_PAGE) {
        ::operator delete(block, CACHE_LINE);
    } else {
        munmap(block, inLargePages(bytes));
    }
}

} // namespace vireloce
