// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/frontier.h"

#include <algorithm>
#include <tuple>

namespace kit::color {

namespace {

/// A partial colouring that remembers how the sides look.
struct View {
    std::array<uint64_t, 2> sides{}; ///< two bits for each part at a side
    uint32_t state = 0;              ///< among the frontiers of the step
    uint32_t cost = 0;
    uint32_t from = 0; ///< index of the one that it goes on from
    uint8_t mask = 0;  ///< of the last part
};

/// Where a view comes from.
struct Origin {
    uint32_t from;
    uint8_t mask;
};

constexpr size_t MOST_SIDE_PARTS = 64; // those beyond do not count as seen

/// Follows all ways through the frontiers.
class Walk {
public:
    Walk(const Graph& graph, const Problem& problem, const Frontiers& frontiers, uint32_t bound,
         const Limits& limits)
        : m_graph(graph), m_problem(problem), m_frontiers(frontiers), m_bound(bound), m_limits(limits)
    {
    }

    std::vector<Colouring> run()
    {
        m_views = {View{}};
        for (size_t step = 0; step < m_problem.size(); ++step) {
            advance(step);
        }
        std::vector<Colouring> all;
        for (size_t i = 0; i < m_views.size(); ++i) {
            all.push_back(trace(i));
        }
        std::ranges::sort(
            all, {}, [](const Colouring& colouring) { return std::tie(colouring.cost, colouring.sides); });
        return all;
    }

private:
    bool isSeen(size_t step) const { return m_graph.parts[m_problem.partOf(step)].atSide; }

    void advance(size_t step)
    {
        std::vector<View> next;
        for (size_t i = 0; i < m_views.size(); ++i) {
            const View& view = m_views[i];
            for (uint8_t mask = 0; mask < 3; ++mask) {
                const Frontiers::Way way = m_frontiers.ways(step, view.state)[mask];
                const uint32_t toGo =
                    way.to == Frontiers::NOWHERE ? Frontiers::NOWHERE : m_frontiers.toGo(step + 1, way.to);
                // Without 64 bits, what cannot be reached would wrap around.
                if (uint64_t{view.cost} + way.cost + toGo > m_bound) {
                    continue;
                }
                View longer{view.sides, way.to, view.cost + way.cost, static_cast<uint32_t>(i), mask};
                if (isSeen(step) && m_seen < MOST_SIDE_PARTS) {
                    longer.sides[m_seen / 32] |= uint64_t{mask} << (2 * (m_seen % 32));
                }
                next.push_back(longer);
            }
        }
        m_seen += isSeen(step) ? 1 : 0;
        m_views = cheapest(std::move(next));
        thinOut(step + 1);
        std::vector<Origin>& origins = m_origins.emplace_back();
        for (const View& view : m_views) {
            origins.push_back({view.from, view.mask});
        }
    }

    /// Of those with the same state and the same sides the cheapest.
    static std::vector<View> cheapest(std::vector<View> views)
    {
        std::ranges::sort(views, {}, [](const View& view) {
            return std::tie(view.state, view.sides, view.cost, view.from, view.mask);
        });
        const auto end = std::unique(views.begin(), views.end(), [](const View& a, const View& b) {
            return a.state == b.state && a.sides == b.sides;
        });
        views.erase(end, views.end());
        return views;
    }

    /// Leaves as many as may be open: those with the least total cost first, of the dearest evenly spread
    /// ones.
    void thinOut(size_t step)
    {
        if (m_views.size() <= m_limits.open) {
            return;
        }
        const auto total = [&](const View& view) { return view.cost + m_frontiers.toGo(step, view.state); };
        std::ranges::stable_sort(m_views, {}, total);
        size_t kept = 0;
        for (size_t i = 1; i <= m_limits.open; ++i) {
            kept = total(m_views[i]) > total(m_views[i - 1]) ? i : kept;
        }
        const size_t rest = m_views.size() - kept;
        const size_t room = m_limits.open - kept;
        for (size_t i = 0; i < room; ++i) {
            m_views[kept + i] = m_views[kept + i * rest / room];
        }
        m_views.resize(m_limits.open);
    }

    Colouring trace(size_t view) const
    {
        Colouring colouring;
        colouring.cost = m_views[view].cost;
        colouring.masks.resize(m_problem.size());
        for (size_t step = m_problem.size(); step-- > 0;) {
            const Origin& origin = m_origins[step][view];
            colouring.masks[step] = origin.mask;
            view = origin.from;
        }
        for (size_t step = 0; step < m_problem.size(); ++step) {
            if (isSeen(step)) {
                colouring.sides.push_back(colouring.masks[step]);
            }
        }
        return colouring;
    }

    const Graph& m_graph;
    const Problem& m_problem;
    const Frontiers& m_frontiers;
    uint32_t m_bound;
    const Limits& m_limits;
    std::vector<View> m_views;
    std::vector<std::vector<Origin>> m_origins; ///< [step][view]
    size_t m_seen = 0;                          ///< parts at a side so far
};

} // namespace

Outcome Frontiers::search(uint32_t bound, const Limits& limits)
{
    m_layers.assign(1, {});
    m_layers.front() = {{Problem::Key{}}, {0}, {{}}, {}};
    size_t states = 1;
    for (size_t step = 0; step < m_problem.size(); ++step) {
        expand(step, bound);
        states += m_layers.back().keys.size();
        if (m_layers.back().keys.empty()) {
            return Outcome::NONE;
        }
        if (states > limits.states) {
            return Outcome::TOO_LARGE;
        }
    }
    lookBack();
    return Outcome::FOUND;
}

void Frontiers::expand(size_t step, uint32_t bound)
{
    const Layer& from = m_layers.back();
    m_candidates.clear();
    for (uint32_t state = 0; state < from.keys.size(); ++state) {
        for (uint32_t mask = 0; mask < 3; ++mask) {
            if ((m_problem.masksOf(step) >> mask & 1U) == 0) {
                continue;
            }
            const uint32_t price = m_problem.costOf(step, from.keys[state], mask);
            if (price != Problem::FORBIDDEN && from.costs[state] + price <= bound) {
                m_candidates.push_back({m_problem.next(step, from.keys[state], mask),
                                        from.costs[state] + price, state, mask, price});
            }
        }
    }
    m_layers.emplace_back();
    takeUp(m_layers[step], m_layers[step + 1]);
}

/// Makes states of the candidates.
void Frontiers::takeUp(Layer& from, Layer& to)
{
    std::ranges::sort(m_candidates, {}, &Candidate::key);
    for (const Candidate& candidate : m_candidates) {
        if (to.keys.empty() || to.keys.back() != candidate.key) {
            to.keys.push_back(candidate.key);
            to.costs.push_back(candidate.cost);
        }
        to.costs.back() = std::min(to.costs.back(), candidate.cost);
        from.ways[candidate.from][candidate.mask] = {static_cast<uint32_t>(to.keys.size() - 1),
                                                     candidate.price};
    }
    to.ways.resize(to.keys.size());
}

void Frontiers::lookBack()
{
    m_layers.back().toGo.assign(m_layers.back().keys.size(), 0);
    for (size_t step = m_problem.size(); step-- > 0;) {
        Layer& layer = m_layers[step];
        const Layer& next = m_layers[step + 1];
        layer.toGo.assign(layer.keys.size(), NOWHERE);
        for (size_t state = 0; state < layer.keys.size(); ++state) {
            for (const Way& way : layer.ways[state]) {
                if (way.to != NOWHERE && next.toGo[way.to] != NOWHERE) {
                    layer.toGo[state] = std::min(layer.toGo[state], way.cost + next.toGo[way.to]);
                }
            }
        }
    }
}

std::vector<Colouring> colouringsBySides(const Graph& graph, const Problem& problem,
                                         const Frontiers& frontiers, uint32_t bound, const Limits& limits)
{
    return Walk(graph, problem, frontiers, bound, limits).run();
}

} // namespace kit::color
