// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/qLibRTree.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using qLib::qLibRTree;

/// A type whose result vector no other test uses.
struct Thing {
    int number = 0;
};

class SearchResult : public testing::Test {
protected:
    SearchResult() { qLibRTree<Thing>::s_searchResult.clear(); }
};

using RtreeSearchCB = SearchResult;
using SearchItems = SearchResult;
using InsertItem = SearchResult;

TEST_F(RtreeSearchCB, AppendsTheItemAndLetsTheSearchGoOn)
{
    Thing first;
    Thing second;
    EXPECT_TRUE(qLibRTree<Thing>::rtreeSearchCB(&first, nullptr));
    EXPECT_TRUE(qLibRTree<Thing>::rtreeSearchCB(&second, nullptr));
    EXPECT_TRUE(qLibRTree<Thing>::rtreeSearchCB(&first, nullptr));
    EXPECT_EQ(qLibRTree<Thing>::s_searchResult, (std::vector<Thing*>{&first, &second, &first}));
}

TEST_F(RtreeSearchCB, IgnoresTheContext)
{
    Thing thing;
    int context = 5;
    EXPECT_TRUE(qLibRTree<Thing>::rtreeSearchCB(&thing, &context));
    EXPECT_EQ(context, 5);
    EXPECT_EQ(qLibRTree<Thing>::s_searchResult, std::vector<Thing*>{&thing});
}

TEST_F(RtreeSearchCB, EveryTypeHasItsOwnResult)
{
    Thing thing;
    std::string text;
    qLibRTree<std::string>::s_searchResult.clear();
    qLibRTree<Thing>::rtreeSearchCB(&thing, nullptr);
    EXPECT_TRUE(qLibRTree<std::string>::s_searchResult.empty());
    qLibRTree<std::string>::rtreeSearchCB(&text, nullptr);
    EXPECT_EQ(qLibRTree<Thing>::s_searchResult.size(), 1U);
    EXPECT_EQ(qLibRTree<std::string>::s_searchResult.size(), 1U);
}

TEST_F(RtreeSearchCB, SearchWithItCollectsTheHits)
{
    Thing near;
    Thing far;
    qLib::PlaneTree<Thing> tree;
    qLib::insertItem(tree, &near, 0, 0, 10, 10);
    qLib::insertItem(tree, &far, 100, 100, 110, 110);
    qLib::PlaneTree<Thing>::Rect query{{0, 0}, {50, 50}};
    int count = 0;
    EXPECT_TRUE(tree.Search(tree.root, &query, count, qLibRTree<Thing>::rtreeSearchCB, nullptr));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(qLibRTree<Thing>::s_searchResult, std::vector<Thing*>{&near});
}

TEST_F(InsertItem, StoresTheCornersAsGiven)
{
    Thing thing;
    qLib::PlaneTree<Thing> tree;
    qLib::insertItem(tree, &thing, 1, 2, 3, 4);
    ASSERT_EQ(tree.root->count, 1);
    const auto& branch = tree.root->branch[0];
    EXPECT_EQ(branch.data, &thing);
    EXPECT_EQ(branch.rect.min[0], 1);
    EXPECT_EQ(branch.rect.min[1], 2);
    EXPECT_EQ(branch.rect.max[0], 3);
    EXPECT_EQ(branch.rect.max[1], 4);
}

TEST_F(InsertItem, TreeMayGrowAndItsRootFollows)
{
    std::vector<Thing> things(9);
    qLib::PlaneTree<Thing> tree;
    for (Thing& thing : things) {
        qLib::insertItem(tree, &thing, 0, 0, 1, 1);
    }
    EXPECT_EQ(tree.root->level, 1);
    EXPECT_EQ(qLib::searchItems(tree, 0, 0, 1, 1).size(), 9U);
}

TEST_F(SearchItems, SearchEmptiesTheResultOfTheOneBefore)
{
    Thing left;
    Thing right;
    qLib::PlaneTree<Thing> tree;
    qLib::insertItem(tree, &left, 0, 0, 10, 10);
    qLib::insertItem(tree, &right, 20, 0, 30, 10);
    EXPECT_EQ(qLib::searchItems(tree, 0, 0, 30, 10), (std::vector<Thing*>{&left, &right}));
    EXPECT_EQ(qLib::searchItems(tree, 25, 0, 30, 10), std::vector<Thing*>{&right});
    EXPECT_TRUE(qLib::searchItems(tree, 50, 0, 60, 10).empty());
}

TEST_F(SearchItems, ResultIsTheStaticVectorAndKeepsItsStorage)
{
    std::vector<Thing> things(100);
    qLib::PlaneTree<Thing> tree;
    for (Thing& thing : things) {
        qLib::insertItem(tree, &thing, 0, 0, 1, 1);
    }
    EXPECT_EQ(&qLib::searchItems(tree, 0, 0, 1, 1), &qLibRTree<Thing>::s_searchResult);
    const size_t capacity = qLibRTree<Thing>::s_searchResult.capacity();
    EXPECT_GE(capacity, 100U);
    EXPECT_TRUE(qLib::searchItems(tree, 5, 5, 6, 6).empty());
    EXPECT_EQ(qLibRTree<Thing>::s_searchResult.capacity(), capacity);
}

} // namespace
