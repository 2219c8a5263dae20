// SPDX-License-Identifier: BSD-3-Clause
// A spatial index of rectangles: insert, search by overlap, free. No removal, no update.
//
// Source: A. Guttman, "R-Trees: A Dynamic Index Structure for Spatial Searching", SIGMOD 1984, with its
// quadratic split. What differs: sizes are measured by the circle around a rectangle, not by its area, so
// that a rectangle without extent in one dimension still has a size.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

/// An R-tree.
///
/// The tree owns its nodes and never the data items. Bounds are inclusive: rectangles that share an edge or a
/// corner overlap.
///
/// @tparam DataType      item, the size of a pointer at most
/// @tparam ElemType      coordinate
/// @tparam NumDims       number of dimensions; the volume is that of 2
/// @tparam ElemTypeReal  floating-point type in which volumes are computed and compared
/// @tparam MaxNodes      most branches of a node
/// @tparam MinNodes      fewest branches of a node after a split
template <class DataType, class ElemType, int NumDims, class ElemTypeReal, int MaxNodes, int MinNodes>
class RTree {
    static_assert(NumDims == 2, "the volume is that of a circle");
    static_assert(MaxNodes > MinNodes && MinNodes > 0, "a split must be able to fill both halves");

public:
    struct Node;

    /// A rectangle, bounds inclusive.
    struct Rect {
        ElemType min[NumDims]; ///< lower-left corner
        ElemType max[NumDims]; ///< upper-right corner
    };

    /// An entry of a node.
    struct Branch {
        Rect rect; ///< bounds of what hangs on it
        union {
            Node* child;   ///< of an internal node
            DataType data; ///< of a leaf
        };
    };

    /// A node: a leaf at level 0, internal above.
    struct Node {
        int32_t count = 0;  ///< branches in use
        int32_t level = -1; ///< height above the leaves; -1 until the node has its place
        Branch branch[MaxNodes];

        /// Whether its branches hold nodes, not items.
        bool isInternal() const { return level > 0; }
    };

    /// Work area of one split: the branches of the full node and the new one, and how they are divided.
    struct PartitionVars {
        int32_t partition[MaxNodes + 1]; ///< group of each branch, 0 or 1; -1 while it has none
        int32_t total;                   ///< branches to divide
        int32_t minFill;                 ///< fewest branches of a group
        int32_t taken[MaxNodes + 1];     ///< 1 once a branch has its group
        int32_t count[2];                ///< branches per group
        Rect cover[2];                   ///< bounds of each group
        ElemTypeReal area[2];            ///< volume of each cover
        Branch branchBuf[MaxNodes + 1];  ///< the branches
        int32_t branchCount;             ///< branches in branchBuf
        Rect coverSplit;                 ///< bounds of all branches
        ElemTypeReal coverSplitArea;     ///< volume of coverSplit
    };

    /// An empty tree.
    RTree() : root(allocateNode(0)) {}

    /// Not copied: each tree frees its nodes.
    RTree(const RTree&) = delete;
    RTree& operator=(const RTree&) = delete;

    /// Frees every node; the items are untouched.
    virtual ~RTree() { RemoveAllRec(root); }

    /// Frees every node and starts again empty.
    void clear()
    {
        RemoveAllRec(root);
        root = allocateNode(0);
    }

    /// Inserts an item with its rectangle into the subtree at *rootNode.
    ///
    /// @param rect      the item's bounds
    /// @param data      the item
    /// @param rootNode  in: root of the subtree; out: its root now
    /// @param level     level of the node that gets the entry; 0 for an item
    /// @return true if the root was split and the tree grew by a level
    bool InsertRect(Rect* rect, const DataType& data, Node** rootNode, int level)
    {
        Node* newNode = nullptr;
        if (!InsertRectRec(rect, data, *rootNode, &newNode, level)) {
            return false;
        }
        Node* const grown = allocateNode((*rootNode)->level + 1);
        addChild(grown, *rootNode, nullptr);
        addChild(grown, newNode, nullptr);
        *rootNode = grown;
        return true;
    }

    /// The recursive step of InsertRect().
    ///
    /// @param newNode  out: the second half of the node, if it was split
    /// @return true if the node was split
    bool InsertRectRec(Rect* rect, const DataType& data, Node* node, Node** newNode, int level)
    {
        if (node->level < level) {
            return false;
        }
        if (node->level == level) {
            Branch branch;
            branch.rect = *rect;
            branch.data = data;
            return addBranch(&branch, node, newNode);
        }
        Branch& branch = node->branch[pickBranch(*rect, *node)];
        Node* otherHalf = nullptr;
        if (!InsertRectRec(rect, data, branch.child, &otherHalf, level)) {
            branch.rect = combine(branch.rect, *rect);
            return false;
        }
        branch.rect = coverOf(*branch.child);
        return addChild(node, otherHalf, newNode);
    }

    /// Divides a full node and one more branch into two nodes.
    ///
    /// @param newNode  out: the second half
    void SplitNode(Node* node, Branch* branch, Node** newNode)
    {
        PartitionVars vars;
        const int32_t level = node->level;
        std::copy(node->branch, node->branch + MaxNodes, vars.branchBuf);
        vars.branchBuf[MaxNodes] = *branch;
        vars.branchCount = MaxNodes + 1;
        vars.coverSplit = vars.branchBuf[0].rect;
        for (int32_t i = 1; i < vars.branchCount; ++i) {
            vars.coverSplit = combine(vars.coverSplit, vars.branchBuf[i].rect);
        }
        vars.coverSplitArea = volume(vars.coverSplit);

        ChoosePartition(&vars, MinNodes);

        node->count = 0;
        node->level = level;
        *newNode = allocateNode(level);
        for (int32_t i = 0; i < vars.total; ++i) {
            Node* const target = vars.partition[i] == 0 ? node : *newNode;
            target->branch[target->count++] = vars.branchBuf[i];
        }
    }

    /// Chooses the two branches that would waste most space in one group, and starts the groups with them.
    void PickSeeds(PartitionVars* vars)
    {
        ElemTypeReal area[MaxNodes + 1];
        for (int32_t i = 0; i < vars->total; ++i) {
            area[i] = volume(vars->branchBuf[i].rect);
        }
        int32_t seedA = 0;
        int32_t seedB = 1;
        ElemTypeReal worst = -vars->coverSplitArea - 1;
        for (int32_t a = 0; a < vars->total - 1; ++a) {
            for (int32_t b = a + 1; b < vars->total; ++b) {
                const ElemTypeReal both = volume(combine(vars->branchBuf[a].rect, vars->branchBuf[b].rect));
                const ElemTypeReal waste = both - area[a] - area[b];
                if (waste > worst) { // of equal pairs the first
                    worst = waste;
                    seedA = a;
                    seedB = b;
                }
            }
        }
        classify(vars, seedA, 0);
        classify(vars, seedB, 1);
    }

    /// Gives every buffered branch its group: the branch with the strongest preference first.
    void ChoosePartition(PartitionVars* vars, int minFill)
    {
        vars->count[0] = vars->count[1] = 0;
        vars->area[0] = vars->area[1] = 0;
        vars->total = vars->branchCount;
        vars->minFill = minFill;
        std::fill_n(vars->taken, vars->total, 0);
        std::fill_n(vars->partition, vars->total, -1);
        PickSeeds(vars);

        const int32_t most = vars->total - vars->minFill;
        while (vars->count[0] + vars->count[1] < vars->total && vars->count[0] < most &&
               vars->count[1] < most) {
            classifyNext(vars);
        }
        const int32_t rest = vars->count[0] >= most ? 1 : 0;
        for (int32_t i = 0; i < vars->total; ++i) {
            if (vars->taken[i] == 0) {
                classify(vars, i, rest);
            }
        }
    }

    /// Reports every item under a node whose rectangle overlaps another, depth first, in index order.
    ///
    /// @param foundCount  in, out: grows by one per item reported
    /// @param callback    gets the item and the context; false stops the search
    /// @return false if the callback stopped the search
    bool Search(Node* node, Rect* rect, int& foundCount, bool (*callback)(DataType, void*), void* context)
    {
        for (int32_t i = 0; i < node->count; ++i) {
            const Branch& branch = node->branch[i];
            if (!overlap(branch.rect, *rect)) {
                continue;
            }
            if (node->isInternal()) {
                if (!Search(branch.child, rect, foundCount, callback, context)) {
                    return false;
                }
            } else {
                ++foundCount;
                if (!callback(branch.data, context)) {
                    return false;
                }
            }
        }
        return true;
    }

    /// Frees a node and all below it.
    void RemoveAllRec(Node* node)
    {
        if (node->isInternal()) {
            for (int32_t i = 0; i < node->count; ++i) {
                RemoveAllRec(node->branch[i].child);
            }
        }
        delete node;
    }

    Node* root; ///< owned, never nullptr

    /// Area of the unit circle.
    ///
    /// Required: these digits. They give one unit in the last place more than the float nearest to pi, and
    /// every choice of subtree and split depends on it.
    ElemTypeReal unitSphereVolume = 3.141593F;

private:
    /// A new node without branches at a level, owned by the caller.
    static Node* allocateNode(int32_t level)
    {
        Node* const node = new Node;
        node->level = level;
        return node;
    }

    /// Whether two rectangles share a point, be it on their edges.
    static bool overlap(const Rect& a, const Rect& b)
    {
        for (int dim = 0; dim < NumDims; ++dim) {
            if (a.min[dim] > b.max[dim] || b.min[dim] > a.max[dim]) {
                return false;
            }
        }
        return true;
    }

    /// The smallest rectangle around two.
    static Rect combine(const Rect& a, const Rect& b)
    {
        Rect both;
        for (int dim = 0; dim < NumDims; ++dim) {
            both.min[dim] = std::min(a.min[dim], b.min[dim]);
            both.max[dim] = std::max(a.max[dim], b.max[dim]);
        }
        return both;
    }

    /// Area of the circle around a rectangle. Each step is rounded, in this order.
    ElemTypeReal volume(const Rect& rect) const
    {
        ElemTypeReal sumOfSquares = 0;
        for (int dim = 0; dim < NumDims; ++dim) {
            const ElemTypeReal extent =
                static_cast<ElemTypeReal>(rect.max[dim]) - static_cast<ElemTypeReal>(rect.min[dim]);
            const ElemTypeReal half = extent * static_cast<ElemTypeReal>(0.5);
            sumOfSquares += half * half;
        }
        const ElemTypeReal radius = std::sqrt(sumOfSquares);
        return radius * radius * unitSphereVolume;
    }

    /// Bounds of all branches of a node; all zero without branches.
    static Rect coverOf(const Node& node)
    {
        Rect cover{};
        for (int32_t i = 0; i < node.count; ++i) {
            cover = i == 0 ? node.branch[0].rect : combine(cover, node.branch[i].rect);
        }
        return cover;
    }

    /// The branch whose volume grows least by a rectangle; of equals the smaller, then the first.
    int32_t pickBranch(const Rect& rect, const Node& node) const
    {
        int32_t best = 0;
        ElemTypeReal bestGrowth = 0;
        ElemTypeReal bestArea = 0;
        for (int32_t i = 0; i < node.count; ++i) {
            const ElemTypeReal area = volume(node.branch[i].rect);
            const ElemTypeReal growth = volume(combine(rect, node.branch[i].rect)) - area;
            if (i == 0 || growth < bestGrowth || (growth == bestGrowth && area < bestArea)) {
                best = i;
                bestGrowth = growth;
                bestArea = area;
            }
        }
        return best;
    }

    /// Adds a branch to a node.
    ///
    /// @param newNode  out: the second half of the node, if it was split
    /// @return true if the node was full and was split
    bool addBranch(Branch* branch, Node* node, Node** newNode)
    {
        if (node->count < MaxNodes) {
            node->branch[node->count++] = *branch;
            return false;
        }
        SplitNode(node, branch, newNode);
        return true;
    }

    /// As addBranch(), for a node and its bounds.
    bool addChild(Node* node, Node* child, Node** newNode)
    {
        Branch branch;
        branch.rect = coverOf(*child);
        branch.child = child;
        return addBranch(&branch, node, newNode);
    }

    /// Puts a branch into a group, 0 or 1, and extends the bounds of the group.
    void classify(PartitionVars* vars, int32_t index, int32_t group)
    {
        vars->partition[index] = group;
        vars->taken[index] = 1;
        vars->cover[group] = vars->count[group] == 0
                                 ? vars->branchBuf[index].rect
                                 : combine(vars->branchBuf[index].rect, vars->cover[group]);
        vars->area[group] = volume(vars->cover[group]);
        ++vars->count[group];
    }

    /// Gives a group to the branch for which the choice matters most.
    void classifyNext(PartitionVars* vars)
    {
        ElemTypeReal biggest = -1;
        int32_t chosen = 0;
        int32_t betterGroup = 0;
        for (int32_t i = 0; i < vars->total; ++i) {
            if (vars->taken[i] != 0) {
                continue;
            }
            const Rect& rect = vars->branchBuf[i].rect;
            const ElemTypeReal growth0 = volume(combine(rect, vars->cover[0])) - vars->area[0];
            const ElemTypeReal growth1 = volume(combine(rect, vars->cover[1])) - vars->area[1];
            ElemTypeReal diff = growth1 - growth0;
            const int32_t group = diff >= 0 ? 0 : 1;
            diff = diff >= 0 ? diff : -diff;
            if (diff > biggest) {
                biggest = diff;
                chosen = i;
                betterGroup = group;
            } else if (diff == biggest && vars->count[group] < vars->count[betterGroup]) {
                chosen = i;
                betterGroup = group;
            }
        }
        classify(vars, chosen, betterGroup);
    }
};
