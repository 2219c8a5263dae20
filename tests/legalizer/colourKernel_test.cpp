// SPDX-License-Identifier: BSD-3-Clause
// The colouring kernel against the graph itself, with any costs.
#include <gtest/gtest.h>

#include <vector>

#include "legalizer/colourKernel.h"
#include "legalizer/randomDesign.h"
#include "support/extremes.h"

namespace {

using test::LARGEST;
using test::Random;
using test::SMALLEST;
using vireloce::ColourKernel;
using vireloce::PairCosts;

using Ints = std::vector<int32_t>;

constexpr int32_t START = 1073741823;

/// Layers of solutions with costs between them.
struct Layers {
    std::vector<int32_t> sizes; ///< [component] solutions
    std::vector<Ints> costs;    ///< [component - 1][left solution * solutions + solution]
};

/// The colouring graph, node by node in the order of their numbers.
Ints literal(const Layers& layers)
{
    std::vector<size_t> begin{1};
    for (const int32_t size : layers.sizes) {
        begin.push_back(begin.back() + static_cast<size_t>(size));
    }
    const size_t end = begin.back();
    Ints dist(end + 1, START);
    Ints pred(end + 1, -1);
    dist[0] = 0;
    const auto relax = [&](size_t from, size_t to, int32_t cost) {
        const auto sum =
            static_cast<int32_t>(static_cast<uint32_t>(dist[from]) + static_cast<uint32_t>(cost));
        if (dist[to] >= sum) {
            dist[to] = sum;
            pred[to] = static_cast<int32_t>(from);
        }
    };
    const auto sizeOf = [&](size_t layer) { return static_cast<size_t>(layers.sizes[layer]); };
    for (size_t j = 0; j < sizeOf(0); ++j) {
        relax(0, begin[0] + j, 0);
    }
    for (size_t q = 1; q < layers.sizes.size(); ++q) {
        for (size_t i = 0; i < sizeOf(q - 1); ++i) {
            for (size_t j = 0; j < sizeOf(q); ++j) {
                relax(begin[q - 1] + i, begin[q] + j, layers.costs[q - 1][i * sizeOf(q) + j]);
            }
        }
    }
    const size_t last = layers.sizes.size() - 1;
    for (size_t i = 0; i < sizeOf(last); ++i) {
        relax(begin[last] + i, end, 0);
    }
    Ints solutions(layers.sizes.size(), -1);
    for (int32_t p = pred[end]; p > 0; p = pred[static_cast<size_t>(p)]) {
        size_t q = 0;
        while (begin[q + 1] <= static_cast<size_t>(p)) {
            ++q;
        }
        solutions[q] = p - static_cast<int32_t>(begin[q]);
    }
    return solutions;
}

Ints solved(ColourKernel& kernel, const Layers& layers)
{
    std::vector<PairCosts> pairs;
    for (size_t q = 1; q < layers.sizes.size(); ++q) {
        pairs.push_back({layers.costs[q - 1].data(), layers.sizes[q - 1], layers.sizes[q]});
    }
    const auto solutions = kernel.solve(layers.sizes[0], pairs);
    return {solutions.begin(), solutions.end()};
}

struct ColourCase {
    const char* name;
    Layers layers;
    Ints want;
};

void PrintTo(const ColourCase& row, std::ostream* out)
{
    *out << row.name;
}

class ColourKernelCase : public testing::TestWithParam<ColourCase> {};

TEST_P(ColourKernelCase, GivesTheSolutionsOfTheGraph)
{
    ColourKernel kernel;
    EXPECT_EQ(literal(GetParam().layers), GetParam().want);
    EXPECT_EQ(solved(kernel, GetParam().layers), GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ColourKernelCase,
    testing::Values(
        ColourCase{"TiesGoToTheHighestOfOne", {{3}, {}}, {2}},
        ColourCase{"TiesGoToTheHighestEverywhere", {{2, 3}, {{4, 4, 4, 4, 4, 4}}}, {1, 2}},
        ColourCase{"TheCheapestWins", {{2, 2}, {{4, 3, 2, 5}}}, {1, 0}},
        ColourCase{"NothingWithoutSolutions", {{0}, {}}, {-1}},
        ColourCase{"NothingIfTheLastHasNone", {{2, 0}, {{}}}, {-1, -1}},
        ColourCase{"TheWayEndsAtALayerWithoutSolutions", {{2, 0, 3}, {{}, {}}}, {-1, -1, 2}},
        ColourCase{
            "TheWayEndsBehindAFirstLayerWithoutSolutions", // what is not reached goes on like any other
            {{0, 2, 2}, {{}, {1, 0, 1, 1}}},
            {-1, 0, 1}},
        ColourCase{"CostsOfTheStartValueAreTaken", {{1, 1}, {{START}}}, {0, 0}},
        ColourCase{"CostsAboveTheStartValueAreNot", {{1, 2}, {{START + 1, START + 1}}}, {-1, 1}},
        ColourCase{"NegativeCosts", {{2, 2}, {{-4, -3, -2, -5}}}, {1, 1}},
        ColourCase{"SumsThatWrapAround", {{1, 1, 2}, {{START}, {LARGEST, START}}}, {0, 0, 0}}),
    [](const auto& row) { return row.param.name; });

TEST(ColourKernel, GivesTheSolutionsOfTheGraphForAnyCosts)
{
    ColourKernel kernel; // one for all: its memory must not show
    for (uint32_t seed = 1; seed <= 3000 && !HasFailure(); ++seed) {
        Random random(seed);
        const Ints values = random.oneOf<Ints>({{0, 1},
                                                {0, 1, 2, 3, 40},
                                                {-1, 0, 1},
                                                {START - 1, START, START + 1, 0, 1, -1},
                                                {LARGEST, SMALLEST, START, 1 << 30, 0, -START}});
        Layers layers;
        for (int i = random.pick(1, 6); i > 0; --i) {
            layers.sizes.push_back(random.oneOf<int>({0, 1, 2, 2, 3, 3, 7}));
            if (layers.sizes.size() > 1) {
                Ints costs(static_cast<size_t>(layers.sizes.back() * layers.sizes[layers.sizes.size() - 2]));
                for (int32_t& cost : costs) {
                    cost = random.oneOf(values);
                }
                layers.costs.push_back(costs);
            }
        }
        ASSERT_EQ(solved(kernel, layers), literal(layers)) << "seed " << seed;
    }
}

} // namespace
