// SPDX-License-Identifier: BSD-3-Clause
// The programs of the segment solver a second time: rule by rule, over flat arrays, as slow as that is.
#pragma once

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <vector>

#include "legalizer/literalModel.h"

namespace test {

/// An edge between two nodes, by their ids.
struct FlatEdge {
    int32_t from;
    int32_t to;
    int32_t cost;

    bool operator==(const FlatEdge&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const FlatEdge& edge)
{
    return out << edge.from << "->" << edge.to << ':' << edge.cost;
}

/// A segment that is solved once.
class Literal : public LiteralModel {
public:
    using LiteralModel::LiteralModel;

    // --- the graphs, edges in the order in which they are appended

    std::vector<FlatEdge> colouringEdges() const
    {
        std::vector<FlatEdge> edges;
        int32_t first = 1; // node of a component's first solution
        for (int32_t j = 0; numComps() > 0 && j < colours(0); ++j) {
            edges.push_back({0, first + j, 0});
        }
        for (size_t i = 0; i + 1 < numComps(); ++i) {
            const int32_t next = first + colours(i);
            for (int32_t a = 0; a < colours(i); ++a) {
                for (int32_t b = 0; b < colours(i + 1); ++b) {
                    edges.push_back({first + a, next + b, pairCost(i, a, b)});
                }
            }
            first = next;
        }
        for (int32_t j = numComps() > 0 ? colours(numComps() - 1) - 1 : -1; j >= 0; --j) {
            edges.push_back({first + j, first + colours(numComps() - 1), 0});
        }
        return edges;
    }

    /// @pre fillMissingSolutions()
    std::vector<FlatEdge> placementEdges() const
    {
        const auto rows = static_cast<int32_t>(numComps()) + 1;
        std::vector<FlatEdge> edges = waitingEdges(rows);
        for (size_t c = 0; c < numComps(); ++c) {
            const auto row = static_cast<int32_t>(c);
            const int32_t gap = c == 0 ? 0 : spacing(c - 1, solution(c - 1), solution(c));
            for (int32_t t = 0; t <= numSites() && t + gap + width(c) <= numSites(); ++t) {
                edges.push_back(
                    {grid(row, t), grid(row + 1, t + gap + width(c)), ownCost(c, t + gap, solution(c))});
            }
        }
        for (int32_t row = 1; row < rows; ++row) {
            edges.push_back({grid(row, numSites()), grid(rows, 0),
                             static_cast<int32_t>(uint32_t{10} * static_cast<uint32_t>(numSites()) *
                                                  static_cast<uint32_t>(rows - row))});
        }
        return edges;
    }

    /// @param endCopies  how often every end edge is there
    std::vector<FlatEdge> jointEdges(int32_t endCopies) const
    {
        const std::vector<Layer> nodes = layers();
        const auto rows = static_cast<int32_t>(nodes.size()) + 1;
        std::vector<FlatEdge> edges = waitingEdges(rows);
        const auto place = [&](int32_t fromRow, int32_t t, int32_t gap, int32_t row) {
            const Layer& right = nodes[static_cast<size_t>(row) - 1];
            const int32_t end = t + gap + width(right.comp);
            if (end <= numSites()) {
                edges.push_back(
                    {grid(fromRow, t), grid(row, end), ownCost(right.comp, t + gap, right.colour)});
            }
        };
        for (int32_t t = 0; t <= numSites(); ++t) {
            for (int32_t row = 1; row < rows; ++row) {
                if (nodes[static_cast<size_t>(row) - 1].comp == 0) {
                    place(0, t, 0, row);
                }
            }
        }
        for (int32_t from = 1; from < rows; ++from) {
            const Layer& left = nodes[static_cast<size_t>(from) - 1];
            for (int32_t row = 1; row < rows; ++row) {
                const Layer& right = nodes[static_cast<size_t>(row) - 1];
                for (int32_t t = 0; t <= numSites() && left.comp + 1 == right.comp; ++t) {
                    place(from, t, spacing(left.comp, left.colour, right.colour), row);
                }
            }
        }
        for (int32_t row = 1; row < rows; ++row) {
            const size_t q = nodes[static_cast<size_t>(row) - 1].comp;
            const uint32_t cost =
                static_cast<uint32_t>(numSites()) * 10 * static_cast<uint32_t>(numComps() - q);
            edges.insert(edges.end(), static_cast<size_t>(endCopies),
                         {grid(row, numSites()), grid(rows, 0), static_cast<int32_t>(cost)});
        }
        return edges;
    }

    // --- the programs

    void solveTPL()
    {
        const std::vector<Layer> nodes = layers();
        const std::vector<FlatEdge> edges = colouringEdges();
        if (edges.empty()) {
            return;
        }
        const std::vector<int32_t> pred = cheapest(edges, nodes.size() + 2, FAR);
        for (int32_t p = pred.back(); p >= 0; p = pred[static_cast<size_t>(p)]) {
            if (p > 0) {
                const Layer& node = nodes[static_cast<size_t>(p) - 1];
                colour(node.comp, node.colour);
            }
        }
    }

    void solveOSR()
    {
        fillMissingSolutions();
        const std::vector<FlatEdge> edges = placementEdges();
        if (numComps() == 0 || edges.empty()) {
            return;
        }
        park();
        const std::vector<int32_t> pred = cheapest(edges, gridSize(numComps() + 1), 12345678);
        int32_t i = pred.back();
        while (i >= 0 && pred[static_cast<size_t>(i)] >= 0) {
            const int32_t row = i / (numSites() + 1);
            if (row > 0) {
                const auto c = static_cast<size_t>(row) - 1;
                place(c, i % (numSites() + 1) - width(c));
            }
            i = pred[static_cast<size_t>(i)];
        }
    }

    void solveTPLOSR()
    {
        const std::vector<Layer> nodes = layers();
        const std::vector<FlatEdge> edges = jointEdges(numSites() + 1);
        if (numComps() == 0 || edges.empty()) {
            return;
        }
        park();
        const std::vector<int32_t> pred = cheapest(edges, gridSize(nodes.size() + 1), FAR);
        int32_t i = pred.back();
        while (i >= 0 && pred[static_cast<size_t>(i)] >= 0) {
            const int32_t before = pred[static_cast<size_t>(i)];
            const int32_t row = i / (numSites() + 1);
            if (row > 0 && row != before / (numSites() + 1)) {
                const Layer& node = nodes[static_cast<size_t>(row) - 1];
                colour(node.comp, node.colour);
                place(node.comp, i % (numSites() + 1) - width(node.comp));
            }
            i = before;
        }
    }

    /// @param prune  whether dearer states right of a cheaper one are not gone on from
    void solveLdp(int step, bool prune)
    {
        if (!shiftLocally(prune)) {
            step == 1 ? solveTPL() : solveOSR();
        }
    }

protected:
    /// The local shift program.
    ///
    /// @return whether anything fits, and was written
    bool shiftLocally(bool prune)
    {
        Shifts table(numComps());
        for (size_t i = 0; i < numComps() && table.perComp() > 0; ++i) {
            for (int32_t b = 0; b < colours(i); ++b) {
                for (int32_t o = 0; o < table.numOffsets; ++o) {
                    table.at(i, {b, o}).own = ownCost(i, shiftedSite(i, o), b);
                }
            }
        }
        for (size_t i = 0; i + 1 < numComps() && table.perComp() > 0; ++i) {
            for (int32_t a = 0; a < colours(i); ++a) {
                for (int32_t b = 0; b < colours(i + 1); ++b) {
                    for (int32_t po = 0; po < table.numOffsets; ++po) {
                        for (int32_t co = 0; co < table.numOffsets; ++co) {
                            extend(table, i, {a, po}, {b, co});
                        }
                    }
                }
            }
            for (int32_t b = 0; b < colours(i + 1) && prune; ++b) {
                for (int32_t o = table.numOffsets - 1; o > 0; --o) {
                    for (int32_t left = 0; left < o; ++left) {
                        if (table.at(i + 1, {b, left}).cost < table.at(i + 1, {b, o}).cost) {
                            table.at(i + 1, {b, o}).pruned = true;
                        }
                    }
                }
            }
        }
        int32_t least = FAR;
        Shift best{};
        for (int32_t b = 0; b < table.numColours && numComps() > 0; ++b) {
            for (int32_t o = 0; o < table.numOffsets; ++o) {
                if (table.at(numComps() - 1, {b, o}).cost < least) {
                    least = table.at(numComps() - 1, {b, o}).cost;
                    best = {b, o};
                }
            }
        }
        if (least > 1073741821) {
            return false;
        }
        for (size_t i = numComps(); i-- > 0;) {
            place(i, shiftedSite(i, best.offset));
            colour(i, best.colour);
            best = table.at(i, best).before;
        }
        return true;
    }

private:
    /// What a node of the colouring graph, or a row of the joint grid, stands for.
    struct Layer {
        size_t comp;
        int32_t colour;
    };

    /// A choice of the local shift program.
    struct Shift {
        int32_t colour = -1;
        int32_t offset = -1;
    };

    /// The table of the local shift program.
    struct Shifts {
        struct State {
            int32_t cost = FAR;
            Shift before = {};
            bool pruned = false;
            int32_t own = 0; ///< what the component costs by itself
        };

        explicit Shifts(size_t numComps) : states(numComps * perComp())
        {
            for (size_t state = 0; state < std::min(perComp(), states.size()); ++state) {
                states[state].cost = 0;
            }
        }

        size_t perComp() const { return static_cast<size_t>(numColours) * static_cast<size_t>(numOffsets); }

        State& at(size_t i, const Shift& shift)
        {
            return states.at(i * perComp() + static_cast<size_t>(shift.colour * numOffsets + shift.offset));
        }

        int32_t numColours = std::max(LDP_K, 0);
        int32_t numOffsets = std::max(2 * LDP_M + 1, 0);
        std::vector<State> states;
    };

    int32_t shiftedSite(size_t i, int32_t offset) const { return siteX(i) + offset - LDP_M - 1; }

    void extend(Shifts& table, size_t i, const Shift& left, const Shift& right) const
    {
        const Shifts::State& from = table.at(i, left);
        if (from.cost >= 1073741822 || from.pruned) {
            return;
        }
        Shifts::State& to = table.at(i + 1, right);
        const int32_t step =
            fits(i, shiftedSite(i, left.offset), left.colour, shiftedSite(i + 1, right.offset), right.colour)
                ? wrappedSum(from.own, to.own)
                : FAR;
        if (wrappedSum(step, from.cost) < to.cost) {
            to.cost = wrappedSum(step, from.cost);
            to.before = left;
        }
    }

    /// Components from the left, solutions from the first.
    std::vector<Layer> layers() const
    {
        std::vector<Layer> all;
        for (size_t i = 0; i < numComps(); ++i) {
            for (int32_t colour = 0; colour < colours(i); ++colour) {
                all.push_back({i, colour});
            }
        }
        return all;
    }

    int32_t grid(int32_t row, int32_t site) const { return row * (numSites() + 1) + site; }
    size_t gridSize(size_t rows) const { return rows * (static_cast<size_t>(numSites()) + 1) + 1; }

    std::vector<FlatEdge> waitingEdges(int32_t rows) const
    {
        std::vector<FlatEdge> edges;
        for (int32_t row = 0; row < rows; ++row) {
            for (int32_t site = 1; site <= numSites(); ++site) {
                edges.push_back({grid(row, site - 1), grid(row, site), 0});
            }
        }
        return edges;
    }

    /// Predecessors on the cheapest paths from node 0; the end node is the last.
    static std::vector<int32_t> cheapest(std::vector<FlatEdge> edges, size_t numNodes, int32_t unreached)
    {
        std::stable_sort(edges.begin(), edges.end(),
                         [](const FlatEdge& a, const FlatEdge& b) { return a.from < b.from; });
        std::vector<int32_t> dist(numNodes, unreached);
        std::vector<int32_t> pred(numNodes, -1);
        dist[0] = 0;
        for (const FlatEdge& edge : edges) {
            const int32_t candidate = wrappedSum(dist[static_cast<size_t>(edge.from)], edge.cost);
            if (dist[static_cast<size_t>(edge.to)] >= candidate) {
                dist[static_cast<size_t>(edge.to)] = candidate;
                pred[static_cast<size_t>(edge.to)] = edge.from;
            }
        }
        return pred;
    }
};

} // namespace test
