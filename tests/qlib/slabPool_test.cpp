// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/slabPool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

namespace {

/// A record of its own type, and so of its own pool, for every test.
template <int NUMBER>
struct Record {
    unsigned char bytes[72];
    double aligned;
};

template <class T>
void giveAllBack(const std::vector<void*>& places)
{
    for (void* place : places) {
        vireloce::SlabPool<T>::giveBack(place);
    }
}

TEST(SlabPool, PlacesDoNotOverlapAndAreAligned)
{
    using Pool = vireloce::SlabPool<Record<1>>;
    std::vector<void*> places;
    for (int i = 0; i < 60000; ++i) {
        places.push_back(Pool::take());
        std::memset(places.back(), i % 256, sizeof(Record<1>));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(places.back()) % alignof(Record<1>), 0U);
    }
    for (int i = 0; i < 60000; ++i) {
        const auto* bytes = static_cast<const unsigned char*>(places[static_cast<size_t>(i)]);
        for (size_t k = 0; k < sizeof(Record<1>); ++k) {
            ASSERT_EQ(bytes[k], i % 256);
        }
    }
    giveAllBack<Record<1>>(places);
}

TEST(SlabPool, PlacesGivenBackAreUsedAgain)
{
    using Pool = vireloce::SlabPool<Record<2>>;
    void* const stays = Pool::take();
    std::vector<void*> places;
    for (int i = 0; i < 30000; ++i) {
        places.push_back(Pool::take());
    }
    giveAllBack<Record<2>>(places);
    std::set<void*> again;
    for (int i = 0; i < 30000; ++i) {
        again.insert(Pool::take());
    }
    EXPECT_EQ(again.size(), 30000U);
    EXPECT_EQ(again.count(stays), 0U);
    if constexpr (!Pool::IS_WATCHED) {
        EXPECT_EQ(again, std::set<void*>(places.begin(), places.end()));
    }
    giveAllBack<Record<2>>({again.begin(), again.end()});
    Pool::giveBack(stays);
}

TEST(SlabPool, StartsAnewAfterTheLastPlaceIsGivenBack)
{
    using Pool = vireloce::SlabPool<Record<3>>;
    for (int round = 0; round < 3; ++round) {
        std::vector<void*> places;
        for (int i = 0; i < 2000; ++i) {
            places.push_back(Pool::take());
        }
        EXPECT_EQ(std::set<void*>(places.begin(), places.end()).size(), 2000U);
        giveAllBack<Record<3>>(places);
    }
}

TEST(SlabPool, NothingGivenBackIsNothing)
{
    using Pool = vireloce::SlabPool<Record<4>>;
    void* const stays = Pool::take();
    std::memset(stays, 7, sizeof(Record<4>));
    Pool::giveBack(nullptr); // were it counted, the last place would be gone
    void* const next = Pool::take();
    ASSERT_NE(next, nullptr);
    EXPECT_NE(next, stays);
    std::memset(next, 8, sizeof(Record<4>));
    const auto* const bytes = static_cast<const unsigned char*>(stays);
    EXPECT_EQ(std::count(bytes, bytes + sizeof(Record<4>), 7),
              static_cast<std::ptrdiff_t>(sizeof(Record<4>)));
    giveAllBack<Record<4>>({stays, next});
}

} // namespace
