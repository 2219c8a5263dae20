// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/problem.h"

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
    const auto conflictCost = [hard](int64_t squared) { return squared < hard ? FORBIDDEN : CONFLICT_COST; };
    const auto add = [this](size_t a, size_t b, uint32_t ifEqual, uint32_t ifDifferent) {
        const size_t first = std::min(m_stepOf[a], m_stepOf[b]);
        const size_t last = std::max(m_stepOf[a], m_stepOf[b]);
        if (last < m_steps.size()) {
            m_steps[last].rules.push_back({m_steps[first].place, ifEqual, ifDifferent});
            const uint32_t cost = ifEqual == FORBIDDEN ? ifDifferent : std::max(ifEqual, ifDifferent);
            m_mostCost = std::min(m_mostCost + cost, MOST_COST);
        }
    };
    for (const Joint& joint : graph.joints) {
        add(joint.a, joint.b, 0, 1);
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
    uint32_t cost = 0;
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

} // namespace kit::color
