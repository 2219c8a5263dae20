// SPDX-License-Identifier: BSD-3-Clause
// Places a design once, on one of the roads of the segment solver, and says what it took.
//
// Usage: bench_roads BASE CELL_DIR ALGO fast|graph
//
// Prints one line of JSON: seconds of user CPU and wall time for the set-up and for the placement, peak
// memory in KiB, and a hash of the report with every position. The same hash means the same result.
#include <sys/resource.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "db/design.h"
#include "kit/hash.h"
#include "legalizer/legalizer.h"
#include "legalizer/segLegalizer.h"
#include "qlib/report.h"
#include "qlib/timer.h"

namespace {

/// Seconds that something took.
struct Times {
    double user = 0.0;
    double wall = 0.0;
};

template <class Work>
Times measure(Work work)
{
    const auto wallBegin = std::chrono::steady_clock::now();
    const double userBegin = qLib::timer();
    work();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - wallBegin;
    return {qLib::timer() - userBegin, wall.count()};
}

/// Largest resident memory so far, KiB.
long peakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// Thrown in place of the end of a run.
struct RunEnded {};

std::string hashOf(const Design& design, const std::string& report)
{
    kit::Hash hash;
    hash.add(report);
    for (const Component* comp : design.components) {
        hash.add(comp->solution);
        hash.add(comp->siteX);
        hash.add(comp->x);
        hash.add(comp->y);
    }
    return hash.text();
}

int run(char** argv)
{
    std::ostringstream report;
    vireloce::setReport(&report);
    vireloce::setEndHandler([] { throw RunEnded{}; });
    SegLegalizer::s_useGraphs = std::string(argv[4]) == "graph";
    Design design;
    design.placePath = argv[1];
    design.cellPath = argv[2];
    design.algo = std::atoi(argv[3]);
    Times setUp;
    Times placement;
    long setUpPeak = 0;
    bool ended = false;
    try {
        setUp = measure([&] { design.initAll(); });
        setUpPeak = peakMemory();
        design.dropNames(); // as the program does
        Legalizer legalizer(&design);
        placement = measure([&] { legalizer.solveDPlace(); });
        design.evaluation();
    } catch (const RunEnded&) {
        ended = true; // the report says why
    }
    std::printf("{\"components\": %zu, \"segments\": %zu, \"sites\": %d, \"ended_early\": %s, "
                "\"setup_user\": %.6f, \"setup_wall\": %.6f, \"place_user\": %.6f, \"place_wall\": %.6f, "
                "\"setup_peak_kib\": %ld, \"peak_kib\": %ld, \"hash\": \"%s\"}\n",
                design.components.size(), design.segments.size(), design.getMaxSiteNum(),
                ended ? "true" : "false", setUp.user, setUp.wall, placement.user, placement.wall, setUpPeak,
                peakMemory(), hashOf(design, report.str()).c_str());
    vireloce::setReport(nullptr);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fprintf(stderr, "usage: bench_roads BASE CELL_DIR ALGO fast|graph\n");
        return 2;
    }
    return run(argv);
}
