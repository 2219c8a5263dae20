// SPDX-License-Identifier: BSD-3-Clause
// The colouring program: one colour solution per component, positions kept.
#include "db/design.h"
#include "legalizer/fastRoad.h"
#include "legalizer/segLegalizer.h"
#include "qlib/exact.h"

using vireloce::INFINITE_COST;

void SegLegalizer::solveTPL()
{
    if (segment->components.empty()) {
        return;
    }
    if (!s_useGraphs) {
        auto solution = fastRoad().colour(*segment).begin();
        for (Component* comp : segment->components) {
            comp->solution = *solution >= 0 ? *solution : comp->solution;
            ++solution;
        }
        return;
    }
    initGraph_TPL();
    solveTPL_DP();
    cleanGraph();
}

void SegLegalizer::initGraph_TPL()
{
    if (segment->components.empty()) {
        return;
    }
    int64_t size = 2;
    int64_t before = 1;
    for (const Component* comp : segment->components) {
        size += numColours(*comp) * (before + 1);
        before = numColours(*comp);
    }
    requireSize(size + before);

    nodes.clear();
    const auto addNode = [this](Component* comp, int32_t colour) {
        auto* node = new myNode;
        node->id = static_cast<int32_t>(nodes.size());
        node->comp = comp;
        node->colorId = colour;
        nodes.push_back(node);
    };
    addNode(nullptr, -1);
    for (Component* comp : segment->components) {
        for (int32_t colour = 0; colour < numColours(*comp); ++colour) {
            addNode(comp, colour);
        }
    }
    addNode(nullptr, -1);

    // The node of solution j of a component is the j-th of the component's layer.
    size_t layer = 1;
    Component* left = nullptr;
    for (Component* comp : segment->components) {
        const auto colours = static_cast<size_t>(numColours(*comp));
        if (left == nullptr) {
            for (size_t j = 0; j < colours; ++j) {
                addEdge(nodes[0], nodes[layer + j], 0);
            }
        } else {
            const auto leftColours = static_cast<size_t>(numColours(*left));
            for (size_t i = 0; i < leftColours; ++i) {
                for (size_t j = 0; j < colours; ++j) {
                    addEdge(nodes[layer - leftColours + i], nodes[layer + j],
                            getEdgeCost_TPL(left, static_cast<int>(i), comp, static_cast<int>(j)));
                }
            }
        }
        left = comp;
        layer += colours;
    }
    for (size_t i = nodes.size() - 2; nodes[i]->comp == left; --i) {
        addEdge(nodes[i], nodes.back(), 0);
    }
    relationGraphNodes();
}

void SegLegalizer::solveTPL_DP()
{
    if (edges.empty() || nodes.empty()) {
        return;
    }
    const std::vector<int32_t> pred =
        vireloce::cheapestPaths(nodes.size(), INFINITE_COST, [this](size_t u) { return nodes[u]; });
    for (int32_t p = pred.back(); p >= 0; p = pred[static_cast<size_t>(p)]) {
        const myNode* node = nodes[static_cast<size_t>(p)];
        if (node->comp != nullptr) {
            node->comp->solution = node->colorId;
        }
    }
}
