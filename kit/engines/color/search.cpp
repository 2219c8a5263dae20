// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/search.h"

#include <algorithm>
#include <limits>
#include <tuple>

#include "kit/engines/color/frontier.h"
#include "kit/geometry/sets.h"

namespace kit::color {

namespace {

/// Parts that do not depend on each other, some of them left out.
std::vector<std::vector<size_t>> componentsOf(const Graph& graph, const std::vector<bool>& wanted)
{
    geometry::Sets sets(graph.parts.size());
    const auto join = [&](size_t a, size_t b) {
        if (wanted[a] && wanted[b]) {
            sets.join(a, b);
        }
    };
    for (const Joint& joint : graph.joints) {
        join(joint.a, joint.b);
    }
    for (const Pair& pair : graph.pairs) {
        join(pair.a, pair.b);
    }
    std::vector<std::vector<size_t>> components = sets.all();
    std::erase_if(components, [&](const auto& parts) { return !wanted[parts.front()]; });
    return components;
}

/// The bound that lets so many stitches pass.
uint32_t boundOf(uint32_t stitches)
{
    return stitches * Problem::STITCH + Problem::STITCH - 1;
}

/// The next number of stitches to try: a few steps of one, then longer ones.
uint32_t raised(uint32_t stitches)
{
    return stitches < 4 ? stitches + 1 : stitches + stitches / 2;
}

/// Searches with rising bounds until there is a colouring.
///
/// @param bound  out: the last one, in stitches
Outcome searchRising(Frontiers& frontiers, const Problem& problem, const Limits& limits, uint32_t& bound)
{
    if (!problem.fits()) {
        return Outcome::TOO_LARGE;
    }
    bound = 0;
    Outcome outcome = frontiers.search(boundOf(bound), limits);
    while (outcome == Outcome::NONE && bound < problem.mostStitches()) {
        bound = std::min(raised(bound), problem.mostStitches());
        outcome = frontiers.search(boundOf(bound), limits);
    }
    return outcome;
}

/// Puts the masks of some parts into their places among all parts of the cell.
Colouring placed(const Colouring& colouring, const Problem& problem, size_t parts)
{
    constexpr uint8_t UNKNOWN = 255;
    Colouring result{colouring.cost, {}, Masks(parts, UNKNOWN)};
    for (size_t step = 0; step < problem.size(); ++step) {
        result.masks[problem.partOf(step)] = colouring.masks[step];
    }
    return result;
}

/// Colourings of parts that hang together.
///
/// @return masks for all parts of the cell, those of others unknown; sides empty
Colourings solve(const Graph& graph, const std::vector<size_t>& parts, const Rules& rules,
                 const Limits& limits)
{
    const Problem problem(graph, parts, rules);
    Frontiers frontiers(problem);
    uint32_t bound = 0;
    Colourings result{searchRising(frontiers, problem, limits, bound), {}};
    if (result.outcome != Outcome::FOUND) {
        return result;
    }
    const uint32_t least = frontiers.least() / Problem::STITCH;
    uint32_t most = least;
    const bool seen = std::ranges::any_of(parts, [&](size_t i) { return graph.parts[i].atSide; });
    if (seen) {
        // Where those with more stitches are too many to look at, those with the fewest have to do.
        if (frontiers.search(boundOf(least + limits.moreStitches), limits) == Outcome::FOUND) {
            most = least + limits.moreStitches;
        } else {
            frontiers.search(boundOf(bound), limits);
        }
    }
    std::vector<Colouring> all = colouringsBySides(graph, problem, frontiers, boundOf(most), limits);
    thinOut(all, limits.results);
    for (const Colouring& colouring : all) {
        result.all.push_back(placed(colouring, problem, graph.parts.size()));
    }
    return result;
}

void sort(std::vector<Colouring>& all)
{
    std::ranges::sort(all, {}, [](const Colouring& colouring) {
        return std::tie(colouring.cost, colouring.sides, colouring.masks);
    });
}

/// Everything of one kind with everything of another.
std::vector<Colouring> combined(const std::vector<Colouring>& some, const std::vector<Colouring>& others,
                                uint32_t most)
{
    std::vector<Colouring> result;
    for (const Colouring& a : some) {
        for (const Colouring& b : others) {
            if (a.cost + b.cost > most) {
                continue;
            }
            Colouring both{a.cost + b.cost, {}, a.masks};
            for (size_t i = 0; i < both.masks.size(); ++i) {
                both.masks[i] = std::min(a.masks[i], b.masks[i]); // one of them is unknown, a large number
            }
            result.push_back(std::move(both));
        }
    }
    return result;
}

void fillSides(const Graph& graph, Colouring& colouring)
{
    colouring.sides.clear();
    for (size_t i = 0; i < graph.parts.size(); ++i) {
        if (graph.parts[i].atSide) {
            colouring.sides.push_back(colouring.masks[i]);
        }
    }
}

size_t differing(const Masks& a, const Masks& b)
{
    size_t count = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        count += a[i] != b[i] ? 1 : 0;
    }
    return count;
}

/// Chooses colourings that differ.
class Chooser {
public:
    explicit Chooser(const std::vector<Colouring>& all)
        : m_all(all), m_distances(all.size(), std::numeric_limits<size_t>::max()), m_isChosen(all.size())
    {
    }

    /// Chooses some of a range.
    void choose(size_t begin, size_t end, size_t count)
    {
        for (size_t i = 0; i < count; ++i) {
            size_t best = end;
            for (size_t k = begin; k < end; ++k) {
                if (!m_isChosen[k] && (best == end || m_distances[k] > m_distances[best])) {
                    best = k;
                }
            }
            m_isChosen[best] = true;
            for (size_t k = 0; k < m_all.size(); ++k) {
                m_distances[k] = std::min(m_distances[k], differing(m_all[k].sides, m_all[best].sides));
            }
        }
    }

    std::vector<Colouring> result() const
    {
        std::vector<Colouring> result;
        for (size_t i = 0; i < m_all.size(); ++i) {
            if (m_isChosen[i]) {
                result.push_back(m_all[i]);
            }
        }
        return result;
    }

private:
    const std::vector<Colouring>& m_all;
    std::vector<size_t> m_distances; ///< to the chosen one that is most alike
    std::vector<bool> m_isChosen;
};

} // namespace

std::optional<bool> isColourable(const Graph& graph, const std::vector<bool>& wanted, const Rules& rules,
                                 const Limits& limits)
{
    for (const std::vector<size_t>& parts : componentsOf(graph, wanted)) {
        const Problem problem(graph, parts, rules);
        Frontiers frontiers(problem);
        uint32_t bound = 0;
        const Outcome outcome = searchRising(frontiers, problem, limits, bound);
        if (outcome == Outcome::TOO_LARGE) {
            return {};
        }
        if (outcome == Outcome::NONE) {
            return false;
        }
    }
    return true;
}

Colourings colouringsOf(const Graph& graph, const Rules& rules, const Limits& limits)
{
    Colourings result;
    result.all.push_back({0, {}, Masks(graph.parts.size(), 255)});
    uint32_t least = 0;
    for (const std::vector<size_t>& parts :
         componentsOf(graph, std::vector<bool>(graph.parts.size(), true))) {
        Colourings one = solve(graph, parts, rules, limits);
        if (one.outcome != Outcome::FOUND) {
            return one;
        }
        least += one.all.front().cost;
        thinOut(one.all, limits.open / result.all.size() + 1);
        result.all = combined(result.all, one.all, least + limits.moreStitches);
        for (Colouring& colouring : result.all) {
            fillSides(graph, colouring);
        }
        sort(result.all);
        thinOut(result.all, limits.results);
    }
    return result;
}

std::vector<Colouring> chosen(const std::vector<Colouring>& all, size_t most)
{
    const auto endOf = [&all](size_t begin) { // of those that cost the same
        size_t end = begin;
        while (end < all.size() && all[end].cost == all[begin].cost) {
            ++end;
        }
        return end;
    };
    const size_t least = endOf(0);
    const size_t reserved = std::min(most / 4, all.size() - least);
    size_t places = most - std::min(least, most - reserved);
    Chooser chooser(all);
    chooser.choose(0, least, most - places);
    for (size_t begin = least; begin < all.size() && places > 0;) {
        const size_t end = endOf(begin);
        const size_t count = std::min(end - begin, places);
        chooser.choose(begin, end, count);
        places -= count;
        begin = end;
    }
    return chooser.result();
}

} // namespace kit::color
