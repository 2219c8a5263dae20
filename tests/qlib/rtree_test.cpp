// SPDX-License-Identifier: BSD-3-Clause
#include "qlib/rtree.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numeric>
#include <random>
#include <type_traits>

#include "qlib/boxes.h"
#include "support/property.h"

namespace {

using test::Box;
using test::BoxTree;
using test::EVERYWHERE;
using test::found;
using test::insertAll;
using test::scan;

BoxTree::Rect rectOf(const Box& box)
{
    return {{box.xl, box.yl}, {box.xh, box.yh}};
}

Box boxOf(const BoxTree::Rect& rect)
{
    return {rect.min[0], rect.min[1], rect.max[0], rect.max[1]};
}

Box cover(const BoxTree::Node& node)
{
    Box all = boxOf(node.branch[0].rect);
    for (int32_t i = 1; i < node.count; ++i) {
        const Box one = boxOf(node.branch[i].rect);
        all = {std::min(all.xl, one.xl), std::min(all.yl, one.yl), std::max(all.xh, one.xh),
               std::max(all.yh, one.yh)};
    }
    return all;
}

/// What is wrong with the subtree of a node: empty if nothing is.
std::string fault(const BoxTree::Node& node, bool isRoot)
{
    const int32_t least = isRoot ? (node.level > 0 ? 2 : 0) : 4;
    if (node.count < least || node.count > 8) {
        return "a node of " + std::to_string(node.count) + " entries at level " + std::to_string(node.level);
    }
    for (int32_t i = 0; i < node.count; ++i) {
        const BoxTree::Branch& branch = node.branch[i];
        if (node.level == 0) {
            if (!(boxOf(branch.rect) == *branch.data)) {
                return "a leaf entry that is not the rectangle of its item";
            }
            continue;
        }
        if (branch.child->level != node.level - 1) {
            return "level " + std::to_string(branch.child->level) + " below " + std::to_string(node.level);
        }
        if (!(boxOf(branch.rect) == cover(*branch.child))) {
            return "a branch whose rectangle is not the cover of its child";
        }
        if (std::string below = fault(*branch.child, false); !below.empty()) {
            return below;
        }
    }
    return "";
}

/// Entries in the leaves below a node.
int items(const BoxTree::Node& node)
{
    if (node.level == 0) {
        return node.count;
    }
    int sum = 0;
    for (int32_t i = 0; i < node.count; ++i) {
        sum += items(*node.branch[i].child);
    }
    return sum;
}

std::vector<Box> rowOf(int count)
{
    std::vector<Box> boxes;
    for (int i = 0; i < count; ++i) {
        boxes.push_back({i * 10, 0, i * 10 + 5, 5});
    }
    return boxes;
}

std::vector<int> upTo(int count)
{
    std::vector<int> all(static_cast<size_t>(count));
    std::iota(all.begin(), all.end(), 0);
    return all;
}

std::vector<int> sorted(std::vector<int> indices)
{
    std::sort(indices.begin(), indices.end());
    return indices;
}

TEST(RTree, NewTreeIsOneEmptyLeaf)
{
    const BoxTree tree;
    ASSERT_NE(tree.root, nullptr);
    EXPECT_EQ(tree.root->count, 0);
    EXPECT_EQ(tree.root->level, 0);
    EXPECT_FALSE(tree.root->isInternal());
}

TEST(RTree, FreshNodeHasNoPlaceYet)
{
    const BoxTree::Node node{};
    EXPECT_EQ(node.count, 0);
    EXPECT_EQ(node.level, -1);
    EXPECT_FALSE(node.isInternal());
}

TEST(RTree, OnlyTheDestructorIsVirtualAndOnlyRootAndUnitCircleAreKept)
{
    struct Same {
        virtual ~Same() = default;
        BoxTree::Node* root;
        float unitSphereVolume;
    };
    static_assert(std::has_virtual_destructor_v<BoxTree>);
    static_assert(sizeof(BoxTree) == sizeof(Same));
    static_assert(!std::is_copy_constructible_v<BoxTree> && !std::is_copy_assignable_v<BoxTree>);
    const BoxTree tree;
    EXPECT_LT(static_cast<const void*>(&tree.root), static_cast<const void*>(&tree.unitSphereVolume));
}

TEST(RTree, UnitCircleIsOneUnitInTheLastPlaceAbovePi)
{
    const auto pi = static_cast<float>(3.14159265358979323846);
    EXPECT_EQ(BoxTree().unitSphereVolume, std::nextafter(pi, 4.0F));
}

TEST(RTree, SearchOfAnEmptyTreeReportsNothing)
{
    BoxTree tree;
    BoxTree::Rect query = rectOf(EVERYWHERE);
    int count = 0;
    const auto fail = [](Box*, void*) {
        ADD_FAILURE() << "an item in an empty tree";
        return true;
    };
    EXPECT_TRUE(tree.Search(tree.root, &query, count, fail, nullptr));
    EXPECT_EQ(count, 0);
}

struct TouchCase {
    const char* name;
    Box query;
    bool isHit;
};

void PrintTo(const TouchCase& row, std::ostream* out)
{
    *out << row.name;
}

class RTreeTouch : public testing::TestWithParam<TouchCase> {};

TEST_P(RTreeTouch, QueryThatOnlyTouchesAnItemReportsIt)
{
    std::vector<Box> boxes{{100, 200, 300, 400}};
    BoxTree tree;
    insertAll(tree, boxes);
    EXPECT_EQ(found(tree, boxes, GetParam().query).size(), GetParam().isHit ? 1U : 0U);
}

const TouchCase TOUCHES[] = {
    {"inside", {150, 250, 160, 260}, true},
    {"around", {0, 0, 1000, 1000}, true},
    {"across", {0, 300, 1000, 310}, true},
    {"left_edge", {0, 250, 100, 260}, true},
    {"right_edge", {300, 250, 900, 260}, true},
    {"bottom_edge", {150, 0, 160, 200}, true},
    {"top_edge", {150, 400, 160, 900}, true},
    {"lower_left_corner", {0, 0, 100, 200}, true},
    {"upper_right_corner", {300, 400, 900, 900}, true},
    {"point_on_a_corner", {300, 200, 300, 200}, true},
    {"one_short_of_the_left", {0, 250, 99, 260}, false},
    {"one_past_the_right", {301, 250, 900, 260}, false},
    {"one_short_of_the_bottom", {150, 0, 160, 199}, false},
    {"one_past_the_top", {150, 401, 160, 900}, false},
};
INSTANTIATE_TEST_SUITE_P(Query, RTreeTouch, testing::ValuesIn(TOUCHES),
                         [](const auto& row) { return row.param.name; });

TEST(RTree, NinthInsertionIntoOneLeafSplitsIt)
{
    std::vector<Box> boxes = rowOf(9);
    BoxTree tree;
    for (size_t i = 0; i < 8; ++i) {
        BoxTree::Rect rect = rectOf(boxes[i]);
        EXPECT_FALSE(tree.InsertRect(&rect, &boxes[i], &tree.root, 0));
        EXPECT_EQ(tree.root->level, 0);
        EXPECT_EQ(tree.root->count, static_cast<int32_t>(i) + 1);
    }
    const BoxTree::Node* const leaf = tree.root;
    BoxTree::Rect rect = rectOf(boxes[8]);
    EXPECT_TRUE(tree.InsertRect(&rect, &boxes[8], &tree.root, 0));
    ASSERT_EQ(tree.root->level, 1);
    ASSERT_EQ(tree.root->count, 2);
    EXPECT_EQ(tree.root->branch[0].child, leaf) << "the old root is the first branch of the new one";
    EXPECT_GE(tree.root->branch[0].child->count, 4);
    EXPECT_GE(tree.root->branch[1].child->count, 4);
    EXPECT_EQ(items(*tree.root), 9);
}

TEST(RTree, IdenticalRectanglesAreAllKeptAndAllReported)
{
    std::vector<Box> boxes(100, Box{10, 20, 30, 40});
    BoxTree tree;
    insertAll(tree, boxes);
    EXPECT_EQ(sorted(found(tree, boxes, {30, 40, 30, 40})), upTo(100));
    EXPECT_EQ(fault(*tree.root, true), "");
}

TEST(RTree, IdenticalLargeRectanglesAreAllKeptToo)
{
    // Here the waste of every pair is the least that a float can tell, so that no pair is worse than another.
    std::vector<Box> boxes(100, Box{-2000000000, -2000000000, 2000000000, 2000000000});
    BoxTree tree;
    insertAll(tree, boxes);
    EXPECT_EQ(sorted(found(tree, boxes, {0, 0, 0, 0})), upTo(100));
    EXPECT_EQ(fault(*tree.root, true), "");
}

TEST(RTree, OneItemInsertedTwiceIsReportedTwice)
{
    std::vector<Box> boxes{{0, 0, 5, 5}};
    BoxTree tree;
    insertAll(tree, boxes);
    insertAll(tree, boxes);
    EXPECT_EQ(found(tree, boxes, {1, 1, 2, 2}), (std::vector<int>{0, 0}));
}

TEST(RTree, DegenerateRectanglesAreStoredAndFoundLikeAnyOther)
{
    std::vector<Box> boxes;
    for (int i = 0; i < 10; ++i) {
        boxes.push_back({i * 10, 0, i * 10, 100});             // no width
        boxes.push_back({0, i * 10, 100, i * 10});             // no height
        boxes.push_back({i * 10, i * 10, i * 10, i * 10});     // a point
        boxes.push_back({i * 10, i * 10, i * 10 + 9, i * 10}); // no height
    }
    BoxTree tree;
    insertAll(tree, boxes);
    EXPECT_EQ(sorted(found(tree, boxes, EVERYWHERE)), upTo(40));
    for (const Box& box : boxes) {
        EXPECT_EQ(sorted(found(tree, boxes, box)), scan(boxes, box)) << box;
    }
    EXPECT_EQ(fault(*tree.root, true), "");
}

/// Stops a search at the hit that the context counts down to.
bool stopAtZero(Box* /*item*/, void* context)
{
    return --*static_cast<int*>(context) > 0;
}

TEST(RTree, CallbackThatReturnsFalseAfterTheFirstHitStopsTheSearch)
{
    std::vector<Box> boxes = rowOf(200);
    BoxTree tree;
    insertAll(tree, boxes);
    BoxTree::Rect query = rectOf(EVERYWHERE);
    int count = 0;
    int hitsToTake = 1;
    EXPECT_FALSE(tree.Search(tree.root, &query, count, stopAtZero, &hitsToTake));
    EXPECT_EQ(count, 1);
}

TEST(RTree, CallbackStopsTheSearchAtAnyDepth)
{
    std::vector<Box> boxes = rowOf(200);
    BoxTree tree;
    insertAll(tree, boxes);
    ASSERT_GE(tree.root->level, 2);
    BoxTree::Rect query = rectOf(EVERYWHERE);
    for (int stopAt = 1; stopAt <= 200; ++stopAt) {
        int count = 0;
        int hitsToTake = stopAt;
        EXPECT_FALSE(tree.Search(tree.root, &query, count, stopAtZero, &hitsToTake));
        EXPECT_EQ(count, stopAt);
    }
    int count = 0;
    int hitsToTake = 201;
    EXPECT_TRUE(tree.Search(tree.root, &query, count, stopAtZero, &hitsToTake));
    EXPECT_EQ(count, 200);
}

TEST(RTree, SearchAddsToTheCounterThatItIsGiven)
{
    std::vector<Box> boxes = rowOf(20);
    BoxTree tree;
    insertAll(tree, boxes);
    BoxTree::Rect query = rectOf({0, 0, 45, 5});
    int count = 7;
    qLib::qLibRTree<Box>::s_searchResult.clear();
    EXPECT_TRUE(tree.Search(tree.root, &query, count, qLib::qLibRTree<Box>::rtreeSearchCB, nullptr));
    EXPECT_EQ(count, 7 + 5);
    EXPECT_EQ(qLib::qLibRTree<Box>::s_searchResult.size(), 5U);
}

TEST(RTree, SearchHandsTheContextToTheCallback)
{
    std::vector<Box> boxes = rowOf(20);
    BoxTree tree;
    insertAll(tree, boxes);
    BoxTree::Rect query = rectOf(EVERYWHERE);
    std::vector<Box*> hits;
    const auto collect = [](Box* item, void* context) {
        static_cast<std::vector<Box*>*>(context)->push_back(item);
        return true;
    };
    int count = 0;
    EXPECT_TRUE(tree.Search(tree.root, &query, count, collect, &hits));
    ASSERT_EQ(hits.size(), 20U);
    std::sort(hits.begin(), hits.end());
    for (size_t i = 0; i < hits.size(); ++i) {
        EXPECT_EQ(hits[i], &boxes[i]);
    }
}

TEST(RTree, SearchOfASubtreeStaysInIt)
{
    std::vector<Box> boxes = rowOf(30);
    BoxTree tree;
    insertAll(tree, boxes);
    ASSERT_GT(tree.root->level, 0);
    BoxTree::Rect query = rectOf(EVERYWHERE);
    int all = 0;
    for (int32_t i = 0; i < tree.root->count; ++i) {
        BoxTree::Node* const child = tree.root->branch[i].child;
        int count = 0;
        EXPECT_TRUE(tree.Search(child, &query, count, qLib::qLibRTree<Box>::rtreeSearchCB, nullptr));
        EXPECT_EQ(count, items(*child));
        all += count;
    }
    EXPECT_EQ(all, 30);
}

TEST(RTree, SearchGoesDepthFirstInIndexOrder)
{
    std::vector<Box> boxes = rowOf(30);
    BoxTree tree;
    insertAll(tree, boxes);
    ASSERT_EQ(tree.root->level, 1);
    std::vector<int> want;
    for (int32_t i = 0; i < tree.root->count; ++i) {
        const BoxTree::Node& leaf = *tree.root->branch[i].child;
        for (int32_t k = 0; k < leaf.count; ++k) {
            want.push_back(static_cast<int>(leaf.branch[k].data - boxes.data()));
        }
    }
    EXPECT_EQ(found(tree, boxes, EVERYWHERE), want);
}

TEST(RTree, DestroyingATreeLeavesTheItemsAlive)
{
    std::vector<Box> boxes = rowOf(50);
    {
        BoxTree tree;
        insertAll(tree, boxes);
    }
    EXPECT_EQ(boxes, rowOf(50));
}

TEST(RTree, ClearedTreeIsEmptyAndTakesNewItems)
{
    std::vector<Box> boxes = rowOf(50);
    BoxTree tree;
    insertAll(tree, boxes);
    tree.clear();
    EXPECT_EQ(tree.root->level, 0);
    EXPECT_TRUE(found(tree, boxes, EVERYWHERE).empty());
    insertAll(tree, boxes);
    EXPECT_EQ(found(tree, boxes, EVERYWHERE).size(), 50U);
}

/// A coordinate that counts how many of its kind there are: every node holds the same number of them.
struct CountedCoord {
    CountedCoord(int32_t v = 0) : value(v) { ++s_alive; }
    CountedCoord(const CountedCoord& other) : value(other.value) { ++s_alive; }
    CountedCoord& operator=(const CountedCoord&) = default;
    ~CountedCoord() { --s_alive; }

    explicit operator float() const { return static_cast<float>(value); }
    auto operator<=>(const CountedCoord& other) const { return value <=> other.value; }

    static inline int s_alive = 0;
    int32_t value;
};

using CountedTree = RTree<int*, CountedCoord, 2, float, 8, 4>;

constexpr int COORDS_OF_A_NODE = 8 * 4;

void insertRow(CountedTree& tree, int count)
{
    static int s_item = 0;
    for (int i = 0; i < count; ++i) {
        CountedTree::Rect rect{{i * 10, 0}, {i * 10 + 5, 5}};
        tree.InsertRect(&rect, &s_item, &tree.root, 0);
    }
}

TEST(RemoveAllRec, FreesTheNodeAndEveryNodeBelowIt)
{
    ASSERT_EQ(CountedCoord::s_alive, 0);
    CountedTree tree;
    insertRow(tree, 200);
    ASSERT_GE(tree.root->level, 2);
    EXPECT_GT(CountedCoord::s_alive, 200 / 8 * COORDS_OF_A_NODE);
    tree.RemoveAllRec(tree.root);
    EXPECT_EQ(CountedCoord::s_alive, 0);
    tree.root = new CountedTree::Node; // what the destructor frees
}

TEST(RTree, DestructorFreesEveryNode)
{
    {
        CountedTree tree;
        EXPECT_EQ(CountedCoord::s_alive, COORDS_OF_A_NODE);
        insertRow(tree, 200);
    }
    EXPECT_EQ(CountedCoord::s_alive, 0);
}

TEST(RTree, ClearFreesEveryNodeButTheNewRoot)
{
    CountedTree tree;
    insertRow(tree, 200);
    tree.clear();
    EXPECT_EQ(CountedCoord::s_alive, COORDS_OF_A_NODE);
}

TEST(InsertRectRec, NothingIsInsertedBelowALeaf)
{
    std::vector<Box> boxes = rowOf(3);
    BoxTree tree;
    insertAll(tree, boxes);
    BoxTree::Rect rect = rectOf(boxes[0]);
    BoxTree::Node* newNode = nullptr;
    EXPECT_FALSE(tree.InsertRectRec(&rect, boxes.data(), tree.root, &newNode, /*level=*/1));
    EXPECT_EQ(newNode, nullptr);
    EXPECT_EQ(tree.root->count, 3);
    EXPECT_FALSE(tree.InsertRect(&rect, boxes.data(), &tree.root, /*level=*/1));
    EXPECT_EQ(tree.root->count, 3);
}

TEST(InsertRectRec, FullLeafIsSplitAndHandsOutTheSecondHalf)
{
    std::vector<Box> boxes = rowOf(9);
    BoxTree tree;
    for (size_t i = 0; i < 8; ++i) {
        BoxTree::Rect rect = rectOf(boxes[i]);
        BoxTree::Node* newNode = nullptr;
        EXPECT_FALSE(tree.InsertRectRec(&rect, &boxes[i], tree.root, &newNode, 0));
        EXPECT_EQ(newNode, nullptr);
    }
    BoxTree::Rect rect = rectOf(boxes[8]);
    BoxTree::Node* newNode = nullptr;
    EXPECT_TRUE(tree.InsertRectRec(&rect, &boxes[8], tree.root, &newNode, 0));
    ASSERT_NE(newNode, nullptr);
    EXPECT_EQ(newNode->level, 0);
    EXPECT_EQ(tree.root->level, 0);
    EXPECT_EQ(tree.root->count + newNode->count, 9);
    tree.RemoveAllRec(newNode);
}

TEST(InsertRectRec, BranchGrowsByTheRectangleWhenTheChildIsNotSplit)
{
    std::vector<Box> boxes = rowOf(9);
    boxes.push_back({-50, -60, -40, -30});
    BoxTree tree;
    insertAll(tree, boxes);
    ASSERT_EQ(tree.root->count, 2);
    const Box first = boxOf(tree.root->branch[0].rect);
    EXPECT_EQ(first.xl, -50);
    EXPECT_EQ(first.yl, -60);
    EXPECT_EQ(first.yh, 5);
    EXPECT_EQ(fault(*tree.root, true), "");
}

TEST(SplitNode, BothHalvesKeepTheLevelAndTheOrderOfTheBranches)
{
    std::vector<Box> boxes = rowOf(9);
    BoxTree tree;
    auto* node = new BoxTree::Node;
    node->level = 0;
    node->count = 8;
    for (size_t i = 0; i < 8; ++i) {
        node->branch[i].rect = rectOf(boxes[i]);
        node->branch[i].data = &boxes[i];
    }
    BoxTree::Branch branch;
    branch.rect = rectOf(boxes[8]);
    branch.data = &boxes[8];
    BoxTree::Node* newNode = nullptr;
    tree.SplitNode(node, &branch, &newNode);
    ASSERT_NE(newNode, nullptr);
    std::vector<const Box*> order;
    for (const BoxTree::Node* half : {node, newNode}) {
        EXPECT_EQ(half->level, 0);
        for (int32_t i = 0; i < half->count; ++i) {
            order.push_back(half->branch[i].data);
            EXPECT_EQ(boxOf(half->branch[i].rect), *half->branch[i].data);
        }
    }
    // A row of nine equal boxes: the leftmost and the rightmost are the seeds, each half is in index order.
    ASSERT_EQ(order.size(), 9U);
    EXPECT_EQ(order.front(), &boxes[0]);
    EXPECT_EQ(order.back(), &boxes[8]);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_GE(node->count, 4);
    EXPECT_GE(newNode->count, 4);
    tree.RemoveAllRec(node);
    tree.RemoveAllRec(newNode);
}

/// The work area of a split as it is when the branches are to be divided.
BoxTree::PartitionVars workArea(const std::array<Box, 9>& boxes)
{
    BoxTree::PartitionVars vars{};
    vars.branchCount = 9;
    Box all = boxes[0];
    for (size_t i = 0; i < boxes.size(); ++i) {
        vars.branchBuf[i].rect = rectOf(boxes[i]);
        all = {std::min(all.xl, boxes[i].xl), std::min(all.yl, boxes[i].yl), std::max(all.xh, boxes[i].xh),
               std::max(all.yh, boxes[i].yh)};
    }
    vars.coverSplit = rectOf(all);
    const float halfWidth = static_cast<float>(all.xh - all.xl) / 2;
    const float halfHeight = static_cast<float>(all.yh - all.yl) / 2;
    const float radius = std::sqrt(halfWidth * halfWidth + halfHeight * halfHeight);
    vars.coverSplitArea = radius * radius * 3.141593F;
    return vars;
}

/// The branches of each group after PickSeeds().
std::array<int, 2> seeds(const std::array<Box, 9>& boxes)
{
    BoxTree::PartitionVars vars = workArea(boxes);
    vars.total = 9;
    std::fill_n(vars.partition, 9, -1);
    BoxTree tree;
    tree.PickSeeds(&vars);
    std::array<int, 2> picked{-1, -1};
    for (int i = 0; i < 9; ++i) {
        if (vars.partition[i] >= 0) {
            picked.at(static_cast<size_t>(vars.partition[i])) = i;
            EXPECT_EQ(vars.taken[i], 1);
        }
    }
    EXPECT_EQ(vars.count[0], 1);
    EXPECT_EQ(vars.count[1], 1);
    return picked;
}

TEST(PickSeeds, PairThatWastesMostStartsTheGroups)
{
    std::array<Box, 9> boxes;
    boxes.fill({100, 100, 110, 110});
    boxes[3] = {0, 0, 10, 10};
    boxes[6] = {500, 500, 510, 510};
    EXPECT_EQ(seeds(boxes), (std::array<int, 2>{3, 6}));
}

TEST(PickSeeds, OfEqualPairsTheEarliestIsKept)
{
    std::array<Box, 9> boxes;
    boxes.fill({100, 100, 110, 110});
    EXPECT_EQ(seeds(boxes), (std::array<int, 2>{0, 1}));
    boxes[2] = boxes[4] = {0, 100, 10, 110};
    boxes[7] = boxes[8] = {500, 100, 510, 110};
    EXPECT_EQ(seeds(boxes), (std::array<int, 2>{2, 7}));
}

TEST(PickSeeds, WhereEveryPairOverlapsTheOneThatSavesLeastIsTaken)
{
    std::array<Box, 9> boxes;
    boxes.fill({0, 0, 100, 100});
    boxes[8] = {40, 40, 60, 60};
    EXPECT_EQ(seeds(boxes), (std::array<int, 2>{0, 8}));
}

TEST(PickSeeds, SizeIsThatOfTheCircleAroundARectangle)
{
    // A long thin rectangle has a large circle and no area. By areas, the pair of it and any other box would
    // waste most; by circles it wastes less than the two far points.
    std::array<Box, 9> boxes;
    boxes.fill({500, 0, 500, 0});
    boxes[2] = {0, 0, 1000, 0};
    boxes[4] = {500, 400, 500, 400};
    boxes[5] = {500, -400, 500, -400};
    EXPECT_EQ(seeds(boxes), (std::array<int, 2>{4, 5}));
}

TEST(ChoosePartition, EveryBranchGetsAGroupAndEachGroupItsCover)
{
    std::array<Box, 9> boxes;
    for (size_t i = 0; i < boxes.size(); ++i) {
        const auto x = static_cast<int32_t>(i * i * 10);
        boxes.at(i) = {x, 0, x + 5, 5};
    }
    BoxTree::PartitionVars vars = workArea(boxes);
    BoxTree tree;
    tree.ChoosePartition(&vars, /*minFill=*/4);
    EXPECT_EQ(vars.total, 9);
    EXPECT_EQ(vars.minFill, 4);
    const std::vector<int32_t> groups(vars.partition, vars.partition + 9);
    // The boxes stand closer and closer to the left, so that the left group is the larger one.
    EXPECT_EQ(groups, (std::vector<int32_t>{0, 0, 0, 0, 0, 1, 1, 1, 1}));
    EXPECT_EQ(vars.count[0], 5);
    EXPECT_EQ(vars.count[1], 4);
    EXPECT_EQ(boxOf(vars.cover[0]), (Box{0, 0, 165, 5}));
    EXPECT_EQ(boxOf(vars.cover[1]), (Box{250, 0, 645, 5}));
    EXPECT_GT(vars.area[1], vars.area[0]);
    for (const int32_t taken : vars.taken) {
        EXPECT_EQ(taken, 1);
    }
}

TEST(ChoosePartition, LeftoversFillTheSmallerGroup)
{
    std::array<Box, 9> boxes;
    boxes.fill({0, 0, 10, 10});
    boxes[4] = {1000, 1000, 1010, 1010};
    BoxTree::PartitionVars vars = workArea(boxes);
    BoxTree tree;
    tree.ChoosePartition(&vars, 4);
    // The first box and the far one are the seeds; four more of the crowd join the first, then it is full.
    const std::vector<int32_t> groups(vars.partition, vars.partition + 9);
    EXPECT_EQ(groups, (std::vector<int32_t>{0, 0, 0, 0, 1, 0, 1, 1, 1}));
}

TEST(ChoosePartition, LeftoversOfAFullSecondGroupGoToTheFirst)
{
    std::array<Box, 9> boxes;
    boxes.fill({0, 0, 10, 10});
    boxes[0] = {1000, 1000, 1010, 1010};
    BoxTree::PartitionVars vars = workArea(boxes);
    BoxTree tree;
    tree.ChoosePartition(&vars, 4);
    const std::vector<int32_t> groups(vars.partition, vars.partition + 9);
    EXPECT_EQ(groups, (std::vector<int32_t>{0, 1, 1, 1, 1, 1, 0, 0, 0}));
}

TEST(ChoosePartition, LeastFillIsThatOfTheArgument)
{
    std::array<Box, 9> boxes;
    boxes.fill({0, 0, 10, 10});
    boxes[8] = {1000, 1000, 1010, 1010};
    BoxTree::PartitionVars vars = workArea(boxes);
    BoxTree tree;
    tree.ChoosePartition(&vars, /*minFill=*/1);
    EXPECT_EQ(vars.count[0], 8);
    EXPECT_EQ(vars.count[1], 1);
}

PROPERTY(RTree, FindsWhatALookAtEveryRectangleFinds)
{
    test::BoxesAndQueries picked = test::pickBoxes(150);
    BoxTree tree;
    insertAll(tree, picked.boxes);
    for (const Box& query : picked.queries) {
        RC_ASSERT(sorted(found(tree, picked.boxes, query)) == scan(picked.boxes, query));
    }
}

PROPERTY(RTree, NodesKeepTheirFillLevelAndCover)
{
    test::BoxesAndQueries picked = test::pickBoxes(150);
    BoxTree tree;
    int inserted = 0;
    for (Box& box : picked.boxes) {
        const int32_t levelBefore = tree.root->level;
        BoxTree::Rect rect = rectOf(box);
        const bool grew = tree.InsertRect(&rect, &box, &tree.root, 0);
        ++inserted;
        RC_ASSERT(tree.root->level == levelBefore + (grew ? 1 : 0));
        RC_ASSERT(fault(*tree.root, true) == "");
        RC_ASSERT(items(*tree.root) == inserted);
    }
}

TEST(RTree, TenThousandRectanglesAreFoundAsALookAtEachFindsThem)
{
    std::mt19937 random(20240229);
    const auto below = [&random](uint32_t limit) { return static_cast<int32_t>(random() % limit); };
    std::vector<Box> boxes;
    for (int i = 0; i < 10000; ++i) {
        const int32_t x = below(400000);
        const int32_t y = below(400) * 1400;
        boxes.push_back({x, y, x + below(8000), y + 1400});
    }
    BoxTree tree;
    insertAll(tree, boxes);
    EXPECT_EQ(fault(*tree.root, true), "");
    for (int i = 0; i < 100; ++i) {
        const int32_t x = below(400000);
        const int32_t y = below(560000);
        const Box query{x, y, x + below(40000), y + below(20000)};
        EXPECT_EQ(sorted(found(tree, boxes, query)), scan(boxes, query)) << query;
    }
}

} // namespace
