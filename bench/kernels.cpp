// SPDX-License-Identifier: BSD-3-Clause
// The kernels of the segment solver alone, and the ceiling that the grid kernel is held against.
//
// The ceiling is what the grid kernel cannot do without: the running minima of as many profiles of the same
// length from as many terms, in memory of the same size. It makes no costs, chooses no terms and finds no
// path.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "legalizer/colourKernel.h"
#include "legalizer/gridKernel.h"
#include "legalizer/shiftKernel.h"
#include "qlib/exact.h"

namespace {

using namespace vireloce;

constexpr float WEIGHT = 1.4F; ///< cost of a site
constexpr int32_t NUM_SOLUTIONS = 12;
constexpr int32_t NUM_CLASSES = 3; ///< gap classes of a pair

/// A segment as a real one: cells of 2 to 9 sites, four fifths full, 12 solutions each, gaps of 0 and 1 in
/// three classes, three nets on each side that pull from where the cell stands.
class Segment {
public:
    explicit Segment(int32_t numSites)
    {
        data.numSites = numSites;
        std::mt19937 random(7);
        const auto pick = [&random](int32_t from, int32_t to) {
            return from + static_cast<int32_t>(random() % static_cast<uint32_t>(to - from + 1));
        };
        int32_t site = 0;
        for (int32_t width = pick(2, 9); site + width <= numSites; width = pick(2, 9)) {
            addComponent(site, width, pick);
            site += width + (width * 5 + pick(0, 19)) / 20;
        }
        data.leftEndBegin.push_back(static_cast<int32_t>(data.leftEnds.size()));
        data.rightEndBegin.push_back(static_cast<int32_t>(data.rightEnds.size()));
        data.comps.resize(data.width.size()); // their number is all that the kernels ask
        data.farthest = numSites;
        terms.prepare(WEIGHT, numSites);
    }

    SegmentData data;
    std::vector<const PairGaps*> gapsToLeft;
    std::vector<std::span<const int32_t>> stitches;
    std::vector<PairCosts> costs;
    std::vector<int32_t> leftEnds;
    TermTable terms;

private:
    template <class Pick>
    void addComponent(int32_t site, int32_t width, Pick pick)
    {
        data.width.push_back(width);
        leftEnds.push_back(site);
        data.leftEndBegin.push_back(static_cast<int32_t>(data.leftEnds.size()));
        data.rightEndBegin.push_back(static_cast<int32_t>(data.rightEnds.size()));
        const int32_t centre = site + width / 2;
        for (int32_t net = 0; net < 3; ++net) {
            data.leftEnds.push_back(std::clamp(centre + pick(-60, 20), 0, data.numSites));
            data.rightEnds.push_back(std::clamp(centre + pick(-20, 60), 0, data.numSites));
        }
        std::vector<int32_t>& numbers = m_numbers.emplace_back();
        for (int32_t j = 0; j < NUM_SOLUTIONS; ++j) {
            numbers.push_back(pick(0, 2)); // stitches
        }
        for (int32_t j = 0; j < NUM_SOLUTIONS; ++j) {
            numbers.push_back(j % NUM_CLASSES);
        }
        for (int32_t i = 0; i < NUM_SOLUTIONS * NUM_CLASSES; ++i) {
            numbers.push_back(pick(0, 3) == 0 ? 1 : 0); // gaps
        }
        for (int32_t i = 0; i < NUM_SOLUTIONS * NUM_SOLUTIONS; ++i) {
            numbers.push_back(pick(0, 5)); // costs of pairs
        }
        stitches.emplace_back(numbers.data(), NUM_SOLUTIONS);
        const int32_t* classOf = numbers.data() + NUM_SOLUTIONS;
        gapsToLeft.push_back(
            &m_gaps.emplace_back(PairGaps{0, 1, NUM_CLASSES, classOf, classOf + NUM_SOLUTIONS}));
        if (data.width.size() > 1) {
            costs.push_back({classOf + (1 + NUM_CLASSES) * NUM_SOLUTIONS, NUM_SOLUTIONS, NUM_SOLUTIONS});
        }
    }

    std::deque<std::vector<int32_t>> m_numbers;
    std::deque<PairGaps> m_gaps;
};

void reportCells(benchmark::State& state, const Segment& segment)
{
    state.SetItemsProcessed(state.iterations() * segment.data.size());
}

/// Entries of profiles per second: the figure that the grid kernel and its ceiling are compared by.
void reportEntries(benchmark::State& state, int64_t entries)
{
    state.counters["entries"] =
        benchmark::Counter(static_cast<double>(state.iterations() * entries), benchmark::Counter::kIsRate);
}

GridProblem problemOf(const Segment& segment)
{
    return {segment.data,  segment.gapsToLeft,          segment.stitches,
            segment.terms, /*unreached=*/INFINITE_COST, /*placesWaiting=*/false};
}

void grid(benchmark::State& state, const ProfileOps& ops, int32_t numSites)
{
    const Segment segment(numSites);
    GridKernel kernel(ops);
    for (auto _ : state) {
        if (!kernel.solve(problemOf(segment))) {
            state.SkipWithError("not taken");
        }
        benchmark::DoNotOptimize(kernel.places().data());
    }
    reportCells(state, segment);
    reportEntries(state, kernel.work().entries);
}

void gridCeiling(benchmark::State& state, const ProfileOps& ops, int32_t numSites)
{
    const Segment segment(numSites);
    GridKernel kernel(ops);
    if (!kernel.solve(problemOf(segment))) {
        state.SkipWithError("not taken");
        return;
    }
    const GridKernel::Work& work = kernel.work();
    const auto length = static_cast<int32_t>(work.entries / work.profiles);
    const auto numTerms = static_cast<size_t>((work.terms + work.profiles / 2) / work.profiles);
    const auto stride = static_cast<size_t>(profileSpace(length) + PROFILE_BLOCK);
    std::vector<int32_t> profiles(stride * static_cast<size_t>(work.profiles + NUM_CLASSES));
    const std::vector<int32_t> costs(stride, 3);
    std::vector<ProfileTerm> terms(numTerms);
    for (auto _ : state) {
        for (int64_t r = 0; r < work.profiles; ++r) {
            const size_t before = static_cast<size_t>(r / NUM_CLASSES) * NUM_CLASSES; // the left neighbour's
            for (size_t t = 0; t < numTerms; ++t) {
                terms[t] = {profiles.data() + (before + t % NUM_CLASSES) * stride + PROFILE_BLOCK -
                                t / NUM_CLASSES,
                            1};
            }
            int32_t* out = profiles.data() + (static_cast<size_t>(r) + NUM_CLASSES) * stride + PROFILE_BLOCK;
            ops.relax(out, terms.data(), static_cast<int32_t>(numTerms), costs.data(), length);
        }
        benchmark::ClobberMemory();
    }
    reportCells(state, segment);
    reportEntries(state, work.profiles * length);
}

void colours(benchmark::State& state, int32_t numSites)
{
    const Segment segment(numSites);
    ColourKernel kernel;
    for (auto _ : state) {
        benchmark::DoNotOptimize(kernel.solve(NUM_SOLUTIONS, segment.costs).data());
    }
    reportCells(state, segment);
}

void shifts(benchmark::State& state, int32_t numSites, bool prune)
{
    const Segment segment(numSites);
    ShiftKernel kernel;
    for (auto _ : state) {
        if (!kernel.solve({segment.data, segment.gapsToLeft, segment.stitches, segment.leftEnds, WEIGHT,
                           NUM_SOLUTIONS, /*firstShift=*/-9, /*numShifts=*/17, prune})) {
            state.SkipWithError("not taken");
        }
        benchmark::DoNotOptimize(kernel.places().data());
    }
    reportCells(state, segment);
}

void registerAll()
{
    for (const int32_t numSites : {1100, 8000}) {
        const std::string sites = "/" + std::to_string(numSites);
        for (const ProfileOps* ops : profileOpsHere()) {
            const std::string name = std::string(ops->name) + sites;
            benchmark::RegisterBenchmark(("grid/" + name).c_str(), grid, *ops, numSites);
            benchmark::RegisterBenchmark(("ceiling/" + name).c_str(), gridCeiling, *ops, numSites);
        }
        benchmark::RegisterBenchmark(("colours" + sites).c_str(), colours, numSites);
        benchmark::RegisterBenchmark(("shifts" + sites).c_str(), shifts, numSites, false);
        benchmark::RegisterBenchmark(("shifts-pruned" + sites).c_str(), shifts, numSites, true);
    }
}

} // namespace

int main(int argc, char** argv)
{
    registerAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
