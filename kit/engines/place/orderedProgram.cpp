// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/orderedProgram.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

namespace kit::place {

namespace {

constexpr int64_t FAR = RIGHTMOST; ///< cost of what is impossible

/// The sites that cells in an order can reach in each of their ways: from the left if all to their left are
/// as far to the left as they can be, and from the right likewise. With the spacings of neighbours alone.
class Reach {
public:
    Reach(const RowProblem& problem, RowDistances& apart, const RowSites& sites, const Order& order)
        : m_problem(problem), m_apart(apart), m_sites(sites), m_order(order), m_first(order.size()),
          m_last(order.size()), m_firstOfSide(order.size() + 1), m_lastOfSide(order.size() + 1)
    {
        for (size_t rank = 0; rank < order.size(); ++rank) {
            for (const int32_t way : waysAt(rank)) {
                const int32_t site = firstBehind(rank, way);
                m_first[rank].push_back(site);
                if (site < sites.count()) {
                    int32_t& first =
                        m_firstOfSide[rank + 1].try_emplace(wayOf(way).right, site).first->second;
                    first = std::min(first, site);
                }
            }
        }
        for (size_t rank = order.size(); rank-- > 0;) {
            for (const int32_t way : waysAt(rank)) {
                const int32_t site = lastBefore(rank + 1, way);
                m_last[rank].push_back(site);
                if (site >= 0) {
                    int32_t& last = m_lastOfSide[rank].try_emplace(wayOf(way).left, site).first->second;
                    last = std::max(last, site);
                }
            }
        }
    }

    /// The first site of a cell in a way, sites.count() if there is none.
    int32_t first(size_t rank, size_t way) const { return m_first[rank][way]; }

    /// The last site, -1 if there is none.
    int32_t last(size_t rank, size_t way) const { return m_last[rank][way]; }

    /// Whether a cell of some ways can stand between the cells up to a rank and those from it on.
    bool canTake(size_t rank, const std::vector<int32_t>& ways) const
    {
        return std::ranges::any_of(
            ways, [&](int32_t way) { return firstBehind(rank, way) <= lastBefore(rank, way); });
    }

private:
    using SiteOfSide = std::map<int32_t, int32_t>; ///< by what neighbours see

    const std::vector<int32_t>& waysAt(size_t rank) const { return m_problem.cells[m_order[rank]].ways; }
    const RowWay& wayOf(int32_t way) const { return m_problem.ways[static_cast<size_t>(way)]; }

    /// The first site of a way right of the cells before a rank.
    int32_t firstBehind(size_t rank, int32_t way) const
    {
        int64_t x = rank == 0 ? LEFTMOST : RIGHTMOST;
        for (const auto& [side, site] : m_firstOfSide[rank]) {
            x = std::min(x, m_sites.xOf(site) + m_apart.ofSides(side, wayOf(way).left));
        }
        return m_sites.from(x, way);
    }

    /// The last site of a way left of the cells from a rank on.
    int32_t lastBefore(size_t rank, int32_t way) const
    {
        int64_t x = rank == m_order.size() ? RIGHTMOST : LEFTMOST;
        for (const auto& [side, site] : m_lastOfSide[rank]) {
            x = std::max(x, m_sites.xOf(site) - m_apart.ofSides(wayOf(way).right, side));
        }
        return m_sites.upTo(x, way);
    }

    const RowProblem& m_problem;
    RowDistances& m_apart;
    const RowSites& m_sites;
    const Order& m_order;
    std::vector<std::vector<int32_t>> m_first; ///< [rank][index of the way] site
    std::vector<std::vector<int32_t>> m_last;  ///< [rank][index of the way] site
    std::vector<SiteOfSide> m_firstOfSide;     ///< [rank] the first of the cell before, by its right side
    std::vector<SiteOfSide> m_lastOfSide;      ///< [rank] the last of the cell, by its left side
};

/// The arrangement of least cost in an order, with the spacings of neighbours alone.
class OrderedProgram {
public:
    OrderedProgram(const RowProblem& problem, RowDistances& apart, const RowSites& sites, const Order& order)
        : m_problem(problem), m_apart(apart), m_sites(sites), m_order(order),
          m_reach(problem, apart, sites, order)
    {
    }

    std::optional<OrderedAnswer> run()
    {
        for (size_t rank = 0; rank < m_order.size(); ++rank) {
            m_steps.push_back(stepAt(rank));
            if (m_steps.back().layers.empty()) {
                return {};
            }
        }
        return best();
    }

private:
    /// What all cells up to one cost, where that shows some right side.
    struct Layer {
        std::vector<int64_t> least; ///< [site - first] with it at this site or left of it
        std::vector<int32_t> where; ///< [site - first] the site of the least
        std::vector<int32_t> way{}; ///< [site - first] index of its way, with it at this site
    };

    /// A cell of the order.
    struct Step {
        int32_t first = 0;                 ///< site
        int32_t end = 0;                   ///< behind its last site
        std::map<int32_t, Layer> layers{}; ///< by the right side
    };

    const RowCell& cellAt(size_t rank) const { return m_problem.cells[m_order[rank]]; }
    const RowWay& wayAt(size_t rank, size_t way) const
    {
        return m_problem.ways[static_cast<size_t>(cellAt(rank).ways[way])];
    }

    Step stepAt(size_t rank)
    {
        Step step{.first = m_sites.count()};
        for (size_t w = 0; w < cellAt(rank).ways.size(); ++w) {
            if (m_reach.first(rank, w) <= m_reach.last(rank, w)) {
                step.first = std::min(step.first, m_reach.first(rank, w));
                step.end = std::max(step.end, m_reach.last(rank, w) + 1);
            }
        }
        std::vector<int64_t> ownCosts;
        for (int32_t site = step.first; site < step.end; ++site) {
            ownCosts.push_back(m_problem.cost(m_order[rank], m_sites.xOf(site)));
        }
        std::map<int32_t, std::vector<int64_t>> costs; // with those of all to the left, by the left side
        for (size_t w = 0; w < cellAt(rank).ways.size(); ++w) {
            if (m_reach.first(rank, w) <= m_reach.last(rank, w)) {
                const auto [upTo, isNew] = costs.try_emplace(wayAt(rank, w).left);
                if (isNew) {
                    upTo->second = costsBefore(rank, wayAt(rank, w).left, step);
                    std::ranges::transform(upTo->second, ownCosts, upTo->second.begin(), std::plus());
                }
                addWay(rank, w, upTo->second, step);
            }
        }
        for (auto& [side, layer] : step.layers) {
            for (size_t i = 0; i < layer.least.size(); ++i) {
                const bool isLess = i == 0 || layer.least[i] < layer.least[i - 1];
                layer.where.push_back(isLess ? step.first + static_cast<int32_t>(i) : layer.where[i - 1]);
                layer.least[i] = isLess ? layer.least[i] : layer.least[i - 1];
            }
        }
        return step;
    }

    /// For each site of a step, the least cost of all to its left.
    std::vector<int64_t> costsBefore(size_t rank, int32_t side, const Step& step)
    {
        std::vector<int64_t> costs(static_cast<size_t>(step.end - step.first), rank == 0 ? 0 : FAR);
        if (rank == 0) {
            return costs;
        }
        const Step& left = m_steps[rank - 1];
        for (const auto& [leftSide, layer] : left.layers) {
            const int64_t apart = m_apart.ofSides(leftSide, side);
            int32_t reached = left.first; // behind the last site that is far enough to the left
            for (size_t i = 0; i < costs.size(); ++i) {
                const int64_t x = m_sites.xOf(step.first + static_cast<int32_t>(i)) - apart;
                while (reached < left.end && m_sites.xOf(reached) <= x) {
                    ++reached;
                }
                if (reached > left.first) {
                    costs[i] = std::min(costs[i], layer.least[static_cast<size_t>(reached - 1 - left.first)]);
                }
            }
        }
        return costs;
    }

    void addWay(size_t rank, size_t w, const std::vector<int64_t>& costs, Step& step)
    {
        const auto [at, isNew] = step.layers.try_emplace(wayAt(rank, w).right);
        Layer& layer = at->second;
        if (isNew) {
            layer.least.assign(costs.size(), FAR);
            layer.way.assign(costs.size(), 0);
        }
        for (int32_t site = m_reach.first(rank, w); site <= m_reach.last(rank, w); ++site) {
            const auto i = static_cast<size_t>(site - step.first);
            const int64_t cost = costs[i] + cellAt(rank).costs[w];
            if (cost < layer.least[i] && m_sites.isFree(site, cellAt(rank).ways[w])) {
                layer.least[i] = cost;
                layer.way[i] = static_cast<int32_t>(w);
            }
        }
    }

    /// Goes back from the last cell to the first.
    std::optional<OrderedAnswer> best() const
    {
        OrderedAnswer answer{std::vector<Spot>(m_order.size()), FAR};
        int64_t x = RIGHTMOST;
        int32_t left = -1; // left side of the cell to the right
        for (size_t rank = m_order.size(); rank-- > 0;) {
            const Step& step = m_steps[rank];
            int64_t least = FAR;
            int32_t site = -1;
            size_t way = 0;
            for (const auto& [side, layer] : step.layers) {
                const int64_t most = left < 0 ? x : x - m_apart.ofSides(side, left);
                const int32_t last = std::min(m_sites.lastUpTo(most), step.end - 1);
                const auto i = static_cast<size_t>(last - step.first);
                if (last >= step.first && layer.least[i] < least) {
                    least = layer.least[i];
                    site = layer.where[i];
                    way = static_cast<size_t>(layer.way[static_cast<size_t>(site - step.first)]);
                }
            }
            if (site < 0) {
                return {};
            }
            answer.cost = rank + 1 == m_order.size() ? least : answer.cost;
            x = m_sites.xOf(site);
            left = wayAt(rank, way).left;
            answer.spots[m_order[rank]] = {x, cellAt(rank).ways[way]};
        }
        return answer;
    }

    const RowProblem& m_problem;
    RowDistances& m_apart;
    const RowSites& m_sites;
    const Order& m_order;
    Reach m_reach;
    std::vector<Step> m_steps; ///< [rank]
};

} // namespace

std::optional<OrderedAnswer> cheapestInOrder(const RowProblem& problem, RowDistances& apart,
                                             const RowSites& sites, const Order& order)
{
    return OrderedProgram(problem, apart, sites, order).run();
}

std::vector<size_t> possibleRanks(const RowProblem& problem, RowDistances& apart, const RowSites& sites,
                                  const Order& order, size_t newcomer)
{
    const Reach reach(problem, apart, sites, order);
    std::vector<size_t> ranks;
    for (size_t rank = 0; rank <= order.size(); ++rank) {
        if (reach.canTake(rank, problem.cells[newcomer].ways)) {
            ranks.push_back(rank);
        }
    }
    return ranks;
}

} // namespace kit::place
