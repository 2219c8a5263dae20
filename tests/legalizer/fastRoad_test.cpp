// SPDX-License-Identifier: BSD-3-Clause
// The way from a segment's records to the kernels and back: which kernel takes a segment, and that both roads
// agree where numbers get large and where components move between segments.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "legalizer/crowdedSegment.h"
#include "legalizer/fastRoad.h"
#include "legalizer/roads.h"
#include "qlib/exact.h"

namespace {

using test::CrowdedSegment;
using test::LimitGuard;
using test::Random;
using test::RandomDesign;
using test::RoadGuard;
using test::TinyDesign;
using vireloce::FastRoad;

using Places = std::vector<std::array<int32_t, 4>>;

/// Whether an action ends the run because a graph would be too large.
bool needsAGraph(const std::function<void()>& action)
{
    const LimitGuard noGraphs(1);
    const test::ReportCapture capture;
    try {
        action();
    } catch (const vireloce::RunError&) {
        return capture.text().find("too large to solve") != std::string::npos;
    }
    return false;
}

struct ProgramCase {
    const char* name;
    std::function<void(SegLegalizer&)> solve;
};

void PrintTo(const ProgramCase& row, std::ostream* out)
{
    *out << row.name;
}

const ProgramCase COLOURING{"Colouring", [](SegLegalizer& s) { s.solveTPL(); }};
const ProgramCase PLACEMENT{"Placement", [](SegLegalizer& s) { s.solveOSR(); }};
const ProgramCase JOINT{"Joint", [](SegLegalizer& s) { s.solveTPLOSR(); }};
const ProgramCase SHIFT{"LocalShift", [](SegLegalizer& s) { s.solveLdp(1); }};
const ProgramCase SHIFT_FAST{"LocalShiftFast", [](SegLegalizer& s) { s.solveLdpFast(2); }};

std::string nameOf(const testing::TestParamInfo<ProgramCase>& row)
{
    return row.param.name;
}

// --- which segments it takes

/// Whether all numbers are such that the kernels for ordinary numbers are meant to take them.
bool isOrdinary(const CrowdedSegment& random)
{
    const auto& components = random.design.components;
    const auto& table = random.design.lut.distTable;
    const auto entries = [&table](const auto& check) {
        return std::all_of(table.begin(), table.end(), [&](const auto& rows) {
            return std::all_of(rows.begin(), rows.end(), [&](const auto& block) {
                return std::all_of(block.begin(), block.end(), [&](const auto& row) {
                    return std::all_of(row.begin(), row.end(), check);
                });
            });
        });
    };
    return WEIGHT_WRLENG >= 0.0F && WEIGHT_WRLENG <= 10.0F && random.segment->numSites > 0 &&
           std::none_of(components.begin(), components.end(),
                        [&](const Component* comp) { return random.design.cellOf(*comp).colors.empty(); }) &&
           entries([](int32_t dist) { return dist <= 16 * SITE_WIDTH; });
}

class FastRoadTakes : public testing::TestWithParam<ProgramCase> {};

TEST_P(FastRoadTakes, OrdinarySegmentsWithTheKernelsForOrdinaryNumbers)
{
    int ordinary = 0;
    for (uint32_t seed = 1; seed <= 1000; ++seed) {
        CrowdedSegment random(seed);
        if (!isOrdinary(random)) {
            continue;
        }
        random.legalizer.fastRoad = std::make_unique<FastRoad>(random.design);
        SegLegalizer(&random.legalizer, random.segment).solveOSR(); // every component has a solution now
        SegLegalizer solver(&random.legalizer, random.segment);
        GetParam().solve(solver);
        const FastRoad::Taken& taken = random.legalizer.fastRoad->taken();
        EXPECT_EQ(taken.fullGrid + taken.fullShift, 0) << "seed " << seed;
        ordinary += taken.grid + taken.shift > 1 ? 1 : 0;
    }
    EXPECT_GT(ordinary, 300);
}

TEST_P(FastRoadTakes, AllSegmentsWithoutAGraph)
{
    int full = 0;
    for (uint32_t seed = 1; seed <= 600; ++seed) {
        CrowdedSegment random(seed);
        random.legalizer.fastRoad = std::make_unique<FastRoad>(random.design);
        SegLegalizer solver(&random.legalizer, random.segment);
        EXPECT_FALSE(needsAGraph([&] { GetParam().solve(solver); })) << "seed " << seed;
        const FastRoad::Taken& taken = random.legalizer.fastRoad->taken();
        full += taken.fullGrid + taken.fullShift > 0 ? 1 : 0;
    }
    EXPECT_GT(full, 10);
}

INSTANTIATE_TEST_SUITE_P(Programs, FastRoadTakes, testing::Values(PLACEMENT, JOINT, SHIFT, SHIFT_FAST),
                         nameOf);

TEST(FastRoad, TakesWholePlacementsWithoutAGraph)
{
    for (uint32_t seed = 1; seed <= 200; ++seed) {
        for (const int algo : {0, 1, 3, 4}) {
            RandomDesign random(seed);
            random.design.algo = algo;
            EXPECT_FALSE(needsAGraph([&] { random.legalizer.solveDPlace(); }))
                << "seed " << seed << " algorithm " << algo;
        }
    }
}

TEST(FastRoad, IsLeftWhereAllProgramsAreToTakeGraphs)
{
    CrowdedSegment random(1);
    ASSERT_GT(random.segment->numSites, 0);
    SegLegalizer solver(&random.legalizer, random.segment);
    const RoadGuard road(/*graphs=*/true);
    EXPECT_TRUE(needsAGraph([&] { solver.solveTPL(); }));
    EXPECT_TRUE(needsAGraph([&] { solver.solveOSR(); }));
    EXPECT_TRUE(needsAGraph([&] { solver.solveTPLOSR(); }));
}

// --- numbers at the limits

/// What a program makes of a design's only segment on both roads.
std::pair<Places, Places> onBothRoads(const ProgramCase& program,
                                      const std::function<Segment*(TinyDesign&)>& build)
{
    Places places[2];
    for (const bool graphs : {false, true}) {
        TinyDesign tiny;
        Segment* segment = build(tiny);
        SegLegalizer solver(&tiny.legalizer, segment);
        const RoadGuard road(graphs);
        program.solve(solver);
        places[graphs ? 1 : 0] = tiny.places();
    }
    return {places[0], places[1]};
}

class Limits : public testing::TestWithParam<ProgramCase> {};

TEST_P(Limits, RoadsAgreeOnSegmentsOfLessThanNoSites)
{
    for (const int numSites : {0, -1, -2, -1000, -2147483647 - 1}) {
        const auto [fast, graph] = onBothRoads(GetParam(), [numSites](TinyDesign& tiny) {
            Segment* segment = tiny.addSegment(0, 0, 10);
            const int cell = tiny.addCell(2, {0, 1});
            Component* left = tiny.addComponent(segment, cell, 1, -1);
            Component* right = tiny.addComponent(segment, cell, 5, -1);
            tiny.addNet({left, right}, {tiny.addPin(400, 0)});
            segment->numSites = numSites;
            return segment;
        });
        EXPECT_EQ(fast, graph) << numSites << " sites";
    }
}

TEST_P(Limits, RoadsAgreeOnTheWeightsBetweenSegmentsOfDifferentLength)
{
    // One memory for all segments of a placement: a shorter one, and one of no sites, after a longer one.
    for (const int algo : {0, 1, 3, 4}) {
        Places places[2];
        for (const bool graphs : {false, true}) {
            TinyDesign tiny;
            tiny.design.algo = algo;
            const int cell = tiny.addCell(2, {0, 1});
            for (const int numSites : {30, 3, 60, 5}) {
                Segment* segment =
                    tiny.addSegment(static_cast<int>(tiny.design.segments.size()) * 20000, 0, numSites);
                Component* comp = tiny.addComponent(segment, cell, 1, -1);
                tiny.addNet({comp}, {tiny.addPin(segment->x + numSites * SITE_WIDTH, 0)});
            }
            const RoadGuard road(graphs);
            tiny.legalizer.solveDPlace();
            places[graphs ? 1 : 0] = tiny.places();
        }
        EXPECT_EQ(places[0], places[1]) << "algorithm " << algo;
    }
}

/// A number of sites whose right end, divided by the site width in single precision, is one site more.
int sitesThatRoundUp()
{
    int numSites = (1 << 24) / SITE_WIDTH;
    while (vireloce::ceilSites(numSites * SITE_WIDTH, SITE_WIDTH) == numSites && numSites < (1 << 20)) {
        ++numSites;
    }
    return numSites;
}

TEST_P(Limits, RoadsAgreeWhereARangeEndsBehindTheSegmentByRounding)
{
    const auto [fast, graph] = onBothRoads(GetParam(), [](TinyDesign& tiny) {
        SITE_WIDTH = 1000;
        const int numSites = sitesThatRoundUp();
        EXPECT_EQ(vireloce::ceilSites(numSites * SITE_WIDTH, SITE_WIDTH), numSites + 1);
        Segment* segment = tiny.addSegment(0, 0, numSites);
        const int cell = tiny.addCell(1, {0, 1});
        Component* left = tiny.addComponent(segment, cell, 2, 0);
        Component* right = tiny.addComponent(segment, cell, 3, 0);
        Pin* end = tiny.addPin(numSites * SITE_WIDTH, 0);
        tiny.addNet({left}, {end});
        tiny.addNet({right}, {end});
        return segment;
    });
    EXPECT_EQ(fast, graph);
}

TEST_P(Limits, RoadsAgreeWhereACostWouldWrapAroundOnTopOfTheStartValue)
{
    // The only place of the second component costs nothing. On site 0, which no path reaches, its 68 terms
    // are less than 2^30 by their whole parts, but more as floats: on top of the joint program's start value
    // that is negative. The third one takes the nets' right ends from it.
    const auto [fast, graph] = onBothRoads(GetParam(), [](TinyDesign& tiny) {
        WEIGHT_WRLENG = 151830.0F;
        Segment* segment = tiny.addSegment(0, 0, 104);
        tiny.addComponent(segment, tiny.addCell(104, {0}), 0, 0);
        Component* comp = tiny.addComponent(segment, tiny.addCell(0, {0}), 50, 0);
        Component* last = tiny.addComponent(segment, tiny.addCell(0, {0}), 60, 0);
        for (int i = 0; i < 68; ++i) {
            tiny.addNet({comp, last}, {tiny.addPin(104 * SITE_WIDTH, 0)});
        }
        return segment;
    });
    EXPECT_EQ(fast, graph);
}

TEST_P(Limits, EndTheRunBeforeMemoryIsTakenForASegmentThatIsTooLong)
{
    SCOPED_TRACE("both roads");
    for (const bool graphs : {false, true}) {
        for (const float weight : {-1.4F, -0.001F, std::nanf("")}) { // none for the kernel that cuts off
            TinyDesign tiny;
            WEIGHT_WRLENG = weight;
            Segment* segment = tiny.addSegment(0, 0, 10);
            tiny.addComponent(segment, tiny.addCell(1, {0}), 0, 0);
            tiny.addComponent(segment, 0, 1, 0);
            segment->numSites = 2'000'000'000;
            LDP_M = 300'000'000;
            SegLegalizer solver(&tiny.legalizer, segment);
            const RoadGuard road(graphs);
            const std::string report = test::reportOfEndedRun([&] { GetParam().solve(solver); });
            EXPECT_NE(report.find("too large to solve"), std::string::npos) << report;
        }
    }
}

/// What a program reports and does of two components on a row of two thousand million sites, the right one
/// pulled to a site.
std::pair<std::string, Places> onALongRow(const ProgramCase& program, float weight, int pulledTo)
{
    TinyDesign tiny;
    SITE_WIDTH = 1;
    WEIGHT_WRLENG = weight;
    Segment* segment = tiny.addSegment(0, 0, 10);
    segment->numSites = 2'000'000'000;
    tiny.addComponent(segment, tiny.addCell(1, {0}), 5, 0);
    Component* right = tiny.addComponent(segment, 0, 9, 0);
    tiny.addNet({right}, {tiny.addPin(pulledTo, 0)});
    SegLegalizer solver(&tiny.legalizer, segment);
    const test::ReportCapture capture;
    try {
        program.solve(solver);
    } catch (const vireloce::RunError&) {
    }
    return {capture.text(), tiny.places()};
}

TEST(FastRoad, PlacesOnARowOfAnyLengthWhereLittleOfItIsOfUse)
{
    for (const ProgramCase& program : {PLACEMENT, JOINT}) {
        for (const float weight : {0.1F, 0.01F}) {
            const auto [report, places] = onALongRow(program, weight, 300);
            EXPECT_EQ(report, "");
            EXPECT_EQ(places[0], (std::array{0, 0, 0, 0}));
            EXPECT_EQ(places[1][1], weight > 0.05F ? 291 : 201); // what sticks out costs less than 1
        }
    }
}

TEST(FastRoad, EndsTheRunWhereTheUsefulPartOfARowIsTooLong)
{
    for (const ProgramCase& program : {PLACEMENT, JOINT}) {
        const auto [report, places] = onALongRow(program, 0.01F, 1'999'999'999);
        EXPECT_NE(report.find("two neighbours do not fit into the solver's memory"), std::string::npos)
            << report;
    }
}

INSTANTIATE_TEST_SUITE_P(Programs, Limits, testing::Values(PLACEMENT, JOINT, SHIFT, SHIFT_FAST), nameOf);

// --- whole placements

/// Rows of segments, some over-full, so that components move from one to another; few nets have few members,
/// many have 60 to 150, and most components belong to several of these.
class BusyDesign : public TinyDesign {
public:
    explicit BusyDesign(uint32_t seed)
    {
        Random random(seed);
        for (int i = 0; i < 4; ++i) {
            addCell(random.pick(1, 4), std::vector<int>(static_cast<size_t>(random.pick(1, 3))));
            design.lut.cells.back()->stitchNums.front() = random.pick(0, 2);
        }
        for (auto& rows : design.lut.distTable) {
            for (auto& block : rows) {
                for (auto& row : block) {
                    for (int32_t& dist : row) {
                        dist = random.oneOf<int>({0, 0, 0, 190});
                    }
                }
            }
        }
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                Segment* segment =
                    addSegment(column * 60 * SITE_WIDTH, row * SITE_HEIGHT, random.pick(40, 59));
                int site = 0;
                for (int i = random.oneOf<int>({6, 12, 18, 26}); i > 0; --i) {
                    addComponent(segment, random.pick(0, 3), site, random.oneOf<int>({-1, 0}));
                    site += random.pick(0, 3);
                }
            }
        }
        for (const int members : {2, 2, 3, 5, 60, 63, 64, 65, 90, 150}) {
            std::vector<Component*> comps;
            for (int i = 0; i < members; ++i) {
                comps.push_back(random.oneOf(design.components));
            }
            addNet(comps, {});
        }
        for (Component* comp : design.components) {
            addNet({comp, random.oneOf(design.components)});
        }
        design.initDesignBound();
    }
};

/// A placement's result and report, and the number of passes: more than one if components moved.
struct Placed {
    Places places;
    std::string report;
    int passes = 0;
};

Placed placed(uint32_t seed, int algo, bool graphs)
{
    BusyDesign busy(seed);
    busy.design.algo = algo;
    const RoadGuard road(graphs);
    const test::ReportCapture capture;
    try {
        busy.legalizer.solveDPlace();
    } catch (const vireloce::RunError&) {
    }
    return {busy.places(), capture.text(), busy.legalizer.passCount};
}

class PlacementRoads : public testing::TestWithParam<int> {};

TEST_P(PlacementRoads, AgreeWhileMembersOfLargeNetsMoveBetweenSegments)
{
    int moved = 0;
    for (uint32_t seed = 1; seed <= 12 && !HasFailure(); ++seed) {
        const Placed fast = placed(seed, GetParam(), false);
        const Placed graph = placed(seed, GetParam(), true);
        EXPECT_EQ(fast.places, graph.places) << "seed " << seed;
        EXPECT_EQ(fast.report, graph.report) << "seed " << seed;
        EXPECT_EQ(fast.passes, graph.passes) << "seed " << seed;
        moved += fast.passes > 1 ? 1 : 0;
    }
    EXPECT_GT(moved, 3);
}

INSTANTIATE_TEST_SUITE_P(Algorithms, PlacementRoads, testing::Values(0, 1, 3, 4));

} // namespace
