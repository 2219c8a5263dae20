// SPDX-License-Identifier: BSD-3-Clause
// Times the set-up of a design and its placement on both roads of the segment solver, in one process.
//
// Usage: bench_roads BASE CELL_DIR ALGO FAST_RUNS GRAPH_RUNS
//
// Prints one JSON object: medians of user CPU and wall time, seconds. Exit status 1 if the roads' reports
// differ.
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <sstream>
#include <string>
#include <vector>

#include "db/design.h"
#include "legalizer/legalizer.h"
#include "legalizer/segLegalizer.h"
#include "qlib/report.h"
#include "qlib/timer.h"

namespace {

/// Times of some runs, seconds.
struct Times {
    std::vector<double> user;
    std::vector<double> wall;
};

template <class Work>
void measure(Times& times, Work work)
{
    const auto wallBegin = std::chrono::steady_clock::now();
    const double userBegin = qLib::timer();
    work();
    times.user.push_back(qLib::timer() - userBegin);
    times.wall.push_back(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - wallBegin).count());
}

double median(std::vector<double> values)
{
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    return (values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2;
}

/// What a placement changes, to start again from it.
class Start {
public:
    explicit Start(const Design& design)
    {
        for (const Component* comp : design.components) {
            m_places.push_back({comp->solution, comp->siteX, comp->x, comp->y});
        }
        for (const Segment* segment : design.segments) {
            m_lists.push_back(segment->components);
        }
    }

    void restore(Design& design) const
    {
        for (size_t i = 0; i < m_places.size(); ++i) {
            Component& comp = *design.components[i];
            comp.solution = m_places[i].solution;
            comp.siteX = m_places[i].siteX;
            comp.x = m_places[i].x;
            comp.y = m_places[i].y;
        }
        for (size_t i = 0; i < m_lists.size(); ++i) {
            design.segments[i]->components = m_lists[i];
        }
    }

private:
    struct Place {
        int32_t solution;
        int32_t siteX;
        int32_t x;
        int32_t y;
    };

    std::vector<Place> m_places;
    std::vector<std::list<Component*>> m_lists;
};

/// Thrown in place of the end of a run.
struct RunEnded {};

/// Places the design once.
///
/// @return the report, and every position
std::string place(Design& design, bool graphs, Times& times)
{
    std::ostringstream report;
    vireloce::setReport(&report);
    SegLegalizer::s_useGraphs = graphs;
    std::srand(1); // as at the start of a program
    Legalizer legalizer(&design);
    measure(times, [&] {
        try {
            legalizer.solveDPlace();
        } catch (const RunEnded&) { // the message is in the report
        }
    });
    design.evaluation();
    for (const Component* comp : design.components) {
        report << comp->solution << ' ' << comp->siteX << ' ' << comp->x << ' ' << comp->y << '\n';
    }
    vireloce::setReport(nullptr);
    return report.str();
}

/// Places the design some times from the same start.
///
/// @return the report of the last run; empty without any
std::string placeOften(Design& design, const Start& start, bool graphs, int runs, Times& times)
{
    std::string report;
    for (int i = 0; i < runs; ++i) {
        start.restore(design);
        report = place(design, graphs, times);
    }
    return report;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 6) {
        std::fprintf(stderr, "usage: bench_roads BASE CELL_DIR ALGO FAST_RUNS GRAPH_RUNS\n");
        return 2;
    }
    vireloce::setEndHandler([] { throw RunEnded{}; });
    Design design;
    design.placePath = argv[1];
    design.cellPath = argv[2];
    design.algo = std::atoi(argv[3]);
    std::ostringstream quiet;
    vireloce::setReport(&quiet);
    Times setUp;
    try {
        measure(setUp, [&] { design.initAll(); });
    } catch (const RunEnded&) {
        std::fprintf(stderr, "%s", quiet.str().c_str());
        return 2;
    }
    const Start start(design);
    Times fast;
    Times graph;
    const std::string fastReport = placeOften(design, start, false, std::atoi(argv[4]), fast);
    const std::string graphReport = placeOften(design, start, true, std::atoi(argv[5]), graph);
    const bool equal = fastReport == graphReport || fastReport.empty() || graphReport.empty();

    std::printf("{\"components\": %zu, \"segments\": %zu, \"algo\": %d, \"setup_user\": %.4f, "
                "\"setup_wall\": %.4f, \"fast_user\": %.4f, \"fast_wall\": %.4f, \"graph_user\": %.4f, "
                "\"graph_wall\": %.4f, \"fast_runs\": %zu, \"graph_runs\": %zu, \"equal\": %s}\n",
                design.components.size(), design.segments.size(), design.algo, median(setUp.user),
                median(setUp.wall), median(fast.user), median(fast.wall), median(graph.user),
                median(graph.wall), fast.user.size(), graph.user.size(), equal ? "true" : "false");
    return equal ? 0 : 1;
}
