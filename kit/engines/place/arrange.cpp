// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/arrange.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <utility>

#include "kit/engines/place/orderedProgram.h"
#include "kit/engines/place/rowSites.h"

namespace kit::place {

namespace {

/// Ranks of a newcomer of which the cheapest is taken.
constexpr size_t MOST_RANKS = 3;

/// Whether no cell is too close to another, be it its neighbour or one farther off.
bool isLegal(RowDistances& apart, const Order& order, const std::vector<Spot>& spots)
{
    for (size_t i = 0; i < order.size(); ++i) {
        for (size_t j = i + 1; j < order.size(); ++j) {
            const Spot& left = spots[order[i]];
            const Spot& right = spots[order[j]];
            if (right.x - left.x < apart(left.way, right.way)) {
                return false;
            }
        }
    }
    return true;
}

/// The arrangement of least cost in an order, as far as cells beyond neighbours let it be.
std::optional<OrderedAnswer> inOrder(const RowProblem& problem, RowDistances& apart, const RowSites& sites,
                                     const Order& order)
{
    std::optional<OrderedAnswer> answer = cheapestInOrder(problem, apart, sites, order);
    return answer && isLegal(apart, order, answer->spots) ? answer : std::nullopt;
}

/// The cheapest of the orders in which the newcomer has another rank, those first that it has to be moved
/// least for.
std::optional<OrderedAnswer> withNewcomer(const RowProblem& problem, RowDistances& apart,
                                          const RowSites& sites, const Order& order)
{
    const size_t newcomer = *problem.newcomer;
    Order others = order;
    std::erase(others, newcomer);
    std::vector<size_t> ranks = possibleRanks(problem, apart, sites, others, newcomer);
    std::ranges::stable_sort(ranks, {}, [newcomer](size_t rank) {
        return std::abs(static_cast<int64_t>(rank) - static_cast<int64_t>(newcomer));
    });
    ranks.resize(std::min(ranks.size(), MOST_RANKS));
    std::optional<OrderedAnswer> best;
    for (const size_t rank : ranks) {
        Order one = others;
        one.insert(one.begin() + static_cast<std::ptrdiff_t>(rank), newcomer);
        std::optional<OrderedAnswer> answer = inOrder(problem, apart, sites, one);
        if (answer && (!best || answer->cost < best->cost)) {
            best = std::move(answer);
        }
    }
    return best;
}

} // namespace

RowAnswer arrange(const RowProblem& problem, int64_t mostLabels)
{
    if (problem.cells.empty()) {
        return {.spots = std::vector<Spot>()};
    }
    RowDistances apart(problem);
    const RowSites sites(problem, apart);
    Order order(problem.cells.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::optional<OrderedAnswer> ordered =
        problem.newcomer ? withNewcomer(problem, apart, sites, order) : inOrder(problem, apart, sites, order);
    if (ordered) {
        return {.spots = std::move(ordered->spots)};
    }
    if (mostLabels == 0 || problem.cells.size() > EVERY_ORDER) {
        return {.gaveUp = true};
    }
    FoundOrder found = findOrder(problem, apart, sites, mostLabels);
    RowAnswer answer{.gaveUp = found.gaveUp, .labels = found.labels};
    if (found.spots) {
        ordered = inOrder(problem, apart, sites, found.order);
        answer.spots = ordered ? std::move(ordered->spots) : std::move(found.spots);
    }
    return answer;
}

} // namespace kit::place
