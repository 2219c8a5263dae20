// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/largeBlock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <numeric>
#include <vector>

namespace {

using vireloce::LARGE_PAGE;

class Block : public testing::TestWithParam<size_t> {};

TEST_P(Block, IsAlignedAndItsOwn)
{
    const size_t bytes = GetParam();
    auto* const first = static_cast<unsigned char*>(vireloce::takeBlock(bytes));
    auto* const second = static_cast<unsigned char*>(vireloce::takeBlock(bytes));
    std::memset(first, 1, bytes);
    std::memset(second, 2, bytes);
    const size_t alignment = bytes < LARGE_PAGE ? 64 : LARGE_PAGE;
    for (const unsigned char* block : {first, second}) {
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignment, 0U);
        EXPECT_EQ(block[0], block == first ? 1 : 2);
        EXPECT_EQ(block[bytes - 1], block == first ? 1 : 2);
    }
    vireloce::giveBlockBack(first, bytes);
    std::memset(second, 3, bytes);
    vireloce::giveBlockBack(second, bytes);
}

INSTANTIATE_TEST_SUITE_P(LargeBlock, Block,
                         testing::Values(1, 64, LARGE_PAGE - 1, LARGE_PAGE, LARGE_PAGE + 1, 5 * LARGE_PAGE));

TEST(LargeBlock, TooLargeIsOutOfMemory)
{
    EXPECT_THROW(vireloce::takeBlock(size_t{1} << 60), std::bad_alloc);
}

TEST(BlockAllocator, ServesAVectorThatGrows)
{
    std::vector<int64_t, vireloce::BlockAllocator<int64_t>> numbers;
    for (int64_t i = 0; i < 1000000; ++i) {
        numbers.push_back(i);
    }
    numbers.shrink_to_fit();
    EXPECT_EQ(std::accumulate(numbers.begin(), numbers.end(), int64_t{0}), int64_t{499999500000});
}

} // namespace
