// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/orderSearch.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <queue>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace kit::place {

namespace {

/// Looks for an order in which the cells fit, each as far to the left as it can be.
///
/// What a partial arrangement leaves to the others is told by the first site that each way of theirs can
/// have; one that leaves no more than another of the same cells is dropped.
class OrderSearch {
public:
    OrderSearch(const RowProblem& problem, RowDistances& apart, const RowSites& sites, int64_t mostLabels)
        : m_problem(problem), m_apart(apart), m_sites(sites), m_mostLabels(mostLabels)
    {
        for (const RowCell& cell : problem.cells) {
            m_ways.insert(m_ways.end(), cell.ways.begin(), cell.ways.end());
        }
        std::ranges::sort(m_ways);
        m_ways.erase(std::unique(m_ways.begin(), m_ways.end()), m_ways.end());
    }

    FoundOrder run()
    {
        FoundOrder found;
        found.spots = search(found.order);
        found.gaveUp = m_gaveUp;
        found.labels = m_seen;
        return found;
    }

private:
    std::optional<std::vector<Spot>> search(Order& order)
    {
        m_queue.push({.cost = 0, .depth = 0, .parent = -1, .cell = 0, .way = 0, .site = 0});
        while (!m_queue.empty()) {
            if (++m_seen > m_mostLabels) {
                m_gaveUp = true;
                return {};
            }
            const Label label = m_queue.top();
            m_queue.pop();
            if (static_cast<size_t>(label.depth) == m_problem.cells.size()) {
                return spotsOf(label, order);
            }
            extend(label);
        }
        return {};
    }

    /// The leftmost cells, one added to those of another label.
    struct Label {
        int64_t cost;   ///< of the order so far: ranks gained and lost
        int32_t depth;  ///< cells
        int32_t parent; ///< index in m_labels
        int32_t cell;
        int32_t way;
        int32_t site;
    };

    /// The least cost first, then what is most complete; of equals the one made first cannot be told, so that
    /// the rest of the record decides.
    struct Later {
        bool operator()(const Label& a, const Label& b) const
        {
            return std::tuple(a.cost, -a.depth, a.site, a.cell, a.way, a.parent) >
                   std::tuple(b.cost, -b.depth, b.site, b.cell, b.way, b.parent);
        }
    };

    using Bits = uint32_t; ///< a bit for each cell
    static_assert(EVERY_ORDER <= 32);

    static bool has(Bits bits, size_t i) { return (bits >> i & 1U) != 0; }

    Bits cellsOf(const Label& label) const
    {
        Bits bits = 0;
        for (const Label* at = &label; at->depth > 0; at = &m_labels[static_cast<size_t>(at->parent)]) {
            bits |= Bits{1} << static_cast<size_t>(at->cell);
        }
        return bits;
    }

    /// [index in m_ways] the first site that is left to a way; count() for ways of no cell that remains.
    std::vector<int32_t> profileOf(const Label& label, Bits used) const
    {
        std::vector<int32_t> profile(m_ways.size(), m_sites.count());
        for (size_t i = 0; i < m_problem.cells.size(); ++i) {
            if (has(used, i)) {
                continue;
            }
            for (const int32_t way : m_problem.cells[i].ways) {
                const size_t at = indexOf(way);
                if (label.depth == 0) {
                    profile[at] = m_sites.from(LEFTMOST, way);
                    continue;
                }
                const int64_t x = m_sites.xOf(label.site) + m_apart(label.way, way);
                profile[at] =
                    std::max(m_sites.from(x, way), m_profiles[static_cast<size_t>(label.parent)][at]);
            }
        }
        return profile;
    }

    /// Whether all cells that remain have sites, and all of them together have room.
    bool hasHope(Bits used, const std::vector<int32_t>& profile) const
    {
        int64_t width = 0;
        int32_t least = m_sites.count();
        for (size_t i = 0; i < m_problem.cells.size(); ++i) {
            if (has(used, i)) {
                continue;
            }
            int32_t first = m_sites.count();
            int64_t narrowest = RIGHTMOST;
            for (const int32_t way : m_problem.cells[i].ways) {
                first = std::min(first, profile[indexOf(way)]);
                narrowest = std::min(narrowest, m_problem.ways[static_cast<size_t>(way)].width);
            }
            if (first == m_sites.count()) {
                return false;
            }
            least = std::min(least, first);
            width += narrowest;
        }
        return width <= m_sites.roomFrom(least);
    }

    size_t indexOf(int32_t way) const
    {
        return static_cast<size_t>(std::ranges::lower_bound(m_ways, way) - m_ways.begin());
    }

    void extend(const Label& label)
    {
        const Bits used = cellsOf(label);
        std::vector<int32_t> profile = profileOf(label, used);
        if (!hasHope(used, profile)) {
            return;
        }
        std::vector<size_t>& rivals = m_known[used];
        const bool isWorse = std::ranges::any_of(rivals, [&](size_t rival) {
            return std::ranges::equal(m_profiles[rival], profile, std::less_equal());
        });
        if (isWorse) {
            return;
        }
        const size_t index = m_labels.size();
        rivals.push_back(index);
        m_labels.push_back(label);
        m_profiles.push_back(std::move(profile));
        addNext(index, used);
    }

    void addNext(size_t parent, Bits used)
    {
        const Label label = m_labels[parent];
        const std::vector<int32_t>& profile = m_profiles[parent];
        std::vector<size_t> taken; // of cells that may lie in the same ways, the first alone: they are alike
        for (size_t i = 0; i < m_problem.cells.size(); ++i) {
            const std::vector<int32_t>& ways = m_problem.cells[i].ways;
            if (has(used, i) ||
                std::ranges::any_of(taken, [&](size_t t) { return m_problem.cells[t].ways == ways; })) {
                continue;
            }
            taken.push_back(i);
            const auto rank = static_cast<int64_t>(i);
            for (const int32_t way : ways) {
                if (const int32_t site = profile[indexOf(way)]; site < m_sites.count()) {
                    m_queue.push({.cost = label.cost + std::abs(rank - label.depth),
                                  .depth = label.depth + 1,
                                  .parent = static_cast<int32_t>(parent),
                                  .cell = static_cast<int32_t>(i),
                                  .way = way,
                                  .site = site});
                }
            }
        }
    }

    std::vector<Spot> spotsOf(const Label& last, Order& order) const
    {
        std::vector<Spot> spots(m_problem.cells.size());
        order.clear();
        for (const Label* at = &last; at->depth > 0; at = &m_labels[static_cast<size_t>(at->parent)]) {
            order.push_back(static_cast<size_t>(at->cell));
            spots[order.back()] = {m_sites.xOf(at->site), at->way};
        }
        std::ranges::reverse(order);
        return spots;
    }

    const RowProblem& m_problem;
    RowDistances& m_apart;
    const RowSites& m_sites;
    int64_t m_mostLabels;
    int64_t m_seen = 0; ///< labels
    bool m_gaveUp = false;
    std::vector<int32_t> m_ways; ///< of all cells, ascending
    std::priority_queue<Label, std::vector<Label>, Later> m_queue;
    std::vector<Label> m_labels;                           ///< those that were extended
    std::vector<std::vector<int32_t>> m_profiles;          ///< of each
    std::unordered_map<Bits, std::vector<size_t>> m_known; ///< labels by their cells
};

} // namespace

FoundOrder findOrder(const RowProblem& problem, RowDistances& apart, const RowSites& sites,
                     int64_t mostLabels)
{
    return OrderSearch(problem, apart, sites, mostLabels).run();
}

} // namespace kit::place
