// SPDX-License-Identifier: BSD-3-Clause
// The bounded memory for layers: what stays, what goes, and how much is made again on the way back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include "legalizer/layerStore.h"
#include "legalizer/randomDesign.h"

namespace {

using test::Random;
using vireloce::LayerStore;

/// A dynamic program whose layers say who they are.
class Program {
public:
    Program(LayerStore& store, std::vector<size_t> entries) : m_store(store), m_entries(std::move(entries)) {}

    /// Makes a layer from the one before. False if there is no room.
    bool make(size_t layer)
    {
        if (layer > 0) {
            EXPECT_TRUE(isWhole(layer - 1)) << "made from a layer that is not there: " << layer - 1;
        }
        int32_t* const out = m_store.add(layer, m_entries[layer]);
        if (out != nullptr) {
            std::fill_n(out, m_entries[layer], static_cast<int32_t>(layer) + 1);
            ++m_made;
        }
        return out != nullptr;
    }

    bool makeAll()
    {
        m_store.clear();
        for (size_t layer = 0; layer < m_entries.size(); ++layer) {
            if (!make(layer)) {
                return false;
            }
        }
        return true;
    }

    /// Goes back through all layers as the kernels do, and says whether each was there in its turn.
    bool goBack()
    {
        for (size_t layer = m_entries.size(); layer-- > 0;) {
            const auto noBegin = [](size_t) {};
            if (!m_store.makeAgain(layer, noBegin, [this](size_t again) { return make(again); })) {
                return false;
            }
            if (!isWhole(layer)) {
                return false;
            }
        }
        return true;
    }

    bool isWhole(size_t layer)
    {
        const int32_t* const values = m_store.at(layer);
        return values != nullptr && std::all_of(values, values + m_entries[layer], [layer](int32_t value) {
                   return value == static_cast<int32_t>(layer) + 1;
               });
    }

    size_t made() const { return m_made; }

private:
    LayerStore& m_store;
    std::vector<size_t> m_entries; ///< [layer]
    size_t m_made = 0;
};

/// Layers that are there.
std::vector<size_t> kept(LayerStore& store, size_t numLayers)
{
    std::vector<size_t> all;
    for (size_t layer = 0; layer < numLayers; ++layer) {
        if (store.at(layer) != nullptr) {
            all.push_back(layer);
        }
    }
    return all;
}

TEST(LayerStore, KeepsAllLayersWhileThereIsRoom)
{
    LayerStore store(100);
    Program program(store, std::vector<size_t>(10, 10));
    ASSERT_TRUE(program.makeAll());
    EXPECT_EQ(kept(store, 10).size(), 10U);
    EXPECT_EQ(store.used(), 100U);
    EXPECT_TRUE(program.goBack());
    EXPECT_EQ(program.made(), 10U);
}

TEST(LayerStore, LetsEverySecondLayerGoWhereTheRoomRunsOut)
{
    LayerStore store(80);
    Program program(store, std::vector<size_t>(9, 10));
    ASSERT_TRUE(program.makeAll());
    EXPECT_EQ(kept(store, 9), (std::vector<size_t>{1, 3, 5, 7, 8}));
    EXPECT_EQ(store.used(), 50U);
}

TEST(LayerStore, HasTheLayerBeforeTheOneThatIsAdded)
{
    for (const int64_t most : {20, 25, 30, 33, 47, 80}) {
        LayerStore store(most);
        Program program(store, std::vector<size_t>(200, 10)); // it checks the layer before at each
        EXPECT_TRUE(program.makeAll()) << most;
        EXPECT_LE(store.used(), static_cast<size_t>(most));
    }
}

TEST(LayerStore, HasNoRoomForALayerThatDoesNotFitBesideTheOneBefore)
{
    LayerStore store(100);
    EXPECT_EQ(store.add(0, 101), nullptr);
    ASSERT_NE(store.add(0, 60), nullptr);
    EXPECT_EQ(store.add(1, 41), nullptr);
    EXPECT_NE(store.add(1, 40), nullptr);
    EXPECT_EQ(store.add(2, 61), nullptr);
    EXPECT_NE(store.add(2, 60), nullptr) << "the first may go";
}

TEST(LayerStore, MakesLittleMoreThanOneLayerForEachOnTheWayBack)
{
    // 64 layers between checkpoints: 47 of these, and the room for what is made again between two.
    LayerStore store(100);
    Program program(store, std::vector<size_t>(3000, 1));
    ASSERT_TRUE(program.makeAll());
    const std::vector<size_t> checkpoints = kept(store, 3000);
    EXPECT_LE(checkpoints.front(), 64U);
    for (size_t i = 1; i < checkpoints.size(); ++i) {
        EXPECT_LE(checkpoints[i] - checkpoints[i - 1], 64U) << "behind " << checkpoints[i - 1];
    }
    ASSERT_TRUE(program.goBack());
    EXPECT_LT(program.made(), 2 * 3000U + 300U);
}

TEST(LayerStore, GoesBackThroughFarMoreLayersThanItHasRoomFor)
{
    for (const int64_t most : {2, 3, 4, 7, 20, 60}) {
        LayerStore store(most);
        Program program(store, std::vector<size_t>(700, 1));
        ASSERT_TRUE(program.makeAll()) << most;
        ASSERT_TRUE(program.goBack()) << most;
    }
}

TEST(LayerStore, GoesBackThroughLayersOfAnySize)
{
    int thinned = 0;
    for (uint32_t seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        const std::vector<int> sizes =
            random.oneOf<std::vector<int>>({{0, 1, 2}, {10}, {1, 50}, {5, 6, 7, 30}, {0, 0, 40}});
        std::vector<size_t> entries(static_cast<size_t>(random.pick(1, 120)));
        std::generate(entries.begin(), entries.end(),
                      [&] { return static_cast<size_t>(random.oneOf(sizes)); });
        LayerStore store(random.oneOf<int>({100, 120, 200, 1000}));
        Program program(store, entries);
        ASSERT_TRUE(program.makeAll()) << "seed " << seed;
        thinned += kept(store, entries.size()).size() < entries.size() ? 1 : 0;
        ASSERT_TRUE(program.goBack()) << "seed " << seed;
    }
    EXPECT_GT(thinned, 100);
}

TEST(LayerStore, KeepsForGoodWhatIsThereAtARestart)
{
    LayerStore store(100);
    for (size_t layer = 0; layer < 6; ++layer) {
        ASSERT_NE(store.add(layer, 10), nullptr);
    }
    store.restartBehind(3);
    EXPECT_EQ(kept(store, 6), (std::vector<size_t>{0, 1, 2, 3}));
    EXPECT_EQ(store.used(), 40U);
    for (size_t layer = 4; layer < 40; ++layer) {
        ASSERT_NE(store.add(layer, 10), nullptr) << layer;
    }
    const std::vector<size_t> left = kept(store, 4);
    EXPECT_EQ(left, (std::vector<size_t>{0, 1, 2, 3}));
    EXPECT_NE(store.at(39), nullptr);
}

TEST(LayerStore, TellsFromWhereLayersAreMadeAgain)
{
    LayerStore store(100);
    Program program(store, std::vector<size_t>(9, 20)); // room for five of them
    ASSERT_TRUE(program.makeAll());
    size_t gone = 0;
    while (store.at(gone) != nullptr) {
        ++gone;
    }
    ASSERT_LT(gone, 9U);
    const size_t before = store.lastUpTo(gone);
    std::vector<size_t> begins;
    const auto make = [&](size_t layer) { return program.make(layer); };
    for (int i = 0; i < 2; ++i) { // the second time it is there
        EXPECT_TRUE(store.makeAgain(
            gone, [&](size_t from) { begins.push_back(from); }, make));
    }
    EXPECT_EQ(begins, std::vector<size_t>{before});
    EXPECT_TRUE(program.isWhole(gone));
}

TEST(LayerStore, FindsTheLastLayerUpToOne)
{
    LayerStore store(100);
    EXPECT_EQ(store.lastUpTo(5), LayerStore::NONE);
    for (const size_t layer : {2U, 5U, 9U}) {
        ASSERT_NE(store.add(layer, 1), nullptr);
    }
    EXPECT_EQ(store.lastUpTo(1), LayerStore::NONE);
    EXPECT_EQ(store.lastUpTo(2), 2U);
    EXPECT_EQ(store.lastUpTo(8), 5U);
    EXPECT_EQ(store.lastUpTo(100), 9U);
}

TEST(LayerStore, ForgetsAllLayersWhenItIsClearedOrRestartedFromNone)
{
    const std::vector<std::function<void(LayerStore&)>> ways{
        [](LayerStore& store) { store.clear(); },
        [](LayerStore& store) { store.restartBehind(LayerStore::NONE); }};
    for (const auto& forget : ways) {
        LayerStore store(10);
        ASSERT_NE(store.add(0, 5), nullptr);
        ASSERT_NE(store.add(1, 5), nullptr);
        forget(store);
        EXPECT_EQ(store.used(), 0U);
        EXPECT_EQ(kept(store, 2), std::vector<size_t>{});
        EXPECT_NE(store.add(0, 10), nullptr);
    }
}

TEST(LayerStore, NeedNotMoveLayersWithinWhatIsReserved)
{
    LayerStore store(1000);
    store.reserve(300);
    const int32_t* const first = store.add(0, 100);
    ASSERT_NE(store.add(1, 200), nullptr);
    EXPECT_EQ(store.at(0), first);
}

TEST(LayerStore, HasAPlaceForALayerOfNothing)
{
    LayerStore store(0);
    EXPECT_NE(store.add(0, 0), nullptr);
    EXPECT_NE(store.at(0), nullptr);
    EXPECT_EQ(store.at(1), nullptr);
}

} // namespace
