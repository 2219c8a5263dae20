// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/frontier.h"

#include <algorithm>
#include <tuple>

namespace kit::color {

namespace {

/// Costs of colourings stay below, so that sums have 32 bits.
constexpr uint32_t MOST_COST = 1'000'000'000;

void link(std::vector<std::vector<size_t>>& neighbours, size_t a, size_t b)
{
    neighbours[a].push_back(b);
    neighbours[b].push_back(a);
}

/// Parts that something depends on together, with all members of a bond linked.
std::vector<std::vector<size_t>> neighboursOf(const Graph& graph)
{
    std::vector<std::vector<size_t>> neighbours(graph.parts.size());
    for (const Joint& joint : graph.joints) {
        link(neighbours, joint.a, joint.b);
    }
    for (const Pair& pair : graph.pairs) {
        link(neighbours, pair.a, pair.b);
    }
    for (const Bond& bond : graph.bonds) {
        for (size_t i = 0; i < bond.members.size(); ++i) {
            for (size_t k = 0; k < i; ++k) {
                link(neighbours, bond.members[i], bond.members[k]);
            }
        }
    }
    for (std::vector<size_t>& list : neighbours) {
        std::ranges::sort(list);
        list.erase(std::unique(list.begin(), list.end()), list.end());
    }
    return neighbours;
}

int32_t leftOf(const Part& part)
{
    int32_t left = std::numeric_limits<int32_t>::max();
    for (const Rect& rect : part.rects) {
        left = std::min(left, rect.xl);
    }
    return left;
}

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
        const auto total = [&](const View& view) {
            return (view.cost + m_frontiers.toGo(step, view.state)) / Problem::STITCH;
        };
        std::ranges::stable_sort(m_views, {}, total);
        color::thinOut(m_views, m_limits.open, total);
    }

    Colouring trace(size_t view) const
    {
        Colouring colouring;
        colouring.cost = m_views[view].cost / Problem::STITCH;
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

Problem::Problem(const Graph& graph, const std::vector<size_t>& parts, const Rules& rules)
    : m_stepOf(graph.parts.size(), parts.size())
{
    for (const size_t part : parts) {
        m_steps.push_back({.part = part, .masks = graph.parts[part].masks});
        m_stepOf[part] = 0; // wanted; the step follows
    }
    std::vector<std::vector<size_t>> neighbours = neighboursOf(graph);
    for (size_t i = 0; i < neighbours.size(); ++i) {
        std::vector<size_t>& list = neighbours[i];
        std::erase_if(list, [&](size_t other) { return m_stepOf[other] == parts.size(); });
    }
    std::ranges::stable_sort(m_steps, {},
                             [&graph](const Step& each) { return leftOf(graph.parts[each.part]); });
    arrange(neighbours);
    assignPlaces(neighbours);
    if (m_fits) {
        addRules(graph, rules);
    }
}

/// Brings the steps, which are from the left, into an order with a short frontier: next comes what lets most
/// parts go and takes fewest in.
void Problem::arrange(const std::vector<std::vector<size_t>>& neighbours)
{
    std::vector<size_t> missing(neighbours.size()); // neighbours of each part that are still to come
    for (size_t i = 0; i < neighbours.size(); ++i) {
        missing[i] = neighbours[i].size();
    }
    std::vector<bool> done(neighbours.size());
    std::vector<bool> onFrontier(neighbours.size());
    for (size_t i = 0; i < m_steps.size(); ++i) {
        size_t best = i;
        std::tuple<int64_t, int64_t> bestKey{std::numeric_limits<int64_t>::max(), 0};
        for (size_t k = i; k < m_steps.size(); ++k) {
            const size_t part = m_steps[k].part;
            int64_t growth = missing[part] > 0 ? 1 : 0;
            int64_t near = 0;
            for (const size_t other : neighbours[part]) {
                growth -= onFrontier[other] && missing[other] == 1 ? 1 : 0;
                near += done[other] ? 1 : 0;
            }
            // An untouched part opens a new front: it waits until the old one is at its end.
            const std::tuple<int64_t, int64_t> key{growth + (near == 0 && i > 0 ? 1 : 0), -near};
            if (key < bestKey) {
                bestKey = key;
                best = k;
            }
        }
        std::rotate(m_steps.begin() + static_cast<std::ptrdiff_t>(i),
                    m_steps.begin() + static_cast<std::ptrdiff_t>(best),
                    m_steps.begin() + static_cast<std::ptrdiff_t>(best) + 1);
        const size_t part = m_steps[i].part;
        m_stepOf[part] = i;
        done[part] = true;
        onFrontier[part] = missing[part] > 0;
        for (const size_t other : neighbours[part]) {
            --missing[other];
            onFrontier[other] = onFrontier[other] && missing[other] > 0;
        }
    }
}

void Problem::assignPlaces(const std::vector<std::vector<size_t>>& neighbours)
{
    std::vector<size_t> lastUse(m_steps.size());
    for (size_t i = 0; i < m_steps.size(); ++i) {
        lastUse[i] = i;
        for (const size_t other : neighbours[m_steps[i].part]) {
            lastUse[i] = std::max(lastUse[i], m_stepOf[other]);
        }
    }
    std::vector<size_t> freeFrom(MOST_PLACES); // first step at which a place is free
    for (size_t i = 0; i < m_steps.size() && m_fits; ++i) {
        Step& step = m_steps[i];
        while (step.place < MOST_PLACES && freeFrom[step.place] > i) {
            ++step.place;
        }
        m_fits = step.place < MOST_PLACES;
        if (m_fits) {
            freeFrom[step.place] = lastUse[i] + 1;
        }
        for (size_t place = 0; place < MOST_PLACES; ++place) {
            const bool stays = freeFrom[place] > i + 1;
            step.kept[place / 32] |= stays ? uint64_t{3} << (2 * (place % 32)) : 0;
        }
    }
}

void Problem::addRules(const Graph& graph, const Rules& rules)
{
    const int64_t hard = int64_t{rules.hardDistance()} * rules.hardDistance();
    const auto conflictCost = [hard](int64_t squared) {
        return squared < hard ? FORBIDDEN : CONFLICT_COST * STITCH;
    };
    const auto add = [this](size_t a, size_t b, uint32_t ifEqual, uint32_t ifDifferent) {
        const size_t first = std::min(m_stepOf[a], m_stepOf[b]);
        const size_t last = std::max(m_stepOf[a], m_stepOf[b]);
        if (last < m_steps.size()) {
            m_steps[last].rules.push_back({m_steps[first].place, ifEqual, ifDifferent});
            const uint32_t cost = ifEqual == FORBIDDEN ? ifDifferent : std::max(ifEqual, ifDifferent);
            m_mostCost = std::min(m_mostCost + cost, MOST_COST);
        }
    };
    uint32_t atRail = 0;
    for (Step& step : m_steps) {
        // All of them together cost less than a stitch.
        step.ifMask0 = graph.parts[step.part].atRail && ++atRail < STITCH ? 1 : 0;
    }
    for (const Joint& joint : graph.joints) {
        add(joint.a, joint.b, 0, STITCH);
    }
    for (const Pair& pair : graph.pairs) {
        add(pair.a, pair.b, conflictCost(pair.squared), 0);
    }
    for (const Bond& bond : graph.bonds) {
        addBond(graph, bond, conflictCost(bond.squared));
    }
}

void Problem::addBond(const Graph& graph, const Bond& bond, uint32_t cost)
{
    size_t last = 0;
    for (const size_t member : bond.members) {
        last = std::max(last, m_stepOf[member]);
    }
    if (last >= m_steps.size()) {
        return;
    }
    BondRule rule{.cost = cost};
    const auto positionOf = [&bond](size_t part) {
        const auto at = std::lower_bound(bond.members.begin(), bond.members.end(), part);
        return at != bond.members.end() && *at == part ? static_cast<size_t>(at - bond.members.begin())
                                                       : bond.members.size();
    };
    for (const size_t member : bond.members) {
        rule.places.push_back(m_steps[m_stepOf[member]].place);
    }
    for (const Joint& joint : graph.joints) {
        const size_t a = positionOf(joint.a);
        const size_t b = positionOf(joint.b);
        if (a < bond.members.size() && b < bond.members.size()) {
            rule.joints.push_back({a, b, {}});
        }
    }
    rule.a = positionOf(bond.a);
    rule.b = positionOf(bond.b);
    m_steps[last].bonds.push_back(std::move(rule));
    m_mostCost = cost == FORBIDDEN ? m_mostCost : std::min(m_mostCost + cost, MOST_COST);
}

bool Problem::breaks(const BondRule& bond, const Key& key)
{
    const uint32_t mask = maskAt(key, bond.places[bond.a]);
    if (mask != maskAt(key, bond.places[bond.b])) {
        return false;
    }
    return !joined(bond.joints, bond.a, bond.b,
                   [&](size_t member) { return maskAt(key, bond.places[member]) == mask; });
}

uint32_t Problem::costOf(size_t step, const Key& key, uint32_t mask) const
{
    const Step& here = m_steps[step];
    uint32_t cost = mask == 0 ? here.ifMask0 : 0;
    for (const Rule& rule : here.rules) {
        const uint32_t one = maskAt(key, rule.other) == mask ? rule.ifEqual : rule.ifDifferent;
        if (one == FORBIDDEN) {
            return FORBIDDEN;
        }
        cost += one;
    }
    if (here.bonds.empty()) {
        return cost;
    }
    Key full = key;
    full[here.place / 32] |= uint64_t{mask} << (2 * (here.place % 32));
    for (const BondRule& bond : here.bonds) {
        const bool broken = breaks(bond, full);
        if (broken && bond.cost == FORBIDDEN) {
            return FORBIDDEN;
        }
        cost += broken ? bond.cost : 0;
    }
    return cost;
}

Problem::Key Problem::next(size_t step, Key key, uint32_t mask) const
{
    const Step& here = m_steps[step];
    key[here.place / 32] |= uint64_t{mask} << (2 * (here.place % 32));
    return {key[0] & here.kept[0], key[1] & here.kept[1]};
}

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
