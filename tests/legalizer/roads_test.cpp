// SPDX-License-Identifier: BSD-3-Clause
// The fast road of every program against its graph road: the same places, solutions and x.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "legalizer/crowdedSegment.h"
#include "legalizer/fastRoad.h"
#include "legalizer/programs.h"
#include "legalizer/randomDesign.h"
#include "legalizer/roads.h"
#include "legalizer/variedSegment.h"

namespace {

using test::CrowdedSegment;
using test::RandomDesign;
using test::RandomSegment;
using test::RoadGuard;
using test::VariedSegment;
using Taken = vireloce::FastRoad::Taken;

struct ProgramCase {
    const char* name;
    std::function<void(SegLegalizer&)> solve;
    int64_t Taken::*ordinary = nullptr; ///< segments of its kernel for ordinary numbers, if it has two
    int64_t Taken::*full = nullptr;     ///< segments of its kernel for any numbers
};

void PrintTo(const ProgramCase& row, std::ostream* out)
{
    *out << row.name;
}

using Places = std::vector<std::array<int32_t, 4>>;

/// What a program makes of a segment on one of the roads.
struct Solved {
    Places places;
    Taken taken; ///< by the kernels
};

template <class Random>
Solved solved(uint32_t seed, const ProgramCase& program, bool graphs)
{
    Random random(seed);
    random.legalizer.fastRoad = std::make_unique<vireloce::FastRoad>(random.design);
    SegLegalizer solver(&random.legalizer, random.segment);
    const RoadGuard road(graphs);
    program.solve(solver);
    return {random.places(), random.legalizer.fastRoad->taken()};
}

/// Segments that a program's kernels have taken.
struct Shares {
    int64_t ordinary = 0;
    int64_t full = 0;
};

/// Compares both roads on some segments, or as many as VIRELOCE_TEST_SEGMENTS says, divided by what one takes
/// longer than the smallest.
template <class Random>
Shares compareRoads(const ProgramCase& program, int some = 400, int divisor = 1)
{
    const char* wanted = std::getenv("VIRELOCE_TEST_SEGMENTS");
    const int count = wanted == nullptr ? some : std::atoi(wanted) / divisor;
    Shares shares;
    for (int seed = 1; seed <= count && !testing::Test::HasFailure(); ++seed) {
        const auto s = static_cast<uint32_t>(seed);
        const Solved fast = solved<Random>(s, program, false);
        EXPECT_EQ(fast.places, solved<Random>(s, program, true).places) << "seed " << seed;
        shares.ordinary += program.ordinary != nullptr ? fast.taken.*program.ordinary : 0;
        shares.full += program.full != nullptr ? fast.taken.*program.full : 0;
    }
    return shares;
}

class Roads : public testing::TestWithParam<ProgramCase> {};

TEST_P(Roads, AgreeOnTinySegmentsWithWildNumbers)
{
    compareRoads<RandomSegment>(GetParam());
}

TEST_P(Roads, AgreeOnCrowdedSegmentsWithManyTies)
{
    compareRoads<CrowdedSegment>(GetParam());
}

TEST_P(Roads, AgreeOnVariedSegmentsOfWhichEachKernelTakesAThird)
{
    const auto [ordinary, full] = compareRoads<VariedSegment>(GetParam(), 1000, 10);
    if (GetParam().full == nullptr) {
        return;
    }
    const auto all = static_cast<double>(ordinary + full);
    std::printf("%s: %.0f %% of %.0f segments by the kernel for ordinary numbers, %.0f %% by the full one\n",
                GetParam().name, 100.0 * static_cast<double>(ordinary) / all, all,
                100.0 * static_cast<double>(full) / all);
    EXPECT_GE(3 * ordinary, ordinary + full);
    EXPECT_GE(3 * full, ordinary + full);
}

INSTANTIATE_TEST_SUITE_P(
    Roads, Roads,
    testing::Values(
        ProgramCase{"Colouring", [](SegLegalizer& s) { s.solveTPL(); }},
        ProgramCase{"Placement", [](SegLegalizer& s) { s.solveOSR(); }, &Taken::grid, &Taken::fullGrid},
        ProgramCase{"Joint", [](SegLegalizer& s) { s.solveTPLOSR(); }, &Taken::grid, &Taken::fullGrid},
        ProgramCase{"LocalShift", [](SegLegalizer& s) { s.solveLdp(1); }, &Taken::shift, &Taken::fullShift},
        ProgramCase{"LocalShiftFast", [](SegLegalizer& s) { s.solveLdpFast(2); }, &Taken::shift,
                    &Taken::fullShift}),
    [](const auto& row) { return row.param.name; });

/// What a whole placement makes of a design on one of the roads, with what it says if it ends the run.
std::pair<Places, std::string> placed(uint32_t seed, int algo, bool graphs)
{
    RandomDesign random(seed);
    random.design.algo = algo;
    const RoadGuard road(graphs);
    const test::ReportCapture capture;
    try {
        random.legalizer.solveDPlace();
    } catch (const vireloce::RunError&) {
        return {{}, capture.text()};
    }
    return {random.places(), capture.text()};
}

TEST(RoadsOfPlacements, AgreeWhereCellsMoveBetweenSegments)
{
    for (uint32_t seed = 1; seed <= 400 && !HasFailure(); ++seed) {
        for (const int algo : {0, 1, 3, 4}) {
            EXPECT_EQ(placed(seed, algo, false), placed(seed, algo, true))
                << "seed " << seed << " algorithm " << algo;
        }
    }
}

} // namespace
