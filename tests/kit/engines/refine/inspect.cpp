// SPDX-License-Identifier: BSD-3-Clause
// For work on the search for shorter wires: the model of a result of `place`, by figures, and what the search
// makes of it.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "kit/engines/refine/model.h"
#include "refine/improve.h"

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

void inspect(char** words, int count)
{
    const auto begin = Clock::now();
    const kit::refine::Inputs inputs = kit::refine::readInputs({.base = words[1], .cellDir = words[2]});
    for (const kit::Finding& fault : inputs.faults) {
        std::printf("fault: %s\n", fault.what.c_str());
    }
    const double reading = secondsSince(begin);
    kit::refine::Demands demands;
    demands.minDist = count > 3 ? std::atoi(words[3]) : demands.minDist;
    demands.rowsMeet = count > 5 && std::atoi(words[5]) != 0;
    const auto middle = Clock::now();
    kit::refine::Built built = kit::refine::buildModel(inputs, demands);
    refine::Model& model = built.model;
    std::printf("read %.3f s, built %.3f s\n", reading, secondsSince(middle));
    std::printf(
        "%zu cells (%zu strays), %zu kinds, %zu states, %d views, %zu rows, %zu runs, %zu nets, %zu pins\n",
        model.cells.size(), built.strays.size(), model.kinds.size() - 1, model.states.size(), model.views,
        model.rows.size(), model.runs.size(), model.nets.size() - 1, model.pins.size());
    std::printf("wirelength %lld, by the judge %lld\n", static_cast<long long>(refine::wirelength(model)),
                static_cast<long long>(inputs.placed.pinLength.value_or(-1)));
    std::printf("faults: %s\n", refine::faultOf(model).c_str());
    const auto run = Clock::now();
    refine::Options options;
    options.effort = count > 4 ? std::atoi(words[4]) : options.effort;
    options.stitchPrice = 2 * model.step;
    refine::improve(model, options, {});
    std::printf("improved in %.2f s: wirelength %lld\n", secondsSince(run),
                static_cast<long long>(refine::wirelength(model)));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: refine_inspect BASE CELL_DIR [MINDP [EFFORT [ROWS_MEET]]]\n");
        return 2;
    }
    try {
        inspect(argv, argc);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
    return 0;
}
