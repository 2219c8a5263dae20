// SPDX-License-Identifier: BSD-3-Clause
// The fast road of every program against its graph road: the same places, solutions and x.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "legalizer/crowdedSegment.h"
#include "legalizer/gridKernel.h"
#include "legalizer/programs.h"
#include "legalizer/randomDesign.h"
#include "legalizer/roads.h"

namespace {

using test::CrowdedSegment;
using test::RandomDesign;
using test::RandomSegment;
using test::RoadGuard;

struct ProgramCase {
    const char* name;
    std::function<void(SegLegalizer&)> solve;
};

void PrintTo(const ProgramCase& row, std::ostream* out)
{
    *out << row.name;
}

using Places = std::vector<std::array<int32_t, 4>>;

/// What a program makes of a segment on one of the roads.
template <class Random>
Places solved(uint32_t seed, const ProgramCase& program, bool graphs)
{
    Random random(seed);
    SegLegalizer solver(&random.legalizer, random.segment);
    const RoadGuard road(graphs);
    program.solve(solver);
    return random.places();
}

/// Compares both roads on as many segments as VIRELOCE_TEST_SEGMENTS says, or some.
template <class Random>
void compareRoads(const ProgramCase& program)
{
    const char* wanted = std::getenv("VIRELOCE_TEST_SEGMENTS");
    const int count = wanted == nullptr ? 400 : std::atoi(wanted);
    for (int seed = 1; seed <= count && !testing::Test::HasFailure(); ++seed) {
        const auto s = static_cast<uint32_t>(seed);
        EXPECT_EQ(solved<Random>(s, program, false), solved<Random>(s, program, true)) << "seed " << seed;
    }
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

INSTANTIATE_TEST_SUITE_P(Roads, Roads,
                         testing::Values(ProgramCase{"Colouring", [](SegLegalizer& s) { s.solveTPL(); }},
                                         ProgramCase{"Placement", [](SegLegalizer& s) { s.solveOSR(); }},
                                         ProgramCase{"Joint", [](SegLegalizer& s) { s.solveTPLOSR(); }},
                                         ProgramCase{"LocalShift", [](SegLegalizer& s) { s.solveLdp(1); }},
                                         ProgramCase{"LocalShiftFast",
                                                     [](SegLegalizer& s) { s.solveLdpFast(2); }}),
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
