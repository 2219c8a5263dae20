// SPDX-License-Identifier: BSD-3-Clause
// Places a design and compares every solve of a segment, component by component, with what the programs'
// rules give when they are followed to the letter (LiteralRows). For designs of real size.
//
// Usage: check_literally MOST_SEGMENTS OPTIONS
//
// MOST_SEGMENTS ends the check after so many segments, 0 after all; OPTIONS are those of the placer. After
// all, the positions must also be those of an ordinary placement. Exit status 1 where anything differs.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include "app/parameterScope.h"
#include "db/design.h"
#include "legalizer/fastRoad.h"
#include "legalizer/legalizer.h"
#include "legalizer/literalRows.h"
#include "legalizer/segLegalizer.h"
#include "qlib/report.h"

namespace {

struct Options {
    int count;
    char** words;
};

void setUp(Design& design, const Options& options)
{
    if (!design.parseParameters(options.count, options.words)) {
        vireloce::endRun("ERROR| the options are not those of the placer");
    }
    design.initAll();
}

/// The programs of a step, to the letter.
void solveLiterally(test::LiteralRows& literal, int algo, int step)
{
    switch (algo) {
    case SegLegalizer::ALGO_JOINT:
        literal.solveTPLOSR();
        break;
    case SegLegalizer::ALGO_SPD:
        step == 1 ? literal.solveTPL() : literal.solveOSR();
        break;
    default:
        literal.solveLdp(step, /*prune=*/algo == SegLegalizer::ALGO_LDP_FAST);
        break;
    }
    if (step == 1) {
        literal.fillMissingSolutions();
    }
}

/// A placement whose solves are checked one by one.
class CheckedPlacement {
public:
    explicit CheckedPlacement(Design& design) : m_design(design), m_legalizer(&design)
    {
        m_legalizer.fastRoad = std::make_unique<vireloce::FastRoad>(design);
    }

    /// As Legalizer::solveDPlace().
    ///
    /// @param mostSegments  to end after, 0 if there is no end to it
    /// @return whether every solve gave what it must
    bool solve(int64_t mostSegments)
    {
        bool movesOut = true;
        while (movesOut) {
            movesOut = false;
            for (const int32_t id : beginPass()) {
                Segment& segment = *m_design.segments[static_cast<size_t>(id)];
                m_legalizer.segDone[static_cast<size_t>(id)] = true;
                movesOut = solve(segment) || movesOut;
                ++m_numSegments;
                if (m_differs || m_numSegments == mostSegments) {
                    return !m_differs;
                }
            }
        }
        return true;
    }

    int numSegments() const { return m_numSegments; } ///< in all passes
    int numSolves() const { return m_numSolves; }     ///< of these
    const vireloce::FastRoad::Taken& taken() const { return m_legalizer.fastRoad->taken(); }

private:
    std::vector<int32_t> beginPass()
    {
        ++m_legalizer.passCount;
        m_legalizer.segDensity.clear();
        std::vector<std::pair<float, int>> byDensity;
        for (Segment* segment : m_design.segments) {
            m_legalizer.segDensity.push_back(m_legalizer.getDensity(segment));
            byDensity.emplace_back(m_legalizer.segDensity.back(), static_cast<int>(byDensity.size()));
        }
        std::sort(byDensity.begin(), byDensity.end(), byDec);
        m_legalizer.segDone.assign(m_design.segments.size(), false);
        std::vector<int32_t> order;
        order.reserve(byDensity.size());
        for (const auto& [density, id] : byDensity) {
            order.push_back(id);
        }
        return order;
    }

    /// @return whether components were moved out of the segment
    bool solve(Segment& segment)
    {
        SegLegalizer solver(&m_legalizer, &segment);
        int overflow = 0;
        compare(segment, 1, [&] { overflow = solver.solveStep1(); });
        if (overflow > 0 && !m_legalizer.globalMove(&segment, overflow)) {
            std::printf("segment %d: moving components out does not free enough\n", segment.id);
            vireloce::endRun("ERROR| the options are not those of the placer");
        }
        if (overflow > 0 || m_design.algo == SegLegalizer::ALGO_SPD) {
            compare(segment, 2, [&] { solver.solveStep2(); });
        }
        return overflow > 0;
    }

    template <class Solve>
    void compare(const Segment& segment, int step, Solve solve)
    {
        test::LiteralRows literal(m_design, segment);
        if (!segment.components.empty()) {
            solveLiterally(literal, m_design.algo, step);
        }
        solve();
        size_t i = 0;
        for (const Component* comp : segment.components) {
            if (comp->solution != literal.solution(i) || comp->siteX != literal.siteX(i) ||
                comp->x != literal.x(i)) {
                std::printf("pass %d, segment %d of %zu components, step %d, component %zu (%s): solution "
                            "%d, site %d, x %d; must be %d, %d, %d\n",
                            m_legalizer.passCount, segment.id, segment.components.size(), step, i,
                            comp->name.c_str(), comp->solution, comp->siteX, comp->x, literal.solution(i),
                            literal.siteX(i), literal.x(i));
                m_differs = true;
            }
            ++i;
        }
        ++m_numSolves;
    }

    Design& m_design;
    Legalizer m_legalizer;
    bool m_differs = false;
    int m_numSegments = 0;
    int m_numSolves = 0;
};

/// [component] where it is.
using Places = std::vector<std::array<int32_t, 4>>;

Places placesOf(const Design& design)
{
    Places places;
    for (const Component* comp : design.components) {
        places.push_back({comp->solution, comp->siteX, comp->x, comp->y});
    }
    return places;
}

/// Where an ordinary placement puts the components.
Places ordinaryPlaces(const Options& options)
{
    const vireloce::ParameterScope parameters;
    Design design;
    setUp(design, options);
    Legalizer(&design).solveDPlace();
    return placesOf(design);
}

/// Where a checked placement puts them; nothing if a solve is wrong.
std::optional<Places> checkedPlaces(const Options& options, int64_t mostSegments)
{
    const vireloce::ParameterScope parameters;
    Design design;
    setUp(design, options);
    if (design.algo < 0 || design.algo == SegLegalizer::ALGO_GREEDY ||
        design.algo > SegLegalizer::ALGO_LDP_FAST) {
        std::printf("algorithm %d solves no program\n", design.algo);
        return std::nullopt;
    }
    CheckedPlacement placement(design);
    if (!placement.solve(mostSegments)) {
        return std::nullopt;
    }
    const vireloce::FastRoad::Taken& taken = placement.taken();
    std::printf("%d solves of %d segments equal; kernels: grid %d, full grid %d, shift %d, full shift %d\n",
                placement.numSolves(), placement.numSegments(), static_cast<int>(taken.grid),
                static_cast<int>(taken.fullGrid), static_cast<int>(taken.shift),
                static_cast<int>(taken.fullShift));
    return placesOf(design);
}

bool check(const Options& options, int64_t mostSegments)
{
    const std::optional<Places> places = checkedPlaces(options, mostSegments);
    if (places.has_value() && mostSegments == 0 && *places != ordinaryPlaces(options)) {
        std::printf("an ordinary placement gives other positions\n");
        return false;
    }
    return places.has_value();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: check_literally MOST_SEGMENTS OPTIONS\n");
        return 2;
    }
    std::ostream nowhere(nullptr);
    const vireloce::ReportScope report(&nowhere);
    try {
        return check({argc - 1, argv + 1}, std::atoll(argv[1])) ? 0 : 1;
    } catch (const vireloce::RunError& error) {
        std::printf("the run ended early: %s\n", error.what());
        return 1;
    }
}
