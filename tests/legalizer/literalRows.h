// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cassert>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "legalizer/literal.h"

namespace test {

/// The placement grids as rows of values and predecessors: Literal on segments for which its lists of edges
/// would be too long. The values of two components are kept at a time, the predecessors of all.
class LiteralRows : public Literal {
public:
    using Literal::Literal;

    void solveOSR()
    {
        fillMissingSolutions();
        std::vector<std::vector<int32_t>> solutions;
        for (size_t i = 0; i < numComps(); ++i) {
            solutions.push_back({solution(i)});
        }
        if (numComps() == 0 || numSites() < 0) {
            return;
        }
        fillRows(solutions, 12345678);
        park();
        for (Node node = m_end; hasWayTo(node); node = before(node)) {
            place(rowOf(node).comp, node.site - width(rowOf(node).comp));
        }
    }

    void solveTPLOSR()
    {
        std::vector<std::vector<int32_t>> solutions;
        size_t rows = 0;
        for (size_t i = 0; i < numComps(); ++i) {
            rows += static_cast<size_t>(colours(i));
            solutions.emplace_back();
            for (int32_t j = 0; j < colours(i); ++j) {
                solutions.back().push_back(j);
            }
        }
        if (numComps() == 0 || numSites() < 0 || (numSites() == 0 && rows == 0)) {
            return;
        }
        fillRows(solutions, FAR);
        park();
        for (Node node = m_end; hasWayTo(node); node = before(node)) {
            if (before(node).row != node.row) {
                colour(rowOf(node).comp, rowOf(node).solution);
                place(rowOf(node).comp, node.site - width(rowOf(node).comp));
            }
        }
    }

    /// As Literal::solveLdp().
    void solveLdp(int step, bool prune)
    {
        if (!shiftLocally(prune)) {
            step == 1 ? solveTPL() : solveOSR();
        }
    }

private:
    /// A row of the grid but the start row.
    struct Row {
        size_t comp;
        int32_t solution;
        int32_t firstLeft;              ///< first row of the left neighbour
        std::vector<int32_t> gaps = {}; ///< [row of the left neighbour] sites
        std::vector<uint8_t> ways = {}; ///< [end site] NO_WAY, WAITING, or FIRST_ROW and the left one's row
    };

    struct Node {
        int32_t row; ///< index in m_rows; below 0 in the start row
        int32_t site;
    };

    using Values = std::vector<int32_t>; ///< [end site]

    static constexpr int32_t NO_WAY = 0;
    static constexpr int32_t WAITING = 1;
    static constexpr int32_t FIRST_ROW = 2;

    const Row& rowOf(const Node& node) const { return m_rows[static_cast<size_t>(node.row)]; }

    bool hasWayTo(const Node& node) const
    {
        return node.row >= 0 && rowOf(node).ways[static_cast<size_t>(node.site)] != NO_WAY;
    }

    Node before(const Node& node) const
    {
        const Row& row = rowOf(node);
        const int32_t way = row.ways[static_cast<size_t>(node.site)];
        if (way == WAITING) {
            return {node.row, node.site - 1};
        }
        const int32_t left = way - FIRST_ROW;
        return {row.firstLeft + left, node.site - width(row.comp) - row.gaps[static_cast<size_t>(left)]};
    }

    /// @param solutions  [component] those that have a row
    void fillRows(const std::vector<std::vector<int32_t>>& solutions, int32_t unreached)
    {
        m_rows.clear();
        int32_t endValue = unreached;
        m_end = {-1, 0};
        std::vector<Values> left{
            Values(static_cast<size_t>(numSites()) + 1, 0)}; // the start row: all waiting
        int32_t firstLeft = -1;
        for (size_t i = 0; i < numComps(); ++i) {
            const auto first = static_cast<int32_t>(m_rows.size());
            std::vector<Values> values;
            std::map<int32_t, Values> costs; // [stitches]
            for (const int32_t solution : solutions[i]) {
                const auto [found, isNew] = costs.try_emplace(stitches(i, solution));
                for (int32_t site = 0; isNew && site + width(i) <= numSites(); ++site) {
                    found->second.push_back(ownCost(i, site, solution));
                }
                Row& row = m_rows.emplace_back(Row{i, solution, firstLeft});
                for (size_t l = 0; l < left.size(); ++l) {
                    row.gaps.push_back(i == 0 ? 0 : spacing(i - 1, solutions[i - 1][l], solution));
                }
                values.push_back(fillRow(row, left, found->second, unreached));
                const int32_t candidate =
                    wrappedSum(values.back().back(),
                               static_cast<int32_t>(uint32_t{10} * static_cast<uint32_t>(numSites()) *
                                                    static_cast<uint32_t>(numComps() - i)));
                if (endValue >= candidate) {
                    endValue = candidate;
                    m_end = {static_cast<int32_t>(m_rows.size()) - 1, numSites()};
                }
            }
            left = std::move(values);
            firstLeft = first;
        }
    }

    /// @param costs  [site of the left end]
    Values fillRow(Row& row, const std::vector<Values>& left, const Values& costs, int32_t unreached) const
    {
        Values values(static_cast<size_t>(numSites()) + 1, unreached);
        Values ways(values.size(), NO_WAY);
        for (size_t l = 0; l < left.size(); ++l) {
            const int32_t gap = row.gaps[l];
            const int64_t firstEnd = int64_t{gap} + width(row.comp);
            const int64_t count = int64_t{numSites()} + 1 - firstEnd;
            if (count > 0) {
                relax(values.data() + firstEnd, ways.data() + firstEnd, left[l].data(), costs.data() + gap,
                      count, FIRST_ROW + static_cast<int32_t>(l));
            }
        }
        for (size_t site = 1; site < values.size(); ++site) {
            if (values[site] >= values[site - 1]) {
                values[site] = values[site - 1];
                ways[site] = WAITING;
            }
        }
        assert(left.size() + FIRST_ROW <= 256);
        row.ways.assign(ways.begin(), ways.end());
        return values;
    }

    static void relax(int32_t* values, int32_t* ways, const int32_t* left, const int32_t* costs,
                      int64_t count, int32_t way)
    {
        for (int64_t k = 0; k < count; ++k) {
            const int32_t candidate = wrappedSum(left[k], costs[k]);
            ways[k] = values[k] >= candidate ? way : ways[k];
            values[k] = values[k] >= candidate ? candidate : values[k];
        }
    }

    std::vector<Row> m_rows;
    Node m_end{}; ///< last node before the end node
};

} // namespace test
