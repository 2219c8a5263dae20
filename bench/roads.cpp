// SPDX-License-Identifier: BSD-3-Clause
// Places a design once, on one of the roads of the segment solver, and says what it took.
//
// Usage: bench_roads BASE CELL_DIR ALGO fast|graph [WEIGHT [RANGE]]
//
// Prints one line of JSON: seconds of user CPU and wall time for the set-up and for the placement, peak
// memory in KiB, and a hash of the figures with every position, or of the error that ended the run. The same
// hash means the same result.
#include <sys/resource.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/place.h"
#include "kit/base/hash.h"
#include "legalizer/segLegalizer.h"

namespace {

/// Largest resident memory so far, KiB.
long peakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

std::string hashOf(const vireloce::PlaceResult& result, const std::string& error)
{
    kit::Hash hash;
    hash.add(error);
    for (const int64_t figure : {result.setUp.hpwl, result.end.hpwl}) {
        hash.add(std::to_string(figure));
    }
    hash.add(result.end.stitches);
    hash.add(result.end.conflicts);
    for (const vireloce::PlacedComponent& comp : result.components) {
        hash.add(comp.solution);
        hash.add(comp.siteX);
        hash.add(comp.x);
        hash.add(comp.y);
    }
    return hash.text();
}

int run(int argc, char** argv)
{
    vireloce::PlaceOptions options;
    options.placePath = argv[1];
    options.cellPath = argv[2];
    options.algo = std::atoi(argv[3]);
    if (argc > 5) {
        options.parameters.weight = std::strtof(argv[5], nullptr);
    }
    if (argc > 6) {
        options.parameters.moveRange = std::atoi(argv[6]);
    }
    SegLegalizer::s_useGraphs = std::string(argv[4]) == "graph";
    vireloce::PlaceResult result;
    long setUpPeak = 0;
    std::string error;
    vireloce::PlaceHooks hooks;
    hooks.afterSetUp = [&](Design& /*design*/, const vireloce::PlaceResult& soFar) {
        result = soFar;
        setUpPeak = peakMemory();
    };
    try {
        result = vireloce::place(options, hooks);
    } catch (const vireloce::RunError& ended) {
        error = ended.what();
    }
    std::printf("{\"components\": %zu, \"segments\": %zu, \"sites\": %d, \"ended_early\": %s, "
                "\"setup_user\": %.6f, \"setup_wall\": %.6f, \"place_user\": %.6f, \"place_wall\": %.6f, "
                "\"setup_peak_kib\": %ld, \"peak_kib\": %ld, \"hash\": \"%s\"}\n",
                result.setUp.components, result.setUp.segments, result.setUp.maxSites,
                error.empty() ? "false" : "true", result.setUpTime.cpu, result.setUpTime.wall,
                result.placeTime.cpu, result.placeTime.wall, setUpPeak, peakMemory(),
                hashOf(result, error).c_str());
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 5 || argc > 7) {
        std::fprintf(stderr, "usage: bench_roads BASE CELL_DIR ALGO fast|graph [WEIGHT [RANGE]]\n");
        return 2;
    }
    return run(argc, argv);
}
