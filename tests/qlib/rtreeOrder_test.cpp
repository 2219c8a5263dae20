// SPDX-License-Identifier: BSD-3-Clause
// The order in which a search reports its hits reaches the report of a run, so it is checked to the last
// place: against the same rules written a second time, as plainly as they can be said.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <sstream>

#include "qlib/boxes.h"
#include "support/property.h"

namespace {

using test::Box;
using test::BoxTree;

/// Area of the circle around a rectangle.
float circle(const Box& box)
{
    const float halfX = (static_cast<float>(box.xh) - static_cast<float>(box.xl)) * 0.5F;
    const float halfY = (static_cast<float>(box.yh) - static_cast<float>(box.yl)) * 0.5F;
    const float squareX = halfX * halfX;
    const float squareY = halfY * halfY;
    const float r = std::sqrt(squareX + squareY);
    const float rr = r * r;
    return rr * 3.141593F;
}

Box join(const Box& a, const Box& b)
{
    return {std::min(a.xl, b.xl), std::min(a.yl, b.yl), std::max(a.xh, b.xh), std::max(a.yh, b.yh)};
}

bool share(const Box& a, const Box& b)
{
    return !(a.xl > b.xh || b.xl > a.xh || a.yl > b.yh || b.yl > a.yh);
}

/// The index once more: nodes of vectors, one rule after the other.
class PlainTree {
public:
    void insert(const Box& box, int item)
    {
        std::unique_ptr<Node> half = insertBelow(*m_root, box, item);
        if (half == nullptr) {
            return;
        }
        auto grown = std::make_unique<Node>();
        grown->level = m_root->level + 1;
        const Box first = cover(*m_root);
        const Box second = cover(*half);
        grown->entries.push_back({first, -1, std::move(m_root)});
        grown->entries.push_back({second, -1, std::move(half)});
        m_root = std::move(grown);
    }

    std::vector<int> search(const Box& query) const
    {
        std::vector<int> hits;
        searchBelow(*m_root, query, hits);
        return hits;
    }

    /// The whole tree in one line, to compare and to read.
    std::string text() const
    {
        std::ostringstream out;
        write(out, *m_root);
        return out.str();
    }

private:
    struct Node;

    struct Entry {
        Box box;
        int item;
        std::unique_ptr<Node> child;
    };

    struct Node {
        int level = 0;
        std::vector<Entry> entries;
    };

    static constexpr size_t MOST = 8;
    static constexpr size_t LEAST = 4;

    static Box cover(const Node& node)
    {
        Box all = node.entries.front().box;
        for (const Entry& entry : node.entries) {
            all = join(all, entry.box);
        }
        return all;
    }

    /// @return the second half of the node if it was split
    static std::unique_ptr<Node> insertBelow(Node& node, const Box& box, int item)
    {
        if (node.level == 0) {
            node.entries.push_back({box, item, nullptr});
        } else {
            Entry& entry = node.entries[cheapest(node, box)];
            std::unique_ptr<Node> half = insertBelow(*entry.child, box, item);
            if (half == nullptr) {
                entry.box = join(entry.box, box);
            } else {
                entry.box = cover(*entry.child);
                const Box halfBox = cover(*half);
                node.entries.push_back({halfBox, -1, std::move(half)});
            }
        }
        return node.entries.size() > MOST ? split(node) : nullptr;
    }

    /// The entry that grows least; of equals the smallest; of equals the first.
    static size_t cheapest(const Node& node, const Box& box)
    {
        std::vector<std::pair<float, float>> growthAndSize;
        for (const Entry& entry : node.entries) {
            const float size = circle(entry.box);
            const float grown = circle(join(entry.box, box));
            growthAndSize.emplace_back(grown - size, size);
        }
        const auto least = std::min_element(growthAndSize.begin(), growthAndSize.end());
        return static_cast<size_t>(least - growthAndSize.begin());
    }

    /// The two groups of a split.
    struct Groups {
        explicit Groups(const std::vector<Entry>& all) : entries(all), groupOf(all.size(), -1) {}

        void put(size_t i, size_t group)
        {
            groupOf[i] = static_cast<int>(group);
            bounds[group] = count[group] == 0 ? entries[i].box : join(bounds[group], entries[i].box);
            ++count[group];
        }

        float growth(size_t i, size_t group) const
        {
            const float grown = circle(join(entries[i].box, bounds[group]));
            return grown - circle(bounds[group]);
        }

        const std::vector<Entry>& entries;
        std::vector<int> groupOf;
        Box bounds[2];
        size_t count[2] = {0, 0};
    };

    static void putSeeds(Groups& groups, const Box& all)
    {
        size_t first = 0;
        size_t second = 1;
        float worst = -circle(all) - 1;
        for (size_t a = 0; a < groups.entries.size(); ++a) {
            for (size_t b = a + 1; b < groups.entries.size(); ++b) {
                const Box& boxA = groups.entries[a].box;
                const Box& boxB = groups.entries[b].box;
                float waste = circle(join(boxA, boxB));
                waste -= circle(boxA);
                waste -= circle(boxB);
                if (waste > worst) {
                    worst = waste;
                    first = a;
                    second = b;
                }
            }
        }
        groups.put(first, 0);
        groups.put(second, 1);
    }

    /// Puts the entry that prefers its group most strongly; of equals the first, unless a later one prefers
    /// the group that is smaller than the one chosen so far.
    static void putNext(Groups& groups)
    {
        float biggest = -1;
        size_t chosen = 0;
        size_t chosenGroup = 0;
        for (size_t i = 0; i < groups.entries.size(); ++i) {
            if (groups.groupOf[i] != -1) {
                continue;
            }
            float diff = groups.growth(i, 1) - groups.growth(i, 0);
            size_t group = 0;
            if (!(diff >= 0)) {
                group = 1;
                diff = -diff;
            }
            const bool isStronger = diff > biggest;
            const bool isEqual = diff == biggest;
            if (isStronger || (isEqual && groups.count[group] < groups.count[chosenGroup])) {
                chosen = i;
                chosenGroup = group;
            }
            if (isStronger) {
                biggest = diff;
            }
        }
        groups.put(chosen, chosenGroup);
    }

    /// Keeps the first group in the node.
    ///
    /// @return a node of the second group
    static std::unique_ptr<Node> split(Node& node)
    {
        const size_t total = node.entries.size();
        Groups groups(node.entries);
        putSeeds(groups, cover(node));
        while (groups.count[0] < total - LEAST && groups.count[1] < total - LEAST) {
            putNext(groups);
        }
        const size_t rest = groups.count[0] >= total - LEAST ? 1 : 0;
        for (size_t i = 0; i < total; ++i) {
            if (groups.groupOf[i] == -1) {
                groups.put(i, rest);
            }
        }
        auto half = std::make_unique<Node>();
        half->level = node.level;
        std::vector<Entry> kept;
        for (size_t i = 0; i < total; ++i) {
            (groups.groupOf[i] == 0 ? kept : half->entries).push_back(std::move(node.entries[i]));
        }
        node.entries = std::move(kept);
        return half;
    }

    static void searchBelow(const Node& node, const Box& query, std::vector<int>& hits)
    {
        for (const Entry& entry : node.entries) {
            if (!share(entry.box, query)) {
                continue;
            }
            if (node.level > 0) {
                searchBelow(*entry.child, query, hits);
            } else {
                hits.push_back(entry.item);
            }
        }
    }

    static void write(std::ostream& out, const Node& node)
    {
        out << node.level << '[';
        for (const Entry& entry : node.entries) {
            out << ' ' << entry.box;
            if (node.level > 0) {
                write(out, *entry.child);
            } else {
                out << '#' << entry.item;
            }
        }
        out << ']';
    }

    std::unique_ptr<Node> m_root = std::make_unique<Node>();
};

/// A subtree in the form of PlainTree::text().
void write(std::ostream& out, const BoxTree::Node& node, const std::vector<Box>& boxes)
{
    out << node.level << '[';
    for (int32_t i = 0; i < node.count; ++i) {
        const BoxTree::Rect& rect = node.branch[i].rect;
        out << ' ' << Box{rect.min[0], rect.min[1], rect.max[0], rect.max[1]};
        if (node.level > 0) {
            write(out, *node.branch[i].child, boxes);
        } else {
            out << '#' << node.branch[i].data - boxes.data();
        }
    }
    out << ']';
}

std::string text(const BoxTree& tree, const std::vector<Box>& boxes)
{
    std::ostringstream out;
    write(out, *tree.root, boxes);
    return out.str();
}

PlainTree plainTreeOf(const std::vector<Box>& boxes)
{
    PlainTree plain;
    for (size_t i = 0; i < boxes.size(); ++i) {
        plain.insert(boxes[i], static_cast<int>(i));
    }
    return plain;
}

PROPERTY(RTreeOrder, EveryInsertionGivesTheTreeThatThePlainRulesGive)
{
    test::BoxesAndQueries picked = test::pickBoxes(60);
    BoxTree tree;
    PlainTree plain;
    for (size_t i = 0; i < picked.boxes.size(); ++i) {
        Box& box = picked.boxes[i];
        qLib::insertItem(tree, &box, box.xl, box.yl, box.xh, box.yh);
        plain.insert(box, static_cast<int>(i));
        RC_ASSERT(text(tree, picked.boxes) == plain.text());
    }
}

PROPERTY(RTreeOrder, SearchReportsInTheOrderThatThePlainRulesGive)
{
    test::BoxesAndQueries picked = test::pickBoxes(300);
    BoxTree tree;
    test::insertAll(tree, picked.boxes);
    const PlainTree plain = plainTreeOf(picked.boxes);
    for (const Box& query : picked.queries) {
        RC_ASSERT(test::found(tree, picked.boxes, query) == plain.search(query));
    }
}

TEST(RTreeOrder, RowsOfSegmentsAreReportedInTheOrderThatThePlainRulesGive)
{
    // Equal heights, equal widths and shared edges: nearly every choice is a tie or close to one.
    std::mt19937 random(7);
    std::vector<Box> boxes;
    for (int32_t row = 0; row < 60; ++row) {
        for (int32_t x = 0; x < 60;) {
            const auto sites = static_cast<int32_t>(1 + random() % 12);
            boxes.push_back({x * 380, row * 2800, (x + sites) * 380, row * 2800 + 2800});
            x += sites + static_cast<int32_t>(random() % 2);
        }
    }
    ASSERT_GT(boxes.size(), 400U);
    BoxTree tree;
    test::insertAll(tree, boxes);
    const PlainTree plain = plainTreeOf(boxes);
    EXPECT_EQ(text(tree, boxes), plain.text());
    for (int i = 0; i < 100; ++i) {
        const auto x = static_cast<int32_t>(random() % 22800);
        const auto y = static_cast<int32_t>(random() % 168000);
        const Box query{x, y, x + 4000, y + 6000};
        EXPECT_EQ(test::found(tree, boxes, query), plain.search(query)) << query;
    }
}

TEST(RTreeOrder, TiesOfTwoGroupsAreReportedInTheOrderThatThePlainRulesGive)
{
    // Points on a tiny grid, and nothing else: many are equally far from both groups.
    for (uint32_t seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        std::vector<Box> boxes;
        for (int i = 0; i < 40; ++i) {
            const auto x = static_cast<int32_t>(random() % 4);
            const auto y = static_cast<int32_t>(random() % 3);
            boxes.push_back({x, y, x, y});
        }
        BoxTree tree;
        test::insertAll(tree, boxes);
        ASSERT_EQ(text(tree, boxes), plainTreeOf(boxes).text()) << "seed " << seed;
    }
}

} // namespace
