// SPDX-License-Identifier: BSD-3-Clause
// The search for the cheapest colourings, against all colourings.
#include "kit/engines/color/search.h"

#include <gtest/gtest.h>

#include <map>

#include "support/property.h"

namespace {

using kit::color::Bond;
using kit::color::Colouring;
using kit::color::Colourings;
using kit::color::CONFLICT_COST;
using kit::color::Graph;
using kit::color::Joint;
using kit::color::Limits;
using kit::color::Masks;
using kit::color::Outcome;
using kit::color::Pair;
using kit::color::Part;
using kit::color::Rules;

constexpr uint32_t IMPOSSIBLE = std::numeric_limits<uint32_t>::max();

/// Whether metal of one mask joins two parts, by flooding.
bool isJoined(const Graph& graph, const Masks& masks, size_t from, size_t to)
{
    std::vector<bool> reached(masks.size());
    reached[from] = true;
    for (size_t round = 0; round < masks.size(); ++round) {
        for (const Joint& joint : graph.joints) {
            if (masks[joint.a] == masks[joint.b] && (reached[joint.a] || reached[joint.b])) {
                reached[joint.a] = reached[joint.b] = true;
            }
        }
    }
    return reached[to];
}

/// What a colouring costs by the rules, literally.
uint32_t costOf(const Graph& graph, const Masks& masks, const Rules& rules)
{
    uint32_t cost = 0;
    bool possible = true;
    const auto conflict = [&](int64_t squared) {
        const bool bearable = squared >= int64_t{rules.bearable} * rules.bearable;
        possible = possible && bearable;
        cost += CONFLICT_COST;
    };
    for (size_t i = 0; i < masks.size(); ++i) {
        possible = possible && (graph.parts[i].masks >> masks[i] & 1) != 0;
    }
    for (const Joint& joint : graph.joints) {
        cost += masks[joint.a] != masks[joint.b] ? 1 : 0;
    }
    for (const Pair& pair : graph.pairs) {
        if (masks[pair.a] == masks[pair.b]) {
            conflict(pair.squared);
        }
    }
    for (const Bond& bond : graph.bonds) {
        if (masks[bond.a] == masks[bond.b] && !isJoined(graph, masks, bond.a, bond.b)) {
            conflict(bond.squared);
        }
    }
    return possible ? cost : IMPOSSIBLE;
}

Masks sidesOf(const Graph& graph, const Masks& masks)
{
    Masks sides;
    for (size_t i = 0; i < masks.size(); ++i) {
        if (graph.parts[i].atSide) {
            sides.push_back(masks[i]);
        }
    }
    return sides;
}

/// The least cost for every look of the sides, of all colourings.
std::map<Masks, uint32_t> leastBySides(const Graph& graph, const Rules& rules)
{
    std::map<Masks, uint32_t> least;
    Masks masks(graph.parts.size());
    while (true) {
        const uint32_t cost = costOf(graph, masks, rules);
        if (cost != IMPOSSIBLE) {
            const auto [entry, isNew] = least.try_emplace(sidesOf(graph, masks), cost);
            entry->second = std::min(entry->second, cost);
        }
        size_t i = 0;
        while (i < masks.size() && masks[i] == 2) {
            masks[i++] = 0;
        }
        if (i == masks.size()) {
            return least;
        }
        ++masks[i];
    }
}

/// A random graph of up to 8 parts, with much that conflicts.
Graph someGraph()
{
    Graph graph;
    const auto parts = static_cast<size_t>(test::draw(1, 9));
    for (size_t i = 0; i < parts; ++i) {
        const bool goesOn = i > 0 && test::draw(0, 2) == 0;
        const size_t polygon = i == 0 ? 0 : graph.parts.back().polygon + (goesOn ? 0 : 1);
        const int32_t x = test::draw(0, 100);
        graph.parts.push_back({polygon,
                               {{x, 0, x + 1, 1}},
                               test::drawOne<uint8_t>({7, 7, 7, 7, 7, 7, 7, 7, 6, 3}),
                               test::draw(0, 3) == 0});
        if (goesOn) { // it hangs on one before it in the polygon
            const auto first =
                static_cast<size_t>(std::find_if(graph.parts.begin(), graph.parts.end(),
                                                 [&](const Part& part) { return part.polygon == polygon; }) -
                                    graph.parts.begin());
            graph.joints.push_back(
                {first + static_cast<size_t>(test::draw(0, static_cast<int>(i - first))), i, {}});
        }
    }
    const auto meet = [&](size_t a, size_t b) {
        return std::any_of(graph.joints.begin(), graph.joints.end(),
                           [&](const Joint& joint) { return joint.a == a && joint.b == b; });
    };
    for (size_t b = 0; b < parts; ++b) {
        for (size_t a = 0; a < b; ++a) {
            const int64_t squared = test::drawOne<int64_t>({50 * 50, 100 * 100, 150 * 150});
            const size_t polygon = graph.parts[a].polygon;
            const int chance = test::draw(0, 10);
            if (polygon != graph.parts[b].polygon && chance < 6) {
                graph.pairs.push_back({a, b, squared});
            } else if (polygon == graph.parts[b].polygon && !meet(a, b) && chance < 1) {
                graph.joints.push_back({a, b, {}}); // a ring
            }
        }
    }
    for (size_t b = 0; b < parts; ++b) {
        for (size_t a = 0; a < b; ++a) {
            if (graph.parts[a].polygon == graph.parts[b].polygon && !meet(a, b)) {
                Bond bond{a, b, test::drawOne<int64_t>({50 * 50, 150 * 150}), {}};
                for (size_t i = 0; i < parts; ++i) {
                    if (graph.parts[i].polygon == graph.parts[a].polygon) {
                        bond.members.push_back(i);
                    }
                }
                graph.bonds.push_back(bond);
            }
        }
    }
    return graph;
}

Rules someRules()
{
    Rules rules;
    rules.bearable = test::drawOne({Rules::NONE, 60, 100, 0});
    return rules;
}

PROPERTY(KitColorSearch, FindsTheLeastCostForEveryLookOfTheSides)
{
    const Graph graph = someGraph();
    const Rules rules = someRules();
    const Limits limits;
    const std::map<Masks, uint32_t> want = leastBySides(graph, rules);
    const Colourings got = kit::color::colouringsOf(graph, rules, limits);
    RC_ASSERT((got.outcome == Outcome::NONE) == want.empty());
    if (want.empty()) {
        return;
    }
    uint32_t least = IMPOSSIBLE;
    for (const auto& [sides, cost] : want) {
        least = std::min(least, cost);
    }
    std::map<Masks, uint32_t> found;
    for (const Colouring& colouring : got.all) {
        RC_ASSERT(colouring.sides == sidesOf(graph, colouring.masks));
        RC_ASSERT(colouring.cost == costOf(graph, colouring.masks, rules));
        RC_ASSERT(found.try_emplace(colouring.sides, colouring.cost).second);
    }
    RC_ASSERT(got.all.front().cost == least);
    for (const auto& [sides, cost] : want) {
        const auto same = found.find(sides);
        const bool isWanted = cost <= least + limits.moreStitches;
        RC_ASSERT(isWanted == (same != found.end()));
        RC_ASSERT((!isWanted || same->second == cost)); // or both sides are worked out
    }
}

PROPERTY(KitColorSearch, SaysWhetherSomePartsCanBeColoured)
{
    const Graph graph = someGraph();
    std::vector<bool> polygons(graph.parts.size());
    for (size_t i = 0; i < polygons.size(); ++i) {
        polygons[i] = test::draw(0, 3) > 0;
    }
    Graph rest; // the wanted parts as a graph of their own
    std::vector<size_t> renamed(graph.parts.size(), graph.parts.size());
    std::vector<bool> wanted;
    for (size_t i = 0; i < graph.parts.size(); ++i) {
        wanted.push_back(polygons[graph.parts[i].polygon]);
        if (wanted.back()) {
            renamed[i] = rest.parts.size();
            rest.parts.push_back(graph.parts[i]);
        }
    }
    for (const Joint& joint : graph.joints) {
        if (wanted[joint.a] && wanted[joint.b]) {
            rest.joints.push_back({renamed[joint.a], renamed[joint.b], {}});
        }
    }
    for (const Pair& pair : graph.pairs) {
        if (wanted[pair.a] && wanted[pair.b]) {
            rest.pairs.push_back({renamed[pair.a], renamed[pair.b], pair.squared});
        }
    }
    for (const Bond& bond : graph.bonds) {
        if (wanted[bond.a]) {
            rest.bonds.push_back({renamed[bond.a], renamed[bond.b], bond.squared, {}});
        }
    }
    const bool possible = rest.parts.empty() || !leastBySides(rest, {}).empty();
    RC_ASSERT(kit::color::isColourable(graph, wanted, {}, {}) == possible);
}

/// Parts in a row, each close to the next so many, all at the sides.
Graph chain(size_t count, size_t reach)
{
    Graph graph;
    for (size_t i = 0; i < count; ++i) {
        const auto x = static_cast<int32_t>(100 * i);
        graph.parts.push_back({i, {{x, 0, x + 10, 10}}, 7, true});
        for (size_t k = i - std::min(i, reach); k < i; ++k) {
            graph.pairs.push_back({k, i, 100});
        }
    }
    return graph;
}

TEST(KitColorSearch, GivesUpBeyondItsLimit)
{
    Limits limits;
    limits.states = 50;
    const Graph graph = chain(40, 2);
    EXPECT_EQ(kit::color::colouringsOf(graph, {}, limits).outcome, Outcome::TOO_LARGE);
    EXPECT_EQ(kit::color::isColourable(graph, std::vector<bool>(40, true), {}, limits), std::nullopt);
    limits.states = 1000;
    EXPECT_EQ(kit::color::colouringsOf(graph, {}, limits).outcome, Outcome::FOUND);
}

TEST(KitColorSearch, FrontierBeyondAKeyIsTooLarge)
{
    Graph graph = chain(70, 0); // all wait for the last one
    for (size_t i = 0; i < 69; ++i) {
        for (size_t k = 0; k < i; ++k) {
            graph.pairs.push_back({k, i, 100});
        }
    }
    EXPECT_EQ(kit::color::colouringsOf(graph, {}, {}).outcome, Outcome::TOO_LARGE);
}

TEST(KitColorSearch, ThinsOutWhatIsTooMuch)
{
    Limits limits;
    limits.open = 100;
    limits.results = 20;
    const Graph graph = chain(30, 1); // 3 * 2^29 colourings without stitches
    const Colourings got = kit::color::colouringsOf(graph, {}, limits);
    EXPECT_EQ(got.outcome, Outcome::FOUND);
    EXPECT_EQ(got.all.size(), 20U);
    for (const Colouring& colouring : got.all) {
        EXPECT_EQ(costOf(graph, colouring.masks, {}), 0U);
    }
}

Colouring colouring(uint32_t cost, const Masks& sides)
{
    return {cost, sides, sides};
}

TEST(KitColorSpread, KeepsAQuarterForMoreStitches)
{
    std::vector<Colouring> all;
    for (uint8_t i = 0; i < 27; ++i) {
        const auto third = static_cast<uint8_t>(i / 9);
        all.push_back(
            colouring(i < 20 ? 1 : 2, {third, static_cast<uint8_t>(i / 3 % 3), static_cast<uint8_t>(i % 3)}));
    }
    const std::vector<Colouring> chosen = kit::color::chosen(all, 12);
    ASSERT_EQ(chosen.size(), 12U);
    EXPECT_EQ(chosen[8].cost, 1U);
    EXPECT_EQ(chosen[9].cost, 2U);
}

TEST(KitColorSpread, TakesTheCheaperOfThoseWithMoreStitches)
{
    std::vector<Colouring> all{colouring(0, {0, 0}), colouring(1, {0, 1}), colouring(1, {1, 0}),
                               colouring(2, {2, 2})};
    EXPECT_EQ(kit::color::chosen(all, 3).back().cost, 1U);
    EXPECT_EQ(kit::color::chosen(all, 4).back().cost, 2U);
}

TEST(KitColorSpread, GivesFreePlacesToTheOthers)
{
    std::vector<Colouring> all{colouring(0, {0}), colouring(0, {1})};
    EXPECT_EQ(kit::color::chosen(all, 12).size(), 2U);
    all.push_back(colouring(1, {2}));
    EXPECT_EQ(kit::color::chosen(all, 12).size(), 3U);
    EXPECT_EQ(kit::color::chosen(all, 2).back().cost, 0U); // a quarter of two is none
    EXPECT_EQ(kit::color::chosen(all, 1).size(), 1U);
}

TEST(KitColorSpread, ChoosesWhatDiffersMost)
{
    const std::vector<Colouring> all{colouring(0, {0, 0, 0}), colouring(0, {0, 0, 1}),
                                     colouring(0, {0, 1, 1}), colouring(0, {1, 1, 1})};
    const std::vector<Colouring> chosen = kit::color::chosen(all, 2);
    EXPECT_EQ(chosen[0].sides, (Masks{0, 0, 0}));
    EXPECT_EQ(chosen[1].sides, (Masks{1, 1, 1}));
}

TEST(KitColorSpread, ThinningKeepsTheCheapest)
{
    std::vector<Colouring> all;
    for (uint8_t i = 0; i < 100; ++i) {
        all.push_back(colouring(i < 5 ? 0 : 1, {i}));
    }
    kit::color::thinOut(all, 24);
    ASSERT_EQ(all.size(), 24U);
    EXPECT_EQ(all[4].sides, (Masks{4}));
    EXPECT_EQ(all[5].sides, (Masks{5}));
    EXPECT_EQ(all[6].sides, (Masks{10}));
    EXPECT_EQ(all[23].sides, (Masks{95}));
}

} // namespace
